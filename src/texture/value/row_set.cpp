#include "texture/value/row_set.h"

#include <algorithm>

void RowSet::add(std::int32_t row) {
    if (!ranges_.empty() && row == ranges_.back().end) {
        ++ranges_.back().end;
    } else if (ranges_.empty() || row < ranges_.back().begin || row > ranges_.back().end) {
        ranges_.push_back({row, row + 1});
    }
}

std::vector<RowSet::Range> RowSet::ranges() const {
    std::vector<Range> sorted = ranges_;
    std::sort(sorted.begin(), sorted.end(), [](const Range& a, const Range& b) { return a.begin < b.begin; });
    std::vector<Range> joined;
    for (const Range& range : sorted) {
        if (joined.empty() || range.begin > joined.back().end) {
            joined.push_back(range);
        } else {
            joined.back().end = std::max(joined.back().end, range.end);
        }
    }
    return joined;
}

std::int64_t RowSet::count() const {
    std::int64_t rows = 0;
    for (const Range& range : ranges()) {
        rows += range.end - range.begin;
    }
    return rows;
}
