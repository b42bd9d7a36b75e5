#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "render/picture.h"

namespace render {

struct Shade {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
};

/// Makes the pixel opaque. It must lie in the picture.
void put_pixel(Picture& picture, std::int32_t x, std::int32_t y, const Shade& shade);

/// Fills a part of the picture; what lies outside is left out.
void fill_area(Picture& picture, std::int32_t left, std::int32_t top, std::int32_t width_px,
               std::int32_t height_px, const Shade& shade);

/// The text, or its end behind three dots if it has more letters than that: the end of a file's name has its
/// number.
[[nodiscard]] std::string cut_to(std::string_view text, std::size_t letters);

/// One line in the letters of bitmap_font.h, each dot `dot` pixels wide, with `left` and `top` as the corner
/// of its first cell. What lies outside of the picture is left out.
void draw_text(Picture& picture, std::string_view text, std::int32_t left, std::int32_t top, std::int32_t dot,
               const Shade& shade);

}  // namespace render
