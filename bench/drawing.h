#pragma once

#include <cstdint>

/// Registers the drawing of a picture of `size_px` a side into a host's frame: as the input module does it,
/// the same compiled for x86-64-v3 where the processor has that, pixel by pixel with bounds tested, and a
/// copy of as many bytes as drawing moves.
void register_drawing(std::int64_t size_px);
