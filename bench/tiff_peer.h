#pragma once

#include <optional>
#include <string>

#include "texture/texture.h"

// The peer of texture files: libtiff, told to do the same work. 8-bit RGB and one alpha channel in separate
// planes, PackBits, one row a strip, since a texture codes each channel of each row by itself.

/// False when libtiff refuses. `texture` is RGB with one alpha channel.
[[nodiscard]] bool write_tiff(const std::string& path, const Texture& texture);

/// What write_tiff wrote; nothing when it is not such a file.
[[nodiscard]] std::optional<Texture> read_tiff(const std::string& path);
