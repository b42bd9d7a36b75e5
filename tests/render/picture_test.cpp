// Pictures made smaller, against averages worked out by hand.

#include "render/picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <vector>

namespace {

using image::AlphaPixels;
using render::FittedSize;
using render::Picture;

PixelBuffer buffer_of(std::initializer_list<std::uint8_t> values) {
    PixelBuffer buffer(values.size());
    std::copy(values.begin(), values.end(), buffer.begin());
    return buffer;
}

TEST(FittedSize, KeepsProportionsAndNeverEnlarges) {
    struct Case {
        const char* name;
        FittedSize picture, room, fitted;
    };
    const Case cases[] = {
        {"smaller than the room", {4, 2}, {128, 128}, {4, 2}},
        {"as large as the room", {128, 128}, {128, 128}, {128, 128}},
        {"wide", {400, 100}, {128, 128}, {128, 32}},
        {"high", {100, 400}, {128, 128}, {32, 128}},
        {"a pixel too wide, and 99.2 is rounded", {129, 100}, {128, 128}, {128, 99}},
        {"a half is rounded up", {200, 125}, {100, 100}, {100, 63}},
        {"a line keeps a pixel", {3000, 1}, {128, 128}, {128, 1}},
        {"a column keeps a pixel", {1, 3000}, {128, 128}, {1, 128}},
        {"the smallest room", {300, 200}, {1, 1}, {1, 1}},
        {"a wide room is bounded by its height", {100, 100}, {200, 50}, {50, 50}},
        {"products beyond 32 bits", {1 << 30, 1}, {4096, 4096}, {4096, 1}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const FittedSize fitted =
            render::fitted_size(c.picture.width_px, c.picture.height_px, c.room.width_px, c.room.height_px);
        EXPECT_EQ(fitted.width_px, c.fitted.width_px);
        EXPECT_EQ(fitted.height_px, c.fitted.height_px);
    }
}

TEST(ReducedTexture, IsTheAverageOfTheAreaThatEachPixelCovers) {
    struct Case {
        const char* name;
        std::int32_t width_px, height_px, mode;
        std::initializer_list<std::uint8_t> colour, alpha;
        AlphaPixels pixels;
        FittedSize to;
        std::vector<std::uint8_t> expected;
    };
    constexpr auto kStraight = AlphaPixels::straight;
    constexpr auto kMultiplied = AlphaPixels::premultiplied;
    const Case cases[] = {
        {"two by two become one",
         2,
         2,
         Texture::kRgb,
         {0, 10, 20, 40, 30, 20, 80, 10, 20, 120, 30, 20},
         {},
         kStraight,
         {1, 1},
         {60, 20, 20, 255}},
        {"the same size is the same picture",
         2,
         1,
         Texture::kRgb,
         {1, 2, 3, 4, 5, 6},
         {},
         kStraight,
         {2, 1},
         {1, 2, 3, 255, 4, 5, 6, 255}},
        // All of the left pixel and half of the middle one: (90 + 30 / 2) / 1.5 = 70, then (0 + 15) / 1.5.
        {"a pixel on the edge of two belongs to both",
         3,
         1,
         Texture::kGrey,
         {90, 30, 0},
         {},
         kStraight,
         {2, 1},
         {70, 70, 70, 255, 10, 10, 10, 255}},
        {"rows as well as columns",
         1,
         3,
         Texture::kGrey,
         {90, 30, 0},
         {},
         kStraight,
         {1, 2},
         {70, 70, 70, 255, 10, 10, 10, 255}},
        {"a half is rounded up", 2, 1, Texture::kGrey, {10, 11}, {}, kStraight, {1, 1}, {11, 11, 11, 255}},
        {"what is transparent has no say",
         2,
         1,
         Texture::kRgb,
         {200, 100, 50, 255, 255, 255},
         {255, 0},
         kStraight,
         {1, 1},
         {200, 100, 50, 128}},
        // (200 * 85 + 50 * 170) / 255 = 100
        {"straight colour counts by its coverage",
         2,
         1,
         Texture::kGrey,
         {200, 50},
         {85, 170},
         kStraight,
         {1, 1},
         {100, 100, 100, 128}},
        // (85 + 0) * 255 / (85 + 170) = 85
        {"multiplied colour has been counted",
         2,
         1,
         Texture::kGrey,
         {85, 0},
         {85, 170},
         kMultiplied,
         {1, 1},
         {85, 85, 85, 128}},
        {"multiplied colour above its alpha is white",
         1,
         1,
         Texture::kGrey,
         {200},
         {100},
         kMultiplied,
         {1, 1},
         {255, 255, 255, 100}},
        {"nothing stays nothing", 2, 1, Texture::kGrey, {9, 9}, {0, 0}, kMultiplied, {1, 1}, {0, 0, 0, 0}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Texture texture;
        texture.width_px = c.width_px;
        texture.height_px = c.height_px;
        texture.mode = c.mode;
        texture.pixels = buffer_of(c.colour);
        const PixelBuffer alpha = buffer_of(c.alpha);
        const bool has_alpha = !alpha.empty();
        const Picture made =
            render::reduced(texture, has_alpha ? &alpha : nullptr, c.pixels, c.to.width_px, c.to.height_px);
        EXPECT_EQ(made.has_alpha, has_alpha);
        EXPECT_EQ(made.bytes, c.expected);
        // A picture in straight colour becomes the same.
        if (c.pixels == kStraight) {
            const Picture whole = render::picture_of(texture, has_alpha ? &alpha : nullptr);
            EXPECT_EQ(render::reduced(whole, c.to.width_px, c.to.height_px).bytes, c.expected);
        }
    }
}

}  // namespace
