// The conversions of real numbers that Emscripten's C++ library lacks, by two libraries: {fmt} finds the
// shortest digits that read back as the same number, fast_float reads. The texts are those of Debian's C++
// library, so that the viewer and the program write the same.

#include <fast_float/fast_float.h>
#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

namespace std {
namespace {

to_chars_result put(char* first, char* last, string_view text) {
    if (last - first < static_cast<ptrdiff_t>(text.size())) {
        return {last, errc::value_too_large};
    }
    return {text.copy(first, text.size()) + first, errc()};
}

/// The shortest digits of a number: "1.25e-07" is {true, "125", -7}.
struct Digits {
    bool negative = false;
    string digits{};
    int exponent = 0;
};

template <class Real>
Digits shortest_digits(Real value) {
    const string text = fmt::format("{:e}", value);
    const size_t letter = text.find('e');
    Digits found{text.front() == '-', {}, stoi(text.substr(letter + 1))};
    for (const char c : text.substr(0, letter)) {
        if (c >= '0' && c <= '9') {
            found.digits += c;
        }
    }
    found.digits.erase(found.digits.find_last_not_of('0') + 1);
    return found;
}

/// With every digit before the point exact.
template <class Real>
string fixed_text(Real value, const Digits& found) {
    const int before = found.exponent + 1;
    const int count = static_cast<int>(found.digits.size());
    string text = found.negative ? "-" : "";
    if (found.digits.empty()) {
        return text + '0';
    }
    if (before >= count) {
        return fmt::format("{:.0f}", value);
    }
    if (before <= 0) {
        return text + "0." + string(static_cast<size_t>(-before), '0') + found.digits;
    }
    return text + found.digits.substr(0, static_cast<size_t>(before)) + '.' +
           found.digits.substr(static_cast<size_t>(before));
}

string scientific_text(const Digits& found) {
    string text = found.negative ? "-" : "";
    text += found.digits.front();
    if (found.digits.size() > 1) {
        text += '.' + found.digits.substr(1);
    }
    return text + fmt::format("e{}{:02}", found.exponent < 0 ? '-' : '+', abs(found.exponent));
}

template <class Real>
to_chars_result put_shortest(char* first, char* last, Real value) {
    if (!isfinite(value)) {
        return put(first, last, fmt::format("{}", value));
    }
    const Digits found = shortest_digits(value);
    if (found.digits.empty()) {
        return put(first, last, found.negative ? "-0" : "0");
    }
    // The shorter form, and the plain one of two of a length.
    const string scientific = scientific_text(found);
    const size_t zeros =
        static_cast<size_t>(max(0, found.exponent + 1 - static_cast<int>(found.digits.size())));
    const size_t before_point = found.exponent < 0 ? static_cast<size_t>(-found.exponent) + 1 : 0;
    const bool has_point =
        found.exponent + 1 > 0 && found.exponent + 1 < static_cast<int>(found.digits.size());
    const size_t fixed_length =
        (found.negative ? 1 : 0) + found.digits.size() + zeros + before_point + (has_point ? 1 : 0);
    return put(first, last, fixed_length <= scientific.size() ? fixed_text(value, found) : scientific);
}

}  // namespace

to_chars_result to_chars(char* first, char* last, float value) {
    return put_shortest(first, last, value);
}

to_chars_result to_chars(char* first, char* last, double value) {
    return put_shortest(first, last, value);
}

to_chars_result to_chars(char* first, char* last, double value, chars_format format) {
    if (format != chars_format::fixed) {
        return {last, errc::not_supported};
    }
    return put(first, last,
               isfinite(value) ? fixed_text(value, shortest_digits(value)) : fmt::format("{}", value));
}

to_chars_result to_chars(char* first, char* last, double value, chars_format format, int precision) {
    switch (format) {
        case chars_format::fixed:
            return put(first, last, fmt::format("{:.{}f}", value, precision));
        case chars_format::general:
            return put(first, last, fmt::format("{:.{}g}", value, precision));
        default:
            return {last, errc::not_supported};
    }
}

from_chars_result from_chars(const char* first, const char* last, double& value) {
    const auto [end, error] = fast_float::from_chars(first, last, value);
    return {end, error};
}

}  // namespace std
