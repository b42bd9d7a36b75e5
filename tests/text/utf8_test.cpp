#include "text/utf8.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace std::string_view_literals;

struct Case {
    const char* name;
    std::string_view text;
    char32_t code_point;
    std::size_t size_bytes;
};

const Case kWellFormed[] = {
    {"NUL", "\0"sv, 0, 1},
    {"last of one byte", "\x7f"sv, 0x7F, 1},
    {"first of two bytes", "\xc2\x80"sv, 0x80, 2},
    {"last of two bytes", "\xdf\xbf"sv, 0x7FF, 2},
    {"first of three bytes", "\xe0\xa0\x80"sv, 0x800, 3},
    {"last before the surrogates", "\xed\x9f\xbf"sv, 0xD7FF, 3},
    {"first after the surrogates", "\xee\x80\x80"sv, 0xE000, 3},
    {"last of three bytes", "\xef\xbf\xbf"sv, 0xFFFF, 3},
    {"first of four bytes", "\xf0\x90\x80\x80"sv, 0x10000, 4},
    {"last of all", "\xf4\x8f\xbf\xbf"sv, 0x10FFFF, 4},
};

const Case kNotWellFormed[] = {
    {"a byte that begins no character", "\x80"sv, 0, 0},
    {"a byte that is never used", "\xff"sv, 0, 0},
    {"the lead of five bytes", "\xf8\x88\x80\x80\x80"sv, 0, 0},
    {"two bytes for what takes one", "\xc1\xbf"sv, 0, 0},
    {"three bytes for what takes two", "\xe0\x9f\xbf"sv, 0, 0},
    {"four bytes for what takes three", "\xf0\x8f\xbf\xbf"sv, 0, 0},
    {"first surrogate", "\xed\xa0\x80"sv, 0, 0},
    {"last surrogate", "\xed\xbf\xbf"sv, 0, 0},
    {"first beyond the last", "\xf4\x90\x80\x80"sv, 0, 0},
    {"cut off after the lead", "\xe5"sv, 0, 0},
    {"cut off before the last byte", "\xf0\x9f\x8e"sv, 0, 0},
    {"interrupted by a letter", "\xe5\xbd!"sv, 0, 0},
};

TEST(Utf8, WellFormedCharactersAreDecoded) {
    for (const Case& c : kWellFormed) {
        const text::Utf8Character character = text::first_character(c.text);
        EXPECT_EQ(character.code_point, c.code_point) << c.name;
        EXPECT_EQ(character.size_bytes, c.size_bytes) << c.name;
        EXPECT_TRUE(text::is_utf8(c.text)) << c.name;
    }
}

TEST(Utf8, OtherBytesAreRefused) {
    for (const Case& c : kNotWellFormed) {
        EXPECT_EQ(text::first_character(c.text).size_bytes, 0U) << c.name;
        EXPECT_FALSE(text::is_utf8(c.text)) << c.name;
    }
}

TEST(Utf8, NothingIsWellFormedAndHasNoFirstCharacter) {
    EXPECT_TRUE(text::is_utf8(""));
    EXPECT_EQ(text::first_character("").size_bytes, 0U);
}

TEST(Utf8, OneWrongByteAmongOthersIsEnough) {
    EXPECT_TRUE(text::is_utf8("Sch\xc3\xb6n"));
    EXPECT_FALSE(text::is_utf8("Sch\xc3\xb6n\xff"));
}

TEST(Utf8, CharactersAreEncodedAsTheyAreDecoded) {
    for (const Case& c : kWellFormed) {
        std::string encoded = "+";
        text::append_utf8(encoded, c.code_point);
        EXPECT_EQ(encoded, "+" + std::string(c.text)) << c.name;
    }
}

struct UnitsCase {
    const char* name;
    std::vector<std::uint16_t> units;
    std::string_view text;
};

const UnitsCase kUnits[] = {
    {"nothing", {}, ""},
    {"one, two and three bytes", {'A', 0x7F, 0x80, 0x7FF, 0x800}, "A\x7f\xC2\x80\xDF\xBF\xE0\xA0\x80"},
    {"NUL is a character", {0, 'A'}, "\0A"sv},
    {"a pair of surrogates", {0xD83D, 0xDE00}, "\xF0\x9F\x98\x80"},
    {"a leading surrogate alone", {0xD83D}, "\xEF\xBF\xBD"},
    {"surrogates apart", {0xD83D, '!', 0xDE00}, "\xEF\xBF\xBD!\xEF\xBF\xBD"},
    {"sign-extended bytes are kept", {0xFF80, 0xFFFF}, "\xEF\xBE\x80\xEF\xBF\xBF"},
};

TEST(Utf8, CodeUnitsBecomeUtf8) {
    for (const UnitsCase& c : kUnits) {
        EXPECT_EQ(text::utf8_of_units(c.units), c.text) << c.name;
    }
}

}  // namespace
