#include "embedded/guarded_frame.h"

#include <gtest/gtest.h>

namespace {

using embedded::FrameShape;
using embedded::GuardedFrame;

FrameShape shape(A_long width, A_long height, A_long row_bytes = 0) {
    FrameShape made;
    made.width_px = width;
    made.height_px = height;
    made.row_bytes = row_bytes;
    return made;
}

std::uint8_t* row_start(GuardedFrame& frame, A_long row) {
    return reinterpret_cast<std::uint8_t*>(frame.world().data) + frame.world().row_bytes * row;
}

TEST(GuardedFrame, RefusesImpossibleShapes) {
    FrameShape no_scale = shape(1, 1);
    no_scale.time.scale = 0;
    struct {
        const char* name;
        FrameShape shape;
        bool possible;
    } const cases[] = {
        {"ordinary", shape(4, 3), true},
        {"no pixels", shape(0, 0), true},
        {"no width", shape(0, 7), true},
        {"padded rows", shape(4, 3, 20), true},
        {"bottom-up rows", shape(4, 3, -16), true},
        {"negative width", shape(-1, 3), false},
        {"negative height", shape(4, -3), false},
        {"rows too short", shape(4, 3, 15), false},
        {"bottom-up rows too short", shape(4, 3, -12), false},
        {"more than 1 GiB", shape(1 << 16, 1 << 16), false},
        {"more than 1 GiB in a row", shape(INT32_MAX, 1), false},
        {"1 GiB exactly", shape(1 << 14, 1 << 14), true},
        {"a time on a scale of 0", no_scale, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(GuardedFrame::problem_with(c.shape).empty(), c.possible) << c.name;
    }
}

TEST(GuardedFrame, ReturnsItsPixelsForEveryRowLength) {
    for (const A_long row_bytes : {0, 12, 13, 64, -12, -40}) {
        SCOPED_TRACE(row_bytes);
        FrameShape padded = shape(3, 2, row_bytes);
        padded.fill = 0x11;
        GuardedFrame frame(padded);
        for (A_long row = 0; row < 2; ++row) {
            row_start(frame, row)[4] = static_cast<std::uint8_t>(0x20 + row);  // second pixel's alpha
        }
        EXPECT_FALSE(frame.damage().has_value());
        const std::vector<PF_Pixel> pixels = frame.pixels();
        ASSERT_EQ(pixels.size(), 6U);
        EXPECT_EQ(pixels[0].blue, 0x11);
        EXPECT_EQ(pixels[1].alpha, 0x20);
        EXPECT_EQ(pixels[4].alpha, 0x21);
        EXPECT_EQ(pixels[5].green, 0x11);
    }
}

TEST(GuardedFrame, DetectsEveryByteWrittenOutside) {
    struct {
        const char* name;
        A_long row_bytes;
        A_long row;
        int offset;  // from the start of that row
        bool outside;
    } const cases[] = {
        {"last byte of a row", 16, 0, 11, false},
        {"first byte after a row", 16, 0, 12, true},
        {"last byte of the padding", 16, 0, 15, true},
        {"last byte of the last row", 16, 1, 11, false},
        {"after the last row", 16, 1, 12, true},
        {"far after the last row", 16, 1, 2000, true},
        {"before the first row", 16, 0, -1, true},
        {"after the last row without padding", 0, 1, 12, true},
        {"bottom-up rows, before the last", -16, 1, -1, true},
        {"bottom-up rows, padding", -16, 1, 12, true},
        {"bottom-up rows, last byte", -16, 1, 11, false},
        {"bottom-up rows, after the first", -16, 0, 12, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        GuardedFrame frame(shape(3, 2, c.row_bytes));
        std::uint8_t& byte = row_start(frame, c.row)[c.offset];
        byte = static_cast<std::uint8_t>(~byte);
        EXPECT_EQ(frame.damage().has_value(), c.outside);
    }
}

TEST(GuardedFrame, SaysWhereTheDamageIs) {
    GuardedFrame frame(shape(3, 2, 16));
    row_start(frame, 0)[12] ^= 1;
    row_start(frame, 0)[13] ^= 1;
    EXPECT_EQ(frame.damage(),
              "2 bytes outside the frame were written, the first 12 bytes from the start of row 0");
}

TEST(GuardedFrame, WithoutPixelsIsAllGuard) {
    GuardedFrame frame(shape(0, 0));
    EXPECT_TRUE(frame.pixels().empty());
    EXPECT_FALSE(frame.damage().has_value());
    row_start(frame, 0)[0] ^= 1;
    EXPECT_TRUE(frame.damage().has_value());
}

}  // namespace
