#pragma once

#include <cstdint>

/// A row of the picture and the row of the host's frame that it is drawn to. The three are not owned.
struct DrawnRow {
    const std::uint16_t* rgb = nullptr;    ///< three values a pixel, colour times 256
    const std::uint16_t* alpha = nullptr;  ///< one value a pixel, 0 to 255; null for an opaque picture
    unsigned char* argb = nullptr;         ///< four bytes a pixel: alpha, red, green, blue
};

/// Draws `count` pixels: the high bytes of colour, the low byte of alpha. `next` is the row that is drawn
/// after this one, `row` itself when there is none: its beginning is fetched in time.
void DrawRow(const DrawnRow& row, std::int32_t count, const DrawnRow& next);
