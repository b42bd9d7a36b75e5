#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "image/image.h"

namespace render {

/// A decoded picture as its file has it: 8 bits each of red, green, blue and alpha, rows top to bottom, no
/// padding. Without an alpha channel of its own every alpha is 255.
struct Picture {
    std::int32_t width_px = 0;
    std::int32_t height_px = 0;
    bool has_alpha = false;
    std::vector<std::uint8_t> bytes;

    [[nodiscard]] std::size_t row_bytes() const { return static_cast<std::size_t>(width_px) * 4; }
};

/// The colour of a texture, with one of its alphas, or opaque without one.
[[nodiscard]] Picture picture_of(const Texture& texture, const PixelBuffer* alpha);

/// The colour of a picture alone.
[[nodiscard]] Texture texture_of(const Picture& opaque);

/// The colour of a picture, and its alpha as the one alpha channel.
[[nodiscard]] Texture texture_with_alpha_of(const Picture& picture);

/// The whole picture in no more pixels a side than it has, and at least one: each is the average of the area
/// that it covers, colours weighted by their coverage. Colour is straight, before and after.
[[nodiscard]] Picture reduced(const Picture& straight, std::int32_t width_px, std::int32_t height_px);

/// The same of a texture with one of its alphas, or opaque without one, and without a copy of it in full
/// size. `pixels` says what its colour is; it is straight afterwards.
[[nodiscard]] Picture reduced(const Texture& texture, const PixelBuffer* alpha, image::AlphaPixels pixels,
                              std::int32_t width_px, std::int32_t height_px);

/// The largest size with the proportions of `width_px` x `height_px` that fits, rounded, at least one pixel a
/// side, and never more than the picture has.
struct FittedSize {
    std::int32_t width_px = 0;
    std::int32_t height_px = 0;
};
[[nodiscard]] FittedSize fitted_size(std::int32_t width_px, std::int32_t height_px,
                                     std::int32_t most_width_px, std::int32_t most_height_px);

/// The picture on a chequerboard of two greys, which stands for what is transparent; `square_px` is a side of
/// a square.
[[nodiscard]] Picture on_chequerboard(const Picture& straight, std::int32_t square_px);

/// Shared by the cache and the frame that shows it; nobody changes it.
using SharedPicture = std::shared_ptr<const Picture>;

}  // namespace render
