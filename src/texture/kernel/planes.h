#pragma once

#include <cstdint>

#include "texture/kernel/u8x16.h"

// Converts between pixels of three interleaved bytes and three planes of one byte per pixel.

/// Interleaves: byte i of `first`, `second` and `third` becomes bytes 3 * i to 3 * i + 2 of `pixels`, for
/// `count` pixels.
void join_planes(const unsigned char* first, const unsigned char* second, const unsigned char* third,
                 std::int64_t count, unsigned char* pixels);

/// The inverse of join_planes.
void split_pixels(const unsigned char* pixels, std::int64_t count, unsigned char* first,
                  unsigned char* second, unsigned char* third);

/// Sixteen pixels of three bytes: either interleaved, as 48 consecutive bytes, or one plane in each vector.
struct Pixels16 {
    u8x16 first, second, third;
};

/// One riffle shuffle: cuts the 48 bytes in the middle and interleaves the halves.
[[nodiscard, gnu::always_inline]] inline Pixels16 shuffled(const Pixels16& at) {
    return {zip_low(at.first, high_half(at.second)), zip_low(high_half(at.first), at.third),
            zip_low(at.second, high_half(at.third))};
}

/// Splits interleaved pixels into planes. The oldest x86-64 processors cannot shuffle single bytes, but each
/// riffle moves the byte at place p to 2p (modulo 47), so four of them move it from 3i + c to 16c + i.
[[nodiscard, gnu::always_inline]] inline Pixels16 split_16(const Pixels16& pixels) {
    return shuffled(shuffled(shuffled(shuffled(pixels))));
}
