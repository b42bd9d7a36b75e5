#pragma once

#include <string>

#include "texture/txl/base_bitmap.h"
#include "texture/value/texture.h"

// The peer of texture files: libtiff, told to do the same work. 8-bit RGB and one alpha channel in separate
// planes, PackBits, one row a strip, since a texture codes each channel of each row by itself.

/// Writes `texture`, which is RGB with one alpha channel, to `path`. False when libtiff refuses.
[[nodiscard]] bool save_tiff(const std::string& path, const Texture& texture);

/// The same to a device that takes everything and keeps nothing, the counterpart of a texture that is saved
/// to it: no more than the calls to the system is left of the writing.
[[nodiscard]] bool save_tiff_nowhere(const Texture& texture);

/// Loads what save_tiff wrote into `bitmap`, which has that size and alpha. False when it is no such file.
[[nodiscard]] bool load_tiff(const std::string& path, BaseBitmap& bitmap);
