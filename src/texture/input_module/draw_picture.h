#pragma once

#include <cstdint>

#include "host/host_interface.h"
#include "texture/txl/base_bitmap.h"

/// Draws `bitmap` into `world`, pixel (x, y) to pixel (x, y), as far as both reach: the high bytes of colour
/// and the low byte of alpha, opaque without an alpha channel. The rest of `world` is left alone; its data is
/// not null.
void draw_picture(const BaseBitmap& bitmap, const PF_LayerDef& world);

/// A row of a picture and the row of the host's frame that it is drawn to. The three are not owned.
struct DrawnRow {
    const std::uint16_t* rgb = nullptr;    ///< three values a pixel, colour times 256
    const std::uint16_t* alpha = nullptr;  ///< one value a pixel, 0 to 255; null for an opaque picture
    unsigned char* argb = nullptr;         ///< four bytes a pixel: alpha, red, green, blue
};

/// How a frame is stored: one that is larger than the caches, of which nothing would be left in them by the
/// time that it is used, need not go through them.
enum class FrameMemory { through_caches, past_caches };

/// Draws `count` pixels of one row. `next` is the row that is drawn after this one, `row` itself when there
/// is none: its beginning is fetched in time.
void draw_row(const DrawnRow& row, std::int32_t count, const DrawnRow& next, FrameMemory memory);
