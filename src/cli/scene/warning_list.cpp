#include "cli/scene/warning_list.h"

#include <algorithm>
#include <utility>

namespace cli {

Diagnostic& WarningList::add(ToolCode code, const TextPosition& at, std::string reason,
                             std::vector<std::string> within) {
    Diagnostic warning = diagnostic::make(code, {reading_.file, at.offset_bytes, at.line, at.column},
                                          std::move(reason), std::move(within));
    if (++counts_[code] <= kMostOfOneCode) {
        return kept_.emplace_back(std::move(warning));
    }
    Overflow& overflow = overflow_[code];
    if (++overflow.count == 1) {
        overflow.first = warning.at;
    }
    return overflowing_.emplace(std::move(warning));
}

std::vector<Diagnostic> WarningList::finish() {
    for (auto& [code, overflow] : overflow_) {
        Diagnostic& rest = kept_.emplace_back(
            diagnostic::make(code, std::move(overflow.first),
                             std::to_string(overflow.count) + " more of this kind from here on"));
        rest.count = overflow.count;
    }
    overflow_.clear();
    std::stable_sort(kept_.begin(), kept_.end(), [](const Diagnostic& a, const Diagnostic& b) {
        return a.at.offset_bytes < b.at.offset_bytes;
    });
    add_source_lines(kept_, reading_.full_path);
    return std::move(kept_);
}

}  // namespace cli
