#include "texture/planes.h"

#include "texture/little_endian.h"

namespace {

// Four pixels at a time are three words for each side: without the byte shuffles that the oldest processors
// of this kind lack, moving bytes inside words is twice as fast as moving them one by one.
constexpr std::int64_t kAtOnce = 4;

std::uint32_t Load(const unsigned char* bytes) {
    return LoadLittle<std::uint32_t>(bytes);
}

}  // namespace

void JoinPlanes(const unsigned char* first, const unsigned char* second, const unsigned char* third,
                std::int64_t count, unsigned char* pixels) {
    std::int64_t i = 0;
    for (; i + kAtOnce <= count; i += kAtOnce) {
        const std::uint32_t a = Load(first + i);
        const std::uint32_t b = Load(second + i);
        const std::uint32_t c = Load(third + i);
        StoreLittle((a & 0xFF) | (b & 0xFF) << 8 | (c & 0xFF) << 16 | (a & 0xFF00) << 16, pixels + 3 * i);
        StoreLittle((b >> 8 & 0xFF) | (c & 0xFF00) | (a & 0xFF0000) | (b & 0xFF0000) << 8,
                    pixels + 3 * i + 4);
        StoreLittle((c >> 16 & 0xFF) | a >> 24 << 8 | b >> 24 << 16 | (c & 0xFF000000), pixels + 3 * i + 8);
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
    for (; i + kAtOnce <= count; i += kAtOnce) {
        const std::uint32_t a = Load(pixels + 3 * i);
        const std::uint32_t b = Load(pixels + 3 * i + 4);
        const std::uint32_t c = Load(pixels + 3 * i + 8);
        StoreLittle((a & 0xFF) | a >> 24 << 8 | (b & 0xFF0000) | (c & 0xFF00) << 16, first + i);
        StoreLittle((a >> 8 & 0xFF) | (b & 0xFF) << 8 | b >> 24 << 16 | (c & 0xFF0000) << 8, second + i);
        StoreLittle((a >> 16 & 0xFF) | (b & 0xFF00) | (c & 0xFF) << 16 | (c & 0xFF000000), third + i);
    }
    for (; i < count; ++i) {
        first[i] = pixels[3 * i];
        second[i] = pixels[3 * i + 1];
        third[i] = pixels[3 * i + 2];
    }
}
