#include "composition/read/number_scan.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string_view>
#include <system_error>

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

// The written exponent, saturated far from the limits of its type: no text is long enough to bring it back
// into range.
std::int64_t exponent_of(std::string_view text) {
    constexpr std::int64_t kFar = std::int64_t{1} << 48;
    const bool negative = take_sign(text);
    std::int64_t value = 0;
    for (const char c : text) {
        value = value < kFar ? value * 10 + (c - '0') : value;
    }
    return negative ? -value : value;
}

// Whether a number outside the range of float is too large rather than too small. Too large is far above 1
// and too small far below, so the place of the first significant digit and the exponent decide.
bool is_too_large(std::string_view number, bool hexadecimal) {
    const std::size_t exponent_at = number.find_first_of(hexadecimal ? "pP" : "eE");
    const std::string_view digits = number.substr(0, exponent_at);
    const std::int64_t exponent =
        exponent_at == std::string_view::npos ? 0 : exponent_of(number.substr(exponent_at + 1));
    const std::size_t first = digits.find_first_not_of("0.");
    const std::size_t point = std::min(digits.find('.'), digits.size());
    const std::int64_t places = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first);
    return (hexadecimal ? places * 4 : places) + exponent > 0;
}

}  // namespace

int StrToReal(const char* text, float& value) {
    std::string_view rest = without_blanks(text);
    if (rest.empty()) {
        return -1;
    }
    const bool negative = take_sign(rest);
    if (rest.starts_with('-')) {  // from_chars would accept a second minus sign
        return 0;
    }
    float magnitude = 0;
    const auto convert = [&](std::string_view number, std::chars_format format) {
        const auto [end, error] =
            std::from_chars(number.data(), number.data() + number.size(), magnitude, format);
        if (error == std::errc::result_out_of_range) {
            number = number.substr(0, static_cast<std::size_t>(end - number.data()));
            magnitude = is_too_large(number, format == std::chars_format::hex)
                            ? std::numeric_limits<float>::infinity()
                            : 0.0F;
        }
        return error != std::errc::invalid_argument;
    };
    // The scan takes in the prefix before it looks for digits, so a prefix with neither a hexadecimal digit
    // nor a point behind it matches nothing. "0x." is the decimal 0 before the "x".
    const bool prefixed = rest.starts_with("0x") || rest.starts_with("0X");
    if (prefixed && (rest.size() == 2 || !(is_hexadecimal_digit(rest[2]) || rest[2] == '.'))) {
        return 0;
    }
    if (!(prefixed && convert(rest.substr(2), std::chars_format::hex)) &&
        !convert(rest, std::chars_format::general)) {
        return 0;
    }
    value = negative ? -magnitude : magnitude;
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

std::optional<double> whole_number(std::string_view text) {
    const bool negative = text.substr(0, 1) == "-";
    text.remove_prefix(negative ? 1 : 0);
    const bool hexadecimal = text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X";
    text.remove_prefix(hexadecimal ? 2 : 0);
    double value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(
        text.data(), end, value, hexadecimal ? std::chars_format::hex : std::chars_format::general);
    // from_chars accepts a second minus sign, which has no meaning.
    if (error != std::errc() || stop != end || text.substr(0, 1) == "-") {
        return std::nullopt;
    }
    return negative ? -value : value;
}
