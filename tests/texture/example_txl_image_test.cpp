#include "texture/txl/example_txl_image.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <limits>
#include <vector>

#include "texture/exact_buffer.h"
#if !defined(_WIN32)
#include "texture/out_of_memory.h"
#endif

namespace {

constexpr std::int32_t kGrey = 2;
constexpr std::int32_t kRgb = 4;
constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();

using Rgb = std::array<std::uint16_t, 3>;
using Bytes = std::vector<unsigned char>;

Rgb pixel_at(const BaseBitmap& bitmap, std::int32_t x, std::int32_t y) {
    Rgb pixel = {1, 1, 1};
    EXPECT_EQ(bitmap.GetPixel(x, y, &pixel[0], &pixel[1], &pixel[2]), 0);
    return pixel;
}

std::vector<Rgb> row_of(const BaseBitmap& bitmap, std::int32_t y) {
    std::vector<Rgb> row;
    for (std::int32_t x = 0; x < bitmap.width(); ++x) {
        row.push_back(pixel_at(bitmap, x, y));
    }
    return row;
}

std::vector<int> alpha_row_of(const BaseBitmap& bitmap, std::int32_t y) {
    std::vector<int> row;
    for (std::int32_t x = 0; x < bitmap.width(); ++x) {
        std::uint16_t alpha = 1;
        EXPECT_EQ(bitmap.GetAlphaPixel(1, x, y, &alpha), 0);
        row.push_back(alpha);
    }
    return row;
}

TEST(ExampleTXLImage, WithoutABitmap) {
    ExampleTXLImage image(nullptr);
    unsigned char byte = 9;
    EXPECT_TRUE(image.Init(-1, 2, kGrey));
    EXPECT_TRUE(image.SetPixelCount(0, 0, 1, &byte, 1));
    EXPECT_FALSE(image.InitAlphaChannel(0, 1, 2));
    EXPECT_FALSE(image.SetAlphaPixel(0, 0, 0, 1, &byte));
    EXPECT_FALSE(image.SetAlphaPixel(0, 0, 0, 0, &byte));
    EXPECT_EQ(image.GetBw(), 0);
    EXPECT_EQ(image.GetBh(), 0);
    EXPECT_EQ(image.GetColorMode(), 0);
    EXPECT_EQ(image.GetPixelCount(0, 0, 1, &byte), 0);
    EXPECT_EQ(image.GetPixelCount(0, 0, 0, &byte), 0);
    EXPECT_EQ(image.GetAlphaCount(), 0);
    EXPECT_EQ(image.GetAlphaPixel(0, 0, 0, 1, &byte), 0);
    EXPECT_EQ(byte, 9);
}

TEST(ExampleTXLImage, InitMakesABitmapOf24Bits) {
    BaseBitmap bitmap;
    ExampleTXLImage image(&bitmap);
    EXPECT_TRUE(image.Init(4, 3, kGrey));
    EXPECT_EQ(bitmap.width(), 4);
    EXPECT_EQ(bitmap.height(), 3);
    EXPECT_EQ(bitmap.depth(), 24);
    EXPECT_EQ(image.GetBw(), 4);
    EXPECT_EQ(image.GetBh(), 3);
    EXPECT_EQ(image.GetColorMode(), kRgb) << "the bitmap is RGB in every mode";
    EXPECT_EQ(image.GetAlphaCount(), 0);
    EXPECT_FALSE(image.Init(-4, 3, kGrey));
    EXPECT_EQ(image.GetBw(), 0);
}

struct StoreCase {
    const char* name;
    std::int32_t mode;
    std::int32_t x;
    std::int32_t y;
    std::int32_t count;
    Bytes data;
    std::int32_t stride;
    std::vector<Rgb> expected_row;  // of row 1 of a picture of 3 by 2
};

constexpr Rgb kZero = {0, 0, 0};

const StoreCase kStoreCases[] = {
    {"RGB is scaled by 256", kRgb, 0, 1, 1, {255, 128, 0}, 3, {{65280, 32768, 0}, kZero, kZero}},
    {"grey goes to all three", kGrey, 0, 1, 1, {255}, 1, {{65280, 65280, 65280}, kZero, kZero}},
    {"a whole RGB row",
     kRgb,
     0,
     1,
     3,
     {1, 2, 3, 4, 5, 6, 7, 8, 9},
     3,
     {{256, 512, 768}, {1024, 1280, 1536}, {1792, 2048, 2304}}},
    {"grey with a stride of three",
     kGrey,
     1,
     1,
     2,
     {1, 2, 3, 4},
     3,
     {kZero, {256, 256, 256}, {1024, 1024, 1024}}},
    {"RGB with a stride of five",
     kRgb,
     0,
     1,
     2,
     {1, 1, 1, 9, 9, 2, 2, 2},
     5,
     {{256, 256, 256}, {512, 512, 512}, kZero}},
    {"stride 0 repeats a pixel", kGrey, 0, 1, 3, {1}, 0, {{256, 256, 256}, {256, 256, 256}, {256, 256, 256}}},
    {"pixels left of the picture are dropped", kGrey, -1, 1, 2, {1, 2}, 1, {{512, 512, 512}, kZero, kZero}},
    {"pixels right of the picture are dropped", kGrey, 2, 1, 2, {1, 2}, 1, {kZero, kZero, {256, 256, 256}}},
    {"columns beyond 32 bits are dropped", kGrey, kLargest, 1, 2, {1, 2}, 1, {kZero, kZero, kZero}},
    {"pixels below the picture are dropped", kGrey, 0, 2, 1, {1}, 1, {kZero, kZero, kZero}},
    {"pixels above the picture are dropped", kGrey, 0, -1, 1, {1}, 1, {kZero, kZero, kZero}},
    {"count 0", kRgb, 0, 1, 0, {}, 3, {kZero, kZero, kZero}},
    {"negative count", kRgb, 0, 1, -1, {}, 3, {kZero, kZero, kZero}},
    {"mode 0 stores nothing", 0, 0, 1, 1, {}, 3, {kZero, kZero, kZero}},
    {"mode 3 stores nothing", 3, 0, 1, 1, {}, 3, {kZero, kZero, kZero}},
    {"mode 5 stores nothing", 5, 0, 1, 1, {}, 3, {kZero, kZero, kZero}},
};

TEST(ExampleTXLImage, StoresColour) {
    for (const StoreCase& c : kStoreCases) {
        SCOPED_TRACE(c.name);
        BaseBitmap bitmap;
        ExampleTXLImage image(&bitmap);
        ASSERT_TRUE(image.Init(3, 2, c.mode));
        ExactBuffer data(c.data);
        EXPECT_TRUE(image.SetPixelCount(c.x, c.y, c.count, data.data(), c.stride));
        EXPECT_EQ(row_of(bitmap, 1), c.expected_row);
        EXPECT_EQ(row_of(bitmap, 0), (std::vector<Rgb>{kZero, kZero, kZero}));
    }
}

TEST(ExampleTXLImage, ColourBeforeInitIsDropped) {
    BaseBitmap bitmap;
    ASSERT_EQ(bitmap.Init(1, 1, 24), 0);
    ExampleTXLImage image(&bitmap);
    Bytes data = {9, 9, 9};
    EXPECT_TRUE(image.SetPixelCount(0, 0, 1, data.data(), 3)) << "the mode is 0 until Init";
    EXPECT_EQ(pixel_at(bitmap, 0, 0), kZero);
}

TEST(ExampleTXLImage, StoredColourReadsBackAsZero) {
    BaseBitmap bitmap;
    ExampleTXLImage image(&bitmap);
    ASSERT_TRUE(image.Init(2, 1, kRgb));
    Bytes data = {255, 128, 1, 2, 3, 4};
    ASSERT_TRUE(image.SetPixelCount(0, 0, 2, data.data(), 3));
    ExactBuffer back(6, 0xEE);
    EXPECT_EQ(image.GetPixelCount(0, 0, 2, back.data()), 0);
    EXPECT_EQ(back.all(), Bytes(6, 0));
}

TEST(ExampleTXLImage, ReadsTheLowByteOfAColour) {
    BaseBitmap bitmap;
    ExampleTXLImage image(&bitmap);
    ASSERT_TRUE(image.Init(2, 1, kRgb));
    ASSERT_EQ(bitmap.SetPixel(0, 0, 0x1234, 0x5678, 0x9ABC), 0);
    ASSERT_EQ(bitmap.SetPixel(1, 0, 1, 2, 3), 0);
    ExactBuffer row(6);
    EXPECT_EQ(image.GetPixelCount(0, 0, 2, row.data()), 0);
    EXPECT_EQ(row.all(), (Bytes{0x34, 0x78, 0xBC, 1, 2, 3}));
}

struct ReadCase {
    const char* name;
    std::int32_t x;
    std::int32_t y;
    std::int32_t count;
    std::int32_t expected_colour;
    std::int32_t expected_alpha;
    Bytes expected_bytes;  // alpha; colour is the same byte three times per pixel
};

const ReadCase kReadCases[] = {
    {"inside", 0, 0, 2, 0, 0, {5, 6}},
    {"the last pixel decides: ends outside", 1, 0, 2, 1, 1, {6, 0}},
    {"the last pixel decides: begins outside", -1, 0, 2, 0, 0, {0, 5}},
    {"all outside", 0, 1, 2, 1, 1, {0, 0}},
    {"columns beyond 32 bits", kLargest, 0, 2, 1, 1, {0, 0}},
    {"count 0", 0, 0, 0, 1, 1, {}},
    {"negative count", 0, 0, -1, 1, 1, {}},
};

TEST(ExampleTXLImage, ReadsColourAndAlpha) {
    BaseBitmap bitmap;
    ExampleTXLImage image(&bitmap);
    ASSERT_TRUE(image.Init(2, 1, kRgb));
    ASSERT_TRUE(image.InitAlphaChannel(0, 2, 1));
    for (std::int32_t x = 0; x < 2; ++x) {
        const auto value = static_cast<std::uint16_t>(0xAB00 + 5 + x);
        ASSERT_EQ(bitmap.SetPixel(x, 0, value, value, value), 0);
        ASSERT_EQ(bitmap.SetAlphaPixel(1, x, 0, value), 0);
    }
    for (const ReadCase& c : kReadCases) {
        SCOPED_TRACE(c.name);
        ExactBuffer colour(3 * c.expected_bytes.size(), 0xEE);
        EXPECT_EQ(image.GetPixelCount(c.x, c.y, c.count, colour.data()), c.expected_colour);
        Bytes three_times;
        for (const unsigned char byte : c.expected_bytes) {
            three_times.insert(three_times.end(), 3, byte);
        }
        EXPECT_EQ(colour.all(), three_times);
        ExactBuffer alpha(c.expected_bytes.size(), 0xEE);
        EXPECT_EQ(image.GetAlphaPixel(0, c.x, c.y, c.count, alpha.data()), c.expected_alpha);
        EXPECT_EQ(alpha.all(), c.expected_bytes);
    }
}

TEST(ExampleTXLImage, AlphaOfAnotherIndexIsZero) {
    BaseBitmap bitmap;
    ExampleTXLImage image(&bitmap);
    ASSERT_TRUE(image.Init(1, 1, kRgb));
    ASSERT_TRUE(image.InitAlphaChannel(0, 1, 1));
    Bytes value = {200};
    ASSERT_TRUE(image.SetAlphaPixel(0, 0, 0, 1, value.data()));
    unsigned char read = 9;
    EXPECT_EQ(image.GetAlphaPixel(1, 0, 0, 0, &read), 0) << "index 1 has no channel number";
    EXPECT_EQ(image.GetAlphaPixel(1, 0, 0, 1, &read), 1);
    EXPECT_EQ(read, 0);
}

TEST(ExampleTXLImage, AlphaIsKeptUnscaledAndReadsBack) {
    BaseBitmap bitmap;
    ExampleTXLImage image(&bitmap);
    ASSERT_TRUE(image.Init(3, 2, kGrey));
    ASSERT_TRUE(image.InitAlphaChannel(7, -1, -1)) << "the arguments are ignored";
    EXPECT_EQ(image.GetAlphaCount(), 1);
    ExactBuffer data(Bytes{255, 1, 128});
    EXPECT_TRUE(image.SetAlphaPixel(99, 0, 1, 3, data.data())) << "the channel is ignored";
    EXPECT_EQ(alpha_row_of(bitmap, 1), (std::vector<int>{255, 1, 128}));
    EXPECT_EQ(alpha_row_of(bitmap, 0), (std::vector<int>{0, 0, 0}));
    ExactBuffer back(3);
    EXPECT_EQ(image.GetAlphaPixel(0, 0, 1, 3, back.data()), 0);
    EXPECT_EQ(back.all(), (Bytes{255, 1, 128}));
}

TEST(ExampleTXLImage, AlphaOutsideIsDropped) {
    BaseBitmap bitmap;
    ExampleTXLImage image(&bitmap);
    ASSERT_TRUE(image.Init(2, 1, kGrey));
    ASSERT_TRUE(image.InitAlphaChannel(0, 2, 1));
    Bytes data = {1, 2, 3, 4};
    EXPECT_TRUE(image.SetAlphaPixel(0, -1, 0, 4, data.data()));
    EXPECT_TRUE(image.SetAlphaPixel(0, kLargest, 0, 2, data.data()));
    EXPECT_TRUE(image.SetAlphaPixel(0, 0, 1, 2, data.data()));
    EXPECT_TRUE(image.SetAlphaPixel(0, 0, 0, 0, data.data()));
    EXPECT_TRUE(image.SetAlphaPixel(0, 0, 0, -1, data.data()));
    EXPECT_EQ(alpha_row_of(bitmap, 0), (std::vector<int>{2, 3}));
}

TEST(ExampleTXLImage, AlphaIsRefusedUntilAChannelIsAnnounced) {
    BaseBitmap bitmap;
    ExampleTXLImage image(&bitmap);
    ASSERT_TRUE(image.Init(1, 1, kGrey));
    unsigned char value = 5;
    EXPECT_FALSE(image.SetAlphaPixel(0, 0, 0, 1, &value));
    EXPECT_FALSE(image.SetAlphaPixel(1, 0, 0, 0, &value));
}

TEST(ExampleTXLImage, SecondAlphaChannelIsRefusedAndTheFirstKept) {
    BaseBitmap bitmap;
    ExampleTXLImage image(&bitmap);
    ASSERT_TRUE(image.Init(1, 1, kGrey));
    unsigned char value = 5;
    ASSERT_TRUE(image.InitAlphaChannel(0, 1, 1));
    ASSERT_TRUE(image.SetAlphaPixel(0, 0, 0, 1, &value));
    EXPECT_FALSE(image.InitAlphaChannel(1, 1, 1));
    value = 6;
    EXPECT_FALSE(image.SetAlphaPixel(1, 0, 0, 1, &value));
    EXPECT_EQ(image.GetAlphaCount(), 1);
    EXPECT_EQ(alpha_row_of(bitmap, 0), (std::vector<int>{5}));
}

TEST(ExampleTXLImage, SecondInitTakesTheAlphaChannelAway) {
    BaseBitmap bitmap;
    ExampleTXLImage image(&bitmap);
    ASSERT_TRUE(image.Init(1, 1, kGrey));
    ASSERT_TRUE(image.InitAlphaChannel(0, 1, 1));
    ASSERT_TRUE(image.Init(1, 1, kGrey));
    EXPECT_EQ(image.GetAlphaCount(), 0);
    unsigned char value = 5;
    image.SetAlphaPixel(0, 0, 0, 1, &value);
    ASSERT_TRUE(image.InitAlphaChannel(0, 1, 1));
    EXPECT_EQ(alpha_row_of(bitmap, 0), (std::vector<int>{0}))
        << "the value was stored before the channel existed";
    EXPECT_TRUE(image.SetAlphaPixel(0, 0, 0, 1, &value));
    EXPECT_EQ(alpha_row_of(bitmap, 0), (std::vector<int>{5}));
}

#if !defined(_WIN32)  // where the memory of a process cannot be limited
TEST(ExampleTXLImageDeathTest, AChannelWithoutMemoryCountsAsAdded) {
    EXPECT_EXIT(
        {
            BaseBitmap bitmap;
            ExampleTXLImage image(&bitmap);
            const bool made = image.Init(8192, 8192, kGrey);
            refuse_further_memory();
            unsigned char value = 5;
            const bool announced = image.InitAlphaChannel(0, 1, 1);
            const bool taken = image.SetAlphaPixel(0, 0, 0, 1, &value);
            _exit(made && announced && taken && image.GetAlphaCount() == 0 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}
#endif

// Storing and reading whole rows gives the same as pixel by pixel, wherever the row lies.
TEST(ExampleTXLImage, RowsMatchTheirPixels) {
    constexpr std::int32_t kWidth = 7;
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
    Bytes data(4 * 20);
    for (std::size_t i = 0; i < data.size(); ++i) {
        data[i] = static_cast<unsigned char>(37 * i + 1);
    }
    for (const std::int32_t x :
         {kLeast, kLeast + 5, -20, -7, -3, -1, 0, 1, 6, 7, 8, kLargest - 5, kLargest}) {
        for (const std::int32_t count : {-1, 0, 1, 3, 7, 9, 20}) {
            for (const std::int32_t mode : {kGrey, kRgb}) {
                for (const std::int32_t stride : {3, 4}) {
                    BaseBitmap bitmap;
                    ExampleTXLImage image(&bitmap);
                    ASSERT_TRUE(image.Init(kWidth, 2, mode));
                    ASSERT_TRUE(image.InitAlphaChannel(0, kWidth, 2));
                    ASSERT_TRUE(image.SetPixelCount(x, 1, count, data.data(), stride));
                    ASSERT_TRUE(image.SetAlphaPixel(0, x, 1, count, data.data()));
                    for (std::int32_t column = 0; column < kWidth; ++column) {
                        const std::int64_t i = std::int64_t{column} - x;
                        const bool stored = i >= 0 && i < count;
                        const auto value = [&](std::int64_t at) {
                            return stored ? data[static_cast<std::size_t>(at)] : 0;
                        };
                        for (std::int64_t k = 0; k < 3; ++k) {
                            ASSERT_EQ(pixel_at(bitmap, column, 1)[static_cast<std::size_t>(k)],
                                      256 * value(i * stride + (mode == kRgb ? k : 0)))
                                << column << " of " << count << " from " << x;
                        }
                        ASSERT_EQ(alpha_row_of(bitmap, 1)[static_cast<std::size_t>(column)], value(i));
                    }
                    if (count < 1) {
                        continue;
                    }
                    Bytes read(static_cast<std::size_t>(count), 0xEE);
                    const std::int64_t last = std::int64_t{x} + count - 1;
                    ASSERT_EQ(image.GetAlphaPixel(0, x, 1, count, read.data()),
                              last >= 0 && last < kWidth ? 0 : 1);
                    for (std::int64_t i = 0; i < count; ++i) {
                        const auto at = static_cast<std::size_t>(i);
                        ASSERT_EQ(read[at], x + i >= 0 && x + i < kWidth ? data[at] : 0);
                    }
                }
            }
        }
    }
}

}  // namespace
