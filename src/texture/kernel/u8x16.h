#pragma once

#include <bit>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// Sixteen bytes at a time, in the vector notation that both compilers share and translate for each processor.
// For loops that no compiler vectorises by itself.

using u8x16 [[gnu::vector_size(16)]] = unsigned char;

[[nodiscard, gnu::always_inline]] inline u8x16 load_u8x16(const void* bytes) {
    u8x16 value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

[[gnu::always_inline]] inline void store_u8x16(u8x16 value, void* bytes) {
    std::memcpy(bytes, &value, sizeof value);
}

/// Interleaves bytes 0 to 7 of `a` and `b`: a0 b0 a1 b1 ...
[[nodiscard, gnu::always_inline]] inline u8x16 zip_low(u8x16 a, u8x16 b) {
    return __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
}

/// Interleaves bytes 8 to 15 of `a` and `b`: a8 b8 a9 b9 ...
[[nodiscard, gnu::always_inline]] inline u8x16 zip_high(u8x16 a, u8x16 b) {
    return __builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
}

/// The low bytes of the 16-bit values in `a`, then of those in `b`.
[[nodiscard, gnu::always_inline]] inline u8x16 low_bytes(u8x16 a, u8x16 b) {
    constexpr int k = std::endian::native == std::endian::little ? 0 : 1;
    return __builtin_shufflevector(a, b, k, k + 2, k + 4, k + 6, k + 8, k + 10, k + 12, k + 14, k + 16,
                                   k + 18, k + 20, k + 22, k + 24, k + 26, k + 28, k + 30);
}

/// The high bytes of the 16-bit values in `a`, then of those in `b`.
[[nodiscard, gnu::always_inline]] inline u8x16 high_bytes(u8x16 a, u8x16 b) {
    constexpr int k = std::endian::native == std::endian::little ? 1 : 0;
    return __builtin_shufflevector(a, b, k, k + 2, k + 4, k + 6, k + 8, k + 10, k + 12, k + 14, k + 16,
                                   k + 18, k + 20, k + 22, k + 24, k + 26, k + 28, k + 30);
}

/// Interleaves byte pairs 0 to 3 of `a` and `b`: a0 a1 b0 b1 a2 a3 ...
[[nodiscard, gnu::always_inline]] inline u8x16 zip_pairs_low(u8x16 a, u8x16 b) {
    return __builtin_shufflevector(a, b, 0, 1, 16, 17, 2, 3, 18, 19, 4, 5, 20, 21, 6, 7, 22, 23);
}

/// Interleaves byte pairs 4 to 7 of `a` and `b`: a8 a9 b8 b9 a10 a11 ...
[[nodiscard, gnu::always_inline]] inline u8x16 zip_pairs_high(u8x16 a, u8x16 b) {
    return __builtin_shufflevector(a, b, 8, 9, 24, 25, 10, 11, 26, 27, 12, 13, 28, 29, 14, 15, 30, 31);
}

/// Bytes 8 to 15 of `a` as bytes 0 to 7 of the result.
[[nodiscard, gnu::always_inline]] inline u8x16 high_half(u8x16 a) {
    return __builtin_shufflevector(a, a, 8, 9, 10, 11, 12, 13, 14, 15, 8, 9, 10, 11, 12, 13, 14, 15);
}
