#include "text/plain_number.h"

#include <array>
#include <charconv>
#include <cmath>

namespace text {

std::string plain_number(double value) {
    if (!std::isfinite(value)) {
        return std::isnan(value) ? "nan" : value > 0 ? "inf" : "-inf";
    }
    constexpr int kDigits = 7;
    constexpr double kLargestWhole = 1e15;  // every whole number up to here is exact
    std::array<char, 400> text{};
    const bool whole = value == std::trunc(value) && std::abs(value) <= kLargestWhole;
    const auto end =
        whole ? std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 0)
              : std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general,
                              kDigits);
    std::string number(text.data(), end.ptr);
    return number == "-0" ? "0" : number;
}

std::string size_text(std::int64_t width_px, std::int64_t height_px) {
    return std::to_string(width_px) + " x " + std::to_string(height_px);
}

}  // namespace text
