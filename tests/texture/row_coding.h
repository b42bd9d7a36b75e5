#pragma once

#include <cstddef>
#include <optional>
#include <random>
#include <vector>

// The row coding on vectors, through buffers of exactly the right size, and a second, independent coder to
// compare it with.

using Bytes = std::vector<unsigned char>;

/// The byte after the input of `decoded`, where the coding says that it is read. Elsewhere the buffer ends
/// with the input.
inline constexpr unsigned char kGuard = 0x5A;

/// What the encoder writes into `capacity` bytes; nullopt when it fails.
[[nodiscard]] std::optional<Bytes> encoded(const Bytes& plain, std::size_t capacity);

/// What the decoder makes of the input; nullopt when it fails.
[[nodiscard]] std::optional<Bytes> decoded(const Bytes& coded, std::size_t wanted);

/// What the decoder makes of input that is followed by nothing; nullopt when it fails.
[[nodiscard]] std::optional<Bytes> decoded_block(const Bytes& coded, std::size_t wanted);

/// What the encoder should write, and the room that it needs to do so.
struct Reference {
    Bytes coded;
    std::size_t room_bytes = 0;
};

/// The independent encoder, written from the table of packets alone.
[[nodiscard]] Reference reference_encode(const Bytes& plain);

/// The independent decoder, packet by packet. `behind` is the byte after the input.
[[nodiscard]] std::optional<Bytes> reference_decode(const Bytes& coded, std::size_t wanted,
                                                    unsigned char behind = kGuard);

/// A row of 1 to `longest` bytes: stretches of noise and of equal bytes, with lengths around those at which
/// packets are split.
[[nodiscard]] Bytes random_row(std::mt19937& random, std::size_t longest);
