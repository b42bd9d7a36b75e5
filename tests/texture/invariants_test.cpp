// The validators of bitmaps and textures accept everything that is read, and name the violated invariant of
// broken values, one invariant at a time.

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "support/changed_value.h"
#include "support/made_texture.h"
#include "texture/both_loads.h"
#include "texture/txl/base_bitmap.h"
#include "texture/txl/bitmap_invariants.h"
#include "texture/value/texture_invariants.h"

namespace {

/// The parts of a bitmap of 2 x 2 pixels with alpha.
struct Parts {
    std::array<std::uint16_t, 12> pixels{0x0100, 0xFF00};
    std::array<std::uint16_t, 4> alpha{0x00FF};
    BitmapParts parts{2, 2, 24, 1, 1, pixels.data(), alpha.data()};
};

struct BitmapCase {
    const char* name;
    const char* violation;
    Undo (*break_it)(Parts&);
};

const BitmapCase kBitmapCases[] = {
    {"a negative width", "no picture has -2 x 2 pixels",
     [](Parts& p) { return changed(p.parts.width_px, -2); }},
    {"a negative height", "no picture has 2 x -2 pixels",
     [](Parts& p) { return changed(p.parts.height_px, -2); }},
    {"more pixels than allowed", "no picture has 536870913 x 2 pixels",
     [](Parts& p) { return changed(p.parts.width_px, (1 << 29) + 1); }},
    {"a negative depth", "the depth is -1 bits", [](Parts& p) { return changed(p.parts.depth_bits, -1); }},
    {"two channels", "2 alpha channels, the first with number 1",
     [](Parts& p) { return changed(p.parts.channel_count, 2); }},
    {"a negative channel count", "-1 alpha channels, the first with number 1",
     [](Parts& p) { return changed(p.parts.channel_count, -1); }},
    {"a channel without its number", "1 alpha channels, the first with number 0",
     [](Parts& p) { return changed(p.parts.channel_number, 0); }},
    {"rows without pixels", "there are pixels without rows or rows without pixels",
     [](Parts& p) { return changed(p.parts.pixels, nullptr); }},
    {"pixels without rows", "there are pixels without rows or rows without pixels",
     [](Parts& p) { return changed(p.parts.height_px, 0); }},
    {"a channel without alpha", "there is alpha without its channel or a channel without alpha",
     [](Parts& p) { return changed(p.parts.alpha, nullptr); }},
    {"a colour that is not a byte times 256", "row 1, column 1: a colour is not a byte times 256",
     [](Parts& p) { return changed(p.pixels[11], 0x0101); }},
    {"alpha that is not a byte", "row 1, column 0: the alpha is not a byte",
     [](Parts& p) { return changed(p.alpha[2], 0x0100); }},
};

TEST(ValidateBitmap, NamesEachViolation) {
    for (const BitmapCase& broken : kBitmapCases) {
        SCOPED_TRACE(broken.name);
        Parts parts;
        const Undo undo = broken.break_it(parts);
        EXPECT_EQ(validate_bitmap(parts.parts), broken.violation);
        undo();
        EXPECT_EQ(validate_bitmap(parts.parts), std::nullopt);
    }
}

TEST(ValidateBitmap, RefusesAlphaWithoutItsChannel) {
    Parts parts;
    parts.parts.channel_count = parts.parts.channel_number = 0;
    EXPECT_EQ(validate_bitmap(parts.parts), "there is alpha without its channel or a channel without alpha");
}

TEST(ValidateBitmap, ReadsTheLastValueOfALargePicture) {
    std::vector<std::uint16_t> pixels(3 * (std::size_t{1} << 22));
    const BitmapParts parts{1 << 11, 1 << 11, 24, 0, 0, pixels.data(), nullptr};
    EXPECT_EQ(validate_bitmap(parts), std::nullopt);
    pixels.back() = 1;
    EXPECT_EQ(validate_bitmap(parts), "row 2047, column 2047: a colour is not a byte times 256");
}

TEST(ValidateBitmap, FollowsABitmapThroughItsLife) {
    BaseBitmap bitmap;
    EXPECT_EQ(validate_bitmap(bitmap), std::nullopt);
    ASSERT_EQ(bitmap.Init(0, 3, 24), 0);
    ASSERT_EQ(bitmap.AddChannel(0, 0), 1);
    EXPECT_EQ(validate_bitmap(bitmap), std::nullopt);
    ASSERT_EQ(bitmap.Init(3, 2, 24), 0);
    ASSERT_EQ(bitmap.AddChannel(0, 0), 1);
    EXPECT_EQ(validate_bitmap(bitmap), std::nullopt);
    ASSERT_EQ(bitmap.SetPixel(2, 1, 0x1200, 0, 0x34), 0);
    EXPECT_EQ(validate_bitmap(bitmap), "row 1, column 2: a colour is not a byte times 256");
    ASSERT_EQ(bitmap.SetPixel(2, 1, 0x1200, 0, 0x3400), 0);
    ASSERT_EQ(bitmap.SetAlphaPixel(1, 0, 1, 0x0100), 0);
    EXPECT_EQ(validate_bitmap(bitmap), "row 1, column 0: the alpha is not a byte");
    bitmap.Destroy();
    EXPECT_EQ(validate_bitmap(bitmap), std::nullopt);
}

struct TextureCase {
    const char* name;
    const char* violation;  // null for a sound texture
    void (*break_it)(Texture&);
};

const TextureCase kTextureCases[] = {
    {"unchanged", nullptr, [](Texture&) {}},
    {"a mode without rows", "colour mode 3; only 2 and 4 can be written", [](Texture& t) { t.mode = 3; }},
    {"a negative width", "-4 x 3 pixels; sizes must not be negative, and at most 2^30 pixels are written",
     [](Texture& t) { t.width_px = -4; }},
    {"colours that do not fit the size", "35 bytes of colour do not fit the size and mode",
     [](Texture& t) { t.pixels = PixelBuffer(35); }},
    {"alpha that does not fit the size", "11 bytes of alpha 'Alpha.2' do not fit the size",
     [](Texture& t) { t.alphas[1].values = PixelBuffer(11); }},
    {"no name", "alpha channel 2: it has no name", [](Texture& t) { t.alphas[1].name.clear(); }},
    {"a name that is not unique", "alpha channel 3: another has its name",
     [](Texture& t) { t.alphas[2].name = "Alpha"; }},
    {"a name up to the last code point", nullptr,
     [](Texture& t) { t.alphas[0].name = "\x7F \xC2\x80 \xE0\xA0\x80 \xED\x9F\xBF \xF4\x8F\xBF\xBF"; }},
    {"a name beyond the last code point", "alpha channel 1: its name is not UTF-8",
     [](Texture& t) { t.alphas[0].name = "\xF4\x90\x80\x80"; }},
    {"an unpaired surrogate", "alpha channel 1: its name is not UTF-8",
     [](Texture& t) { t.alphas[0].name = "\xED\xA0\x80"; }},
    {"an overlong character", "alpha channel 1: its name is not UTF-8",
     [](Texture& t) { t.alphas[0].name = "\xC1\xBF"; }},
    {"a stray continuation byte", "alpha channel 1: its name is not UTF-8",
     [](Texture& t) { t.alphas[0].name = "\x80"; }},
    {"a lead byte without a continuation", "alpha channel 1: its name is not UTF-8",
     [](Texture& t) { t.alphas[0].name = "\xC3("; }},
    {"a character that is cut off", "alpha channel 1: its name is not UTF-8",
     [](Texture& t) { t.alphas[0].name = "\xE2\x82"; }},
    {"a byte that cannot begin a character", "alpha channel 1: its name is not UTF-8",
     [](Texture& t) { t.alphas[0].name = "\xF8\x88\x80\x80\x80"; }},
};

TEST(ValidateTexture, NamesEachViolation) {
    for (const TextureCase& each : kTextureCases) {
        SCOPED_TRACE(each.name);
        Texture texture = made_texture(4, 3, Texture::kRgb, 3);
        each.break_it(texture);
        EXPECT_EQ(validate_texture(texture),
                  each.violation == nullptr ? std::nullopt : std::optional<std::string>(each.violation));
    }
}

TEST(Validators, AcceptEveryExample) {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(VXR_EXAMPLES_DIR)) {
        if (entry.path().extension() != ".txl") {
            continue;
        }
        SCOPED_TRACE(entry.path());
        const BothLoads loads(entry.path().string());
        ASSERT_TRUE(loads.reading.texture.has_value());
        ++count;
    }
    EXPECT_GE(count, 10U);
}

}  // namespace
