#pragma once

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>

// Several bytes or 16-bit values in one word, the first one lowest, wherever they lie: for loops that move
// many of them at a time. On a little-endian host each of these is one load or store.

/// The bytes at `bytes` as one word.
template <std::unsigned_integral Word>
[[nodiscard]] Word LoadLittle(const unsigned char* bytes) {
    Word word = 0;
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(&word, bytes, sizeof word);
    } else {
        for (std::size_t i = 0; i < sizeof word; ++i)
            word |= static_cast<Word>(Word{bytes[i]} << (8 * i));
    }
    return word;
}

/// The other way.
template <std::unsigned_integral Word>
void StoreLittle(Word word, unsigned char* bytes) {
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(bytes, &word, sizeof word);
    } else {
        for (std::size_t i = 0; i < sizeof word; ++i)
            bytes[i] = static_cast<unsigned char>(word >> (8 * i));
    }
}

/// Four 16-bit values as one word.
[[nodiscard]] inline std::uint64_t LoadFour(const std::uint16_t* values) {
    std::uint64_t word = 0;
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(&word, values, sizeof word);
    } else {
        for (unsigned i = 0; i < 4; ++i)
            word |= std::uint64_t{values[i]} << (16 * i);
    }
    return word;
}
