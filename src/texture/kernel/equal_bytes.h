#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

/// Where runs stand in a stretch of bytes, found many bytes at a time. For a reader that only goes forward.
///
/// A place is *even* when the two bytes behind it equal its own: a run of three or more begins or goes on
/// there. Places are looked at in blocks, with loops that compilers vectorise, and kept as one bit each.
class EqualBytes {
  public:
    /// The `count` bytes at `src`, at least one, are not owned.
    EqualBytes(const unsigned char* src, std::int64_t count) : src_(src), count_(count) {}

    /// The first even place from `place` on; the end of the bytes when there is none. Never asked for a place
    /// before one that it has given.
    [[nodiscard]] std::int64_t next_even(std::int64_t place) {
        return find(place, count_, [](std::uint64_t word) { return word; });
    }

    /// The first place from `place` on that is not even, `limit` at most.
    [[nodiscard]] std::int64_t next_uneven(std::int64_t place, std::int64_t limit) {
        return find(place, limit, [](std::uint64_t word) { return ~word; });
    }

  private:
    static constexpr std::int64_t kWordPlaces = 64;
    static constexpr std::int64_t kBlockWords = 16;
    static constexpr std::int64_t kBlockPlaces = kWordPlaces * kBlockWords;

    template <typename Wanted>
    [[nodiscard]] std::int64_t find(std::int64_t place, std::int64_t limit, Wanted wanted) {
        std::uint64_t mask = ~std::uint64_t{0} << (place % kWordPlaces);
        for (std::int64_t word = place / kWordPlaces; word * kWordPlaces < limit; ++word) {
            if (const std::uint64_t found = wanted(word_at(word)) & mask; found != 0) {
                return std::min(word * kWordPlaces + std::countr_zero(found), limit);
            }
            mask = ~std::uint64_t{0};
        }
        return limit;
    }

    [[nodiscard]] std::uint64_t word_at(std::int64_t word) {
        if (word >= block_end_) {
            scan_block(word);
        }
        return words_.data()[word % kBlockWords];
    }

    void scan_block(std::int64_t word);

    const unsigned char* src_;
    std::int64_t count_;
    std::int64_t block_end_ = 0;  // words of which the bits are known end here
    std::array<std::uint64_t, kBlockWords> words_;
};
