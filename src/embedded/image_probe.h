#pragma once

// What the host has to know of an image file before it becomes footage. The one place behind which an image
// library stands: image_probe_oiio.cpp; builds without one have image_probe_builtin.cpp.

#include <optional>
#include <string>

namespace embedded {

struct ImageFacts {
    int width_px = 0;
    int height_px = 0;
    int channels = 0;          ///< alpha included
    int bits_per_channel = 0;  ///< 8, 16, 32...; as stored, not as decoded
    bool is_float = false;
    bool has_alpha = false;
    bool alpha_premultiplied = false;
    std::string format;  ///< the library's word: "png", "rla"
};

/// Reads the header only. Nothing when the file is not a regular file or no reader takes it; `error` then
/// says why.
std::optional<ImageFacts> probe_image(const std::string& path, std::string& error);

/// What a build without an image library has to say about that; empty with one.
std::string image_library_note();

}  // namespace embedded
