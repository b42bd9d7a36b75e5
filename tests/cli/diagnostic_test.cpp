#include "cli/report/diagnostic_text.h"

#include <gtest/gtest.h>

#include <array>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>

#include "cli/report/diagnostic_json.h"
#include "cli/report/tool_code.h"
#include "limit/limits.h"

namespace {

using cli::Diagnostic;

// A domain of two codes without remedies.
enum class TestCode { wrong, odd };

constexpr std::array<diagnostic::CodeRow<TestCode>, 2> kTestCodes{{
    {TestCode::wrong, {"wrong", diagnostic::Severity::error, "Something is wrong."}},
    {TestCode::odd, {"odd", diagnostic::Severity::warning, "Something is odd."}},
}};

const diagnostic::CodeInfo& code_info(TestCode code) {
    return kTestCodes[static_cast<std::size_t>(code)].info;
}

std::string text_of(const Diagnostic& diagnostic) {
    return diagnostic_text(diagnostic, cli::Paint(false));
}

TEST(DiagnosticText, PlaceReasonCodeSourceBlocksAndEffects) {
    Diagnostic error =
        diagnostic::make(TestCode::wrong, {"shot.aec", 83, 12, 5}, "expected a number, found \"abc\"",
                         {"composition \"Main\"", "camera \"Cam\""});
    error.source_line = "FPS abc";
    error.effects = {"nothing is imported"};
    EXPECT_EQ(text_of(error),
              "shot.aec:12:5: error: expected a number, found \"abc\" [wrong]\n"
              "   12 | FPS abc\n"
              "      |     ^\n"
              "      in camera \"Cam\"\n"
              "      in composition \"Main\"\n"
              "      = nothing is imported\n");
}

TEST(DiagnosticText, BinaryFilesHaveAnOffset) {
    EXPECT_EQ(text_of(diagnostic::make(TestCode::wrong, {"a.txl", 0x1a4, {}, {}}, "cut")),
              "a.txl@0x1a4: error: cut [wrong]\n");
}

TEST(DiagnosticText, WholeFilesHaveNeither) {
    EXPECT_EQ(text_of(diagnostic::make(TestCode::odd, {"a.txl"}, "odd")), "a.txl: warning: odd [odd]\n");
}

TEST(DiagnosticText, CaretStandsBelowItsCharacter) {
    Diagnostic error = diagnostic::make(TestCode::wrong, {"a", 0, 1, 8}, "r");
    error.source_line = "\t\xc3\xb6\xff x y";  // a tab, a character of two bytes, a stray byte
    EXPECT_EQ(text_of(error),
              "a:1:8: error: r [wrong]\n"
              "    1 |  \xc3\xb6\\xff x y\n"
              "      |          ^\n");
}

TEST(DiagnosticText, LongLinesAreCutAroundThePlace) {
    Diagnostic error = diagnostic::make(TestCode::wrong, {"a", 0, 1, 301}, "r");
    error.source_line = std::string(300, 'a') + "X" + std::string(300, 'b');
    EXPECT_EQ(text_of(error), "a:1:301: error: r [wrong]\n    1 | ..." + std::string(60, 'a') + "X" +
                                  std::string(39, 'b') + "...\n      | " + std::string(63, ' ') + "^\n");
}

TEST(DiagnosticText, TextsOfTheFileCannotDriveTheTerminal) {
    EXPECT_EQ(
        text_of(diagnostic::make(TestCode::wrong, {"a\x1b.aec"}, "found \"\x1b[2J\"", {"camera \"\a\""})),
        "a\\x1b.aec: error: found \"\\x1b[2J\" [wrong]\n      in camera \"\\x07\"\n");
}

TEST(DiagnosticText, ColourOnlyWhereItIsWanted) {
    const Diagnostic error = diagnostic::make(TestCode::wrong, {"a"}, "r");
    EXPECT_NE(diagnostic_text(error, cli::Paint(true)).find("\x1b["), std::string::npos);
    EXPECT_EQ(text_of(error).find('\x1b'), std::string::npos);
}

TEST(DiagnosticJson, EveryMemberInItsPlace) {
    Diagnostic warning = diagnostic::make(TestCode::odd, {"shot.aec", 10, 2, 3}, "r", {"w"});
    warning.effects = {"e"};
    warning.count = 4;
    warning.source_line = "s";
    warning.limit = &limits::kWord;
    EXPECT_EQ(
        cli::diagnostic_json(warning).dump(),
        R"({"severity":"warning","code":"odd",)"
        R"("at":{"file":"shot.aec","line":2,"column":3,"offset_bytes":10},)"
        R"("reason":"r","within":["w"],"effects":["e"],"count":4,"source_line":"s","limit":{"id":"word","name":"length of a word or number",)"
        R"("value":511,"unit":"characters"}})");
}

TEST(DiagnosticJson, UnknownIsNullAndOtherEncodingsAreBytes) {
    EXPECT_EQ(cli::diagnostic_json(diagnostic::make(TestCode::wrong, {"\xff.aec"}, "r")).dump(),
              R"({"severity":"error","code":"wrong",)"
              R"("at":{"file":{"bytes":"ff2e616563"},"line":null,"column":null,"offset_bytes":null},)"
              R"("reason":"r","within":[],"effects":[],"count":1,"source_line":null,"limit":null})");
}

TEST(InternalError, IsAboutTheFileAndABugInThisProgram) {
    EXPECT_FALSE(cli::internal_error("a.aec", std::nullopt).has_value());
    const auto error = cli::internal_error("a.aec", "root: there is no name");
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(text_of(*error),
              "a.aec: error: root: there is no name [unsound-result]\n"
              "      = this is a bug in this program; please report it together with the file\n");
}

TEST(DiagnosticText, CountsAreInTheOrderOfTheirWeight) {
    const Diagnostic error = diagnostic::make(TestCode::wrong, {"a"}, "r");
    const Diagnostic warning = diagnostic::make(TestCode::odd, {"a"}, "r");
    const Diagnostic loss = diagnostic::make(cli::ToolCode::footage_missing, {"a"}, "r");
    const Diagnostic note = diagnostic::make(cli::ToolCode::shadow_kind_not_sent, {"a"}, "r");
    EXPECT_EQ(cli::severity_counts({}), "");
    EXPECT_EQ(cli::severity_counts({error}), "");
    EXPECT_EQ(cli::severity_counts({note, warning, loss, warning}), ", 1 loss, 2 warnings, 1 note");
    EXPECT_EQ(cli::severity_counts({loss, note, loss, note}), ", 2 losses, 2 notes");
}

TEST(ToolCodes, NamesAreLowerCaseWordsOrNumbersAndDistinct) {
    std::set<std::string> names;
    for (const auto& [code, info] : cli::tool_code_table()) {
        EXPECT_TRUE(names.insert(info.name).second) << info.name;
        EXPECT_EQ(std::string(info.name).find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-"),
                  std::string::npos)
            << info.name;
        EXPECT_EQ(&code_info(code), &cli::tool_code_table()[static_cast<std::size_t>(code)].info);
    }
}

}  // namespace
