#include "texture/kernel/planes.h"

#include <bit>
#include <cstring>

namespace {

constexpr std::int64_t kPixelsAtOnce = 16;  // pixels

// Stores four pixels of four bytes, the last of which is unused, as twelve bytes: each pair becomes six bytes
// and is stored with two bytes too many, which the next store overwrites.
[[gnu::always_inline]] inline void store_four(u8x16 four, unsigned char* pixels) {
    using Words [[gnu::vector_size(16)]] = std::uint64_t;
    const auto words = std::bit_cast<Words>(four);
    const Words pairs = (words & 0xFFFFFF) | (words >> 8 & 0xFFFFFF000000);
    const std::uint64_t low = pairs[0];
    const std::uint64_t high = pairs[1];
    std::memcpy(pixels, &low, sizeof low);
    std::memcpy(pixels + 6, &high, sizeof high);
}

}  // namespace

void join_planes(const unsigned char* first, const unsigned char* second, const unsigned char* third,
                 std::int64_t count, unsigned char* pixels) {
    std::int64_t i = 0;
    if constexpr (std::endian::native == std::endian::little) {
        // At least one more pixel must follow, because two bytes after the last one are stored as well.
        for (; i + kPixelsAtOnce < count; i += kPixelsAtOnce) {
            const u8x16 a = load_u8x16(first + i);
            const u8x16 b = load_u8x16(second + i);
            const u8x16 c = load_u8x16(third + i);
            const u8x16 low = zip_low(a, b);
            const u8x16 high = zip_high(a, b);
            const u8x16 third_low = zip_low(c, c);
            const u8x16 third_high = zip_high(c, c);
            store_four(zip_pairs_low(low, third_low), pixels + 3 * i);
            store_four(zip_pairs_high(low, third_low), pixels + 3 * i + 12);
            store_four(zip_pairs_low(high, third_high), pixels + 3 * i + 24);
            store_four(zip_pairs_high(high, third_high), pixels + 3 * i + 36);
        }
    }
    for (; i < count; ++i) {
        pixels[3 * i] = first[i];
        pixels[3 * i + 1] = second[i];
        pixels[3 * i + 2] = third[i];
    }
}

void split_pixels(const unsigned char* pixels, std::int64_t count, unsigned char* first,
                  unsigned char* second, unsigned char* third) {
    std::int64_t i = 0;
    for (; i + kPixelsAtOnce <= count; i += kPixelsAtOnce) {
        const unsigned char* const place = pixels + 3 * i;
        const Pixels16 planes = split_16({load_u8x16(place), load_u8x16(place + 16), load_u8x16(place + 32)});
        store_u8x16(planes.first, first + i);
        store_u8x16(planes.second, second + i);
        store_u8x16(planes.third, third + i);
    }
    for (; i < count; ++i) {
        first[i] = pixels[3 * i];
        second[i] = pixels[3 * i + 1];
        third[i] = pixels[3 * i + 2];
    }
}
