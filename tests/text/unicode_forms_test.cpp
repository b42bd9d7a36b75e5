#include "text/unicode_forms.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// Written in bytes, so that no editor changes their form.
const struct {
    const char* name;
    std::string text;
    std::string composed;
    std::string folded;
} kCases[] = {
    {"nothing", "", "", ""},
    {"ASCII", "Plate.TIF", "Plate.TIF", "plate.tif"},
    {"composed stays", "caf\xC3\xA9", "caf\xC3\xA9", "caf\xC3\xA9"},
    {"a letter and its accent become one", "cafe\xCC\x81", "caf\xC3\xA9", "caf\xC3\xA9"},
    {"a capital with an accent", "E\xCC\x81", "\xC3\x89", "\xC3\xA9"},
    {"two accents in either order", "a\xCC\xA3\xCC\x82", "\xE1\xBA\xAD", "\xE1\xBA\xAD"},
    {"Hangul from its parts", "\xE1\x84\x92\xE1\x85\xA1\xE1\x86\xAB", "\xED\x95\x9C", "\xED\x95\x9C"},
    {"Greek", "\xCE\xA9", "\xCE\xA9", "\xCF\x89"},
    {"not UTF-8 stays but for ASCII letters", "CAF\xE9", "CAF\xE9", "caf\xE9"},
    {"a NUL byte is a character", std::string("A\0E\xCC\x81", 5), std::string("A\0\xC3\x89", 4),
     std::string("a\0\xC3\xA9", 4)},
};

TEST(UnicodeForms, ComposeAndFoldEveryCase) {
    for (const auto& one : kCases) {
        EXPECT_EQ(text::composed(one.text), one.composed) << one.name;
        EXPECT_EQ(text::case_folded(one.text), one.folded) << one.name;
    }
}

}  // namespace
