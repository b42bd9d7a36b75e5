#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "texture/value/pixel_buffer.h"

/// One alpha channel: a value a pixel, rows top to bottom, no padding; 0 is transparent.
struct AlphaChannel {
    std::string name;  // UTF-8
    PixelBuffer values;

    friend bool operator==(const AlphaChannel&, const AlphaChannel&) = default;
};

/// A layered texture as a plain value: 8-bit colour and any number of alpha channels, as they are stored:
/// neither reading nor writing multiplies colour by alpha or divides it.
struct Texture {
    static constexpr std::int32_t kGrey = 2;  // one byte a pixel
    static constexpr std::int32_t kRgb = 4;   // three bytes a pixel: R, G, B

    std::int32_t width_px = 0;
    std::int32_t height_px = 0;
    std::int32_t mode = kRgb;
    PixelBuffer pixels;  // height * width * channels(), rows top to bottom, channels interleaved, no padding
    std::vector<AlphaChannel> alphas;  // height * width values each

    /// Bytes a pixel of `pixels`.
    [[nodiscard]] std::int32_t channels() const { return mode == kGrey ? 1 : 3; }
    [[nodiscard]] std::size_t pixel_count() const {
        return static_cast<std::size_t>(width_px) * static_cast<std::size_t>(height_px);
    }

    friend bool operator==(const Texture&, const Texture&) = default;
};
