#pragma once

#include <cstdint>
#include <string_view>

namespace render {

/// Letters of five by seven dots in cells of six by eight, for marks in pictures.
inline constexpr std::int32_t kCellWidth = 6;
inline constexpr std::int32_t kCellHeight = 8;

/// Whether the letter has a dot at this place of its cell. Anything but printable ASCII looks like a question
/// mark.
[[nodiscard]] bool has_dot(char letter, std::int32_t x, std::int32_t y);

}  // namespace render
