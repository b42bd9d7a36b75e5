#pragma once

#include <bit>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// Sixteen bytes at a time, in the notation that both compilers have for vectors; they find the instructions
// of whatever processor it is. For loops that no compiler turns into these by itself.

using Bytes16 [[gnu::vector_size(16)]] = unsigned char;

[[nodiscard, gnu::always_inline]] inline Bytes16 LoadBytes16(const void* bytes) {
    Bytes16 value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

[[gnu::always_inline]] inline void StoreBytes16(Bytes16 value, void* bytes) {
    std::memcpy(bytes, &value, sizeof value);
}

/// Bytes 0 to 7 of `a` and `b` in turn: a0 b0 a1 b1 ...
[[nodiscard, gnu::always_inline]] inline Bytes16 ZipLow(Bytes16 a, Bytes16 b) {
    return __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
}

/// Bytes 8 to 15 of both, likewise.
[[nodiscard, gnu::always_inline]] inline Bytes16 ZipHigh(Bytes16 a, Bytes16 b) {
    return __builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
}

/// The low bytes of the 16-bit values in `a`, then those in `b`.
[[nodiscard, gnu::always_inline]] inline Bytes16 LowBytes(Bytes16 a, Bytes16 b) {
    constexpr int k = std::endian::native == std::endian::little ? 0 : 1;
    return __builtin_shufflevector(a, b, k, k + 2, k + 4, k + 6, k + 8, k + 10, k + 12, k + 14, k + 16,
                                   k + 18, k + 20, k + 22, k + 24, k + 26, k + 28, k + 30);
}

/// Their high bytes.
[[nodiscard, gnu::always_inline]] inline Bytes16 HighBytes(Bytes16 a, Bytes16 b) {
    constexpr int k = std::endian::native == std::endian::little ? 1 : 0;
    return __builtin_shufflevector(a, b, k, k + 2, k + 4, k + 6, k + 8, k + 10, k + 12, k + 14, k + 16,
                                   k + 18, k + 20, k + 22, k + 24, k + 26, k + 28, k + 30);
}

/// Pairs of bytes 0 to 3 of `a` and `b` in turn: a0 a1 b0 b1 a2 a3 ...
[[nodiscard, gnu::always_inline]] inline Bytes16 ZipPairsLow(Bytes16 a, Bytes16 b) {
    return __builtin_shufflevector(a, b, 0, 1, 16, 17, 2, 3, 18, 19, 4, 5, 20, 21, 6, 7, 22, 23);
}

/// Pairs 4 to 7 of both, likewise.
[[nodiscard, gnu::always_inline]] inline Bytes16 ZipPairsHigh(Bytes16 a, Bytes16 b) {
    return __builtin_shufflevector(a, b, 8, 9, 24, 25, 10, 11, 26, 27, 12, 13, 28, 29, 14, 15, 30, 31);
}

/// Bytes 8 to 15 in the place of bytes 0 to 7.
[[nodiscard, gnu::always_inline]] inline Bytes16 HighHalf(Bytes16 a) {
    return __builtin_shufflevector(a, a, 8, 9, 10, 11, 12, 13, 14, 15, 8, 9, 10, 11, 12, 13, 14, 15);
}

/// Stores past the caches where the processor can: what is larger than they are is not read by anybody soon,
/// and its lines need not be fetched before they are filled. `bytes` is a multiple of 16. Whoever stored so
/// ends with EndStream().
[[gnu::always_inline]] inline void StreamBytes16(Bytes16 value, void* bytes) {
#if defined(__SSE2__)
    _mm_stream_si128(static_cast<__m128i*>(bytes), std::bit_cast<__m128i>(value));
#else
    StoreBytes16(value, bytes);
#endif
}

/// Other threads see what was streamed before whatever this one stores next.
[[gnu::always_inline]] inline void EndStream() {
#if defined(__SSE2__)
    _mm_sfence();
#endif
}
