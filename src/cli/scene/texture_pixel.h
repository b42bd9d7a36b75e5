#pragma once

#include <array>
#include <optional>
#include <string>

#include "cli/scene/scene_reading.h"

namespace cli {

/// A pixel of a texture that shows how its colour is taken: partly covered, with colour, none of it above its
/// alpha, and among pixels that are nearly the same.
struct TexturePixel {
    std::string path;  ///< absolute
    double x_px = 0;   ///< its middle, from the texture's top left corner
    double y_px = 0;
    std::array<double, 3> color{};  ///< red, green, blue as stored, from 0 to 1
    double alpha = 0;               ///< from 0 to 1
};

/// The first such pixel of the scene's textures, of which the first 16 with at most 16384 x 16384 pixels are
/// looked through.
[[nodiscard]] std::optional<TexturePixel> partly_covered_pixel(const SceneReading& reading);

}  // namespace cli
