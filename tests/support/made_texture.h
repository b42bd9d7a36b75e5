#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

#include "texture/value/texture.h"

/// A texture of seeded noise and runs of one value, so that some of its rows are packed and some are raw.
/// Alpha channels have the names with which they are read back from a file.
inline Texture made_texture(std::int32_t width_px, std::int32_t height_px, std::int32_t mode, int alphas,
                            unsigned seed = 1) {
    std::mt19937 random(seed);
    const auto fill = [&random, width_px](PixelBuffer& buffer) {
        const std::size_t row = static_cast<std::size_t>(width_px);
        for (std::size_t i = 0; i < buffer.size(); ++i) {
            const bool noisy = (i / row) % 3 != 0;
            buffer[i] = static_cast<std::uint8_t>(noisy ? random() : i / row);
        }
    };
    Texture texture;
    texture.width_px = width_px;
    texture.height_px = height_px;
    texture.mode = mode;
    texture.pixels = PixelBuffer(texture.pixel_count() * static_cast<std::size_t>(texture.channels()));
    fill(texture.pixels);
    for (int i = 0; i < alphas; ++i) {
        texture.alphas.push_back({i == 0 ? std::string("Alpha") : "Alpha." + std::to_string(i + 1),
                                  PixelBuffer(texture.pixel_count())});
        fill(texture.alphas.back().values);
    }
    return texture;
}
