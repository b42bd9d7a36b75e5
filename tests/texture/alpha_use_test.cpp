#include "texture/value/alpha_use.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "texture/value/texture.h"

namespace {

using Values = std::vector<std::uint8_t>;

PixelBuffer buffer_of(const Values& values) {
    PixelBuffer buffer(values.size());
    std::copy(values.begin(), values.end(), buffer.begin());
    return buffer;
}

/// A single column of pixels.
Texture column(std::int32_t mode, const Values& colour, const Values& alpha) {
    Texture texture;
    texture.width_px = 1;
    texture.height_px = static_cast<std::int32_t>(alpha.size());
    texture.mode = mode;
    texture.pixels = buffer_of(colour);
    texture.alphas.push_back({"Alpha", buffer_of(alpha)});
    return texture;
}

struct UseCase {
    const char* name;
    std::int32_t mode;
    Values colour;
    Values alpha;
    AlphaUse use;
    std::int64_t pixels_above;
    const char* text;
};

constexpr const char* kPremultiplied =
    "no colour above alpha: premultiplied, as After Effects is told; there is nothing to choose";
constexpr const char* kOpaque = "alpha is 255 in every pixel: straight and premultiplied are the same";

TEST(AlphaUse, FollowsFromThePixels) {
    const UseCase cases[] = {
        {"grey at its alpha",
         Texture::kGrey,
         {0, 100, 255},
         {0, 100, 255},
         AlphaUse::premultiplied,
         0,
         kPremultiplied},
        {"grey one above its alpha",
         Texture::kGrey,
         {0, 101, 255},
         {0, 100, 255},
         AlphaUse::straight,
         1,
         "colour above alpha in 33 % of the pixels: straight; in After Effects choose Interpret Footage, "
         "Straight"},
        {"colour where alpha is 0",
         Texture::kGrey,
         {1, 1},
         {0, 0},
         AlphaUse::straight,
         2,
         "colour above alpha in 100 % of the pixels: straight; in After Effects choose Interpret Footage, "
         "Straight"},
        {"only blue above alpha",
         Texture::kRgb,
         {9, 9, 10, 9, 9, 9},
         {9, 9},
         AlphaUse::straight,
         1,
         "colour above alpha in 50 % of the pixels: straight; in After Effects choose Interpret Footage, "
         "Straight"},
        {"black", Texture::kRgb, Values(6), {0, 128}, AlphaUse::premultiplied, 0, kPremultiplied},
        {"opaque", Texture::kRgb, Values(6, 255), {255, 255}, AlphaUse::opaque, 0, kOpaque},
    };
    for (const UseCase& c : cases) {
        const AlphaFinding finding = find_alpha_use(column(c.mode, c.colour, c.alpha));
        EXPECT_EQ(code_info(finding.use).name, code_info(c.use).name) << c.name;
        EXPECT_EQ(finding.pixels_above, c.pixels_above) << c.name;
        EXPECT_EQ(finding.pixel_count, static_cast<std::int64_t>(c.alpha.size())) << c.name;
        EXPECT_EQ(alpha_use_text(finding), c.text) << c.name;
    }
}

TEST(AlphaUse, OnlyTheFirstAlphaCounts) {
    Texture texture = column(Texture::kGrey, {5}, {5});
    texture.alphas.push_back({"Alpha.2", buffer_of({0})});
    EXPECT_EQ(find_alpha_use(texture).use, AlphaUse::premultiplied);
}

TEST(AlphaUse, RowsThatAreNotInTheFileTakeNoTime) {
    Texture texture;
    texture.width_px = 1 << 15;
    texture.height_px = 1 << 15;
    texture.pixels = PixelBuffer(texture.pixel_count() * 3);
    texture.alphas.push_back({"Alpha", PixelBuffer(texture.pixel_count())});
    texture.pixels[3 * (std::size_t{1} << 15)] = 1;  // row 1
    RowSet rows;
    rows.add(1);
    const AlphaFinding finding = find_alpha_use(texture, rows);
    EXPECT_EQ(finding.use, AlphaUse::straight);
    EXPECT_EQ(finding.pixels_above, 1);
    EXPECT_EQ(finding.percent(), 1) << "less than one in a hundred, but not none";
}

TEST(AlphaFinding, PercentIsExactAtItsEnds) {
    const struct {
        std::int64_t above, count;
        int percent;
    } cases[] = {{0, 7, 0},       {1, 1000000, 1},       {1, 200, 1}, {149, 10000, 1},        {12, 100, 12},
                 {125, 1000, 13}, {999999, 1000000, 99}, {7, 7, 100}, {1 << 30, 1 << 30, 100}};
    for (const auto& c : cases) {
        EXPECT_EQ((AlphaFinding{AlphaUse::straight, c.above, c.count}.percent()), c.percent)
            << c.above << " of " << c.count;
    }
}

TEST(AlphaUse, MultiplyingAndDividingRoundToTheNearest) {
    const struct {
        const char* name;
        std::uint8_t colour, alpha, multiplied, divided;
    } cases[] = {
        {"opaque", 200, 255, 200, 200},      {"half", 100, 128, 50, 199},    {"transparent", 90, 0, 0, 90},
        {"above alpha", 200, 100, 78, 255},  {"rounded down", 1, 127, 0, 2}, {"rounded up", 1, 128, 1, 2},
        {"white at alpha", 77, 77, 23, 255},
    };
    for (const auto& c : cases) {
        for (const std::int32_t mode : {Texture::kGrey, Texture::kRgb}) {
            const std::size_t channels = mode == Texture::kGrey ? 1 : 3;
            Texture multiplied = column(mode, Values(channels, c.colour), {c.alpha});
            Texture divided = multiplied;
            multiply_by_alpha(multiplied);
            divide_by_alpha(divided);
            EXPECT_EQ(Values(multiplied.pixels.begin(), multiplied.pixels.end()),
                      Values(channels, c.multiplied))
                << c.name;
            EXPECT_EQ(Values(divided.pixels.begin(), divided.pixels.end()), Values(channels, c.divided))
                << c.name;
        }
    }
}

TEST(AlphaUse, NothingHappensToATextureWithoutAlpha) {
    Texture texture = column(Texture::kGrey, {5}, {7});
    texture.alphas.clear();
    const Texture before = texture;
    multiply_by_alpha(texture);
    divide_by_alpha(texture);
    EXPECT_TRUE(texture == before);
}

}  // namespace
