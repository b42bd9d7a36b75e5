#pragma once

#include <cstdint>

// PackBits, the byte-run coding of pixel rows. A coded row is a sequence of packets, each of which begins
// with a control byte b:
//   0x00..0x7F  literal: the next b + 1 bytes (1 to 128)
//   0x80        nothing; accepted by the decoder, never written
//   0x81..0xFF  run: the next byte, repeated 257 - b times (128 down to 2; runs of 2 are never written)
// The functions keep no state, do not allocate, and touch no byte outside their buffers except as stated.

/// Encodes the `srcLen` bytes at `src` into `dst`, which holds `dstLen` bytes. Returns the number of bytes
/// written; 0 when `srcLen` is not positive (nothing is written then) or when `dst` is too small, after which
/// the contents of `dst` are undefined. Deliberately, a literal of 128 bytes needs one byte more than it
/// fills, because the control byte of the next packet is reserved at once, even if nothing follows.
[[nodiscard]] std::int32_t pack_bits_encode(const unsigned char* src, std::int32_t srcLen, unsigned char* dst,
                                            std::int32_t dstLen);

/// Decodes the `srcLen` bytes at `src` into exactly `dstLen` bytes at `dst`. Returns true when filling the
/// output used up the input. Input that is left over is a failure, even if it would decode to nothing. A
/// packet longer than the remaining output is cut, which alone is not a failure. After a failure the contents
/// of `dst` are undefined. Deliberately, a run whose control byte is the last byte of the input takes the
/// byte after the input, `src[srcLen]`, as its value and counts as using up the input: that is the settled
/// behaviour of the coding. Precondition: that byte is readable if the input may end so. No other input makes
/// the function read it.
[[nodiscard]] bool pack_bits_decode(const unsigned char* src, std::int32_t srcLen, unsigned char* dst,
                                    std::int32_t dstLen);

/// Like pack_bits_decode, for input that is not followed by a readable byte: takes that byte as 0 without
/// reading it.
[[nodiscard]] bool pack_bits_decode_block(const unsigned char* src, std::int32_t srcLen, unsigned char* dst,
                                          std::int32_t dstLen);
