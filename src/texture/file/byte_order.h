#pragma once

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>

/// Reverses the bytes of `count` values of `kSize` bytes each, in place, on a little-endian host; does
/// nothing on a big-endian one. `values` need not be aligned. A count below 1 changes nothing.
template <int kSize>
void convert_big_endian(void* values, std::int32_t count) {
    if constexpr (std::endian::native == std::endian::little) {
        auto* bytes = static_cast<unsigned char*>(values);
        for (std::int32_t i = 0; i < count; ++i, bytes += kSize) {
            std::reverse(bytes, bytes + kSize);
        }
    }
}

// Every multi-byte value in a texture file is big-endian. These convert between file and host order; both
// directions are the same operation.

/// Converts `count` consecutive 32-bit values.
inline void LMotor(void* values, std::int32_t count) {
    convert_big_endian<4>(values, count);
}

/// Converts `count` consecutive 16-bit values.
inline void WMotor(void* values, std::int32_t count) {
    convert_big_endian<2>(values, count);
}

// Several bytes or 16-bit values packed into one word, the first in the lowest bits, at any alignment: for
// loops that move many values at a time. On a little-endian host each of these is a single load or store.

/// Loads the bytes at `bytes` as one word.
template <std::unsigned_integral Word>
[[nodiscard]] Word load_little_endian(const unsigned char* bytes) {
    Word word = 0;
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(&word, bytes, sizeof word);
    } else {
        for (std::size_t i = 0; i < sizeof word; ++i) {
            word |= static_cast<Word>(Word{bytes[i]} << (8 * i));
        }
    }
    return word;
}

/// Stores a word that load_little_endian reads back.
template <std::unsigned_integral Word>
void store_little_endian(Word word, unsigned char* bytes) {
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(bytes, &word, sizeof word);
    } else {
        for (std::size_t i = 0; i < sizeof word; ++i) {
            bytes[i] = static_cast<unsigned char>(word >> (8 * i));
        }
    }
}
