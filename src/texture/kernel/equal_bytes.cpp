#include "texture/kernel/equal_bytes.h"

#include "texture/file/byte_order.h"

namespace {

/// Packs eight bytes that are 0 or 1 into eight bits, the first byte in the lowest.
std::uint64_t eight_bits(const unsigned char* bytes) {
    // The factor moves the bit of byte i to bit 56 + i. The other partial products never overlap, so nothing
    // carries.
    return (load_little_endian<std::uint64_t>(bytes) * 0x0102040810204080U) >> 56;
}

/// Packs 64 such bytes into one word. Flat rows are all ones and noise is nearly all zeros: both have
/// shortcuts.
std::uint64_t word_of_bits(const unsigned char* bytes) {
    constexpr std::uint64_t kOnes = 0x0101010101010101U;
    std::uint64_t any = 0;
    std::uint64_t all = kOnes;
    for (std::int64_t part = 0; part < 8; ++part) {
        const auto eight = load_little_endian<std::uint64_t>(bytes + 8 * part);
        any |= eight;
        all &= eight;
    }
    if (any == 0) {
        return 0;
    }
    if (all == kOnes) {
        return ~std::uint64_t{0};
    }
    std::uint64_t bits = 0;
    for (std::int64_t part = 0; part < 8; ++part) {
        bits |= eight_bits(bytes + 8 * part) << (8 * part);
    }
    return bits;
}

}  // namespace

void EqualBytes::scan_block(std::int64_t word) {
    const std::int64_t block = word / kBlockWords;
    const std::int64_t first = block * kBlockPlaces;
    // The last two places are not followed by two bytes.
    const std::int64_t places = std::clamp<std::int64_t>(count_ - 2 - first, 0, kBlockPlaces);
    // Plain pointers, because a bounds check, even a redundant one, keeps compilers from vectorising the
    // loop.
    std::array<unsigned char, kBlockPlaces> even_places;
    unsigned char* const even = even_places.data();
    std::uint64_t* const words = words_.data();
    const unsigned char* const bytes = src_ + first;
    for (std::int64_t i = 0; i < places; ++i) {
        const bool next = bytes[i] == bytes[i + 1];
        const bool next_but_one = bytes[i] == bytes[i + 2];
        even[i] = static_cast<unsigned char>(next & next_but_one);
    }
    std::fill(even + places, even + kBlockPlaces, static_cast<unsigned char>(0));
    for (std::int64_t i = 0; i < kBlockWords; ++i) {
        words[i] = word_of_bits(even + kWordPlaces * i);
    }
    block_end_ = (block + 1) * kBlockWords;
}
