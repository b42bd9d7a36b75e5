#include "texture/equal_bytes.h"

#include "texture/little_endian.h"

namespace {

/// Eight bytes that are 0 or 1 as eight bits, the first byte's the lowest.
std::uint64_t Bits(const unsigned char* bytes) {
    // The factor moves the bit of byte i to bit 56 + i; no two of the other products meet, so nothing
    // carries.
    return (LoadLittle<std::uint64_t>(bytes) * 0x0102040810204080U) >> 56;
}

}  // namespace

void EqualBytes::LookAtBlock(std::int64_t word) {
    const std::int64_t block = word / kBlockWords;
    const std::int64_t first = block * kBlockPlaces;
    // The last two places have no two bytes behind them.
    const std::int64_t places = std::clamp<std::int64_t>(count_ - 2 - first, 0, kBlockPlaces);
    std::array<unsigned char, kBlockPlaces> even;
    const unsigned char* const bytes = src_ + first;
    for (std::int64_t i = 0; i < places; ++i) {
        const bool next = bytes[i] == bytes[i + 1];
        const bool next_but_one = bytes[i] == bytes[i + 2];
        even[static_cast<std::size_t>(i)] = static_cast<unsigned char>(next & next_but_one);
    }
    std::fill(even.begin() + places, even.end(), static_cast<unsigned char>(0));
    for (std::size_t i = 0; i < words_.size(); ++i) {
        std::uint64_t bits = 0;
        for (std::size_t part = 0; part < 8; ++part)
            bits |= Bits(even.data() + 64 * i + 8 * part) << (8 * part);
        words_[i] = bits;
    }
    block_end_ = (block + 1) * kBlockWords;
}
