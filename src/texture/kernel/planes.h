#pragma once

#include <cstdint>

// Between pixels of three bytes, which lie side by side, and a plane for each of the three.

/// Byte i of `first`, `second` and `third` become bytes 3 * i to 3 * i + 2 of `pixels`, for `count` pixels.
void JoinPlanes(const unsigned char* first, const unsigned char* second, const unsigned char* third,
                std::int64_t count, unsigned char* pixels);

/// The other way.
void SplitPixels(const unsigned char* pixels, std::int64_t count, unsigned char* first, unsigned char* second,
                 unsigned char* third);
