#include "composition/read/ascii_parser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "composition/parsed_text.h"

#include "support/special_files.h"

namespace {

using Token = std::pair<A_long, std::string>;
using Tokens = std::vector<Token>;

// All tokens up to and including the first of kind 0; at most as many as a file of one-character tokens has.
Tokens tokens_of(ParsedText& text, int no_numbers = 0) {
    Tokens tokens{{text.p.sym, text.p.text}};
    while (tokens.back().first != kTokenNone) {
        const A_long kind = text.p.nextsym(no_numbers);
        EXPECT_EQ(kind, text.p.sym);
        tokens.emplace_back(kind, text.p.text);
    }
    return tokens;
}

struct TokenCase {
    const char* why;
    std::string text;
    Tokens tokens;
};

TEST(ASCIIParser, TokensOfTexts) {
    const Token end{0, ""};
    const TokenCase cases[] = {
        {"a slash in the middle of a line opens a comment",
         "COMPOSITION/comment\nb ",
         {{1, "COMPOSITION"}, {1, "b"}, end}},
        {"one slash is enough", "a/b\n c ", {{1, "a"}, {1, "c"}, end}},
        {"two slashes work too", "// x y\nc ", {{1, "c"}, end}},
        {"a comment ends with a CR", "a / x\rc ", {{1, "a"}, {1, "c"}, end}},
        {"a comment may end the file", "{ / x", {{6, "{"}, end}},
        {"signed exponent is one number", "-12.5e+3 ", {{4, "-12.5e+3"}, end}},
        {"digit first is a number", "7E ", {{4, "7E"}, end}},
        {"letter first is an identifier", "E7 ", {{1, "E7"}, end}},
        {"a number continues with hexadecimal letters", "0x1F ", {{4, "0x1F"}, end}},
        {"points and signs are not counted", "1.2.3-+ ", {{4, "1.2.3-+"}, end}},
        {"a number ends at another letter", "12G ", {{4, "12"}, {1, "G"}, end}},
        {"underscore begins an identifier", "_a9 ", {{1, "_a9"}, end}},
        {"a lone minus between brackets", "<-> ", {{14, "<"}, {4, "-"}, {14, ">"}, end}},
        {"minus and digit between brackets", "<-1> ", {{14, "<"}, {4, "-1"}, {14, ">"}, end}},
        {"operators",
         "{}=,;+~*( ",
         {{6, "{"},
          {7, "}"},
          {9, "="},
          {10, ","},
          {11, ";"},
          {12, "+"},
          {13, "~"},
          {14, "*"},
          {14, "("},
          end}},
        {"plus does not begin a number", "+5 ", {{12, "+"}, {4, "5"}, end}},
        {"double quotes", "\"a b\" ", {{2, "a b"}, end}},
        {"empty text", "\"\" ''", {{2, ""}, {3, ""}, end}},
        {"single quotes", "'a \"b\"' ", {{3, "a \"b\""}, end}},
        {"line ends and slashes are part of a text", "\"a\r\n//b\" ", {{2, "a\r\n//b"}, end}},
        {"a dollar before the quote keeps it", "\"a $\"hi$\" b\" ", {{2, "a \"hi\" b"}, end}},
        {"a dollar before anything else stays", "\"5$ $$x\" ", {{2, "5$ $$x"}, end}},
        {"two dollars and a quote", "\"$$\"\" ", {{2, "$\""}, end}},
        {"no escape in single quotes", "'a$' b ", {{3, "a$"}, {1, "b"}, end}},
        {"a quote right after a word", "a\"b\"c ", {{1, "a"}, {2, "b"}, {1, "c"}, end}},
        {"a word at the very end is cut", "a b", {{1, "a"}, end}},
        {"a number at the very end is cut", "a 5", {{1, "a"}, end}},
        {"an operator at the very end is delivered", "a }", {{1, "a"}, {7, "}"}, end}},
        {"a closing quote at the very end is delivered", "a \"b\"", {{1, "a"}, {2, "b"}, end}},
        {"a text without its closing quote", "a \"bc ", {{1, "a"}, end}},
        {"a text that ends in a dollar", "a \"bc$", {{1, "a"}, end}},
        {"blanks alone", " \t\r\n", {end}},
        {"bytes above ASCII are single characters", "\x80\xff ", {{14, "\x80"}, {14, "\xff"}, end}},
        {"bytes above ASCII are part of a quoted text", "\"\xc3\xa4\xff\" ", {{2, "\xc3\xa4\xff"}, end}},
        {"a NUL byte is a character of its own without text",
         std::string("a\0b ", 4),
         {{1, "a"}, {14, ""}, {1, "b"}, end}},
        {"a NUL byte ends what is read of a quoted text",
         std::string("\"a\0b\" c ", 8),
         {{2, "a"}, {1, "c"}, end}},
        {"a form feed is not a blank", "a\fb ", {{1, "a"}, {14, "\f"}, {1, "b"}, end}},
    };
    for (const TokenCase& c : cases) {
        SCOPED_TRACE(c.why);
        ParsedText text(c.text);
        ASSERT_EQ(text.init, 0);
        EXPECT_EQ(tokens_of(text), c.tokens);
        EXPECT_EQ(text.p.status, kStatusEndOfInput);
        EXPECT_EQ(text.p.nextsym(0), 0) << "the end stays the end";
    }
}

TEST(ASCIIParser, WithoutNumbers) {
    ParsedText text("a 12 .5 -x ");
    EXPECT_EQ(tokens_of(text, 1),
              (Tokens{{1, "a"}, {1, "12"}, {14, "."}, {1, "5"}, {14, "-"}, {1, "x"}, {0, ""}}));
}

TEST(ASCIIParser, LineEndsAsTokens) {
    ParsedText text("a/x\r\nb\n", 1);
    EXPECT_EQ(tokens_of(text), (Tokens{{1, "a"}, {5, "\r"}, {5, "\n"}, {1, "b"}, {5, "\n"}, {0, ""}}));
}

TEST(ASCIIParser, WordsAndNumbersHaveAtMost511Characters) {
    for (const char digit : {'1', 'a'}) {
        const std::string longest(511, digit);
        ParsedText fits(longest + " x ");
        EXPECT_EQ(fits.p.sym, digit == '1' ? kTokenNumber : kTokenIdentifier);
        EXPECT_EQ(fits.p.text, longest);
        EXPECT_EQ(fits.p.nextsym(0), kTokenIdentifier);

        ParsedText too_long(longest + digit + " x ");
        EXPECT_EQ(too_long.p.sym, kTokenNone);
        EXPECT_STREQ(too_long.p.text, "");
        EXPECT_EQ(too_long.p.status, 0) << "the input goes on";
        EXPECT_EQ(too_long.p.Cut(), TokenCut::word_too_long);
        EXPECT_NE(too_long.p.nextsym(0), kTokenNone) << "the rest of the word is not skipped";
        EXPECT_EQ(too_long.p.text, std::string(1, digit));
    }
}

TEST(ASCIIParser, LongTextsGrow) {
    for (const std::size_t length : {49U, 50U, 51U, 99U, 100U, 101U, 1999U, 2001U, 100000U}) {
        std::string content(length, 'x');
        content.back() = 'y';
        ParsedText text("\"" + content + "\" ");
        EXPECT_EQ(text.p.sym, kTokenString);
        EXPECT_EQ(text.p.text, content);
        EXPECT_EQ(text.p.textOnHeap, 1);
    }
}

TEST(ASCIIParser, PreviousTextStaysReadable) {
    ParsedText text("one two three \"four\" five ");
    const char* const first = text.p.text;
    text.p.nextsym(0);
    EXPECT_STREQ(first, "one");
    EXPECT_STREQ(text.p.text, "two");
    text.p.nextsym(0);
    EXPECT_EQ(text.p.text, first) << "the two buffers take turns";
    text.p.nextsym(0);
    EXPECT_STREQ(text.p.text, "four");
    text.p.nextsym(0);
    EXPECT_EQ(text.p.text, text.p.textB) << "after a heap text it is always the second";
    EXPECT_EQ(text.p.textOnHeap, 0);
}

struct LineCase {
    const char* why;
    std::string text;
    A_long line_at_x;
};

TEST(ASCIIParser, CountsEveryLineEndOnce) {
    const LineCase cases[] = {
        {"no line end", "{ x ", 1},
        {"LF", "{\nx ", 2},
        {"CR", "{\rx ", 2},
        {"CR LF", "{\r\nx ", 2},
        {"LF CR", "{\n\rx ", 2},
        {"two LF", "{\n\nx ", 3},
        {"two CR", "{\r\rx ", 3},
        {"blank line between two CR LF", "{\r\n\r\nx ", 3},
        {"inside a quoted text", "\"\r\n\r\n\"x ", 3},
        {"inside a comment", "{/a\n/b\nx ", 3},
        {"a word runs ahead to the next line", "x\ny ", 2},
    };
    for (const LineCase& c : cases) {
        SCOPED_TRACE(c.why);
        ParsedText text(c.text);
        while (std::string(text.p.text) != "x") {
            ASSERT_NE(text.p.nextsym(0), kTokenNone);
        }
        EXPECT_EQ(text.p.line, c.line_at_x);
    }
}

// The line number in the plug-in's message: a last line end is counted again when the end of the input
// follows.
TEST(ASCIIParser, LineAtTheEndOfTheInput) {
    const std::pair<const char*, A_long> cases[] = {
        {"}", 1}, {"}\n", 3}, {"}\r\n", 3}, {"}\n ", 2}, {"}\n\n", 4}};
    for (const auto& [bytes, line] : cases) {
        ParsedText text(bytes);
        EXPECT_EQ(text.p.nextsym(0), kTokenNone);
        EXPECT_EQ(text.p.line, line) << testing::PrintToString(bytes);
    }
}

TEST(ASCIIParser, RewindReturnsTheTokenAgain) {
    ParsedText text("\"a\" b\nc ");
    const A_long line = text.p.line;
    text.p.rewindsym();
    EXPECT_EQ(text.p.nextsym(0), kTokenString);
    EXPECT_STREQ(text.p.text, "a");
    EXPECT_EQ(text.p.line, line);
    EXPECT_EQ(text.p.nextsym(0), kTokenIdentifier);
    EXPECT_STREQ(text.p.text, "b");
    const A_long line_after = text.p.line;
    text.p.rewindsym();
    text.p.rewindsym();
    EXPECT_EQ(text.p.nextsym(0), kTokenIdentifier);
    EXPECT_STREQ(text.p.text, "b");
    EXPECT_EQ(text.p.line, line_after);
    text.p.nextsym(0);
    EXPECT_STREQ(text.p.text, "c") << "twice rewound is once rewound";
}

TEST(ASCIIParser, NextcharPushesBackOneCharacter) {
    ParsedText text("{ab");
    char c = 0;
    EXPECT_EQ(text.p.charCount, 0) << "counted from the end of Init";
    EXPECT_EQ(text.p.nextchar(&c), 1);
    EXPECT_EQ(c, 'a');
    text.p.pushedBack = 1;
    EXPECT_EQ(text.p.nextchar(&c), 1);
    EXPECT_EQ(c, 'a');
    EXPECT_EQ(text.p.nextchar(nullptr), 1) << "the character need not be wanted";
    EXPECT_EQ(text.p.curChar, 'b');
    EXPECT_EQ(text.p.nextchar(&c), 0);
    EXPECT_EQ(text.p.nextchar(&c), 0);
    EXPECT_EQ(c, 0);
    EXPECT_EQ(text.p.charCount, 5);
}

TEST(ASCIIParser, SkipsToTheNextLine) {
    char c = 0;
    ParsedText text("{ a b / \" c\n\t / d");
    EXPECT_EQ(text.p.skiplinetoend(), 1);
    text.p.nextchar(&c);
    EXPECT_EQ(c, '/') << "no comments here";
    EXPECT_EQ(text.p.skiplinetoend(), 0) << "there is no further line";

    ParsedText lines("{ a\n b", 1);
    EXPECT_EQ(lines.p.skiplinetoend(), 1);
    lines.p.nextchar(&c);
    EXPECT_EQ(c, '\n');
}

TEST(ASCIIParser, SkipsBlanksAndComments) {
    char c = 0;
    ParsedText text("{ \t/ a\r\n b");
    EXPECT_EQ(text.p.skipspaces(), 1);
    text.p.nextchar(&c);
    EXPECT_EQ(c, 'b');
    EXPECT_EQ(text.p.skipspaces(), 0);
}

TEST(ASCIIParser, ConvertsNumberTokensOnly) {
    float real = 7.0F;
    A_long number = 7;
    ParsedText text("word \"5\" 12.75 - ");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(text.p.GetReal(real), 0);
        EXPECT_EQ(text.p.GetLong(number), 0);
        text.p.nextsym(0);
    }
    EXPECT_EQ(real, 7.0F);
    EXPECT_EQ(number, 7);
    EXPECT_EQ(text.p.GetReal(real), 1);
    EXPECT_EQ(real, 12.75F);
    EXPECT_EQ(text.p.GetLong(number), 1);
    EXPECT_EQ(number, 12);
    text.p.nextsym(0);
    EXPECT_EQ(text.p.GetReal(real), 1) << "a lone minus sign counts as read";
    EXPECT_EQ(real, 12.75F) << "and has no value";
    EXPECT_EQ(text.p.GetLong(number), 1);
    EXPECT_EQ(number, 12);
}

TEST(ASCIIParser, TokensAcrossBlocks) {
    for (std::size_t blanks = 1990; blanks <= 2005; ++blanks) {
        ParsedText text(std::string(blanks, ' ') + "word 12.5 \"text\" \r\n}");
        EXPECT_EQ(tokens_of(text), (Tokens{{1, "word"}, {4, "12.5"}, {2, "text"}, {7, "}"}, {0, ""}}))
            << blanks;
        EXPECT_EQ(text.p.line, 2) << blanks;
    }
}

TEST(ASCIIParser, InitRefusesAnythingButReadableFiles) {
    const TemporaryFolder folder;
    const std::string empty = folder.write("empty", "");
    const std::string fifo = folder.path("fifo");
    make_pipe(fifo);
    const std::string huge = folder.write("huge", "VORTAN XR ");
    std::filesystem::resize_file(huge, std::uintmax_t{1} << 31);
    const std::pair<const char*, std::string> cases[] = {
        {"missing", folder.path("missing")},
        {"empty", empty},
        {"directory", folder.folder().string()},
        {"pipe without a writer", fifo},
        {"2 GiB of it", huge},
        {"no path", ""},
        {"device", "/dev/zero"},
    };
    for (const auto& [why, path] : cases) {
        SCOPED_TRACE(why);
        ASCIIParser p;
        EXPECT_EQ(p.Init(Filename(path.c_str()), 1, 0), 4);
        EXPECT_EQ(p.line, 1);
        EXPECT_EQ(p.charCount, 0);
        EXPECT_EQ(p.nextsym(0), kTokenNone) << "nothing is there to be read";
    }
}

TEST(ASCIIParser, InitOnOneByteLessThan2GiB) {
    const TemporaryFolder folder;
    const std::string path = folder.write("large", "VORTAN ");
    std::filesystem::resize_file(path, (std::uintmax_t{1} << 31) - 1);
    ASCIIParser p;
    EXPECT_EQ(p.Init(Filename(path.c_str()), 1, 0), 0);
    EXPECT_STREQ(p.text, "VORTAN");
    EXPECT_EQ(p.fileLength, 0x7fffffff);
}

TEST(ASCIIParser, NewObject) {
    const ASCIIParser p;
    EXPECT_NE(p.file, nullptr);
    EXPECT_EQ(p.filename.GetString(), nullptr);
    EXPECT_EQ(p.status, 0);
    EXPECT_EQ(p.line, 1);
    EXPECT_EQ(p.text, nullptr);
    EXPECT_EQ(std::count(std::begin(p.charClass), std::end(p.charClass), 1), 26 + 26 + 10 + 1);
    EXPECT_EQ(std::count(std::begin(p.charClass), std::end(p.charClass), 0), 256 - 63);
}

// The file becomes shorter while it is read: a block comes back short.
TEST(ASCIIParser, ShortBlockEndsTheInput) {
    const TemporaryFolder folder;
    std::string bytes;
    for (int i = 0; i < 5000; ++i) {
        bytes += "{ ";
    }
    const std::string path = folder.write("shot.aec", bytes);
    ASCIIParser p;
    ASSERT_EQ(p.Init(Filename(path.c_str()), 1, 0), 0);
    std::filesystem::resize_file(path, 5001);
    while (p.sym == kTokenOpenBrace) {
        p.nextsym(0);
    }
    EXPECT_EQ(p.sym, kTokenNone);
    EXPECT_EQ(p.status, kStatusReadFailed);
    EXPECT_EQ(p.Cut(), TokenCut::read_failed);
    EXPECT_EQ(p.nextsym(0), kTokenNone);
    EXPECT_EQ(p.status, kStatusReadFailed) << "not the end of the input";
}

// A subclass may add keyword codes.
class ParserWithKeywords : public ASCIIParser {
  public:
    A_long CompareIdent(char* word) override { return Compare(word, "KEY") == 0 ? 100 : 0; }
    A_long CompareOperator(char c) override { return c == '*' ? 0 : ASCIIParser::CompareOperator(c); }
};

TEST(ASCIIParser, SubclassesAddKeywords) {
    const TemporaryFolder folder;
    const std::string path = folder.write("words", "KEY key * ; ");
    ParserWithKeywords p;
    ASSERT_EQ(p.Init(Filename(path.c_str()), 1, 0), 0);
    EXPECT_EQ(p.sym, 100);
    EXPECT_EQ(p.nextsym(0), kTokenIdentifier);
    EXPECT_EQ(p.nextsym(0), kTokenOther) << "0 stands for any other character";
    EXPECT_EQ(p.nextsym(0), kTokenSemicolon);
}

TEST(ASCIIParser, EveryByteHasOneClass) {
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        ParsedText text(std::string(1, c) + " \n");
        ASSERT_EQ(text.init, 0);
        const bool blank = c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '/';
        const bool quote = c == '"' || c == '\'';
        EXPECT_EQ(text.p.sym == kTokenNone, blank || quote) << byte;
    }
}

TEST(Compare, IsExact) {
    EXPECT_EQ(Compare("KEY", "KEY"), 0);
    EXPECT_NE(Compare("KEY", "key"), 0);
    EXPECT_NE(Compare("KEY", "KEYS"), 0);
}

}  // namespace
