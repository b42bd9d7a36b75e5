#include "viewer/texture_view.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace {

using viewer::draw_window;
using viewer::Look;
using viewer::Window;

PixelBuffer bytes_of(const std::vector<std::uint8_t>& values) {
    PixelBuffer bytes(values.size());
    std::copy(values.begin(), values.end(), bytes.begin());
    return bytes;
}

/// 2 x 2: red, green / blue, grey; the first alpha is 255, 128 / 0, 64.
Texture coloured() {
    Texture texture;
    texture.width_px = 2;
    texture.height_px = 2;
    texture.pixels = bytes_of({200, 0, 0, 0, 100, 0, 0, 0, 50, 90, 90, 90});
    texture.alphas.push_back({"first", bytes_of({255, 128, 0, 64})});
    texture.alphas.push_back({"second", bytes_of({1, 2, 3, 4})});
    return texture;
}

Texture grey() {
    Texture texture;
    texture.width_px = 4;
    texture.height_px = 1;
    texture.mode = Texture::kGrey;
    texture.pixels = bytes_of({10, 20, 30, 41});
    return texture;
}

/// "200,0,0 0,100,0", and "-" for a pixel beside the picture.
std::string written(const std::vector<std::uint8_t>& pixels) {
    std::string text;
    for (std::size_t at = 0; at + 3 < pixels.size(); at += 4) {
        text += text.empty() ? "" : " ";
        text += pixels[at + 3] == 0 ? "-"
                                    : std::to_string(pixels[at]) + ',' + std::to_string(pixels[at + 1]) +
                                          ',' + std::to_string(pixels[at + 2]);
    }
    return text;
}

TEST(TextureViewTest, AWindowShowsItsPart) {
    const double not_a_number = std::numeric_limits<double>::quiet_NaN();
    const struct {
        const char* name;
        Texture texture;
        Window window;
        Look look;
        std::size_t alpha;
        const char* shown;
    } kCases[] = {
        {"pixel for pixel", coloured(), {0, 0, 1, 2, 2}, Look::colour, 0, "200,0,0 0,100,0 0,0,50 90,90,90"},
        {"beside the picture is nothing",
         coloured(),
         {-1, 0, 1, 4, 1},
         Look::colour,
         0,
         "- 200,0,0 0,100,0 -"},
        {"twice as large", coloured(), {0, 0, 0.5, 4, 1}, Look::colour, 0, "200,0,0 200,0,0 0,100,0 0,100,0"},
        {"half as large is the mean, rounded", grey(), {0, 0, 2, 2, 1}, Look::colour, 0, "15,15,15 36,36,36"},
        {"a reduction at the edge takes what is there", grey(), {3, 0, 4, 1, 1}, Look::colour, 0, "41,41,41"},
        {"an alpha channel is grey", coloured(), {0, 0, 1, 2, 2}, Look::alpha, 1, "1,1,1 2,2,2 3,3,3 4,4,4"},
        // Ground 204: 204 * 127 / 255 = 101.6, 204 * 191 / 255 = 152.8; straight 100 * 128 / 255 = 50.2 and
        // 90 * 64 / 255 = 22.6.
        {"premultiplied colour is added to the ground",
         coloured(),
         {0, 0, 1, 2, 2},
         Look::premultiplied,
         0,
         "200,0,0 102,202,102 204,204,254 243,243,243"},
        {"straight colour is multiplied first",
         coloured(),
         {0, 0, 1, 2, 2},
         Look::straight,
         0,
         "200,0,0 102,152,102 204,204,204 176,176,176"},
        {"an alpha channel that is not there shows the colour",
         grey(),
         {0, 0, 1, 1, 1},
         Look::alpha,
         0,
         "10,10,10"},
        {"no pixels of the window", grey(), {0, 0, 1, 0, 5}, Look::colour, 0, ""},
        {"a step of nothing shows nothing", grey(), {0, 0, 0, 1, 1}, Look::colour, 0, "-"},
        {"a step that is no number shows nothing", grey(), {0, 0, not_a_number, 1, 1}, Look::colour, 0, "-"},
        {"a place that is no number shows nothing", grey(), {not_a_number, 0, 1, 1, 1}, Look::colour, 0, "-"},
        {"far away is nothing", grey(), {1e300, -1e300, 1, 1, 1}, Look::colour, 0, "-"},
        {"a texture that is not open", Texture(), {0, 0, 1, 1, 1}, Look::colour, 0, "-"},
    };
    for (const auto& one : kCases) {
        EXPECT_EQ(written(draw_window(one.texture, one.window, one.look, one.alpha)), one.shown) << one.name;
    }
}

TEST(TextureViewTest, TheGroundIsChequered) {
    Texture clear;
    clear.width_px = 24;
    clear.height_px = 1;
    clear.pixels = PixelBuffer(72);
    clear.alphas.push_back({"Alpha", PixelBuffer(24)});
    const std::vector<std::uint8_t> shown = draw_window(clear, {0, 0, 1, 24, 1}, Look::premultiplied, 0);
    EXPECT_EQ(shown[7 * 4], 204);
    EXPECT_EQ(shown[8 * 4], 153);
    EXPECT_EQ(shown[16 * 4], 204);
}

TEST(TextureViewTest, ValuesOfAPixelAreThoseOfTheFile) {
    using Values = std::vector<std::uint8_t>;
    EXPECT_EQ(viewer::values_at(coloured(), 1, 0), (Values{0, 100, 0, 128, 2}));
    EXPECT_EQ(viewer::values_at(coloured(), 1, 1), (Values{90, 90, 90, 64, 4}));
    EXPECT_EQ(viewer::values_at(grey(), 3, 0), (Values{41}));
    EXPECT_EQ(viewer::values_at(grey(), 4, 0), Values());
    EXPECT_EQ(viewer::values_at(grey(), 0, 1), Values());
    EXPECT_EQ(viewer::values_at(grey(), -1, 0), Values());
    EXPECT_EQ(viewer::values_at(Texture(), 0, 0), Values());
}

TEST(TextureViewTest, APictureIsSavedAsStored) {
    const struct {
        const char* name;
        Texture texture;
        Look look;
        std::size_t alpha;
        std::int32_t channels;
        std::vector<std::uint8_t> bytes;
    } kCases[] = {
        {"colour alone", coloured(), Look::colour, 0, 3, {200, 0, 0, 0, 100, 0, 0, 0, 50, 90, 90, 90}},
        {"an alpha channel alone", coloured(), Look::alpha, 1, 1, {1, 2, 3, 4}},
        {"colour with an alpha channel, whatever the ground",
         coloured(),
         Look::straight,
         0,
         4,
         {200, 0, 0, 255, 0, 100, 0, 128, 0, 0, 50, 0, 90, 90, 90, 64}},
        {"the second one",
         coloured(),
         Look::premultiplied,
         1,
         4,
         {200, 0, 0, 1, 0, 100, 0, 2, 0, 0, 50, 3, 90, 90, 90, 4}},
        {"grey without alpha", grey(), Look::straight, 0, 1, {10, 20, 30, 41}},
    };
    for (const auto& one : kCases) {
        const viewer::Plane plane = viewer::plane_to_save(one.texture, one.look, one.alpha);
        EXPECT_EQ(plane.channels, one.channels) << one.name;
        EXPECT_EQ(plane.bytes, one.bytes) << one.name;
    }
}

}  // namespace
