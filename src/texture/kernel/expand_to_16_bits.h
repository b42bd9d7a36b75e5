#pragma once

#include <cstdint>

// Rows of bytes as the 16-bit values that a bitmap keeps.

/// Where a byte goes in its value; the other byte is 0.
enum class ExpandInto { low_byte, high_byte };

/// Bytes from which on a picture of 16-bit values passes the caches by: more than most of them keep, so that
/// nothing of it would be there any more when it is drawn.
constexpr std::int64_t kStreamedPictureBytes = std::int64_t{32} << 20;

/// `count` bytes to as many values. `next` is where the row after this one begins: its memory is asked for
/// meanwhile, since rows come one after the other.
void expand_to_16_bits(ExpandInto to, const unsigned char* bytes, std::int64_t count, std::uint16_t* values,
                       const std::uint16_t* next);

/// The same for rows of a picture of at least kStreamedPictureBytes.
void stream_to_16_bits(ExpandInto to, const unsigned char* bytes, std::int64_t count, std::uint16_t* values);
