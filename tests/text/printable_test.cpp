#include "text/printable.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

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

TEST(Printable, ColumnsCountCharactersNotBytes) {
    EXPECT_EQ(text::columns_of(""), 0U);
    EXPECT_EQ(text::columns_of("Sch\xc3\xb6n"), 5U);
}

TEST(Hexadecimal, NumbersHaveAPrefixAndBytesTwoDigits) {
    EXPECT_EQ(text::hexadecimal(0), "0x0");
    EXPECT_EQ(text::hexadecimal(0x1a4), "0x1a4");
    EXPECT_EQ(text::hexadecimal(UINT64_MAX), "0xffffffffffffffff");
    EXPECT_EQ(text::hexadecimal_bytes(""), "");
    EXPECT_EQ(text::hexadecimal_bytes("\x0a\x1f\xff"), "0a1fff");
}

TEST(Printable, Quoted) {
    EXPECT_EQ(text::quoted("a\n"), "\"a\\x0a\"");
}

}  // namespace
