#pragma once

#include <optional>
#include <string>
#include <vector>

#include "texture/value/texture.h"

// Ordinary images to textures and back, by OpenImageIO. The functions are exported by the module; none lets
// an exception out.

namespace image_library {

/// What becomes of colour under an alpha channel where the image's format keeps it unassociated, as PNG does.
/// A texture's own alpha is associated: its colour is multiplied already.
enum class AlphaBytes {
    kept,       ///< every byte is carried over as it is stored, there and back again without loss
    converted,  ///< the library multiplies when it reads and divides when it writes, with loss in 8 bits
};

enum class Outcome {
    done,
    refused,               ///< the file or the picture is to blame
    cannot_open_or_write,  ///< the file system is
    gave_up,               ///< an exception; the remark has its text
};

/// What is said about a file: a code for programs ("depth-reduced") and a sentence.
struct Remark {
    std::string code;
    std::string text;
};

struct Reading {
    Outcome outcome = Outcome::done;
    Remark problem;                  ///< unless it is done
    std::optional<Texture> texture;  ///< when it is done
    std::vector<Remark> warnings;
};

struct Writing {
    Outcome outcome = Outcome::done;
    Remark problem;  ///< unless it is done
};

}  // namespace image_library

/// Reads any image that the library reads, first image and largest level, in 8 bits a channel. Warns when
/// that leaves something out.
extern "C" void vxr_read_image(const std::string& path, image_library::AlphaBytes alpha_bytes,
                               image_library::Reading& reading);

/// Writes `texture` in the format that the extension of `path` names. Channels that the format has no room
/// for are a problem and not left out. What was at `path` stays until everything is written.
extern "C" void vxr_write_image(const std::string& path, const Texture& texture,
                                image_library::AlphaBytes alpha_bytes, image_library::Writing& writing);

/// Whether the library writes files with the extension of `path`.
extern "C" bool vxr_writes_image(const std::string& path);
