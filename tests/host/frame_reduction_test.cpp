// Pictures drawn into frames of another size.

#include "host/bridge/frame_reduction.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "support/area_average.h"

namespace {

using bridge::FrameSize;
using Values = std::vector<std::vector<int>>;

/// The picture with these values in all four channels.
std::vector<PF_Pixel> grey(const Values& values) {
    std::vector<PF_Pixel> pixels;
    for (const std::vector<int>& row : values) {
        for (const int value : row) {
            const auto byte = static_cast<A_u_char>(value);
            pixels.push_back({byte, byte, byte, byte});
        }
    }
    return pixels;
}

/// A frame in memory of exactly its size, so that a sanitizer sees every write beside it.
struct Frame {
    Frame(FrameSize size, A_long stride, std::uint8_t fill) {
        const A_long length = stride < 0 ? -stride : stride;
        bytes.assign(static_cast<std::size_t>(length) * static_cast<std::size_t>(size.height_px - 1) +
                         static_cast<std::size_t>(size.width_px) * 4,
                     fill);
        world.width = size.width_px;
        world.height = size.height_px;
        world.row_bytes = stride;
        unsigned char* first = bytes.data();
        if (stride < 0) {
            first += static_cast<std::ptrdiff_t>(length) * (size.height_px - 1);
        }
        world.data = reinterpret_cast<PF_Pixel*>(first);
    }
    [[nodiscard]] int channel(A_long x, A_long y, int n) const {
        return reinterpret_cast<const unsigned char*>(
            world.data)[std::ptrdiff_t{y} * world.row_bytes + std::ptrdiff_t{x} * 4 + n];
    }
    [[nodiscard]] Values values(int n) const {
        Values all;
        for (A_long y = 0; y < world.height; ++y) {
            std::vector<int>& row = all.emplace_back();
            for (A_long x = 0; x < world.width; ++x) {
                row.push_back(channel(x, y, n));
            }
        }
        return all;
    }
    std::vector<unsigned char> bytes;
    PF_LayerDef world{};
};

struct Case {
    const char* name;
    Values picture;
    Values frame;
};

// Worked out by hand from the areas.
const Case kCases[] = {
    {"half is the mean of four", {{0, 10, 200, 100}, {20, 30, 60, 40}}, {{15, 100}}},
    {"a half of a step is rounded up", {{0, 1}}, {{1}}},
    {"a quarter of a step is rounded down", {{0, 0}, {0, 1}}, {{0}}},
    {"a third is the mean of nine", {{9, 0, 0}, {0, 90, 0}, {0, 0, 0}}, {{11}}},
    {"three to two: one and a half pixels each", {{30, 60, 90}}, {{40, 80}}},
    {"two to three: the middle one covers both halves", {{0, 100}}, {{0, 50, 100}}},
    {"five to two", {{10, 20, 30, 40, 50}}, {{18, 42}}},
    {"wider and lower", {{0}, {100}}, {{50, 50}}},
    {"one pixel of all", {{1, 2, 3}, {4, 5, 6}}, {{4}}},
    {"one pixel for all", {{77}}, {{77, 77}, {77, 77}, {77, 77}}},
    {"equal sizes", {{1, 2}, {3, 4}}, {{1, 2}, {3, 4}}},
    {"the extremes stay", {{255, 255}, {255, 255}}, {{255}}},
};

TEST(FrameReduction, EachPixelIsTheMeanOfTheAreaThatItCovers) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        const std::vector<PF_Pixel> pixels = grey(c.picture);
        const FrameSize picture{static_cast<A_long>(c.picture[0].size()),
                                static_cast<A_long>(c.picture.size())};
        const FrameSize size{static_cast<A_long>(c.frame[0].size()), static_cast<A_long>(c.frame.size())};
        Frame frame(size, size.width_px * 4, 0x5A);
        bridge::reduce_picture({pixels.data(), c.picture[0].size(), picture},
                               {0, 0, size.width_px, size.height_px}, frame.world);
        for (int channel = 0; channel < 4; ++channel) {
            EXPECT_EQ(frame.values(channel), c.frame) << channel;
        }
    }
}

TEST(FrameReduction, ChannelsAreAveragedSeparately) {
    // Colour below alpha 0 counts like any other.
    const std::vector<PF_Pixel> pixels = {{255, 200, 100, 0}, {0, 0, 50, 2}};
    Frame frame({1, 1}, 4, 0);
    bridge::reduce_picture({pixels.data(), 2, {2, 1}}, {0, 0, 1, 1}, frame.world);
    EXPECT_EQ(frame.channel(0, 0, 0), 128);
    EXPECT_EQ(frame.channel(0, 0, 1), 100);
    EXPECT_EQ(frame.channel(0, 0, 2), 75);
    EXPECT_EQ(frame.channel(0, 0, 3), 1);
}

// Every ratio of small sides, with rows of every kind; compared with the slow definition.
TEST(FrameReduction, AnyRatioRegionAndRowLength) {
    std::mt19937 random(7);
    const auto below = [&random](A_long end) {
        return static_cast<A_long>(random() % static_cast<unsigned>(end));
    };
    for (int round = 0; round < 2000; ++round) {
        const FrameSize picture{1 + below(13), 1 + below(13)};
        const FrameSize size{1 + below(13), 1 + below(13)};
        A_LRect region = {below(size.width_px), below(size.height_px), 0, 0};
        region.right = region.left + 1 + below(size.width_px - region.left);
        region.bottom = region.top + 1 + below(size.height_px - region.top);
        const A_long stride = size.width_px * 4 + below(9);
        // Only what the region needs is there.
        const A_long columns = bridge::picture_end(region.right, size.width_px, picture.width_px);
        const A_long rows = bridge::picture_end(region.bottom, size.height_px, picture.height_px);
        ASSERT_LE(columns, picture.width_px);
        ASSERT_LE(rows, picture.height_px);
        std::vector<PF_Pixel> pixels(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows));
        for (PF_Pixel& pixel : pixels) {
            const auto bits = static_cast<std::uint32_t>(random());
            std::memcpy(&pixel, &bits, sizeof pixel);
        }
        constexpr int kFill = 0x5A;
        Frame frame(size, round % 2 == 0 ? stride : -stride, kFill);
        const std::vector<unsigned char> before = frame.bytes;
        bridge::reduce_picture({pixels.data(), static_cast<std::size_t>(columns), picture}, region,
                               frame.world);
        for (A_long y = 0; y < size.height_px; ++y) {
            for (A_long x = 0; x < size.width_px; ++x) {
                const bool inside =
                    x >= region.left && x < region.right && y >= region.top && y < region.bottom;
                for (int channel = 0; channel < 4; ++channel) {
                    const int expected =
                        inside ? area_average(
                                     x, y, size.width_px, size.height_px, picture.width_px, picture.height_px,
                                     [&](A_long column, A_long row) {
                                         const std::size_t at = static_cast<std::size_t>(row) *
                                                                    static_cast<std::size_t>(columns) +
                                                                static_cast<std::size_t>(column);
                                         return int{
                                             reinterpret_cast<const unsigned char*>(&pixels[at])[channel]};
                                     })
                               : kFill;
                    ASSERT_EQ(frame.channel(x, y, channel), expected)
                        << picture.width_px << "x" << picture.height_px << " in " << size.width_px << "x"
                        << size.height_px << " at " << x << ", " << y;
                }
            }
        }
        // Between the rows nothing changes either.
        for (std::size_t i = 0; i < frame.bytes.size(); ++i) {
            const std::size_t in_row = i % static_cast<std::size_t>(stride);
            if (in_row >= static_cast<std::size_t>(size.width_px) * 4) {
                ASSERT_EQ(frame.bytes[i], before[i]) << i;
            }
        }
    }
}

TEST(FrameReduction, SidesOfMillionsOfPixelsAreExact) {
    // The sums need more than 32 bits. The first half of the picture is white, and so is a third of the
    // second half.
    constexpr A_long kWidth = 3'000'000;
    std::vector<PF_Pixel> pixels(kWidth, {255, 255, 255, 255});
    std::fill(pixels.begin() + 2'000'000, pixels.end(), PF_Pixel{0, 0, 0, 0});
    Frame frame({2, 1}, 8, 0);
    bridge::reduce_picture({pixels.data(), pixels.size(), {kWidth, 1}}, {0, 0, 2, 1}, frame.world);
    EXPECT_EQ(frame.values(0), (Values{{255, 85}}));
}

TEST(FrameReduction, CopyingTakesOnlyTheRegion) {
    const std::vector<PF_Pixel> pixels = grey({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
    Frame frame({3, 3}, -15, 0);
    bridge::copy_picture({pixels.data(), 3, {3, 3}}, {1, 1, 3, 2}, frame.world);
    EXPECT_EQ(frame.values(2), (Values{{0, 0, 0}, {0, 5, 6}, {0, 0, 0}}));
}

struct EndCase {
    const char* name;
    A_long end;
    A_long frame_px;
    A_long picture_px;
    A_long picture_end;
};
const EndCase kEnds[] = {
    {"all of half", 320, 320, 641, 641},
    {"the first of half", 1, 320, 641, 3},
    {"the first of a third", 1, 3, 9, 3},
    {"enlarged", 2, 4, 3, 2},
    {"equal", 5, 7, 7, 5},
    {"the largest sides", 2147483647, 2147483647, 2147483647, 2147483647},
};

TEST(FrameReduction, APartOfAFrameNeedsThePictureUpToItsLastCoveredPixel) {
    for (const EndCase& c : kEnds) {
        EXPECT_EQ(bridge::picture_end(c.end, c.frame_px, c.picture_px), c.picture_end) << c.name;
    }
}

}  // namespace
