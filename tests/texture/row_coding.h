#pragma once

#include <cstddef>
#include <optional>
#include <random>
#include <vector>

// The row coding on vectors, through buffers of exactly their size, and a second, independent one to compare
// it with.

using Bytes = std::vector<unsigned char>;

/// The byte behind the input of `decoded`.
inline constexpr unsigned char kGuard = 0x5A;

/// What the encoder wrote into room for `capacity` bytes; nothing when it refused.
[[nodiscard]] std::optional<Bytes> encoded(const Bytes& plain, std::size_t capacity);

/// What the decoder made of the input with the one guard byte behind it; nothing when it refused.
[[nodiscard]] std::optional<Bytes> decoded(const Bytes& coded, std::size_t wanted);

/// The same with nothing behind the input.
[[nodiscard]] std::optional<Bytes> decoded_block(const Bytes& coded, std::size_t wanted);

/// What the encoder should write, and the room that it needs for that.
struct Reference {
    Bytes coded;
    std::size_t room_bytes = 0;
};

/// The encoder again, from the table of packets alone: first the packets, then their bytes.
[[nodiscard]] Reference reference_encode(const Bytes& plain);

/// The decoder again, packet by packet. `behind` is the byte behind the input.
[[nodiscard]] std::optional<Bytes> reference_decode(const Bytes& coded, std::size_t wanted,
                                                    unsigned char behind = kGuard);

/// A row of 1 to `longest` bytes with stretches of noise and stretches of equal bytes, around the lengths at
/// which packets are cut.
[[nodiscard]] Bytes random_row(std::mt19937& random, std::size_t longest);
