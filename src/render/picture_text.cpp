#include "render/picture_text.h"

#include <algorithm>

#include "render/bitmap_font.h"

namespace render {

void put_pixel(Picture& picture, std::int32_t x, std::int32_t y, const Shade& shade) {
    std::uint8_t* const pixel =
        &picture.bytes[static_cast<std::size_t>(y) * picture.row_bytes() + static_cast<std::size_t>(x) * 4];
    pixel[0] = shade.red;
    pixel[1] = shade.green;
    pixel[2] = shade.blue;
    pixel[3] = 255;
}

void fill_area(Picture& picture, std::int32_t left, std::int32_t top, std::int32_t width_px,
               std::int32_t height_px, const Shade& shade) {
    for (std::int32_t y = std::max(top, 0); y < std::min(top + height_px, picture.height_px); ++y) {
        for (std::int32_t x = std::max(left, 0); x < std::min(left + width_px, picture.width_px); ++x) {
            put_pixel(picture, x, y, shade);
        }
    }
}

std::string cut_to(std::string_view text, std::size_t letters) {
    if (text.size() <= letters) {
        return std::string(text);
    }
    constexpr std::string_view kDots = "...";
    if (letters <= kDots.size()) {
        return std::string(text.substr(0, letters));
    }
    return std::string(kDots) + std::string(text.substr(text.size() - (letters - kDots.size())));
}

void draw_text(Picture& picture, std::string_view text, std::int32_t left, std::int32_t top, std::int32_t dot,
               const Shade& shade) {
    for (const char letter : text) {
        for (std::int32_t y = 0; y < kCellHeight; ++y) {
            for (std::int32_t x = 0; x < kCellWidth; ++x) {
                if (has_dot(letter, x, y)) {
                    fill_area(picture, left + x * dot, top + y * dot, dot, dot, shade);
                }
            }
        }
        left += kCellWidth * dot;
        if (left >= picture.width_px) {
            return;
        }
    }
}

}  // namespace render
