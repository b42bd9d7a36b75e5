#include "text/printable.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "text/character_width.h"
#include "text/similar.h"

namespace {

using namespace std::string_view_literals;

struct Case {
    const char* name;
    std::string_view text;
    std::string_view expected;
};

const Case kCases[] = {
    {"plain text stays", "shot 01.aec"sv, "shot 01.aec"sv},
    {"letters of any language stay", "Sch\xc3\xb6n \xe5\xbd\xb1 \xf0\x9f\x8e\xac"sv,
     "Sch\xc3\xb6n \xe5\xbd\xb1 \xf0\x9f\x8e\xac"sv},
    {"escape sequence loses its escape", "a\x1b[31mb"sv, "a\\x1b[31mb"sv},
    {"line ends and tabs are escaped", "a\n\r\tb"sv, "a\\x0a\\x0d\\x09b"sv},
    {"delete character", "\x7f"sv, "\\x7f"sv},
    {"NUL", "a\0b"sv, "a\\x00b"sv},
    {"control characters beyond 127", "\xc2\x9b[31m"sv, "\\xc2\\x9b[31m"sv},
    {"the first control character beyond 127", "\xc2\x80"sv, "\\xc2\\x80"sv},
    {"the last control character beyond 127", "\xc2\x9f"sv, "\\xc2\\x9f"sv},
    {"the character after it, a blank that does not break", "\xc2\xa0"sv, "\xc2\xa0"sv},
    {"the last character before the blank", "\x1f"sv, "\\x1f"sv},
    {"byte order mark, which has no width", "\xef\xbb\xbfVORTAN"sv, "\\xef\\xbb\\xbfVORTAN"sv},
    {"bytes of another encoding", "Sch\xf6n"sv, "Sch\\xf6n"sv},
    {"sequence cut off", "a\xe5\xbd"sv, "a\\xe5\\xbd"sv},
    {"overlong form of a slash", "\xc0\xaf"sv, "\\xc0\\xaf"sv},
    {"surrogate", "\xed\xa0\x80"sv, "\\xed\\xa0\\x80"sv},
    {"beyond the last code point", "\xf4\x90\x80\x80"sv, "\\xf4\\x90\\x80\\x80"sv},
    {"character that turns the direction of writing", "a\xe2\x80\xae!"sv, "a\\xe2\\x80\\xae!"sv},
};

TEST(Printable, Cases) {
    for (const Case& one : kCases) {
        EXPECT_EQ(text::printable(one.text), one.expected) << one.name;
    }
}

TEST(Printable, ColumnsAreThoseOfATerminal) {
    EXPECT_EQ(text::columns_of(""), 0U);
    EXPECT_EQ(text::columns_of("Sch\xc3\xb6n"), 5U) << "characters, not bytes";
    EXPECT_EQ(text::columns_of("\xe5\xbd\xb1\xe7\x89\x87"), 4U) << "two ideographs";
    EXPECT_EQ(text::columns_of("\xea\xb0\x80"), 2U) << "a syllable of Hangul";
    EXPECT_EQ(text::columns_of("\xe3\x82\xab\xef\xbd\xb6"), 3U) << "katakana, full and half width";
    EXPECT_EQ(text::columns_of("u\xcc\x88"), 1U) << "a letter and its mark";
    EXPECT_EQ(text::columns_of("\xf0\x9f\x8e\xac"), 2U) << "a clapper board";
}

TEST(CharacterWidth, ChangesAtTheEndsOfTheRanges) {
    const struct {
        char32_t code_point;
        std::size_t columns;
    } cases[] = {
        {0x2FF, 1},   {0x300, 0},   {0x36F, 0},   {0x370, 1},   {0x10FF, 1},   {0x1100, 2},
        {0x115F, 2},  {0x1160, 0},  {0x11FF, 0},  {0x1200, 1},  {0x2E7F, 1},   {0x4E00, 2},
        {0x9FFF, 2},  {0xD7A3, 2},  {0xFF60, 2},  {0xFF61, 1},  {0xFFE6, 2},   {0x200B, 0},
        {0x1F600, 2}, {0x20000, 2}, {0x3FFFD, 2}, {0xE0100, 0}, {0x10FFFF, 1},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(text::width_of(one.code_point), one.columns) << std::hex << std::uint32_t{one.code_point};
    }
}

TEST(Similar, FindsWhatWasMeant) {
    const std::vector<std::string> verbs{"import", "check", "frame", "modules", "limits"};
    const struct {
        const char* name;
        const char* word;
        const char* meant;
    } cases[] = {
        {"a letter twice", "importt", "import"},
        {"a letter left out", "chek", "check"},
        {"two letters swapped", "chekc", "check"},
        {"another letter", "frane", "frame"},
        {"the beginning of one", "mod", "modules"},
        {"two letters of six", "imptor", "import"},
        {"three letters of six", "ixyzrt", ""},
        {"nothing like any", "zzz", ""},
        {"nothing", "", ""},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(text::most_similar(one.word, verbs), one.meant) << one.name;
    }
    EXPECT_EQ(text::most_similar(std::string(100000, 'i'), verbs), "") << "a text as long as a file";
}

TEST(Hexadecimal, NumbersHaveAPrefixAndBytesTwoDigits) {
    EXPECT_EQ(text::hexadecimal(0), "0x0");
    EXPECT_EQ(text::hexadecimal(0x1a4), "0x1a4");
    EXPECT_EQ(text::hexadecimal(UINT64_MAX), "0xffffffffffffffff");
    EXPECT_EQ(text::hexadecimal_bytes(""), "");
    EXPECT_EQ(text::hexadecimal_bytes("\x0a\x1f\xff"), "0a1fff");
}

TEST(Hexadecimal, DigitsBecomeTheBytesAgain) {
    const struct {
        const char* name;
        std::string digits;
        std::optional<std::string> bytes;
    } cases[] = {
        {"no digits are no bytes", "", ""},
        {"a NUL is a byte like others", "000aff", std::string("\x00\x0a\xff", 3)},
        {"half a byte", "0a1", std::nullopt},
        {"upper case was not written here", "0A", std::nullopt},
        {"a letter beyond f", "0g", std::nullopt},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(text::bytes_of_hexadecimal(one.digits), one.bytes) << one.name;
    }
}

TEST(Printable, Quoted) {
    EXPECT_EQ(text::quoted("a\n"), "\"a\\x0a\"");
}

}  // namespace
