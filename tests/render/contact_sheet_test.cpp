// Thumbnails and sheets, against numbers worked out by hand.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "render/contact_sheet.h"

namespace {

using render::Picture;
using render::SheetScale;
using render::SheetTile;

using Pixel = std::vector<std::uint8_t>;

Picture picture_of(std::int32_t width_px, std::int32_t height_px, const std::vector<Pixel>& pixels) {
    Picture made;
    made.width_px = width_px;
    made.height_px = height_px;
    for (const Pixel& pixel : pixels) {
        made.bytes.insert(made.bytes.end(), pixel.begin(), pixel.end());
    }
    return made;
}

Pixel pixel_at(const Picture& picture, std::int32_t x, std::int32_t y) {
    const std::uint8_t* const at =
        &picture.bytes[static_cast<std::size_t>(y) * picture.row_bytes() + static_cast<std::size_t>(x) * 4];
    return {at, at + 4};
}

TEST(Thumbnail, AveragesColoursByTheirCoverage) {
    struct Case {
        const char* name;
        std::vector<Pixel> pixels;  // two, which become one
        Pixel average;
    };
    const Case cases[] = {
        {"opaque ones count the same", {{100, 0, 0, 255}, {200, 10, 0, 255}}, {150, 5, 0, 255}},
        {"what is transparent has no colour", {{90, 80, 70, 255}, {255, 255, 255, 0}}, {90, 80, 70, 128}},
        // (200 * 85 + 50 * 170) / 255 = 100
        {"a half has half a say", {{200, 0, 0, 85}, {50, 0, 0, 170}}, {100, 0, 0, 128}},
        {"nothing stays nothing", {{9, 9, 9, 0}, {8, 8, 8, 0}}, {0, 0, 0, 0}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Picture small = thumbnail_of(picture_of(2, 1, c.pixels), SheetScale{1, 1, 1});
        ASSERT_EQ(small.width_px, 1);
        EXPECT_EQ(pixel_at(small, 0, 0), c.average);
    }
}

TEST(Thumbnail, FitsTheRoomAndKeepsItsProportions) {
    struct Case {
        const char* name;
        std::int32_t width_px;
        std::int32_t height_px;
        std::int32_t made_width_px;
        std::int32_t made_height_px;
    };
    const Case cases[] = {
        {"wide", 1920, 1080, 384, 216},
        {"high", 100, 2880, 10, 288},
        {"a line keeps a pixel", 30000, 1, 384, 1},
        {"a little too large", 385, 288, 384, 287},
        {"as large as the room", 384, 288, 384, 288},
        {"small ones are enlarged by a whole factor", 100, 90, 300, 270},
        {"one pixel", 1, 1, 288, 288},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Picture picture;
        picture.width_px = c.width_px;
        picture.height_px = c.height_px;
        picture.bytes.assign(static_cast<std::size_t>(c.height_px) * picture.row_bytes(), 255);
        const Picture small = thumbnail_of(picture, SheetScale{});
        EXPECT_EQ(small.width_px, c.made_width_px);
        EXPECT_EQ(small.height_px, c.made_height_px);
        EXPECT_EQ(small.bytes.size(),
                  static_cast<std::size_t>(small.width_px) * 4 * static_cast<std::size_t>(small.height_px));
    }
}

TEST(ContactSheet, MarksWhatIsWrongAndShowsThroughWhatIsTransparent) {
    std::vector<SheetTile> tiles(2);
    tiles[0].thumbnail = picture_of(1, 1, {{10, 200, 30, 255}});
    tiles[0].title = "fine";
    tiles[1].thumbnail = picture_of(1, 1, {{255, 0, 0, 0}});
    tiles[1].marks = {"missing"};
    const Picture sheet = contact_sheet("two", tiles);
    // Two columns: the margin of 24, 384 and a gap of 16 to the next; the heading is 36 high.
    ASSERT_EQ(sheet.width_px, 24 + 384 + 16 + 384 + 24);
    const std::int32_t top = 24 + 36;
    const std::int32_t second = 24 + 384 + 16;
    EXPECT_EQ(pixel_at(sheet, 24 + 192, top + 144), (Pixel{10, 200, 30, 255}));
    // Of a checkerboard there are only two greys.
    const Pixel through = pixel_at(sheet, second + 192, top + 144);
    EXPECT_TRUE(through == (Pixel{136, 136, 136, 255}) || through == (Pixel{104, 104, 104, 255}));
    EXPECT_EQ(pixel_at(sheet, second - 2, top + 10), (Pixel{255, 159, 28, 255})) << "the frame of a mark";
    EXPECT_NE(pixel_at(sheet, 24 - 2, top + 10), (Pixel{255, 159, 28, 255})) << "there is nothing wrong here";
    for (std::size_t i = 3; i < sheet.bytes.size(); i += 4) {
        ASSERT_EQ(sheet.bytes[i], 255);
    }
}

TEST(ContactSheet, StaysWithinItsPixelsWhateverTheText) {
    std::vector<SheetTile> tiles(3);
    tiles[0].title = std::string(10000, 'W');
    tiles[1].title = "\xff\xfe\n\t";
    tiles[2].facts = {std::string(5000, 'x'), "", "\xe2\x80\xae"};
    tiles[2].marks = {std::string(5000, '!')};
    const Picture sheet = contact_sheet(std::string(100000, '#'), tiles);
    EXPECT_EQ(render::sheet_pixels(3, 4), std::int64_t{sheet.width_px} * sheet.height_px);
    EXPECT_EQ(render::contact_sheet("", {}).bytes.size() % 4, 0U) << "a sheet of nothing is a picture";
}

}  // namespace
