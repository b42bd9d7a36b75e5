#include "text/ascii.h"

#include <gtest/gtest.h>

#include <string_view>

namespace {

TEST(AsciiCase, ChangesTheLettersAndNothingElse) {
    EXPECT_EQ(text::lower_case("AZaz@[`{09\xC4"), "azaz@[`{09\xC4");
    EXPECT_EQ(text::upper_case("AZaz@[`{09\xE4"), "AZAZ@[`{09\xE4");
}

TEST(AsciiCase, IsIgnoredInComparisons) {
    EXPECT_TRUE(text::equal_ignoring_case(".TxL", ".txl"));
    EXPECT_FALSE(text::equal_ignoring_case(".txl", ".tx"));
    EXPECT_FALSE(text::equal_ignoring_case("@", "`")) << "32 apart, as letters are";
}

TEST(AsciiCase, IsIgnoredInEndings) {
    EXPECT_TRUE(text::ends_with_ignoring_case("cloth.TXL", ".txl"));
    EXPECT_TRUE(text::ends_with_ignoring_case(".txl", ".TXL")) << "nothing but the ending";
    EXPECT_FALSE(text::ends_with_ignoring_case("txl", ".txl"));
    EXPECT_FALSE(text::ends_with_ignoring_case("cloth.txl2", ".txl"));
}

TEST(LastComponent, Cases) {
    struct Case {
        const char* name;
        std::string_view path;
        std::string_view separators;
        std::string_view expected;
    };
    constexpr Case kCases[] = {
        {"no separator", "cloth.txl", "/", "cloth.txl"},
        {"the last of several", "/a/b/c", "/", "c"},
        {"nothing after a separator at the end", "a/", "/", ""},
        {"any of the separators", "a/b\\c:d", ":\\/", "d"},
        {"other separators belong to the name", "a/b\\c", "/", "b\\c"},
        {"nothing", "", "/", ""},
    };
    for (const Case& c : kCases) {
        EXPECT_EQ(text::last_component(c.path, c.separators), c.expected) << c.name;
    }
}

}  // namespace
