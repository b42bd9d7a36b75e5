#pragma once

// Layered textures of Texalon (.txl).
//
// All types are values: they own what they hold, and copies are independent. The functions may be called by
// several threads at once. Nothing throws anything but std::bad_alloc.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <vortanxr/diagnostic.h>

namespace vortanxr {
inline namespace v1 {

/// One alpha channel.
struct AlphaChannel {
    /// UTF-8. A channel without a name is called "Alpha", and one with the name of an earlier channel gets
    /// ".2", ".3" and so on.
    std::string name;
    std::vector<std::uint8_t>
        values;  ///< height * width; rows from top to bottom, no padding; 0 is transparent
};

/// A texture with every byte as it is stored: colour is not multiplied with alpha, nor divided by it.
struct Texture {
    std::int32_t width_px = 0;
    std::int32_t height_px = 0;
    std::int32_t channels = 3;  ///< of the colour: 1 for grey, 3 for red, green and blue
    std::vector<std::uint8_t>
        pixels;  ///< height * width * channels; rows from top to bottom, interleaved, no padding
    std::vector<AlphaChannel> alphas;  ///< in the order of the file
};

/// A texture or an error, never both.
struct TextureReading {
    std::optional<Texture> texture;
    std::optional<Diagnostic>
        error;  ///< "cannot-open" and the like if the file cannot be read, otherwise why it is refused
    std::vector<Diagnostic> warnings;  ///< what was repaired or skipped: one for each kind
};

namespace detail {
[[nodiscard]] VORTANXR_API TextureReading read_texture(const std::string& path);
}

/// Reads the texture at `path`: UTF-8 on Windows, any bytes elsewhere. Only regular files are read.
[[nodiscard]] inline TextureReading read_texture(const std::string& path) {
    if (std::optional<Diagnostic> problem = library_problem(path)) {
        return {std::nullopt, std::move(problem), {}};
    }
    return detail::read_texture(path);
}

}  // namespace v1
}  // namespace vortanxr
