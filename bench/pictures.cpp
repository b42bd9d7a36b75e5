#include "pictures.h"

#include <algorithm>
#include <random>

namespace {

constexpr std::uint32_t kSeed = 4096;
constexpr std::int32_t kOpaque = 255;

std::uint8_t to_byte(std::int64_t value) {
    return static_cast<std::uint8_t>(std::clamp<std::int64_t>(value, 0, 255));
}

/// A bow from 0 at both ends to 255 in the middle of `size_px`.
std::int64_t bow(std::int64_t place, std::int64_t size_px) {
    constexpr std::int64_t kPeak = 255;
    return 4 * kPeak * place * (size_px - 1 - place) /
           std::max<std::int64_t>((size_px - 1) * (size_px - 1), 1);
}

/// Integers only: sines and roots differ in their last bits between machines.
void fill_photographic(Texture& picture) {
    std::mt19937 random(kSeed);
    const std::int64_t size_px = picture.width_px;
    const std::int64_t radius_squared = size_px * size_px / 6;  // a disc of some 0.4 of the width
    std::uint8_t* color = picture.pixels.data();
    std::uint8_t* alpha = picture.alphas[0].values.data();
    for (std::int64_t y = 0; y < size_px; ++y) {
        for (std::int64_t x = 0; x < size_px; ++x) {
            // Two bits of noise a channel, about what a camera's sensor adds in daylight.
            const auto noise = static_cast<std::int64_t>(random());
            *color++ = to_byte(255 * x / size_px + (noise & 3) - 1);
            *color++ = to_byte(bow(y, size_px) + ((noise >> 2) & 3) - 1);
            *color++ = to_byte((bow(x, size_px) + 255 * y / size_px) / 2 + ((noise >> 4) & 3) - 1);
            const std::int64_t dx = 2 * x - size_px;
            const std::int64_t dy = 2 * y - size_px;
            *alpha++ = to_byte((4 * radius_squared - (dx * dx + dy * dy)) * 2048 / (size_px * size_px));
        }
    }
}

void fill_noise(Texture& picture) {
    std::mt19937 random(kSeed);
    for (PixelBuffer* buffer : {&picture.pixels, &picture.alphas[0].values})
        for (std::uint8_t& value : *buffer)
            value = static_cast<std::uint8_t>(random() >> 24);
}

void fill_flat(Texture& picture) {
    static constexpr std::uint8_t kColor[] = {200, 120, 40};
    for (std::size_t i = 0; i < picture.pixels.size(); ++i)
        picture.pixels[i] = kColor[i % 3];
    std::fill(picture.alphas[0].values.begin(), picture.alphas[0].values.end(), std::uint8_t{kOpaque});
}

}  // namespace

const char* picture_name(PictureKind kind) {
    switch (kind) {
        case PictureKind::flat:
            return "flat";
        case PictureKind::photographic:
            return "photographic";
        case PictureKind::noise:
            return "noise";
    }
    return "";
}

Texture make_picture(PictureKind kind, std::int32_t size_px) {
    Texture picture;
    picture.width_px = size_px;
    picture.height_px = size_px;
    picture.mode = Texture::kRgb;
    picture.pixels = PixelBuffer(picture.pixel_count() * 3);
    picture.alphas.push_back({"Alpha", PixelBuffer(picture.pixel_count())});
    switch (kind) {
        case PictureKind::flat:
            fill_flat(picture);
            break;
        case PictureKind::photographic:
            fill_photographic(picture);
            break;
        case PictureKind::noise:
            fill_noise(picture);
            break;
    }
    return picture;
}
