#pragma once

#include <cstddef>
#include <string>

namespace text {

/// A number for a person, with up to seven digits and none that are needless: "25", "29.97", "-0.5". Numbers
/// that are not finite are "inf", "-inf" and "nan".
[[nodiscard]] std::string plain_number(double value);

/// "1 texture", "3 textures"
[[nodiscard]] std::string count_text(std::size_t count, const char* one, const char* several);

}  // namespace text
