#include "embedded/text_encoding.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "embedded/json_values.h"

namespace {

using embedded::first_fault;
using embedded::to_utf16;
using embedded::to_utf8;
using embedded::Utf16String;

TEST(TextEncoding, ConvertsTheFirstAndLastOfEveryLengthBothWays) {
    struct {
        const char* name;
        std::string utf8;
        Utf16String utf16;
    } const cases[] = {
        {"nothing", "", u""},
        {"ASCII", "a/b c.aec", u"a/b c.aec"},
        {"first and last of one byte", "\x01\x7F", u"\u0001\u007F"},
        {"first and last of two bytes", "\xC2\x80\xDF\xBF", u"\u0080\u07FF"},
        {"first and last of three bytes", "\xE0\xA0\x80\xEF\xBF\xBF", u"\u0800\uFFFF"},
        {"the neighbours of the surrogates", "\xED\x9F\xBF\xEE\x80\x80", u"\uD7FF\uE000"},
        {"first and last of four bytes", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", u"\U00010000\U0010FFFF"},
        {"an emoji between letters",
         "a\xF0\x9F\x8E\xAC"
         "b",
         u"a\U0001F3ACb"},
        {"combining accents stay as they are", "e\xCC\x81", u"e\u0301"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(to_utf16(c.utf8), c.utf16);
        EXPECT_EQ(to_utf8(c.utf16), c.utf8);
        EXPECT_FALSE(first_fault(c.utf8).has_value());
        EXPECT_FALSE(first_fault(c.utf16).has_value());
    }
}

TEST(TextEncoding, ConvertsEveryCodePoint) {
    for (char32_t code_point = 1; code_point <= 0x10FFFF; ++code_point) {
        if (code_point >= 0xD800 && code_point <= 0xDFFF) {
            continue;
        }
        Utf16String units;
        if (code_point < 0x10000) {
            units += static_cast<char16_t>(code_point);
        } else {
            units += static_cast<char16_t>(0xD7C0 + (code_point >> 10));
            units += static_cast<char16_t>(0xDC00 | (code_point & 0x3FF));
        }
        const auto utf8 = to_utf8(units);
        ASSERT_TRUE(utf8.has_value());
        ASSERT_EQ(utf8->size(), code_point < 0x80      ? 1U
                                : code_point < 0x800   ? 2U
                                : code_point < 0x10000 ? 3U
                                                       : 4U);
        ASSERT_EQ(to_utf16(*utf8), units);
    }
}

TEST(TextEncoding, RefusesIllFormedUtf8AndSaysWhere) {
    struct {
        const char* name;
        std::string text;
        std::size_t fault;
    } const cases[] = {
        {"Latin-1", "caf\xE9.aec", 3},
        {"a continuation alone", "ab\x80", 2},
        {"cut in a sequence", "a\xE2\x82", 1},
        {"an overlong slash", "\xC0\xAF", 0},
        {"an overlong form of three bytes", "\xE0\x9F\xBF", 0},
        {"a surrogate", "x\xED\xA0\x80", 1},
        {"a pair of surrogates", "\xED\xA0\xBC\xED\xBE\xAC", 0},
        {"above the last code point", "\xF4\x90\x80\x80", 0},
        {"a byte that never begins a sequence", "a\xFF", 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(first_fault(c.text), c.fault);
        EXPECT_EQ(to_utf16(c.text), std::nullopt);
        EXPECT_FALSE(embedded::is_utf8(c.text));
    }
}

TEST(TextEncoding, RefusesUnpairedSurrogatesAndSaysWhere) {
    struct {
        const char* name;
        Utf16String text;
        std::size_t fault;
        const char* json;
    } const cases[] = {
        {"a first half at the end", {u'a', 0xD83C}, 1, R"({"utf16":"0061d83c"})"},
        {"a first half before a letter", {0xD83C, u'a'}, 0, R"({"utf16":"d83c0061"})"},
        {"a second half alone", {u'a', u'b', 0xDFAC}, 2, R"({"utf16":"00610062dfac"})"},
        {"the halves the wrong way round", {0xDFAC, 0xD83C}, 0, R"({"utf16":"dfacd83c"})"},
        {"two first halves", {0xD83C, 0xD83C, 0xDFAC}, 0, R"({"utf16":"d83cd83cdfac"})"},
        {"a third half behind a pair", {0xD83C, 0xDFAC, 0xDFAC}, 2, R"({"utf16":"d83cdfacdfac"})"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(first_fault(c.text), c.fault);
        EXPECT_EQ(to_utf8(c.text), std::nullopt);
        EXPECT_EQ(embedded::json_text(c.text).dump(), c.json);
    }
    EXPECT_EQ(embedded::json_text(Utf16String(u"a\U0001F3AC")).dump(), "\"a\xF0\x9F\x8E\xAC\"");
}

}  // namespace
