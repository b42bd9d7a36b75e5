#pragma once

// What a window onto a texture shows: a part of it at any scale, in a way of looking at its alpha channels.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "texture/value/texture.h"

namespace viewer {

/// A way of looking at a texture.
enum class Look : std::uint8_t {
    colour,         ///< as stored, without alpha
    alpha,          ///< one alpha channel as grey
    straight,       ///< over a chequered ground, colour not multiplied by alpha
    premultiplied,  ///< over a chequered ground, colour multiplied by alpha
};

/// The part of the picture behind a window.
struct Window {
    double left_px = 0;  ///< of the picture, at the window's left edge
    double top_px = 0;
    double step_px = 1;         ///< pixels of the picture for one of the window; above 0
    std::int32_t width_px = 0;  ///< of the window
    std::int32_t height_px = 0;
};

/// The window's pixels: R, G, B, A, rows from top to bottom. A pixel of the window shows the pixel of the
/// picture in its middle; where several lie behind it, the mean of up to 4 x 4 of them, evenly spaced. What
/// is beside the picture is transparent, everything else opaque. `alpha` counts the alpha channels from 0;
/// one that the texture does not have shows its colour.
[[nodiscard]] std::vector<std::uint8_t> draw_window(const Texture& texture, const Window& window, Look look,
                                                    std::size_t alpha);

/// The colour of a pixel of the picture, then the values of all its alpha channels. Empty beside the picture.
[[nodiscard]] std::vector<std::uint8_t> values_at(const Texture& texture, std::int32_t x_px,
                                                  std::int32_t y_px);

/// The picture as it is saved: its colour channels and, where the texture has it, this alpha channel, one
/// byte each, interleaved. With `Look::alpha` the alpha channel alone.
struct Plane {
    std::int32_t channels = 0;
    std::vector<std::uint8_t> bytes;
};
[[nodiscard]] Plane plane_to_save(const Texture& texture, Look look, std::size_t alpha);

}  // namespace viewer
