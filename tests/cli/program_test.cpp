#include "cli/program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "cli/project/host_setup.h"
#include "support/program_run.h"

namespace {

using cli::ExitCode;

struct Case {
    const char* name;
    std::vector<std::string> arguments;
    const char* message;
};

const Case kWrongUsage[] = {
    {"no verb", {}, "vxr: error: a verb is required\nSee `vxr --help`.\n"},
    {"unknown verb",
     {"importt"},
     "vxr: error: there is no verb \"importt\"; did you mean \"import\"?\nSee `vxr --help`.\n"},
    {"unknown option",
     {"check", "--srtict", "a.aec"},
     "vxr: error: there is no option \"--srtict\"; did you mean \"--strict\"?\nSee `vxr check --help`.\n"},
    {"no file to check", {"check"}, "vxr: error: FILE is required\nSee `vxr check --help`.\n"},
    {"no file to import", {"import"}, "vxr: error: FILE is required\nSee `vxr import --help`.\n"},
    {"unknown verb that looks like none",
     {"zzz"},
     "vxr: error: there is no verb \"zzz\"\nSee `vxr --help`.\n"},
    {"unknown verb with a request for help",
     {"chekc", "--help"},
     "vxr: error: there is no verb \"chekc\"; did you mean \"check\"?\nSee `vxr --help`.\n"},
    {"unknown verb of a group with a request for help",
     {"texture", "infos", "--help"},
     "vxr: error: there is no verb \"texture infos\"; did you mean \"info\"?\nSee `vxr texture --help`.\n"},
    {"unknown option and no file",
     {"import", "--jsno"},
     "vxr: error: there is no option \"--jsno\"; did you mean \"--json\"?\nSee `vxr import --help`.\n"},
    {"unknown short option",
     {"check", "-x", "a.aec"},
     "vxr: error: there is no option \"-x\"\nSee `vxr check --help`.\n"},
    {"beginning of an option",
     {"texture", "convert", "--out-d"},
     "vxr: error: there is no option \"--out-d\"; did you mean \"--out-dir\"?\nSee `vxr texture convert "
     "--help`.\n"},
    {"option without its value",
     {"import", "a.aec", "--save"},
     "vxr: error: --save needs a value: FILE\nSee `vxr import --help`.\n"},
    {"another option where a value belongs",
     {"import", "--save", "--json", "a.aec"},
     "vxr: error: --save needs a value: FILE\nSee `vxr import --help`.\n"},
    {"value where none belongs",
     {"import", "--json=yes", "a.aec"},
     "vxr: error: --json takes no value\nSee `vxr import --help`.\n"},
    {"option given twice",
     {"import", "--save", "a", "--save=b", "a.aec"},
     "vxr: error: --save is given twice\nSee `vxr import --help`.\n"},
    {"one argument too many",
     {"frame", "a.txl", "b.txl", "-o", "a.png"},
     "vxr: error: nothing takes \"b.txl\"\nSee `vxr frame --help`.\n"},
    {"outside of a range",
     {"doctor", "--timeout", "0", "a.so"},
     "vxr: error: --timeout: \"0\" is not a number from 1 to 3600\nSee `vxr doctor --help`.\n"},
    {"no number at all",
     {"doctor", "--timeout", "soon", "a.so"},
     "vxr: error: --timeout: \"soon\" is not a number from 1 to 3600\nSee `vxr doctor --help`.\n"},
    {"none of the choices",
     {"doctor", "--load", "clasic", "a.so"},
     "vxr: error: --load: \"clasic\" is not today or classic; did you mean \"classic\"?\nSee `vxr doctor "
     "--help`.\n"},
    {"options that exclude each other",
     {"doctor", "--no-load", "--always-load", "a.so"},
     "vxr: error: --no-load and --always-load exclude each other\nSee `vxr doctor --help`.\n"},
    {"document of several files",
     {"import", "--save", "a.json", "a.aec", "b.aec"},
     "vxr: error: --save and --log are for one FILE\nSee `vxr import --help`.\n"},
    {"log to the standard output",
     {"import", "--log", "-", "a.aec"},
     "vxr: error: --log needs a file: standard output has the project\nSee `vxr import --help`.\n"},
    {"standard input by both its names",
     {"check", "-", "/dev/stdin"},
     "vxr: error: the standard input can be read only once\nSee `vxr check --help`.\n"},
    {"malformed version",
     {"import", "--host-version", "9", "a.aec"},
     "vxr: error: --host: \"9\" is not classic, today, MAJOR.MINOR, or both joined by a colon\nSee `vxr "
     "import --help`.\n"},
    {"preference out of range",
     {"import", "--alpha-preference", "256", "a.aec"},
     "vxr: error: --alpha-preference: \"256\" is neither none nor a number from 0 to 255\nSee `vxr import "
     "--help`.\n"},
    {"stills of no length",
     {"import", "--still-duration", "0", "a.aec"},
     "vxr: error: --still-duration: \"0\" is neither composition nor a number from 1\nSee `vxr import "
     "--help`.\n"},
    {"unknown encoding",
     {"import", "--name-encoding", "latin-1", "a.aec"},
     "vxr: error: --name-encoding: \"latin-1\" is neither windows-1252, mac-roman nor bytes\nSee `vxr import "
     "--help`.\n"},
    {"layer number 0",
     {"import", "--refuse-layer", "0", "a.aec"},
     "vxr: error: --refuse-layer: \"0\" is not a number from 1\nSee `vxr import --help`.\n"},
    {"suite without a version",
     {"import", "--without-suite", "AEGP Comp Suite", "a.aec"},
     "vxr: error: --without-suite: \"AEGP Comp Suite\" is not NAME:VERSION\nSee `vxr import --help`.\n"},
    {"function that the host does not have",
     {"import", "--fail", "AEGP_Nonsense:1:4", "a.aec"},
     "vxr: error: --fail: \"AEGP_Nonsense:1:4\" is not FUNCTION:N:CODE with a function of the host, N from 1 "
     "and a CODE other than 0\nSee `vxr import --help`.\n"},
    {"unknown shell",
     {"completion", "tcsh"},
     "vxr: error: SHELL: \"tcsh\" is not bash, fish or zsh\nSee `vxr completion "
     "--help`.\n"},
    {"help on an unknown verb",
     {"help", "nonsense"},
     "vxr: error: there is no verb \"nonsense\"\nSee `vxr help --help`.\n"},
};

TEST(Program, WrongUsage) {
    for (const Case& one : kWrongUsage) {
        const Ran ran = run(one.arguments);
        EXPECT_EQ(ran.code, ExitCode::usage) << one.name;
        EXPECT_EQ(ran.out, "") << one.name;
        EXPECT_EQ(ran.err, one.message) << one.name;
    }
}

TEST(Program, Version) {
    const Ran ran = run({"--version"});
    EXPECT_EQ(ran.code, ExitCode::fine);
    EXPECT_EQ(ran.out, cli::program_version() + "\ncommit unknown, unknown\n");
}

TEST(Program, VersionSaysWhatItWasBuiltOf) {
    std::ostringstream out;
    std::ostringstream err;
    cli::Terminal terminal{out, err, cli::Paint(false), cli::Paint(false), false};
    const ExitCode code =
        cli::run_program({"--version"}, terminal, {"0123456789ab+", "Release, any compiler"});
    EXPECT_EQ(code, ExitCode::fine);
    EXPECT_EQ(out.str(), cli::program_version() + "\ncommit 0123456789ab+, Release, any compiler\n");
    EXPECT_EQ(err.str(), "");
}

TEST(Program, HelpVerbAndHelpOptionSayTheSame) {
    for (const std::vector<std::string>& verb :
         {std::vector<std::string>{}, {"import"}, {"check"}, {"help"}}) {
        std::vector<std::string> option = verb;
        option.emplace_back("--help");
        std::vector<std::string> word = verb;
        word.insert(word.begin(), "help");
        EXPECT_EQ(run(option).out, run(word).out);
        EXPECT_EQ(run(option).code, ExitCode::fine);
    }
}

TEST(Program, FilesMayHaveTheNameOfAVerb) {
    const Ran ran = run({"check", "import"});
    EXPECT_EQ(ran.code, ExitCode::cannot_read_or_write);
    EXPECT_EQ(ran.out, "import: unreadable\n");
}

TEST(ExitCodes, TheMostSeriousCounts) {
    // From the least to the most serious.
    const std::array<ExitCode, 4> order{ExitCode::fine, ExitCode::refused, ExitCode::cannot_read_or_write,
                                        ExitCode::usage};
    for (std::size_t a = 0; a < order.size(); ++a) {
        for (std::size_t b = 0; b < order.size(); ++b) {
            EXPECT_EQ(cli::most_serious(order[a], order[b]), order[std::max(a, b)]);
        }
    }
}

TEST(BundlePath, PlacesBesideTheProgram) {
    const std::vector<std::filesystem::path> places = cli::bundle_places("/opt/vxr/bin/vxr");
    ASSERT_EQ(places.size(), 3U);
#if defined(_WIN32)
    const std::string name = "VORTANXR_AE.aex";
#else
    const std::string name = "VORTANXR_AE.so";
#endif
    EXPECT_EQ(places[0].filename(), name);
    EXPECT_EQ(places[0].parent_path().filename(), "vortanxr");
    EXPECT_EQ(places[1].generic_string(), "/opt/vxr/lib/" + name);
    EXPECT_EQ(places[2].generic_string(), "/opt/vxr/bin/" + name);
}

TEST(Progress, SilentUnlessItIsWatched) {
    std::ostringstream out;
    std::ostringstream err;
    cli::Terminal terminal{out, err, cli::Paint(false), cli::Paint(false), false};
    {
        cli::Progress progress(terminal, 3);
        progress.step("a");
    }
    EXPECT_EQ(err.str(), "");
    terminal.live = true;
    {
        cli::Progress progress(terminal, 3);
        progress.step("a");
        progress.step("b");
    }
    EXPECT_EQ(err.str(), "[1/3] a\r\x1b[K[2/3] b\r\x1b[K");
}

TEST(Fitted, CutsLinesToTheTerminal) {
    const struct {
        const char* name;
        std::size_t columns;
        const char* text;
        const char* expected;
    } cases[] = {
        {"shorter lines stay", 10, "one\ntwo\n", "one\ntwo\n"},
        {"a line that just fits", 10, "0123456789\n", "0123456789\n"},
        {"one letter too many", 10, "0123456789a", "0123456..."},
        {"without a line break at the end", 10, "0123456789", "0123456789"},
        {"colour takes no columns", 10, "\x1b[1m0123456789\x1b[0m", "\x1b[1m0123456789\x1b[0m"},
        {"colour ends behind the dots", 10, "\x1b[1m0123456789a\x1b[0m", "\x1b[1m0123456...\x1b[0m"},
        {"half an ideograph does not fit", 8, "01\xE5\xBD\xB1\xE7\x89\x87\xE5\xBD\xB1\xE7\x89\x87",
         "01\xE5\xBD\xB1..."},
        {"a sequence that does not end", 3, "\x1b[1", "\x1b[1"},
        {"empty lines", 3, "\n\n", "\n\n"},
    };
    std::ostringstream out;
    for (const auto& one : cases) {
        const cli::Terminal terminal{out, out, cli::Paint(false), cli::Paint(false), false, one.columns};
        EXPECT_EQ(cli::fitted(terminal, one.text), one.expected) << one.name;
    }
    const cli::Terminal pipe{out, out, cli::Paint(false), cli::Paint(false), false, {}};
    EXPECT_EQ(cli::fitted(pipe, "0123456789a"), "0123456789a") << "only a terminal has a width";
}

}  // namespace
