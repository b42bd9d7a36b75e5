#include "render/picture.h"

#include <algorithm>

namespace render {
namespace {

/// A pixel whose colours are multiplied by its coverage: up to 255 * 255, and up to 255.
struct Multiplied {
    int colour[3];
    int coverage;
};

/// Pixel `i` of a side that is reduced from `from` pixels to `to` covers parts of those: calls
/// `share(pixel, length)` for each. Lengths count in units of which every pixel has `to`, and the reduced one
/// therefore `from`.
template <typename Share>
void for_parts(std::int64_t i, std::int64_t from, std::int64_t to, const Share& share) {
    const std::int64_t begin = i * from;
    const std::int64_t end = begin + from;
    for (std::int64_t at = begin / to; at * to < end; ++at) {
        share(at, std::min((at + 1) * to, end) - std::max(at * to, begin));
    }
}

/// The average of the area that each pixel covers. Whole numbers hold it exactly: 2^30 pixels of 2^16.
template <typename PixelAt>
Picture average(FittedSize from, FittedSize to, const PixelAt& pixel_at) {
    Picture made;
    made.width_px = to.width_px;
    made.height_px = to.height_px;
    made.bytes.resize(static_cast<std::size_t>(made.height_px) * made.row_bytes());
    struct Sums {
        std::uint64_t colour[3];
        std::uint64_t coverage;
    };
    std::vector<Sums> sums(static_cast<std::size_t>(to.width_px));
    const std::uint64_t area =
        static_cast<std::uint64_t>(from.width_px) * static_cast<std::uint64_t>(from.height_px);
    std::uint8_t* out = made.bytes.data();
    for (std::int32_t y = 0; y < to.height_px; ++y) {
        std::fill(sums.begin(), sums.end(), Sums{});
        for_parts(y, from.height_px, to.height_px, [&](std::int64_t row, std::int64_t height) {
            for (std::int32_t x = 0; x < to.width_px; ++x) {
                Sums& sum = sums[static_cast<std::size_t>(x)];
                for_parts(x, from.width_px, to.width_px, [&](std::int64_t column, std::int64_t width) {
                    const Multiplied pixel = pixel_at(static_cast<std::size_t>(row * from.width_px + column));
                    const auto share = static_cast<std::uint64_t>(width * height);
                    for (std::size_t c = 0; c < 3; ++c) {
                        sum.colour[c] += share * static_cast<std::uint64_t>(pixel.colour[c]);
                    }
                    sum.coverage += share * static_cast<std::uint64_t>(pixel.coverage);
                });
            }
        });
        for (const Sums& sum : sums) {
            for (const std::uint64_t colour : sum.colour) {
                const std::uint64_t rounded =
                    sum.coverage == 0 ? 0 : (colour + sum.coverage / 2) / sum.coverage;
                *out++ = static_cast<std::uint8_t>(std::min<std::uint64_t>(rounded, 255));
            }
            *out++ = static_cast<std::uint8_t>((sum.coverage + area / 2) / area);
        }
    }
    return made;
}

}  // namespace

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

Texture texture_with_alpha_of(const Picture& picture) {
    Texture texture = texture_of(picture);
    AlphaChannel& alpha =
        texture.alphas.emplace_back(AlphaChannel{"Alpha", PixelBuffer(texture.pixel_count())});
    for (std::size_t i = 0; i < texture.pixel_count(); ++i) {
        alpha.values[i] = picture.bytes[i * 4 + 3];
    }
    return texture;
}

Picture reduced(const Picture& straight, std::int32_t width_px, std::int32_t height_px) {
    Picture made =
        average({straight.width_px, straight.height_px}, {width_px, height_px},
                [bytes = straight.bytes.data()](std::size_t i) {
                    const std::uint8_t* const from = bytes + i * 4;
                    return Multiplied{{from[0] * from[3], from[1] * from[3], from[2] * from[3]}, from[3]};
                });
    made.has_alpha = straight.has_alpha;
    return made;
}

Picture reduced(const Texture& texture, const PixelBuffer* alpha, image::AlphaPixels pixels,
                std::int32_t width_px, std::int32_t height_px) {
    const std::size_t step = texture.mode == Texture::kGrey ? 1 : 3;
    const std::uint8_t* const colours = texture.pixels.data();
    const std::uint8_t* const covered = alpha == nullptr ? nullptr : alpha->data();
    const bool straight = pixels == image::AlphaPixels::straight;
    Picture made = average({texture.width_px, texture.height_px}, {width_px, height_px}, [=](std::size_t i) {
        const std::uint8_t* const from = colours + i * step;
        const int coverage = covered == nullptr ? 255 : covered[i];
        const int factor = straight ? coverage : 255;
        return Multiplied{{from[0] * factor, from[step / 2] * factor, from[step - 1] * factor}, coverage};
    });
    made.has_alpha = alpha != nullptr;
    return made;
}

Picture on_chequerboard(const Picture& straight, std::int32_t square_px) {
    constexpr std::uint8_t kLightSquare = 136;
    constexpr std::uint8_t kDarkSquare = 104;
    Picture opaque = straight;
    opaque.has_alpha = false;
    std::uint8_t* at = opaque.bytes.data();
    for (std::int32_t y = 0; y < opaque.height_px; ++y) {
        for (std::int32_t x = 0; x < opaque.width_px; ++x, at += 4) {
            const bool light = (x / square_px + y / square_px) % 2 == 0;
            const std::uint8_t below = light ? kLightSquare : kDarkSquare;
            for (std::size_t c = 0; c < 3; ++c) {
                at[c] = static_cast<std::uint8_t>((at[c] * at[3] + below * (255 - at[3]) + 127) / 255);
            }
            at[3] = 255;
        }
    }
    return opaque;
}

FittedSize fitted_size(std::int32_t width_px, std::int32_t height_px, std::int32_t most_width_px,
                       std::int32_t most_height_px) {
    if (width_px <= most_width_px && height_px <= most_height_px) {
        return {width_px, height_px};
    }
    const std::int64_t width = width_px;
    const std::int64_t height = height_px;
    const auto rounded = [](std::int64_t numerator, std::int64_t denominator) {
        return static_cast<std::int32_t>(
            std::max<std::int64_t>((numerator + denominator / 2) / denominator, 1));
    };
    return width * most_height_px >= height * most_width_px
               ? FittedSize{most_width_px, rounded(height * most_width_px, width)}
               : FittedSize{rounded(width * most_height_px, height), most_height_px};
}

}  // namespace render
