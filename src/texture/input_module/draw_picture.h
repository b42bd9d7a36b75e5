#pragma once

#include <cstdint>

#include "host/host_interface.h"
#include "texture/txl/base_bitmap.h"

/// Draws the common part of `bitmap` and `world`, pixel (x, y) to pixel (x, y): the high byte of each colour
/// and the low byte of alpha, opaque without an alpha channel. The rest of `world`, whose data is not null,
/// stays unchanged.
void draw_picture(const BaseBitmap& bitmap, const PF_LayerDef& world);

/// A row of a picture and the row of the host's frame into which it is drawn. None of the three is owned.
struct DrawnRow {
    const std::uint16_t* rgb = nullptr;    ///< three values per pixel: colour times 256
    const std::uint16_t* alpha = nullptr;  ///< one value per pixel, 0 to 255; null for an opaque picture
    unsigned char* argb = nullptr;         ///< four bytes per pixel: alpha, red, green, blue
};

/// How a frame is stored. A frame larger than the caches bypasses them, because nothing of it would still be
/// there when it is used.
enum class FrameMemory { through_caches, past_caches };

/// Draws `count` pixels of one row. `next` is the row to be drawn next, whose beginning is prefetched; pass
/// `row` for the last row.
void draw_row(const DrawnRow& row, std::int32_t count, const DrawnRow& next, FrameMemory memory);
