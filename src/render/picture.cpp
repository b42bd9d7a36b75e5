#include "render/picture.h"

#include <algorithm>

namespace render {

Picture picture_of(const Texture& texture, const PixelBuffer* alpha) {
    Picture picture;
    picture.width_px = texture.width_px;
    picture.height_px = texture.height_px;
    picture.has_alpha = alpha != nullptr;
    picture.bytes.resize(texture.pixel_count() * 4);
    const bool grey = texture.mode == Texture::kGrey;
    const std::uint8_t* colour = texture.pixels.data();
    const std::uint8_t* const covered = alpha == nullptr ? nullptr : alpha->data();
    std::uint8_t* to = picture.bytes.data();
    for (std::size_t i = 0; i < texture.pixel_count(); ++i, to += 4) {
        to[0] = colour[0];
        to[1] = colour[grey ? 0 : 1];
        to[2] = colour[grey ? 0 : 2];
        to[3] = covered == nullptr ? std::uint8_t{255} : covered[i];
        colour += grey ? 1 : 3;
    }
    return picture;
}

Texture texture_of(const Picture& opaque) {
    Texture texture;
    texture.width_px = opaque.width_px;
    texture.height_px = opaque.height_px;
    texture.mode = Texture::kRgb;
    texture.pixels = PixelBuffer(texture.pixel_count() * 3);
    for (std::size_t i = 0; i < texture.pixel_count(); ++i) {
        std::copy_n(&opaque.bytes[i * 4], 3, texture.pixels.data() + i * 3);
    }
    return texture;
}

Picture reduced(const Picture& straight, std::int32_t width_px, std::int32_t height_px) {
    Picture made;
    made.width_px = width_px;
    made.height_px = height_px;
    made.has_alpha = straight.has_alpha;
    made.bytes.resize(static_cast<std::size_t>(made.height_px) * made.row_bytes());
    // Where pixel `i` of `count` begins in `size` pixels; every one covers at least one.
    const auto begin = [](std::int64_t i, std::int64_t count, std::int64_t size) { return i * size / count; };
    for (std::int32_t y = 0; y < made.height_px; ++y) {
        const std::int64_t top = begin(y, made.height_px, straight.height_px);
        const std::int64_t bottom = begin(y + 1, made.height_px, straight.height_px);
        for (std::int32_t x = 0; x < made.width_px; ++x) {
            const std::int64_t left = begin(x, made.width_px, straight.width_px);
            const std::int64_t right = begin(x + 1, made.width_px, straight.width_px);
            std::uint64_t sums[3] = {};
            std::uint64_t coverage = 0;
            for (std::int64_t row = top; row < bottom; ++row) {
                const std::uint8_t* from =
                    &straight.bytes[static_cast<std::size_t>(row) * straight.row_bytes() +
                                    static_cast<std::size_t>(left) * 4];
                for (std::int64_t column = left; column < right; ++column, from += 4) {
                    for (std::size_t c = 0; c < 3; ++c) {
                        sums[c] += static_cast<std::uint64_t>(from[c]) * from[3];
                    }
                    coverage += from[3];
                }
            }
            std::uint8_t* const to =
                &made.bytes[static_cast<std::size_t>(y) * made.row_bytes() + static_cast<std::size_t>(x) * 4];
            for (std::size_t c = 0; c < 3; ++c) {
                to[c] = static_cast<std::uint8_t>(coverage == 0 ? 0 : (sums[c] + coverage / 2) / coverage);
            }
            const auto pixels = static_cast<std::uint64_t>((bottom - top) * (right - left));
            to[3] = static_cast<std::uint8_t>((coverage + pixels / 2) / pixels);
        }
    }
    return made;
}

}  // namespace render
