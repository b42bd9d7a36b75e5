#include "host/utf16.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

using namespace std::string_literals;

struct Pair {
    const char* why;
    std::string narrow;
    std::u16string wide;
};

// The last code point of each length and the first of the next, and those around the surrogates.
const Pair kPairs[] = {
    {"nothing", "", u""},
    {"ASCII", "C:\\shots\\a b\"'.", u"C:\\shots\\a b\"'."},
    {"a NUL in the middle is an ordinary character", "a\0b"s, u"a\0b"s},
    {"U+007F, the last of one byte", "\x7F", u"\x007F"},
    {"U+0080, the first of two bytes", "\xC2\x80", u"\x0080"},
    {"U+07FF, the last of two bytes", "\xDF\xBF", u"\x07FF"},
    {"U+0800, the first of three bytes", "\xE0\xA0\x80", u"\x0800"},
    {"U+D7FF, before the surrogates", "\xED\x9F\xBF", u"\xD7FF"},
    {"U+E000, behind the surrogates", "\xEE\x80\x80", u"\xE000"},
    {"U+FFFF, the last of three bytes", "\xEF\xBF\xBF", u"\xFFFF"},
    {"U+10000, the first of four bytes", "\xF0\x90\x80\x80", u"\xD800\xDC00"},
    {"U+103FF, the last low surrogate", "\xF0\x90\x8F\xBF", u"\xD800\xDFFF"},
    {"U+10FFFF, the last code point", "\xF4\x8F\xBF\xBF", u"\xDBFF\xDFFF"},
    {"a combining accent stays separate", "e\xCC\x81", u"e\x0301"},
    {"Cyrillic and Japanese", "\xD0\xBA\xD0\xB0\xD0\xB4\xD1\x80_\xE6\x98\xA0\xE5\x83\x8F",
     u"\x043A\x0430\x0434\x0440_\x6620\x50CF"},
    {"a picture beyond the basic plane", "\xF0\x9F\x8E\xAC.aec", u"\xD83C\xDFAC.aec"},
    {"a byte order mark is an ordinary character", "\xEF\xBB\xBF/", u"\xFEFF/"},
};

TEST(Utf16, BothDirectionsAgreeOnValidText) {
    for (const Pair& pair : kPairs) {
        const ConvertedText<std::u16string> wide = utf16_from_utf8(pair.narrow);
        EXPECT_EQ(wide.text, pair.wide) << pair.why;
        EXPECT_EQ(wide.fault, std::nullopt) << pair.why;
        const ConvertedText<std::string> narrow = utf8_from_utf16(pair.wide);
        EXPECT_EQ(narrow.text, pair.narrow) << pair.why;
        EXPECT_EQ(narrow.fault, std::nullopt) << pair.why;
    }
}

TEST(Utf16, EveryCodePointSurvivesBothConversions) {
    std::size_t tried = 0;
    for (char32_t code_point = 0; code_point <= 0x10FFFF; ++code_point) {
        if (code_point >= 0xD800 && code_point <= 0xDFFF) {
            continue;
        }
        std::u16string wide;
        if (code_point < 0x10000) {
            wide = {static_cast<char16_t>(code_point)};
        } else {
            wide = {static_cast<char16_t>(0xD7C0 + (code_point >> 10)),
                    static_cast<char16_t>(0xDC00 + (code_point & 0x3FF))};
        }
        const ConvertedText<std::string> narrow = utf8_from_utf16(wide);
        const std::size_t bytes = code_point < 0x80      ? 1
                                  : code_point < 0x800   ? 2
                                  : code_point < 0x10000 ? 3
                                                         : 4;
        ASSERT_EQ(narrow.text.size(), bytes) << std::hex << std::uint32_t{code_point};
        ASSERT_EQ(utf16_from_utf8(narrow.text).text, wide) << std::hex << std::uint32_t{code_point};
        ++tried;
    }
    EXPECT_EQ(tried, 0x110000U - 0x800U);
}

TEST(Utf16, InvalidUtf8IsRefusedAtItsFirstByte) {
    const struct {
        const char* why;
        std::string text;
        std::size_t fault;
    } cases[] = {
        {"a continuation byte on its own", "ab\x80", 2},
        {"the last continuation byte on its own", "\xBF", 0},
        {"two bytes of which one is there", "a\xC3", 1},
        {"two bytes, the second no continuation", "\xC3\x28", 0},
        {"two bytes, the second a lead byte", "\xC3\xC3", 0},
        {"three bytes of which two are there", "\xE6\x98", 0},
        {"three bytes, the last no continuation", "\xE6\x98/", 0},
        {"three bytes of a sequence of four", "\xF0\x9F\x8E", 0},
        {"a NUL overlong in two bytes", "\xC0\x80", 0},
        {"U+007F overlong in two bytes", "/\xC1\xBF", 1},
        {"a slash overlong in three bytes", "\xE0\x80\xAF", 0},
        {"U+07FF overlong in three bytes", "\xE0\x9F\xBF", 0},
        {"U+FFFF overlong in four bytes", "\xF0\x8F\xBF\xBF", 0},
        {"the first surrogate", "\xED\xA0\x80", 0},
        {"the last surrogate", "\xED\xBF\xBF", 0},
        {"a pair of surrogates in six bytes", "\xED\xA0\xBC\xED\xBE\xAC", 0},
        {"U+110000, the first beyond the last", "\xF4\x90\x80\x80", 0},
        {"the largest of four bytes", "\xF7\xBF\xBF\xBF", 0},
        {"five bytes", "\xF8\x88\x80\x80\x80", 0},
        {"the byte FE", "\xFE", 0},
        {"the byte FF", "\xFF", 0},
        {"an accent of a one-byte character set", "/caf\xE9/shot.png", 4},
    };
    for (const auto& c : cases) {
        const ConvertedText<std::u16string> wide = utf16_from_utf8(c.text);
        EXPECT_EQ(wide.fault, c.fault) << c.why;
        EXPECT_EQ(wide.text, u"") << c.why;
    }
}

TEST(Utf16, UnpairedSurrogatesAreRefusedInPlace) {
    const struct {
        const char* why;
        std::u16string text;
        std::size_t fault;
    } cases[] = {
        {"the first high one at the end", u"ab\xD800", 2},
        {"the last high one at the end", u"\xDBFF", 0},
        {"the first low one", u"\xDC00", 0},
        {"the last low one", u"a\xDFFF", 1},
        {"a high surrogate before a letter", u"\xD83Cx", 0},
        {"a high surrogate before another", u"\xD83C\xD83C\xDFAC", 0},
        {"a high surrogate before U+E000", u"\xD83C\xE000", 0},
        {"a pair the wrong way round", u"\xDFAC\xD83C", 0},
        {"a low surrogate behind a pair", u"\xD83C\xDFAC\xDFAC", 2},
    };
    for (const auto& c : cases) {
        const ConvertedText<std::string> narrow = utf8_from_utf16(c.text);
        EXPECT_EQ(narrow.fault, c.fault) << c.why;
        EXPECT_EQ(narrow.text, "") << c.why;
    }
}

}  // namespace
