#include "text/svg.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>
#include <string>

namespace {

struct TextCase {
    const char* name;
    std::string text;
    std::string markup;
};

TEST(SvgTest, TextIsThatOfXml) {
    const TextCase cases[] = {
        {"what XML takes for markup", "<script>\"a\" & 'b'</script>",
         "&lt;script&gt;&quot;a&quot; &amp; 'b'&lt;/script&gt;"},
        {"characters of other languages stay", "caf\xc3\xa9 \xe5\xb1\xb1", "caf\xc3\xa9 \xe5\xb1\xb1"},
        {"XML has no control characters", std::string("a\0b\x1b\x7f", 5), "a\\x00b\\x1b\\x7f"},
        {"bytes that are not UTF-8", "a\xff", "a\\xff"},
        {"an override of the direction would turn round the rest", "a\xe2\x80\xae", "a\\xe2\\x80\\xae"},
        {"XML lacks two of the characters that UTF-8 has", "\xef\xbf\xbe\xef\xbf\xbf\xef\xbf\xbd",
         "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd"},
        {"nothing", "", ""},
    };
    for (const TextCase& one : cases) {
        EXPECT_EQ(text::svg_text(one.text), one.markup) << one.name;
    }
}

TEST(SvgTest, NamesAreIsolatedAndShort) {
    const std::string isolate = "\xe2\x81\xa8";
    const std::string end = "\xe2\x81\xa9";
    const std::string hebrew = "\xd7\x90\xd7\x91";
    const TextCase cases[] = {
        {"ASCII goes from left to right", "Camera", "Camera"},
        {"a name from right to left", hebrew, isolate + hebrew + end},
        {"the end of an isolate within a name does not end it", hebrew + end,
         isolate + hebrew + "\\xe2\\x81\\xa9" + end},
        {"as long as may be", "1234567890abcdef", "1234567890abcdef"},
        {"one character more", "1234567890abcdefg", "1234567890abcdef\xe2\x80\xa6"},
        {"an entity is one character", "1234567890abcde<g", "1234567890abcde&lt;\xe2\x80\xa6"},
        {"a character of several bytes is one", "1234567890abcde\xc3\xa9g",
         isolate + "1234567890abcde\xc3\xa9\xe2\x80\xa6" + end},
    };
    for (const TextCase& one : cases) {
        EXPECT_EQ(text::svg_name(one.text, 16), one.markup) << one.name;
    }
}

TEST(SvgTest, NumbersAreShortAndBounded) {
    const double infinite = std::numeric_limits<double>::infinity();
    const struct {
        const char* name;
        double number;
        const char* written;
    } cases[] = {
        {"whole", 12, "12"},
        {"zeros before the point stay", 100, "100"},
        {"a needless digit goes", 12.5, "12.5"},
        {"two digits", 1.0 / 3, "0.33"},
        {"negative", -0.75, "-0.75"},
        {"there is no zero below zero", -0.001, "0"},
        {"the farthest", 1e6, "1000000"},
        {"beyond the farthest", 1e30, "1000000"},
        {"infinite", -infinite, "-1000000"},
        {"not a number", std::nan(""), "0"},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(text::svg_number(one.number), one.written) << one.name;
    }
}

// The lightness that is left in a print without colours, after ITU-R BT.709.
double lightness(const std::string& colour) {
    const auto part = [&](std::size_t at) { return std::stoi(colour.substr(at, 2), nullptr, 16) / 255.0; };
    return 0.2126 * part(1) + 0.7152 * part(3) + 0.0722 * part(5);
}

TEST(SvgTest, ColoursAreSeenOnWhite) {
    std::set<std::string> different;
    for (const std::string colour : text::kUniversalColours) {
        EXPECT_LT(lightness(colour), 0.72) << colour;
        different.insert(colour);
    }
    EXPECT_EQ(different.size(), text::kUniversalColours.size());
}

}  // namespace
