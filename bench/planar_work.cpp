#include "planar_work.h"

#include <algorithm>

void expand_row(const PlaneRow& planes, std::int32_t y, BaseBitmap& bitmap) {
    const std::int64_t width = bitmap.width();
    std::uint16_t* const colour = bitmap.PixelRow(y);
    for (std::int64_t x = 0; x < width; ++x) {
        colour[3 * x] = static_cast<std::uint16_t>(planes[0][x] * 256);
        colour[3 * x + 1] = static_cast<std::uint16_t>(planes[1][x] * 256);
        colour[3 * x + 2] = static_cast<std::uint16_t>(planes[2][x] * 256);
    }
    std::copy(planes[3], planes[3] + width, bitmap.AlphaRow(1, y));
}

PlaneRow split_row(const Texture& texture, std::int32_t y, std::uint8_t* colour) {
    const std::int64_t width = texture.width_px;
    const std::uint8_t* const pixels = texture.pixels.data() + 3 * width * y;
    for (std::int64_t x = 0; x < width; ++x) {
        colour[x] = pixels[3 * x];
        colour[width + x] = pixels[3 * x + 1];
        colour[2 * width + x] = pixels[3 * x + 2];
    }
    return {colour, colour + width, colour + 2 * width, texture.alphas[0].values.data() + width * y};
}

bool holds(const BaseBitmap& bitmap, const Texture& texture) {
    if (bitmap.width() != texture.width_px || bitmap.height() != texture.height_px)
        return false;
    const auto same_colour = [](std::uint16_t value, std::uint8_t byte) { return value == byte * 256; };
    const std::uint8_t* colour = texture.pixels.data();
    const std::uint8_t* alpha = texture.alphas[0].values.data();
    const std::int64_t width = bitmap.width();
    for (std::int32_t y = 0; y < bitmap.height(); ++y, colour += 3 * width, alpha += width) {
        const std::uint16_t* const alpha_row = bitmap.AlphaRow(1, y);
        if (alpha_row == nullptr || !std::equal(alpha, alpha + width, alpha_row) ||
            !std::equal(bitmap.PixelRow(y), bitmap.PixelRow(y) + 3 * width, colour, same_colour))
            return false;
    }
    return true;
}
