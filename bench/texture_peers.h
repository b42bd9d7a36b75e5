#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "texture/txl/base_bitmap.h"
#include "texture/value/texture.h"

// What texture files are compared with. The limit: what a texture does to pixels besides coding them, as
// plain loops over rows that are still in the cache. The peer: libtiff doing the same work, with 8-bit RGB
// and one alpha channel in separate planes, PackBits, one row a strip, because a texture codes each channel
// of each row by itself.

/// The planes of a row of RGB and alpha, one byte per pixel.
using PlaneRow = std::array<const std::uint8_t*, 4>;

/// Expands a row of planes to the 16-bit row `y` of `bitmap`, which must have alpha.
void expand_row(const PlaneRow& planes, std::int32_t y, BaseBitmap& bitmap);

/// Row `y` of `texture` as planes. The first three are written to `colour`, which has room for three bytes
/// per pixel.
[[nodiscard]] PlaneRow split_row(const Texture& texture, std::int32_t y, std::uint8_t* colour);

/// Whether a loaded bitmap holds the texture: colour times 256, alpha unchanged.
[[nodiscard]] bool holds(const BaseBitmap& bitmap, const Texture& texture);

/// Writes `texture`, which is RGB with one alpha channel, to `path`. False when libtiff refuses.
[[nodiscard]] bool save_tiff(const std::string& path, const Texture& texture);

/// Writes the same to the null device, as saving a texture there does: of the writing only the system calls
/// remain.
[[nodiscard]] bool save_tiff_nowhere(const Texture& texture);

/// Loads a file of save_tiff into `bitmap`, which must have its size and alpha. False when it is not such a
/// file.
[[nodiscard]] bool load_tiff(const std::string& path, BaseBitmap& bitmap);
