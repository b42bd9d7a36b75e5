#include "cli/report/diagnostic.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>

#include "cli/report/codes.h"
#include "cli/report/unsound_result.h"
#include "limit/limits.h"

namespace {

using cli::Diagnostic;

std::string text_of(const Diagnostic& diagnostic) {
    return diagnostic_text(diagnostic, cli::Paint(false));
}

TEST(DiagnosticText, PlaceReasonCodeSourceBlocksAndEffects) {
    Diagnostic error =
        cli::fail("expected-number", {"shot.aec", 83, 12, 5}, "expected a number, found \"abc\"",
                  {"composition \"Main\"", "camera \"Cam\""});
    error.source_line = "FPS abc";
    error.effects = {"nothing is imported"};
    EXPECT_EQ(text_of(error),
              "shot.aec:12:5: error: expected a number, found \"abc\" [expected-number]\n"
              "   12 | FPS abc\n"
              "      |     ^\n"
              "      in camera \"Cam\"\n"
              "      in composition \"Main\"\n"
              "      = nothing is imported\n");
}

TEST(DiagnosticText, BinaryFilesHaveAnOffset) {
    EXPECT_EQ(text_of(cli::fail("truncated", {"a.txl", 0x1a4, {}, {}}, "cut")),
              "a.txl@0x1a4: error: cut [truncated]\n");
}

TEST(DiagnosticText, WholeFilesHaveNeither) {
    EXPECT_EQ(text_of(cli::warn("odd", {"a.txl"}, "odd")), "a.txl: warning: odd [odd]\n");
}

TEST(DiagnosticText, CaretStandsBelowItsCharacter) {
    Diagnostic error = cli::fail("code", {"a", 0, 1, 8}, "r");
    error.source_line = "\t\xc3\xb6\xff x y";  // a tab, a character of two bytes, a stray byte
    EXPECT_EQ(text_of(error),
              "a:1:8: error: r [code]\n"
              "    1 |  \xc3\xb6\\xff x y\n"
              "      |          ^\n");
}

TEST(DiagnosticText, LongLinesAreCutAroundThePlace) {
    Diagnostic error = cli::fail("code", {"a", 0, 1, 301}, "r");
    error.source_line = std::string(300, 'a') + "X" + std::string(300, 'b');
    EXPECT_EQ(text_of(error), "a:1:301: error: r [code]\n    1 | ..." + std::string(60, 'a') + "X" +
                                  std::string(39, 'b') + "...\n      | " + std::string(63, ' ') + "^\n");
}

TEST(DiagnosticText, TextsOfTheFileCannotDriveTheTerminal) {
    EXPECT_EQ(text_of(cli::fail("code", {"a\x1b.aec"}, "found \"\x1b[2J\"", {"camera \"\a\""})),
              "a\\x1b.aec: error: found \"\\x1b[2J\" [code]\n      in camera \"\\x07\"\n");
}

TEST(DiagnosticText, ColourOnlyWhereItIsWanted) {
    const Diagnostic error = cli::fail("code", {"a"}, "r");
    EXPECT_NE(diagnostic_text(error, cli::Paint(true)).find("\x1b["), std::string::npos);
    EXPECT_EQ(text_of(error).find('\x1b'), std::string::npos);
}

TEST(DiagnosticJson, EveryMemberInItsPlace) {
    Diagnostic warning = cli::warn("name-cut", {"shot.aec", 10, 2, 3}, "r", {"w"});
    warning.effects = {"e"};
    warning.count = 4;
    warning.source_line = "s";
    warning.limit = &limits::kWord;
    EXPECT_EQ(
        diagnostic_json(warning).dump(),
        R"({"severity":"warning","code":"name-cut",)"
        R"("at":{"file":"shot.aec","line":2,"column":3,"offset_bytes":10},)"
        R"("reason":"r","within":["w"],"effects":["e"],"count":4,"source_line":"s","limit":{"id":"word","name":"length of a word or number",)"
        R"("value":511,"unit":"characters"}})");
}

TEST(DiagnosticJson, UnknownIsNullAndOtherEncodingsAreBytes) {
    EXPECT_EQ(diagnostic_json(cli::fail("c", {"\xff.aec"}, "r")).dump(),
              R"({"severity":"error","code":"c",)"
              R"("at":{"file":{"bytes":"ff2e616563"},"line":null,"column":null,"offset_bytes":null},)"
              R"("reason":"r","within":[],"effects":[],"count":1,"source_line":null,"limit":null})");
}

TEST(UnsoundResult, IsAnErrorAboutTheFileAndADefect) {
    EXPECT_FALSE(cli::unsound_result("a.aec", std::nullopt).has_value());
    const auto error = cli::unsound_result("a.aec", "root: there is no name");
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(text_of(*error),
              "a.aec: error: root: there is no name [unsound-result]\n"
              "      = this is a defect of this program; please report it together with the file\n");
}

TEST(Codes, ErrorsComeBeforeWarnings) {
    EXPECT_TRUE(cli::is_error(cli::Code::cannot_read));
    EXPECT_TRUE(cli::is_error(cli::Code::unsound_result));
    EXPECT_FALSE(cli::is_error(cli::Code::footage_missing));
    EXPECT_FALSE(cli::is_error(cli::Code::text_after_end));
}

TEST(Codes, NamesAreLowerCaseWordsAndDistinct) {
    std::set<std::string> names;
    for (const cli::CodeRow& row : cli::code_table()) {
        EXPECT_TRUE(names.insert(row.name).second) << row.name;
        EXPECT_EQ(std::string(row.name).find_first_not_of("abcdefghijklmnopqrstuvwxyz-"), std::string::npos)
            << row.name;
        EXPECT_STREQ(cli::code_name(row.code), row.name);
    }
}

}  // namespace
