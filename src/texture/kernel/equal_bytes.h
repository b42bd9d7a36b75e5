#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

/// Finds runs of equal bytes, many bytes at a time, for a caller that only moves forward.
///
/// A place is *even* when the next two bytes equal its own: a run of three or more begins or continues there.
/// Places are examined in blocks, by loops that compilers vectorise, and kept as one bit each.
class EqualBytes {
  public:
    /// Searches the `count` bytes at `src`, at least one, which are not owned.
    EqualBytes(const unsigned char* src, std::int64_t count) : src_(src), count_(count) {}

    /// The first even place at or after `place`, or the end of the bytes if there is none. `place` must not
    /// be before a place that was returned earlier.
    [[nodiscard]] std::int64_t next_even(std::int64_t place) {
        return find(place, count_, [](std::uint64_t word) { return word; });
    }

    /// The first place at or after `place` that is not even, at most `limit`.
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
    std::int64_t block_end_ = 0;  // end of the words whose bits are known
    std::array<std::uint64_t, kBlockWords> words_;
};
