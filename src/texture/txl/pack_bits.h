#pragma once

#include <cstdint>

/// PackBits, the byte-run coding of pixel rows. A coded row is a sequence of packets, each opened by a
/// control byte b:
///   0x00..0x7F  literal: the b + 1 bytes that follow (1 to 128)
///   0x80        nothing; never written, accepted when read
///   0x81..0xFF  run: the one byte that follows, 257 - b times (128 down to 2; runs of 2 are never written)
/// Neither function keeps state, allocates, or touches a byte of a buffer that it is not said to touch.

/// Codes the `srcLen` bytes at `src` into `dst`, which holds `dstLen` bytes.
/// Returns the number of bytes written; 0 when `srcLen` is not positive (nothing is written then) or when
/// `dst` is too small, after which the contents of `dst` are undefined. Deliberately a literal of 128 bytes
/// needs one byte more of room than it fills: the control byte of the packet after it is reserved at once,
/// even if nothing follows.
[[nodiscard]] std::int32_t pack_bits_encode(const unsigned char* src, std::int32_t srcLen, unsigned char* dst,
                                            std::int32_t dstLen);

/// Decodes the `srcLen` bytes at `src` into exactly `dstLen` bytes at `dst`.
/// Precondition: when `srcLen` is positive, one byte after the input, `src[srcLen]`, is readable.
/// Deliberately a run whose control byte is the last of the input takes that byte as its value and counts as
/// using the input up. Returns true exactly when the output was filled and the input was used up at the same
/// moment. Bytes left over make it false, even if they would decode to nothing. A packet that is longer than
/// the room left is cut, which alone is not a failure. On failure the contents of `dst` are undefined.
[[nodiscard]] bool pack_bits_decode(const unsigned char* src, std::int32_t srcLen, unsigned char* dst,
                                    std::int32_t dstLen);

/// The same for input behind which nothing belongs to the caller: a 0 is taken for the byte behind it, which
/// is not read.
[[nodiscard]] bool pack_bits_decode_block(const unsigned char* src, std::int32_t srcLen, unsigned char* dst,
                                          std::int32_t dstLen);
