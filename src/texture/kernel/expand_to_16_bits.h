#pragma once

#include <cstdint>

// Expands rows of bytes to the 16-bit values that a bitmap holds.

/// Which half of the value takes the byte; the other half is 0.
enum class ExpandInto { low_byte, high_byte };

/// Size in bytes from which a picture of 16-bit values is stored past the caches: larger than most caches, so
/// nothing of it would still be there when it is drawn.
constexpr std::int64_t kStreamedPictureBytes = std::int64_t{32} << 20;

/// Expands `count` bytes to as many values. `next` is where the following row begins: its memory is
/// prefetched meanwhile, because rows arrive in order.
void expand_to_16_bits(ExpandInto to, const unsigned char* bytes, std::int64_t count, std::uint16_t* values,
                       const std::uint16_t* next);

/// Does the same with streaming stores, for rows of a picture of at least kStreamedPictureBytes.
void stream_to_16_bits(ExpandInto to, const unsigned char* bytes, std::int64_t count, std::uint16_t* values);
