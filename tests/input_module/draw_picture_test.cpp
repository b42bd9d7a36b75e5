#include "texture/input_module/draw_picture.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <vector>

namespace {

// Arrays of exactly the right size, so that the sanitizer detects an access outside.
template <typename Value>
std::unique_ptr<Value[]> random_values(std::mt19937& random, std::size_t count) {
    std::unique_ptr<Value[]> values(new Value[count]);
    for (std::size_t i = 0; i < count; ++i) {
        values[i] = static_cast<Value>(random());
    }
    return values;
}

TEST(DrawnRow, PixelsAreTheHighBytesOfColourAndTheLowByteOfAlpha) {
    std::mt19937 random(3);
    for (const std::size_t count : {0U,  1U,   2U,   3U,   4U,   31U,  32U,  33U,  63U,  64U,
                                    67U, 511U, 512U, 543U, 544U, 545U, 576U, 577U, 640U, 4096U}) {
        const auto colour = random_values<std::uint16_t>(random, 3 * count);
        const auto alpha = random_values<std::uint16_t>(random, count);
        for (const bool has_alpha : {false, true}) {
            for (const FrameMemory memory : {FrameMemory::through_caches, FrameMemory::past_caches}) {
                // A host's row can begin at any address, and the bytes after it are not ours.
                for (const std::size_t begin : {0U, 1U, 2U, 4U, 8U, 12U}) {
                    const std::size_t byte_count = begin + 4 * count;
                    const std::unique_ptr<unsigned char[]> bytes(new unsigned char[byte_count]);
                    unsigned char* const argb = bytes.get() + begin;
                    const DrawnRow row = {colour.get(), has_alpha ? alpha.get() : nullptr, argb};
                    draw_row(row, static_cast<std::int32_t>(count), row, memory);
                    for (std::size_t x = 0; x < count; ++x) {
                        ASSERT_EQ(argb[4 * x], has_alpha ? alpha[x] & 0xFF : 0xFF) << x << " of " << count;
                        for (std::size_t i = 0; i < 3; ++i) {
                            ASSERT_EQ(argb[4 * x + 1 + i], colour[3 * x + i] >> 8) << x << " of " << count;
                        }
                    }
                }
            }
        }
    }
}

}  // namespace
