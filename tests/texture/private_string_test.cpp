#include "texture/container/private_string.h"

#include <gtest/gtest.h>

#include <array>

namespace {

TEST(PrivateString, BytesAreSignExtended) {
    const PrivateString text("A\x7F\x80\xFF");
    ASSERT_EQ(text.GetLength(), 4);
    EXPECT_EQ(text[0], 0x0041);
    EXPECT_EQ(text[1], 0x007F);
    EXPECT_EQ(text[2], 0xFF80);
    EXPECT_EQ(text[3], 0xFFFF);
}

TEST(PrivateString, IndicesOutsideReadAsZeroAndIgnoreAssignments) {
    PrivateString text("ab");
    text[2] = std::uint16_t{7};
    text[-1] = std::uint16_t{7};
    EXPECT_EQ(text[2], 0);
    EXPECT_EQ(text[-1], 0);
    EXPECT_EQ(text[0], 'a');
    EXPECT_EQ(text[1], 'b');
    PrivateString empty;
    empty[0] = std::uint16_t{7};
    EXPECT_EQ(empty[0], 0);
    EXPECT_EQ(static_cast<const PrivateString&>(empty)[0], 0);
}

TEST(PrivateString, AssigningAReferenceCopiesTheUnit) {
    PrivateString a("ab");
    PrivateString b("xy");
    a[0] = b[1];
    EXPECT_EQ(a[0], 'y');
    a[1] = a[0];
    EXPECT_EQ(a[1], 'y');
    a[0] = b[5];
    EXPECT_EQ(a[0], 0) << "an index outside gives 0";
    const PChar unit = b[0];
    EXPECT_EQ(unit, 'x');
}

TEST(PrivateString, InitSetsTheLength) {
    PrivateString text("abc");
    EXPECT_EQ(text.Init(5), 1);
    EXPECT_EQ(text.GetLength(), 5);
    EXPECT_EQ(text.Init(0), 1);
    EXPECT_EQ(text.GetLength(), 0);
    EXPECT_EQ(text.Init(-1), 0);
    EXPECT_EQ(text.GetLength(), 0);
}

TEST(PrivateString, NullIsEmpty) {
    PrivateString text("abc");
    EXPECT_EQ(text.Set(nullptr), 1);
    EXPECT_EQ(text.GetLength(), 0);
}

TEST(PrivateString, BlocksCanBeStoredAndRead) {
    PrivateString text;
    const std::array<std::uint16_t, 3> units = {1, 0xFFFF, 3};
    ASSERT_EQ(PrivateString::SetUcBlock(text, units.data(), 3), 1);
    std::array<std::uint16_t, 4> out = {9, 9, 9, 9};
    PrivateString::GetUcBlock(text, out.data(), 2);
    EXPECT_EQ(out, (std::array<std::uint16_t, 4>{1, 0xFFFF, 9, 9}));
    PrivateString::GetUcBlock(text, out.data(), 4);
    EXPECT_EQ(out, (std::array<std::uint16_t, 4>{1, 0xFFFF, 3, 9}));
    EXPECT_EQ(PrivateString::SetUcBlock(text, units.data(), -1), 0);
    EXPECT_EQ(text.GetLength(), 0);
}

}  // namespace
