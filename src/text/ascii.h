#pragma once

#include <algorithm>
#include <string>
#include <string_view>

// The case of ASCII letters, independent of the locale, and the last component of a path. Other bytes are
// left alone.

namespace text {

constexpr char to_lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr char to_upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// Of the 26 letters that ASCII has.
constexpr bool is_letter(char c) {
    const char lower = to_lower(c);
    return lower >= 'a' && lower <= 'z';
}

inline std::string lower_case(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), to_lower);
    return lower;
}

inline std::string upper_case(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), to_upper);
    return upper;
}

constexpr bool equal_ignoring_case(std::string_view one, std::string_view other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](char a, char b) { return to_lower(a) == to_lower(b); });
}

/// True also for a text that consists of the ending alone.
constexpr bool ends_with_ignoring_case(std::string_view text, std::string_view ending) {
    return text.size() >= ending.size() &&
           equal_ignoring_case(text.substr(text.size() - ending.size()), ending);
}

/// Everything after the last of the `separators`: all of `path` when it contains none, and nothing when one
/// of them ends it.
constexpr std::string_view last_component(std::string_view path, std::string_view separators) {
    const std::size_t separator = path.find_last_of(separators);
    return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

}  // namespace text
