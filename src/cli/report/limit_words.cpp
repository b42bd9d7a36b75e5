#include "cli/report/limit_words.h"

namespace cli {

std::string grouped(std::int64_t number) {
    constexpr std::size_t kGroup = 3;
    std::string text = std::to_string(number);
    const std::size_t first_digit = number < 0 ? 1 : 0;
    for (std::size_t end = text.size(); end > first_digit + kGroup;) {
        end -= kGroup;
        text.insert(end, 1, ',');
    }
    return text;
}

std::string limit_text(const limits::Limit& limit) {
    return std::string(limit.name) + ": " + grouped(limit.value) + ' ' + limit.unit +
           " are allowed (see `vxr limits`)";
}

void name_limit(Diagnostic& diagnostic, const limits::Limit* limit) {
    if (limit != nullptr) {
        diagnostic.limit = limit;
        diagnostic.effects.push_back(limit_text(*limit));
    }
}

}  // namespace cli
