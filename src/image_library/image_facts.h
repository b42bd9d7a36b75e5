#pragma once

#include <string>

namespace image_library {

/// What a host has to know of an image file before it becomes footage.
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

}  // namespace image_library

/// Exported by the module. Reads the header of a regular file only; false when no reader takes it or the
/// picture has no pixels, and `error` then says why. Lets no exception out.
extern "C" bool vxr_probe_image(const std::string& path, image_library::ImageFacts& facts,
                                std::string& error);
