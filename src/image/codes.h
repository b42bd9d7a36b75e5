#pragma once

#include <cstdint>

#include "diagnostic/code.h"

namespace image {

/// Errors and warnings about images, and about turning them into textures and back.
enum class Code : std::uint8_t {
    // The file system or the machine prevents the work.
    cannot_open,
    not_written,
    gave_up,
    // The file, the picture or the request is refused.
    not_an_image,
    no_format,
    no_texture,
    no_such_alpha,
    channels_without_room,
    unsupported,
    // Warnings: the picture is read or written, with less than the file or the texture holds.
    channels_guessed,
    depth_reduced,
    colour_not_converted,
    names_left_out,
    metadata_left_out,
    images_left_out,
};

[[nodiscard]] const diagnostic::CodeInfo& code_info(Code code);

}  // namespace image
