#pragma once

#include "texture/kernel/u8x16.h"

/// Sixteen pixels of three bytes, in one of two orders: pixel by pixel as they come, or plane by plane.
struct Pixels16 {
    Bytes16 first, second, third;
};

/// As a pack of cards is shuffled: 48 bytes are cut in the middle and their halves put together in turn.
[[nodiscard, gnu::always_inline]] inline Pixels16 Shuffled(const Pixels16& at) {
    return {ZipLow(at.first, HighHalf(at.second)), ZipLow(HighHalf(at.first), at.third),
            ZipLow(at.second, HighHalf(at.third))};
}

/// Pixels to planes. Shuffles of single bytes are what the oldest processors of this kind lack; but the byte
/// at place p goes to 2p (modulo 47) by the shuffle above, so after four of those from 3i + c to 16c + i.
[[nodiscard, gnu::always_inline]] inline Pixels16 Split16(const Pixels16& pixels) {
    return Shuffled(Shuffled(Shuffled(Shuffled(pixels))));
}
