#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/report/tool_code.h"
#include "composition/read/read_error.h"
#include "support/child_process.h"
#include "support/temporary_folder.h"

namespace {

using nlohmann::json;

const std::string kExamples = VXR_EXAMPLES_DIR;
const char* const kSound =
    "VORTAN XR COMPOSITION\nRESOLUTION 8 8 FROM 0 TO 9 RANGE 10 FPS 25\nCOMPOSITION NRM \"c\" { }\n";
const char* const kWarned =
    "VORTAN XR COMPOSITION\nRESOLUTION 8 8 FROM 0 TO 9 RANGE 10 FPS 29.97\nCOMPOSITION NRM \"c\" { }\n";
const char* const kRefused = "VORTAN XR COMPOSITION\nFPS abc\n";

ProcessResult check(const TemporaryFolder& folder, std::vector<std::string> arguments) {
    std::vector<std::string> command{"env", "-C", folder.folder().string(), VXR_PROGRAM, "check"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return run_process(command);
}

struct Case {
    const char* name;
    std::vector<std::string> arguments;
    int exit_code;
    const char* out;
};

const Case kCases[] = {
    {"sound", {"sound.aec"}, 0, "sound.aec: ok\n"},
    {"with a loss", {"warned.aec"}, 0, "warned.aec: ok, 1 loss\n"},
    {"with a loss, strictly", {"--strict", "warned.aec"}, 1, "warned.aec: refused, 1 loss\n"},
    {"sound, strictly", {"--strict", "sound.aec"}, 0, "sound.aec: ok\n"},
    {"refused", {"refused.aec"}, 1, "refused.aec: refused\n"},
    {"missing", {"missing.aec"}, 3, "missing.aec: unreadable\n"},
    {"all are reported, and unreadable is the most serious",
     {"missing.aec", "refused.aec", "sound.aec"},
     3,
     "missing.aec: unreadable\nrefused.aec: refused\nsound.aec: ok\n"},
    {"refused is more serious than sound",
     {"refused.aec", "sound.aec"},
     1,
     "refused.aec: refused\nsound.aec: ok\n"},
    {"a folder stands for the files in it",
     {"."},
     1,
     "./refused.aec: refused\n./sound.aec: ok\n./warned.aec: ok, 1 loss\n"},
};

TEST(CheckVerb, OneLinePerFileAndTheMostSeriousExitCode) {
    const TemporaryFolder folder;
    folder.write("sound.aec", kSound);
    folder.write("warned.aec", kWarned);
    folder.write("refused.aec", kRefused);
    for (const Case& one : kCases) {
        const ProcessResult run = check(folder, one.arguments);
        EXPECT_EQ(run.exit_code, one.exit_code) << one.name;
        EXPECT_EQ(run.out.substr(0, std::string(one.out).size()), one.out) << one.name;

        std::vector<std::string> quiet = one.arguments;
        quiet.emplace_back("--quiet");
        const ProcessResult silent = check(folder, quiet);
        EXPECT_EQ(silent.exit_code, one.exit_code) << one.name;
        EXPECT_EQ(silent.out, one.out) << one.name;
        EXPECT_EQ(silent.err, "") << one.name;
    }
}

struct BadInput {
    const char* name;
    const char* text;
    const char* message;  ///< the first line
};

const BadInput kBadInputs[] = {
    {"not a number", kRefused, "expected a number after FPS, found \"abc\" [expected-number]"},
    {"empty", "", "the file is empty [empty-file]"},
    {"another kind of file", "\x89PNG\r\n\x1a\n",
     "expected the file to begin with \"VORTAN XR\", found \"\\x89PNG\\x0d\\x0a\\x1a\\x0a\" "
     "[not-importable]"},
    {"cut in the header", "VORTAN XR COMP",
     "expected COMPOSITION after VORTAN XR, found a word cut off by the end of the file [word-cut-by-end]"},
    {"cut in the settings", "VORTAN XR COMPOSITION\nFPS 25\n",
     "expected a setting or COMPOSITION, found the end of the file [unexpected-end]"},
    {"misspelt setting", "VORTAN XR COMPOSITION\nFSP 25\n",
     "expected a setting or COMPOSITION, found \"FSP\" [unknown-setting]"},
    {"frame rate 0", "VORTAN XR COMPOSITION\nFPS 0\n",
     "expected a number greater than 0 after FPS, found the number \"0\" [out-of-range]"},
    {"aspect out of range", "VORTAN XR COMPOSITION\nASPECT 0.009\n",
     "expected a number from 0.01 to 100 after ASPECT, found the number \"0.009\" [out-of-range]"},
    {"unknown fields", "VORTAN XR COMPOSITION\nFIELDS UPPER\n",
     "expected NONE, EVEN or ODD after FIELDS, found \"UPPER\" [expected-word]"},
    {"missing settings", "VORTAN XR COMPOSITION\nFROM 0 TO 9 COMPOSITION NRM \"c\" { }\n",
     "expected RESOLUTION, RANGE, FPS before COMPOSITION, found \"COMPOSITION\" [missing-setting]"},
    {"control characters", "VORTAN XR COMPOSITION\nFPS \x1b[2J\n",
     "expected a number after FPS, found \"\\x1b\" [expected-number]"},
    {"a byte of 0xFF in place of a word", "VORTAN XR COMPOSITION\nFPS \xff\n",
     "expected a number after FPS, found \"\\xff\" [expected-number]"},
};

TEST(CheckVerb, BadInputsAreExplained) {
    const TemporaryFolder folder;
    for (const BadInput& one : kBadInputs) {
        folder.write("bad.aec", one.text);
        const ProcessResult run = check(folder, {"bad.aec"});
        EXPECT_EQ(run.exit_code, 1) << one.name;
        EXPECT_EQ(run.out, "bad.aec: refused\n") << one.name;
        const std::string first = run.err.substr(0, run.err.find('\n'));
        const std::size_t marker = first.find(": error: ");
        ASSERT_NE(marker, std::string::npos) << one.name << ": " << run.err;
        EXPECT_EQ(first.substr(0, 8), "bad.aec:") << one.name;
        EXPECT_EQ(first.substr(marker + 9), one.message) << one.name;
    }
}

TEST(CheckVerb, SourceLineAndCaret) {
    const TemporaryFolder folder;
    folder.write("shot.aec", kRefused);
    EXPECT_EQ(check(folder, {"shot.aec"}).err,
              "shot.aec:2:5: error: expected a number after FPS, found \"abc\" [expected-number]\n"
              "    2 | FPS abc\n"
              "      |     ^\n"
              "      = After Effects imports nothing and shows no message\n");
}

TEST(CheckVerb, NeverWaitsForAPipe) {
    const TemporaryFolder folder;
    ASSERT_EQ(run_process({"mkfifo", folder.path("pipe.aec")}).exit_code, 0);
    const ProcessResult run = check(folder, {"pipe.aec"});
    EXPECT_EQ(run.exit_code, 3);
    EXPECT_EQ(run.err, "pipe.aec: error: this is a pipe, and only regular files are read [cannot-read]\n");
}

TEST(CheckVerb, JsonIsOneDocumentAlsoWhenFilesAreRefused) {
    const TemporaryFolder folder;
    folder.write("refused.aec", kRefused);
    folder.write("warned.aec", kWarned);
    const ProcessResult run = check(folder, {"--json", "refused.aec", "missing.aec", "warned.aec"});
    EXPECT_EQ(run.exit_code, 3);
    EXPECT_EQ(run.err, "");
    const json document = json::parse(run.out);
    EXPECT_EQ(document["schema"], 2);
    EXPECT_EQ(document["exit_code"], 3);
    ASSERT_EQ(document["files"].size(), 3U);
    EXPECT_EQ(document["files"][0]["verdict"], "refused");
    EXPECT_EQ(document["files"][0]["diagnostics"][0]["code"], "expected-number");
    EXPECT_EQ(document["files"][0]["diagnostics"][0]["at"]["line"], 2);
    EXPECT_EQ(document["files"][0]["diagnostics"][0]["at"]["offset_bytes"], 26);
    EXPECT_EQ(document["files"][1]["verdict"], "unreadable");
    EXPECT_EQ(document["files"][1]["exit_code"], 3);
    EXPECT_EQ(document["files"][2]["verdict"], "ok");
    EXPECT_EQ(document["files"][2]["diagnostics"][0]["code"], "value-changed");
}

TEST(CheckVerb, JsonOfFilesWithAnyName) {
    const TemporaryFolder folder;
    const ProcessResult run = check(folder, {"--json", "\xff.aec"});
    EXPECT_EQ(json::parse(run.out)["files"][0]["file"], json({{"bytes", "ff2e616563"}}));
}

TEST(CheckVerb, ExamplesAreFine) {
    const TemporaryFolder folder;
    const ProcessResult run =
        check(folder, {kExamples + "/square/courtyard_020.aec", kExamples + "/interlaced/lantern_010.aec",
                       kExamples + "/keyframes/orbit_030.aec"});
    EXPECT_EQ(run.exit_code, 4) << "but for one file that is missing";
    EXPECT_NE(
        run.err.find("lantern_010.aec:21:21: loss: the footage "
                     "\"Macintosh HD:Renders:lantern_010:dust0017.tif\" does not exist [footage-missing]\n"),
        std::string::npos)
        << run.err;
}

TEST(CheckVerb, EveryCodeIsListed) {
    const ProcessResult run = check(TemporaryFolder(), {"--list-codes"});
    EXPECT_EQ(run.exit_code, 0);
    for (const auto& [code, info] : read_error_table()) {
        EXPECT_NE(run.out.find(std::string(info.name) + ": error: " + info.meaning), std::string::npos)
            << info.name;
    }
    for (const auto& [code, info] : cli::tool_code_table()) {
        EXPECT_NE(run.out.find(std::string(info.name) + ": "), std::string::npos) << info.name;
    }
}

TEST(CheckVerb, ResultThatCannotBeWritten) {
    const TemporaryFolder folder;
    folder.write("sound.aec", kSound);
    const ProcessResult run = run_process(
        {"sh", "-c", std::string(VXR_PROGRAM) + " check " + folder.path("sound.aec") + " >/dev/full"});
    EXPECT_EQ(run.exit_code, 3);
    EXPECT_EQ(run.err, "vxr: error: the result could not be written to standard output\n");
}

}  // namespace
