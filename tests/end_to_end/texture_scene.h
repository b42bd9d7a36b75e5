#pragma once

// Small textures for the bundle to read, written by the texture library.

#include <cstdint>
#include <string>

#include "host/host_interface.h"
#include "texture/value/texture_file.h"

/// A texture in which all pixels and alpha values differ, starting from `seed`.
inline Texture make_texture(std::int32_t width_px, std::int32_t height_px, std::int32_t mode, int alphas,
                            int seed = 1) {
    Texture texture;
    texture.width_px = width_px;
    texture.height_px = height_px;
    texture.mode = mode;
    texture.pixels = PixelBuffer(texture.pixel_count() * static_cast<std::size_t>(texture.channels()));
    int next = seed;
    for (std::uint8_t& byte : texture.pixels) {
        byte = static_cast<std::uint8_t>(next += 7);
    }
    for (int i = 0; i < alphas; ++i) {
        texture.alphas.push_back({"Alpha", PixelBuffer(texture.pixel_count())});
        for (std::uint8_t& byte : texture.alphas.back().values) {
            byte = static_cast<std::uint8_t>(next += 11);
        }
    }
    return texture;
}

/// The expected pixel of a host's frame: grey in all three colours, and the first alpha channel or 255.
inline PF_Pixel frame_pixel(const Texture& texture, std::int32_t x, std::int32_t y) {
    const auto at = static_cast<std::size_t>(y) * static_cast<std::size_t>(texture.width_px) +
                    static_cast<std::size_t>(x);
    const std::uint8_t alpha = texture.alphas.empty() ? std::uint8_t{255} : texture.alphas[0].values[at];
    if (texture.mode == Texture::kGrey) {
        return {alpha, texture.pixels[at], texture.pixels[at], texture.pixels[at]};
    }
    return {alpha, texture.pixels[3 * at], texture.pixels[3 * at + 1], texture.pixels[3 * at + 2]};
}
