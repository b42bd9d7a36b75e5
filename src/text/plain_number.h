#pragma once

#include <concepts>
#include <cstdint>
#include <string>

namespace text {

/// A number for a person, with up to seven digits and none that are needless: "25", "29.97", "-0.5". Numbers
/// that are not finite are "inf", "-inf" and "nan".
[[nodiscard]] std::string plain_number(double value);

/// "1 texture", "3 textures"
template <std::integral Count>
[[nodiscard]] std::string count_text(Count count, const char* one, const char* several) {
    return std::to_string(count) + ' ' + (count == 1 ? one : several);
}

/// Of a picture: "720 x 576".
[[nodiscard]] std::string size_text(std::int64_t width_px, std::int64_t height_px);

}  // namespace text
