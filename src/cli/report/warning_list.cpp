#include "cli/report/warning_list.h"

#include <algorithm>
#include <utility>

#include "cli/report/source_lines.h"

namespace cli {

Diagnostic& WarningList::add(Code code, const TextPosition& at, std::string reason,
                             std::vector<std::string> within) {
    const Place place{reading_.file, at.offset_bytes, at.line, at.column};
    if (++counts_[code] <= kMostOfOneCode) {
        return kept_.emplace_back(warn(code_name(code), place, std::move(reason), std::move(within)));
    }
    Overflow& overflow = overflow_[code];
    if (++overflow.count == 1) {
        overflow.first = warn(code_name(code), place, {});
    }
    uncounted_ = {};
    return uncounted_;
}

std::vector<Diagnostic> WarningList::finish() {
    for (auto& [code, overflow] : overflow_) {
        overflow.first.reason = "from here on " + std::to_string(overflow.count) + " more of this kind";
        overflow.first.count = overflow.count;
        kept_.push_back(std::move(overflow.first));
    }
    overflow_.clear();
    std::stable_sort(kept_.begin(), kept_.end(), [](const Diagnostic& a, const Diagnostic& b) {
        return a.at.offset_bytes < b.at.offset_bytes;
    });
    for (Diagnostic& warning : kept_) {
        add_source_line(warning, reading_.full_path);
    }
    return std::move(kept_);
}

}  // namespace cli
