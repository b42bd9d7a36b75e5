#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parsed_text.h"

// The file is read in blocks, whose ends must have no effect: tokens are the same wherever they are in a
// block.

namespace {

struct Token {
    A_long kind;
    std::string text;
    std::int64_t offset_bytes;
    std::int64_t line;
    std::int64_t column;
    A_long counted_lines;
    A_long characters;
    bool operator==(const Token&) const = default;
};

// The tokens after `shift` blanks; their places and the counts of delivered characters leave out the blanks.
std::vector<Token> tokens_after(std::size_t shift, const std::string& text) {
    ParsedText parsed(std::string(shift, ' ') + text);
    ASCIIParser& p = parsed.p;
    std::vector<Token> tokens;
    A_long kind = p.sym;
    do {
        const TextPosition& at = p.TokenStart();
        const auto shifted = static_cast<std::int64_t>(shift);
        tokens.push_back({kind, p.text, at.offset_bytes - shifted, at.line,
                          at.line == 1 ? at.column - shifted : at.column, p.line, p.charCount});
        kind = p.nextsym(0);
    } while (kind != kTokenNone);
    return tokens;
}

TEST(BlockBoundaries, SameTokensForEveryBlockEnd) {
    std::string text = "word_1 -12.5e+3 7E \"quoted $\"text$\" \" 'single' { } = , ; + ~ < * ( / comment\n";
    text += "KEY 12 1.5 -2.25 3 10.125 -20 0.5\r\n\tKEY\r\r\n\n\rx/y\n" + std::string(400, 'w') + " " +
            std::string(300, '7') + " a" + std::string("\0b\xFF ", 4) + "\"" + std::string(130, 'q') +
            "\n\" end \n ";
    const std::vector<Token> expected = tokens_after(0, text);
    ASSERT_GT(expected.size(), 30U);
    for (std::size_t shift = 1; shift <= ASCIIParser::kBlockBytes + 1 && !HasFailure(); ++shift) {
        EXPECT_EQ(tokens_after(shift, text), expected) << shift;
    }
}

TEST(BlockBoundaries, SameWordLimitForEveryBlockEnd) {
    constexpr std::size_t kMost = ASCIIParser::kTextBytes - 1;
    for (std::size_t shift = 0; shift < ASCIIParser::kBlockBytes; shift += 13) {
        for (const char c : {'w', '7'}) {
            const std::string blanks = "{" + std::string(shift, ' ');
            ParsedText longest(blanks + std::string(kMost, c) + " ");
            EXPECT_NE(longest.p.nextsym(0), kTokenNone) << shift;
            EXPECT_EQ(std::string(longest.p.text), std::string(kMost, c)) << shift;
            ParsedText too_long(blanks + std::string(kMost + 1, c) + " ");
            EXPECT_EQ(too_long.p.nextsym(0), kTokenNone) << shift;
            EXPECT_EQ(too_long.p.Cut(), TokenCut::word_too_long) << shift;
            ParsedText cut(blanks + std::string(kMost, c));
            EXPECT_EQ(cut.p.nextsym(0), kTokenNone) << shift;
            EXPECT_EQ(cut.p.Cut(), TokenCut::inside_word) << shift;
        }
    }
}

}  // namespace
