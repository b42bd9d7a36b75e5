#include "texture/txl/base_bitmap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <fstream>
#include <limits>

#if !defined(_WIN32)
#include "texture/out_of_memory.h"
#endif

namespace {

constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();

using Rgb = std::array<std::uint16_t, 3>;

constexpr Rgb kUntouched = {11, 22, 33};

// The pixel, or `kUntouched` when it was refused and no output was changed.
Rgb pixel_at(const BaseBitmap& bitmap, std::int32_t x, std::int32_t y, std::int32_t expected_result = 0) {
    Rgb pixel = kUntouched;
    EXPECT_EQ(bitmap.GetPixel(x, y, &pixel[0], &pixel[1], &pixel[2]), expected_result);
    return pixel;
}

void expect_empty(const BaseBitmap& bitmap) {
    EXPECT_EQ(bitmap.width(), 0);
    EXPECT_EQ(bitmap.height(), 0);
    EXPECT_EQ(bitmap.depth(), 0);
    EXPECT_EQ(bitmap.GetChannelCount(), 0);
    EXPECT_EQ(pixel_at(bitmap, 0, 0, 1), kUntouched);
}

TEST(BaseBitmap, StartsEmpty) {
    expect_empty(BaseBitmap());
}

struct InitCase {
    const char* name;
    std::int32_t w;
    std::int32_t h;
    std::int32_t depth;
    std::int32_t expected;
};

const InitCase kInitCases[] = {
    {"ordinary", 4, 3, 24, 0},
    {"no columns", 0, 3, 24, 0},
    {"no rows", 4, 0, 24, 0},
    {"nothing", 0, 0, 24, 0},
    {"no columns and the most rows", 0, kLargest, 24, 0},
    {"less depth than a pixel needs", 4, 3, 1, 0},
    {"depth 0", 4, 3, 0, 0},
    {"negative width", -4, 3, 24, 2},
    {"negative height", 4, -3, 24, 2},
    {"both negative, product positive", -4, -3, 24, 2},
    {"smallest numbers", kSmallest, kSmallest, 24, 2},
    {"negative depth", 4, 3, -24, 2},
    {"as many pixels as allowed", 1 << 15, 1 << 15, 24, 0},
    {"one row more than allowed", 1 << 15, (1 << 15) + 1, 24, 2},
    {"one pixel more than allowed", (1 << 30) + 1, 1, 24, 2},
    {"largest numbers", kLargest, kLargest, 24, 2},
    {"more memory than any machine has", 1 << 15, 1 << 15, kLargest, 2},
};

TEST(BaseBitmap, InitAcceptsOrLeavesEmpty) {
    for (const InitCase& c : kInitCases) {
        SCOPED_TRACE(c.name);
        BaseBitmap bitmap;
        ASSERT_EQ(bitmap.Init(2, 2, 24), 0);
        ASSERT_EQ(bitmap.AddChannel(0, 0), 1);
        ASSERT_EQ(bitmap.Init(c.w, c.h, c.depth), c.expected);
        if (c.expected != 0) {
            expect_empty(bitmap);
            continue;
        }
        EXPECT_EQ(bitmap.width(), c.w);
        EXPECT_EQ(bitmap.height(), c.h);
        EXPECT_EQ(bitmap.depth(), c.depth);
        EXPECT_EQ(bitmap.GetChannelCount(), 0);
        if (c.w > 0 && c.h > 0) {
            EXPECT_EQ(bitmap.SetPixel(c.w - 1, c.h - 1, 1, 2, 3), 0);
            EXPECT_EQ(pixel_at(bitmap, c.w - 1, c.h - 1), (Rgb{1, 2, 3}));
        }
    }
}

TEST(BaseBitmap, PixelsStartAsZeros) {
    BaseBitmap bitmap;
    ASSERT_EQ(bitmap.Init(5, 4, 24), 0);
    ASSERT_EQ(bitmap.AddChannel(0, 0), 1);
    for (std::int32_t y = 0; y < 4; ++y) {
        for (std::int32_t x = 0; x < 5; ++x) {
            EXPECT_EQ(pixel_at(bitmap, x, y), (Rgb{0, 0, 0}));
            std::uint16_t alpha = 7;
            EXPECT_EQ(bitmap.GetAlphaPixel(1, x, y, &alpha), 0);
            EXPECT_EQ(alpha, 0);
        }
    }
}

TEST(BaseBitmap, PixelsDoNotOverlap) {
    BaseBitmap bitmap;
    ASSERT_EQ(bitmap.Init(7, 5, 24), 0);
    ASSERT_EQ(bitmap.AddChannel(0, 0), 1);
    const auto value = [](std::int32_t x, std::int32_t y, int channel) {
        return static_cast<std::uint16_t>(60000 + 4 * (x + 7 * y) + channel);
    };
    for (std::int32_t y = 0; y < 5; ++y) {
        for (std::int32_t x = 0; x < 7; ++x) {
            EXPECT_EQ(bitmap.SetPixel(x, y, value(x, y, 0), value(x, y, 1), value(x, y, 2)), 0);
            EXPECT_EQ(bitmap.SetAlphaPixel(1, x, y, value(x, y, 3)), 0);
        }
    }
    for (std::int32_t y = 0; y < 5; ++y) {
        for (std::int32_t x = 0; x < 7; ++x) {
            EXPECT_EQ(pixel_at(bitmap, x, y), (Rgb{value(x, y, 0), value(x, y, 1), value(x, y, 2)}));
            std::uint16_t alpha = 0;
            EXPECT_EQ(bitmap.GetAlphaPixel(1, x, y, &alpha), 0);
            EXPECT_EQ(alpha, value(x, y, 3));
        }
    }
}

struct Place {
    const char* name;
    std::int32_t x;
    std::int32_t y;
};

const Place kOutside[] = {
    {"left", -1, 0},
    {"above", 0, -1},
    {"right, where the next row would begin", 3, 0},
    {"below", 0, 2},
    {"far left", kSmallest, 0},
    {"far above", 0, kSmallest},
    {"far right", kLargest, 1},
    {"far below", 1, kLargest},
};

TEST(BaseBitmap, NothingIsReadOrWrittenOutside) {
    for (const Place& place : kOutside) {
        SCOPED_TRACE(place.name);
        BaseBitmap bitmap;
        ASSERT_EQ(bitmap.Init(3, 2, 24), 0);
        ASSERT_EQ(bitmap.AddChannel(0, 0), 1);
        EXPECT_EQ(bitmap.SetPixel(place.x, place.y, 1, 2, 3), 1);
        EXPECT_EQ(bitmap.SetAlphaPixel(1, place.x, place.y, 4), 1);
        EXPECT_EQ(pixel_at(bitmap, place.x, place.y, 1), kUntouched);
        std::uint16_t alpha = 77;
        EXPECT_EQ(bitmap.GetAlphaPixel(1, place.x, place.y, &alpha), 1);
        EXPECT_EQ(alpha, 77);
        for (std::int32_t i = 0; i < 6; ++i) {
            EXPECT_EQ(pixel_at(bitmap, i % 3, i / 3), (Rgb{0, 0, 0}));
            EXPECT_EQ(bitmap.GetAlphaPixel(1, i % 3, i / 3, &alpha), 0);
            EXPECT_EQ(alpha, 0);
        }
    }
}

TEST(BaseBitmap, OnlyChannelOneIsServed) {
    BaseBitmap bitmap;
    ASSERT_EQ(bitmap.Init(2, 2, 24), 0);
    ASSERT_EQ(bitmap.AddChannel(-5, 9), 1) << "the arguments are ignored";
    for (const std::int32_t channel : {0, 2, -1, kLargest, kSmallest}) {
        std::uint16_t alpha = 77;
        EXPECT_EQ(bitmap.SetAlphaPixel(channel, 0, 0, 5), 1) << channel;
        EXPECT_EQ(bitmap.GetAlphaPixel(channel, 0, 0, &alpha), 1) << channel;
        EXPECT_EQ(alpha, 77) << channel;
    }
}

TEST(BaseBitmap, SecondAlphaChannelIsRefusedAndTheFirstKept) {
    BaseBitmap bitmap;
    ASSERT_EQ(bitmap.Init(2, 2, 24), 0);
    EXPECT_EQ(bitmap.GetChannelCount(), 0);
    EXPECT_EQ(bitmap.GetChannelNum(0), 0);
    ASSERT_EQ(bitmap.AddChannel(0, 0), 1);
    ASSERT_EQ(bitmap.SetAlphaPixel(1, 1, 1, 40000), 0);
    EXPECT_EQ(bitmap.AddChannel(0, 0), 0);
    EXPECT_EQ(bitmap.GetChannelCount(), 1);
    EXPECT_EQ(bitmap.GetChannelNum(0), 1);
    EXPECT_EQ(bitmap.GetChannelNum(1), 0) << "an index is not a channel number";
    EXPECT_EQ(bitmap.GetChannelNum(-1), 0);
    std::uint16_t alpha = 0;
    EXPECT_EQ(bitmap.GetAlphaPixel(1, 1, 1, &alpha), 0);
    EXPECT_EQ(alpha, 40000);
}

TEST(BaseBitmap, ChannelOneIsRefusedWhileItDoesNotExist) {
    BaseBitmap bitmap;
    ASSERT_EQ(bitmap.Init(2, 2, 24), 0);
    std::uint16_t alpha = 77;
    EXPECT_EQ(bitmap.SetAlphaPixel(1, 0, 0, 5), 1);
    EXPECT_EQ(bitmap.GetAlphaPixel(1, 0, 0, &alpha), 1);
    EXPECT_EQ(alpha, 77);
}

TEST(BaseBitmap, SecondInitDropsPixelsAndAlpha) {
    BaseBitmap bitmap;
    ASSERT_EQ(bitmap.Init(2, 2, 24), 0);
    ASSERT_EQ(bitmap.AddChannel(0, 0), 1);
    ASSERT_EQ(bitmap.SetPixel(0, 0, 1, 2, 3), 0);
    ASSERT_EQ(bitmap.Init(2, 2, 24), 0);
    EXPECT_EQ(bitmap.GetChannelCount(), 0);
    EXPECT_EQ(bitmap.SetAlphaPixel(1, 0, 0, 5), 1);
    EXPECT_EQ(pixel_at(bitmap, 0, 0), (Rgb{0, 0, 0}));
    EXPECT_EQ(bitmap.AddChannel(0, 0), 1) << "a channel can be added again";
}

TEST(BaseBitmap, DestroyEmpties) {
    BaseBitmap bitmap;
    ASSERT_EQ(bitmap.Init(2, 2, 24), 0);
    ASSERT_EQ(bitmap.AddChannel(0, 0), 1);
    bitmap.Destroy();
    expect_empty(bitmap);
    bitmap.Destroy();
    expect_empty(bitmap);
}

#if !defined(_WIN32)  // where untouched memory counts as used, and the memory of a process cannot be
                      // limited
std::int64_t resident_bytes() {
    std::int64_t total_pages = 0;
    std::int64_t resident_pages = 0;
    std::ifstream("/proc/self/statm") >> total_pages >> resident_pages;
    EXPECT_GT(resident_pages, 0);
    return resident_pages * sysconf(_SC_PAGESIZE);
}

TEST(BaseBitmap, LargePictureCostsNothingUntilItIsTouched) {
    BaseBitmap bitmap;
    const std::int64_t before = resident_bytes();
    ASSERT_EQ(bitmap.Init(8192, 8192, 24), 0);  // 384 MiB
    ASSERT_EQ(bitmap.AddChannel(0, 0), 1);      // 128 MiB
    EXPECT_EQ(pixel_at(bitmap, 8191, 8191), (Rgb{0, 0, 0}));
    EXPECT_LT(resident_bytes() - before, std::int64_t{32} << 20);
}

TEST(BaseBitmapDeathTest, WithoutMemoryThereIsNoAlphaChannel) {
    EXPECT_EXIT(
        {
            BaseBitmap bitmap;
            const bool made = bitmap.Init(8192, 8192, 24) == 0;
            refuse_further_memory();
            const bool refused = bitmap.AddChannel(0, 0) == 2 && bitmap.GetChannelCount() == 0;
            const bool kept = bitmap.width() == 8192 && bitmap.SetPixel(0, 0, 1, 2, 3) == 0;
            _exit(made && refused && kept ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}
#endif

}  // namespace
