#include "composition/read/real_conversion.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>
#include <system_error>

#if !defined(_WIN32)
#include <locale.h>
#include <stdlib.h>
#endif
#if defined(__APPLE__)
#include <xlocale.h>
#endif

namespace {

bool is_decimal_digit(char c) {
    return c >= '0' && c <= '9';
}

bool is_any_digit(char c) {
    return is_decimal_digit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// Whether the text begins with a hexadecimal prefix and a digit, before which a point may be.
bool is_hexadecimal(std::string_view text) {
    if (!text.starts_with("0x") && !text.starts_with("0X")) {
        return false;
    }
    text.remove_prefix(text.substr(2, 1) == "." ? 3 : 2);
    return !text.empty() && is_any_digit(text.front());
}

#if defined(__cpp_lib_to_chars)

// The written exponent, saturated far from the limits of its type: no text is long enough to bring it back
// into range.
std::int64_t exponent_of(std::string_view text) {
    constexpr std::int64_t kFar = std::int64_t{1} << 48;
    const bool negative = text.starts_with('-');
    text.remove_prefix(negative || text.starts_with('+') ? 1 : 0);
    std::int64_t value = 0;
    for (const char c : text) {
        value = value < kFar ? value * 10 + (c - '0') : value;
    }
    return negative ? -value : value;
}

// Whether a number outside the range of its type is too large rather than too small. Too large is far above 1
// and too small far below, so the place of the first significant digit and the exponent decide.
bool is_too_large(std::string_view number, bool hexadecimal) {
    const std::size_t exponent_at = number.find_first_of(hexadecimal ? "pP" : "eE");
    const std::string_view digits = number.substr(0, exponent_at);
    const std::int64_t exponent =
        exponent_at == std::string_view::npos ? 0 : exponent_of(number.substr(exponent_at + 1));
    const std::size_t first = digits.find_first_not_of("0.");
    const std::size_t point = digits.find('.') == std::string_view::npos ? digits.size() : digits.find('.');
    const std::int64_t places = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first);
    return (hexadecimal ? places * 4 : places) + exponent > 0;
}

#endif
#if !defined(_WIN32)

float convert(const char* text, locale_t locale, float /*type*/) {
    return ::strtof_l(text, nullptr, locale);
}

double convert(const char* text, locale_t locale, double /*type*/) {
    return ::strtod_l(text, nullptr, locale);
}

// Never freed, because conversions may run until the process ends. A null one, when memory is short, means
// the same on macOS; elsewhere this locale exists from the start.
locale_t c_locale() {
    static const locale_t locale = ::newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

// Whether the text begins with a word, in small letters, of any case.
bool begins_with_word(std::string_view text, std::string_view word) {
    for (std::size_t i = 0; i < word.size(); ++i) {
        if (i == text.size() || (text[i] != word[i] && text[i] != word[i] - 'a' + 'A')) {
            return false;
        }
    }
    return true;
}

// The length of "nan", with a note in parentheses if it is closed and of letters, digits and underscores.
std::size_t nan_length(std::string_view text) {
    constexpr std::size_t kName = 3;
    if (text.substr(kName, 1) != "(") {
        return kName;
    }
    const std::size_t end =
        text.find_first_not_of("0123456789_abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ", kName + 1);
    return end != std::string_view::npos && text[end] == ')' ? end + 1 : kName;
}

// The extent of a number's digits and exponent, and whether any digit differs from 0.
struct Extent {
    std::size_t length = 0;
    bool significant = false;
};

Extent extent_of(std::string_view text, bool hexadecimal) {
    Extent extent;
    std::size_t digits = 0;
    bool point = false;
    std::size_t at = hexadecimal ? 2 : 0;
    for (; at < text.size(); ++at) {
        if (hexadecimal ? is_any_digit(text[at]) : is_decimal_digit(text[at])) {
            ++digits;
            extent.significant = extent.significant || text[at] != '0';
        } else if (text[at] == '.' && !point) {
            point = true;
        } else {
            break;
        }
    }
    if (digits == 0) {
        return extent;
    }
    extent.length = at;
    const char letter = hexadecimal ? 'p' : 'e';
    if (at < text.size() && (text[at] == letter || text[at] == letter - 'a' + 'A')) {
        ++at;
        at += at < text.size() && (text[at] == '-' || text[at] == '+') ? 1U : 0U;
        while (at < text.size() && is_decimal_digit(text[at])) {
            extent.length = ++at;
        }
    }
    return extent;
}

#endif

}  // namespace

#if defined(__cpp_lib_to_chars)

template <class Real>
RealAtStart<Real> real_by_cpp_library(const char* text) {
    RealAtStart<Real> number;
    const std::string_view whole(text);
    const bool hexadecimal = is_hexadecimal(whole);
    const std::string_view rest = whole.substr(hexadecimal ? 2 : 0);
    if (rest.starts_with('-')) {  // from_chars would accept it
        return number;
    }
    const auto [end, error] =
        std::from_chars(rest.data(), rest.data() + rest.size(), number.value,
                        hexadecimal ? std::chars_format::hex : std::chars_format::general);
    if (error == std::errc::invalid_argument) {
        return number;
    }
    number.length = static_cast<std::size_t>(end - text);
    number.in_range = error == std::errc();
    if (!number.in_range) {
        const auto written = static_cast<std::size_t>(end - rest.data());
        number.value = is_too_large(rest.substr(0, written), hexadecimal)
                           ? std::numeric_limits<Real>::infinity()
                           : static_cast<Real>(0);
    }
    return number;
}

template RealAtStart<float> real_by_cpp_library(const char* text);
template RealAtStart<double> real_by_cpp_library(const char* text);

#endif
#if !defined(_WIN32)

// The C library's own reading of the extent is not used, nor of names: it may depend on the system what it
// makes of the note behind a NaN.
template <class Real>
RealAtStart<Real> real_by_c_library(const char* text) {
    const std::string_view whole(text);
    if (begins_with_word(whole, "inf")) {
        constexpr std::string_view kLong = "infinity";
        return {std::numeric_limits<Real>::infinity(), begins_with_word(whole, kLong) ? kLong.size() : 3,
                true};
    }
    if (begins_with_word(whole, "nan")) {
        return {std::numeric_limits<Real>::quiet_NaN(), nan_length(whole), true};
    }
    const Extent extent = extent_of(whole, is_hexadecimal(whole));
    if (extent.length == 0) {
        return {};
    }
    const Real value = convert(text, c_locale(), Real());
    return {value, extent.length, !std::isinf(value) && (value != 0 || !extent.significant)};
}

template RealAtStart<float> real_by_c_library(const char* text);
template RealAtStart<double> real_by_c_library(const char* text);

#endif
