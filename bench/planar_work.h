#pragma once

#include <array>
#include <cstdint>

#include "texture/txl/base_bitmap.h"
#include "texture/value/texture.h"

// What a texture does to pixels besides coding them, for the peers and as a limit: plain loops over rows that
// are still in the cache.

/// The planes of a row of RGB and alpha, one byte a pixel.
using PlaneRow = std::array<const std::uint8_t*, 4>;

/// One row of planes becomes the 16-bit row `y` of `bitmap`, which has alpha.
void expand_row(const PlaneRow& planes, std::int32_t y, BaseBitmap& bitmap);

/// Row `y` of `texture` as planes; the first three are written to `colour`, room for three bytes a pixel.
[[nodiscard]] PlaneRow split_row(const Texture& texture, std::int32_t y, std::uint8_t* colour);

/// Whether a loaded bitmap holds the texture: colour times 256 and alpha as it is.
[[nodiscard]] bool holds(const BaseBitmap& bitmap, const Texture& texture);
