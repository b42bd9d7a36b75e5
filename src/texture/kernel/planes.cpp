#include "texture/kernel/planes.h"

#include <bit>
#include <cstring>

#include "texture/kernel/planes16.h"

namespace {

constexpr std::int64_t kPixelsAtOnce = 16;  // pixels

// Four pixels of four bytes, of which the last is no one's, to twelve bytes: pairs become six bytes each, and
// each is stored with two bytes behind it, which belong to what is stored next.
[[gnu::always_inline]] inline void StoreFour(Bytes16 four, unsigned char* pixels) {
    using Words [[gnu::vector_size(16)]] = std::uint64_t;
    const auto words = std::bit_cast<Words>(four);
    const Words pairs = (words & 0xFFFFFF) | (words >> 8 & 0xFFFFFF000000);
    const std::uint64_t low = pairs[0];
    const std::uint64_t high = pairs[1];
    std::memcpy(pixels, &low, sizeof low);
    std::memcpy(pixels + 6, &high, sizeof high);
}

}  // namespace

void JoinPlanes(const unsigned char* first, const unsigned char* second, const unsigned char* third,
                std::int64_t count, unsigned char* pixels) {
    std::int64_t i = 0;
    if constexpr (std::endian::native == std::endian::little) {
        // One pixel more must follow: two bytes behind the last one are stored as well.
        for (; i + kPixelsAtOnce < count; i += kPixelsAtOnce) {
            const Bytes16 a = LoadBytes16(first + i);
            const Bytes16 b = LoadBytes16(second + i);
            const Bytes16 c = LoadBytes16(third + i);
            const Bytes16 low = ZipLow(a, b);
            const Bytes16 high = ZipHigh(a, b);
            const Bytes16 third_low = ZipLow(c, c);
            const Bytes16 third_high = ZipHigh(c, c);
            StoreFour(ZipPairsLow(low, third_low), pixels + 3 * i);
            StoreFour(ZipPairsHigh(low, third_low), pixels + 3 * i + 12);
            StoreFour(ZipPairsLow(high, third_high), pixels + 3 * i + 24);
            StoreFour(ZipPairsHigh(high, third_high), pixels + 3 * i + 36);
        }
    }
    for (; i < count; ++i) {
        pixels[3 * i] = first[i];
        pixels[3 * i + 1] = second[i];
        pixels[3 * i + 2] = third[i];
    }
}

void SplitPixels(const unsigned char* pixels, std::int64_t count, unsigned char* first, unsigned char* second,
                 unsigned char* third) {
    std::int64_t i = 0;
    for (; i + kPixelsAtOnce <= count; i += kPixelsAtOnce) {
        const unsigned char* const place = pixels + 3 * i;
        const Pixels16 planes =
            Split16({LoadBytes16(place), LoadBytes16(place + 16), LoadBytes16(place + 32)});
        StoreBytes16(planes.first, first + i);
        StoreBytes16(planes.second, second + i);
        StoreBytes16(planes.third, third + i);
    }
    for (; i < count; ++i) {
        first[i] = pixels[3 * i];
        second[i] = pixels[3 * i + 1];
        third[i] = pixels[3 * i + 2];
    }
}
