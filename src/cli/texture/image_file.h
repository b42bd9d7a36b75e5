#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/report/diagnostic.h"
#include "image_library/image_files.h"
#include "texture/value/texture.h"

// Ordinary images to textures and back, by the image library. All three throw std::runtime_error when it
// cannot be had, or gives up.

namespace cli {

using image_library::AlphaBytes;

struct ImageReading {
    std::optional<Texture> texture;
    std::vector<Diagnostic> diagnostics;  // the error first, if there is one
    ExitCode code = ExitCode::fine;
};

/// Reads any image that the library reads, first image and largest level, in 8 bits a channel. Warns when
/// that leaves something out.
ImageReading read_image_file(const std::string& path, AlphaBytes alpha_bytes);

struct ImageWriting {
    std::optional<Diagnostic> error;
    ExitCode code = ExitCode::fine;
};

/// Writes `texture` in the format that the extension of `path` names. Channels that the format has no room
/// for are an error and not left out. What was at `path` stays until everything is written.
ImageWriting write_image_file(const std::string& path, const Texture& texture, AlphaBytes alpha_bytes);

/// Whether the library writes files with the extension of `path`.
bool writes_image_format(const std::string& path);

}  // namespace cli
