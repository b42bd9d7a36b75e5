#include "composition/read/number_scan.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>

#include "composition/read/real_conversion.h"

namespace {

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

bool is_hexadecimal_digit(char c) {
    return is_digit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// Blanks of the "C" locale, which the scan skips before a number.
std::string_view without_blanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\n\v\f\r");
    return text.substr(first == std::string_view::npos ? text.size() : first);
}

// Removes a sign from the text. Returns whether it was a minus.
bool take_sign(std::string_view& text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    return negative;
}

}  // namespace

int StrToReal(const char* text, float& value) {
    std::string_view rest = without_blanks(text);
    if (rest.empty()) {
        return -1;
    }
    const bool negative = take_sign(rest);
    // The scan takes in the prefix before it looks for digits, so a prefix with neither a hexadecimal digit
    // nor a point behind it matches nothing. "0x." is the decimal 0 before the "x".
    const bool prefixed = rest.starts_with("0x") || rest.starts_with("0X");
    if (prefixed && (rest.size() == 2 || !(is_hexadecimal_digit(rest[2]) || rest[2] == '.'))) {
        return 0;
    }
    const RealAtStart<float> number = real_at_start<float>(rest.data());
    if (number.length == 0) {
        return 0;
    }
    value = negative ? -number.value : number.value;
    return 1;
}

int StrToVal(const char* text, A_long& value) {
    std::string_view rest = without_blanks(text);
    if (rest.empty()) {
        return -1;
    }
    const bool negative = take_sign(rest);
    if (rest.empty() || !is_digit(rest.front())) {
        return 0;
    }
    constexpr std::int64_t kBeyond = std::int64_t{std::numeric_limits<A_long>::max()} + 1;
    std::int64_t magnitude = 0;
    for (std::size_t i = 0; i < rest.size() && is_digit(rest[i]); ++i) {
        magnitude = std::min(magnitude * 10 + (rest[i] - '0'), kBeyond);
    }
    const std::int64_t signed_value = negative ? -magnitude : magnitude;
    value = static_cast<A_long>(std::min(signed_value, kBeyond - 1));
    return 1;
}

std::optional<double> whole_number(const char* text) {
    const bool negative = *text == '-';
    text += negative ? 1 : 0;
    const RealAtStart<double> number = real_at_start<double>(text);
    if (number.length == 0 || text[number.length] != '\0' || !number.in_range) {
        return std::nullopt;
    }
    return negative ? -number.value : number.value;
}
