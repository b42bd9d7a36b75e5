#include "texture/kernel/planes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "texture/exact_buffer.h"

namespace {

using Bytes = std::vector<unsigned char>;

Bytes plane(std::size_t count, unsigned char first, unsigned char step) {
    Bytes plane(count);
    for (std::size_t i = 0; i < count; ++i) {
        plane[i] = static_cast<unsigned char>(first + step * i);
    }
    return plane;
}

// Buffers of exactly the right size, so that the sanitizer detects an access outside.
TEST(Planes, JoinAndSplitEveryNumberOfPixels) {
    for (std::size_t count = 0; count <= 70; ++count) {
        const Bytes planes[] = {plane(count, 1, 7), plane(count, 200, 3), plane(count, 90, 11)};
        Bytes expected;
        for (std::size_t i = 0; i < count; ++i) {
            expected.insert(expected.end(), {planes[0][i], planes[1][i], planes[2][i]});
        }
        const auto pixels = static_cast<std::int64_t>(count);
        ExactBuffer sources[] = {ExactBuffer(planes[0]), ExactBuffer(planes[1]), ExactBuffer(planes[2])};
        ExactBuffer joined(3 * count, 0xEE);
        join_planes(sources[0].data(), sources[1].data(), sources[2].data(), pixels, joined.data());
        ASSERT_EQ(joined.all(), expected) << count;

        ExactBuffer split[] = {ExactBuffer(count, 0xEE), ExactBuffer(count, 0xEE), ExactBuffer(count, 0xEE)};
        split_pixels(joined.data(), pixels, split[0].data(), split[1].data(), split[2].data());
        for (std::size_t plane = 0; plane < 3; ++plane) {
            ASSERT_EQ(split[plane].all(), planes[plane]) << count << ", plane " << plane;
        }
    }
}

}  // namespace
