// How the command line behaves as a whole: the standard input and output, several files, the width of the
// terminal, documents for programs, and the examples of the help.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "cli/made_bundle.h"
#include "cli/program.h"
#include "support/child_process.h"
#include "support/file_content.h"
#include "support/made_binary.h"
#include "support/made_texture.h"
#include "support/special_files.h"
#include "support/temporary_folder.h"
#include "text/printable.h"
#include "texture/value/texture_file.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

const std::string kHead = "VORTAN XR COMPOSITION\nRESOLUTION 8 8 FROM 0 TO 9 RANGE 10 FPS 25\n";

/// Runs a script of bash in the folder, in which `vxr` is the program.
ProcessResult bash(const TemporaryFolder& folder, const std::string& script) {
    return run_process({"env", "-C", folder.folder().string(),
                        "PATH=" + folder.path("bin") + ":" VXR_PROGRAM_DIR ":/usr/bin:/bin", "timeout", "60",
                        "bash", "-o", "pipefail", "-c", script});
}

TEST(StandardInput, IsReadAsAFileOfTheCurrentFolder) {
    const TemporaryFolder folder;
    folder.write("good.aec",
                 kHead + "COMPOSITION NRM \"Main\" {\n FILE NRM STRAIGHT \"C:\\gone\\here.txl\"\n}\n");
    folder.write("bad.aec", "VORTAN XR COMPOSITION\nFPS x\n");
    ASSERT_FALSE(write_texture(folder.path("here.txl"), made_texture(8, 8, Texture::kRgb, 0)).has_value());
    const struct {
        const char* name;
        const char* script;
        int exit_code;
        const char* out;
        const char* err;
    } cases[] = {
        {"a pipe", "cat good.aec | vxr check -", 0, "-: ok\n", ""},
        {"a pipe by its other name", "cat good.aec | vxr check /dev/stdin", 0, "/dev/stdin: ok\n", ""},
        {"a redirected file", "vxr check - < good.aec", 0, "-: ok\n", ""},
        {"beside other files", "cat good.aec | vxr check --quiet bad.aec -", 1, "bad.aec: refused\n-: ok\n",
         ""},
        {"with a mistake", "cat bad.aec | vxr check -", 1, "-: refused\n",
         "-:2:5: error: expected a number after FPS, found \"x\" [expected-number]\n    2 | FPS x\n"},
        {"empty", "vxr check - < /dev/null", 1, "-: refused\n", "-:1:1: error: the file is empty"},
        {"closed", "vxr check - <&-", 3, "-: unreadable\n", "-: error: the standard input could not be kept"},
        {"an import, with footage beside the scene", "cat good.aec | vxr import - | grep here.txl | wc -l", 0,
         "2\n", ""},
        {"an import of a mistake", "cat bad.aec | vxr import -", 1, "", "-:2:5: error: "},
    };
    for (const auto& one : cases) {
        const ProcessResult run = bash(folder, one.script);
        EXPECT_EQ(run.exit_code, one.exit_code) << one.name << run.err;
        EXPECT_EQ(run.out, one.out) << one.name;
        EXPECT_EQ(run.err.substr(0, std::string(one.err).size()), one.err) << one.name;
    }
    std::size_t files = 0;
    for ([[maybe_unused]] const fs::directory_entry& entry : fs::directory_iterator(folder.folder())) {
        ++files;
    }
    EXPECT_EQ(files, 3U) << "nothing stays behind";
}

TEST(ImportVerbOutput, SaveToStandardOutputIsTheDocumentAlone) {
    const TemporaryFolder folder;
    const std::string scene = folder.write("a.aec", kHead + "COMPOSITION NRM \"Main\" { }\n");
    const ProcessResult saved = run_process({VXR_PROGRAM, "import", "--save", "-", scene});
    EXPECT_EQ(saved.out, run_process({VXR_PROGRAM, "import", "--json", scene}).out);
    EXPECT_EQ(json::parse(saved.out).at("compositions").at(0).at("name"), "Main");
    EXPECT_FALSE(fs::exists("-"));
}

TEST(ImportVerbOutput, SeveralFilesAndTheMostSeriousOutcome) {
    const TemporaryFolder folder;
    folder.write("a.aec", kHead + "COMPOSITION NRM \"One\" { }\n");
    folder.write("b.aec", "VORTAN XR COMPOSITION\nFPS x\n");
    folder.write("c.aec", kHead + "COMPOSITION NRM \"Two\" { }\n");
    const ProcessResult trees = bash(folder, "vxr import a.aec b.aec c.aec");
    EXPECT_EQ(trees.exit_code, 1);
    EXPECT_THAT(trees.out, AllOf(HasSubstr("a.aec: 1 composition"), HasSubstr("\n\nc.aec: 1 composition")));
    EXPECT_THAT(trees.err, HasSubstr("b.aec:2:5: error"));
    EXPECT_EQ(bash(folder, "vxr import a.aec missing.aec b.aec").exit_code, 3);
    EXPECT_EQ(bash(folder, "vxr import --json a.aec c.aec | jq -r '.compositions[].name'").out, "One\nTwo\n");
}

TEST(ByteOrderMark, IsCalledByItsName) {
    const struct {
        const char* name;
        std::string bytes;
        const char* message;
    } cases[] = {
        {"UTF-8", "\xEF\xBB\xBFVORTAN XR COMPOSITION\n", "found a byte order mark of UTF-8 [not-importable]"},
        {"UTF-16, lower byte first", "\xFF\xFEV", "found a byte order mark of UTF-16 [not-importable]"},
        {"UTF-16, higher byte first", "\xFE\xFF", "found a byte order mark of UTF-16 [not-importable]"},
        {"half of one", "\xEF\xBBVORTAN", "found \"\\xef\\xbbVORTAN"},
    };
    for (const auto& one : cases) {
        const TemporaryFolder folder;
        const ProcessResult run = run_process({VXR_PROGRAM, "check", folder.write("a.aec", one.bytes)});
        EXPECT_EQ(run.exit_code, 1) << one.name;
        EXPECT_THAT(run.err, HasSubstr(one.message)) << one.name;
    }
}

TEST(ProjectDocument, OfASceneOf1MegabyteHasAtMost8) {
    constexpr std::size_t kMegabyte = 1'000'000;
    // Enough for a ratio.
    constexpr std::size_t kTenth = kMegabyte / 10;
#if defined(VXR_SANITIZED)
    constexpr std::size_t kOfShortKeys = kTenth;
#else
    constexpr std::size_t kOfShortKeys = kMegabyte;
#endif
    // The shortest keys that there are, and keys as an exporter writes them.
    const struct {
        const char* name;
        const char* block;
        const char* numbers;
        std::size_t size_bytes;
    } cases[] = {
        {"short keys", "CAMERA", " 0 0 0 0 0 0 9\n", kOfShortKeys},
        {"long keys", "CAMERA", " -123.4567 12.34567 -0.123456 1.2345678 -12.345678 123.45678 45.678\n",
         kTenth},
        {"short keys of a light", "LIGHT", " 0 0 0 0 0 0\n", kTenth},
    };
    for (const auto& one : cases) {
        std::string scene = kHead + "COMPOSITION NRM \"Main\" { }\n" + one.block + " \"Object\" {\n";
        for (int frame = 0; scene.size() < one.size_bytes - 100; ++frame) {
            scene += "KEY " + std::to_string(frame) + one.numbers;
        }
        const TemporaryFolder folder;
        const std::string file = folder.write("a.aec", scene + "}\n");
        const std::string document = folder.path("a.json");
        const ProcessResult run = run_process({VXR_PROGRAM, "import", "--save", document, file});
        EXPECT_EQ(run.exit_code, 0) << one.name << run.err;
        EXPECT_LE(fs::file_size(document), 8 * scene.size()) << one.name;
    }
}

TEST(MissingFootage, IsInTheDocuments) {
    const TemporaryFolder folder;
    folder.write("a.aec",
                 kHead + "COMPOSITION NRM \"Main\" {\n FILE NRM STRAIGHT \"C:\\old\\plate.tif\"\n}\n");
    const json expected = {{"path", "C:\\old\\plate.tif"},
                           {"tried", {"C:\\old\\plate.tif", "plate.tif"}},
                           {"placeholder", "plate.tif"}};
    const json check = json::parse(bash(folder, "vxr check --json a.aec").out);
    const json& diagnostic = check.at("files").at(0).at("diagnostics").at(0);
    EXPECT_EQ(diagnostic.at("code"), "footage-missing");
    for (const auto& [member, value] : expected.items()) {
        EXPECT_EQ(diagnostic.at(member), value) << member;
    }
    const json import = json::parse(bash(folder, "vxr import --json a.aec").out);
    EXPECT_EQ(import.at("import").at("missing_footage"), json::array({expected}));
}

TEST(ListedCodes, AsADocumentAreThoseOfTheText) {
    for (const std::string verb : {"check", "doctor"}) {
        std::istringstream lines(run_process({VXR_PROGRAM, verb, "--list-codes"}).out);
        const json document = json::parse(run_process({VXR_PROGRAM, verb, "--list-codes", "--json"}).out);
        std::size_t row = 0;
        for (std::string line; std::getline(lines, line); ++row) {
            const json& code = document.at("codes").at(row);
            EXPECT_EQ(line, code.at("code").get<std::string>() + ": " +
                                code.at("severity").get<std::string>() + ": " +
                                code.at("meaning").get<std::string>());
        }
        EXPECT_EQ(document.at("codes").size(), row) << verb;
    }
}

TEST(MissingTexture, IsSaidWhateverElseIsMissing) {
    const TemporaryFolder folder;
    const struct {
        const char* name;
        const char* script;
        const char* message;
    } cases[] = {
        {"no output named", "vxr texture convert nosuch.png", "nosuch.png: No such file or directory"},
        {"image to image", "vxr texture convert nosuch.png -o a.png", "nosuch.png: error: No such file"},
        {"image to texture", "vxr texture convert nosuch.png --to txl", "nosuch.png: error: No such file"},
        {"texture to image", "vxr texture convert nosuch.txl --to png",
         "nosuch.txl: error: the file does not exist"},
    };
    for (const auto& one : cases) {
        const ProcessResult run = bash(folder, one.script);
        EXPECT_EQ(run.exit_code, 3) << one.name;
        EXPECT_THAT(run.err, HasSubstr(one.message)) << one.name;
    }
}

std::size_t widest_line(const std::string& text) {
    std::size_t widest = 0;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
        const bool example = line.starts_with("  vxr ");
        widest = std::max(widest, example ? 0 : text::columns_of(line));
    }
    return widest;
}

// What the program writes to a terminal of this width, without colour.
std::string on_terminal(const TemporaryFolder& folder, int columns, const std::string& command) {
    return bash(folder, "export NO_COLOR=1; script -qec 'stty cols " + std::to_string(columns) + "; " +
                            command + "' /dev/null < /dev/null")
        .out;
}

TEST(TerminalWidth, IsFollowedByHelpAndTrees) {
    const TemporaryFolder folder;
    folder.write("a.aec", kHead + "COMPOSITION NRM \"Main\" {\n FILE NRM STRAIGHT \"C:\\old\\" +
                              std::string(25, 'n') + ".tif\"\n}\n");
    const std::string narrow = on_terminal(folder, 60, "vxr texture check --help");
    const std::string wide = on_terminal(folder, 140, "vxr texture check --help");
    EXPECT_LE(widest_line(narrow), 60U) << narrow;
    EXPECT_GT(widest_line(narrow), 50U);
    EXPECT_GT(widest_line(wide), 120U);
    EXPECT_LE(widest_line(wide), 140U);
    const std::string tree =
        on_terminal(folder, 50, "vxr import a.aec 2>&1 | cat; vxr import a.aec 2>/dev/null");
    EXPECT_THAT(tree, HasSubstr("...\r\n"));
    const std::string last = tree.substr(tree.rfind("Main/"));
    EXPECT_LE(widest_line(last), 50U) << last;
    EXPECT_GT(widest_line(tree), 50U) << "into a pipe, lines are whole";
    EXPECT_GT(widest_line(bash(folder, "vxr import a.aec").out), 80U);
}

TEST(TreeColumns, AlignBehindIdeographs) {
    const TemporaryFolder folder;
    folder.write("a.aec",
                 kHead +
                     "COMPOSITION NRM \"Main\" {\n COMPOSITION NRM \"\xE5\xBD\xB1\xE7\x89\x87\" { }\n"
                     " COMPOSITION NRM \"abcd\" { }\n}\n");
    std::istringstream lines(bash(folder, "vxr import a.aec").out);
    std::vector<std::size_t> columns;
    for (std::string line; std::getline(lines, line);) {
        if (const std::size_t kind = line.find("  composition  normal"); kind != std::string::npos) {
            columns.push_back(text::columns_of(line.substr(0, kind)));
        }
    }
    ASSERT_EQ(columns.size(), 2U);
    EXPECT_EQ(columns[0], columns[1]);
}

// Everything that the examples of the help name.
void make_examples(const TemporaryFolder& folder, int alphas) {
    fs::create_directory_symlink(VXR_EXAMPLES_DIR, folder.path("examples"));
    folder.write("shot.aec", kHead +
                                 "COMPOSITION NRM \"Main\" {\n COMPOSITION NRM \"Inner\" { }\n}\n"
                                 "CAMERA \"Camera\" {\n KEY 0 0 0 -100 0 0 0 45 100\n}\n");
    folder.make_folder("renders");
    folder.write("renders/one.aec", kHead + "COMPOSITION NRM \"Main\" { }\n");
    folder.make_folder("job");
    folder.write("job/one.aec", kHead +
                                    "COMPOSITION NRM \"Main\" {\n"
                                    " FILE NRM PREMUL \"Macintosh HD:Renders:plate.png\"\n}\n");
    folder.write("job.toml", "schema = 1\n[[map]]\nfrom = 'Macintosh HD:Renders'\nto = 'renders'\n");
    folder.make_folder("maps");
    folder.make_folder("scans");
    for (const char* texture : {"bark.txl", "maps/bark.txl"}) {
        ASSERT_FALSE(
            write_texture(folder.path(texture), made_texture(80, 80, Texture::kRgb, alphas)).has_value());
    }
    ASSERT_FALSE(write_texture(folder.path("plain.txl"), made_texture(8, 8, Texture::kRgb, 0)).has_value());
    ASSERT_EQ(bash(folder,
                   "vxr texture convert plain.txl -o scans/one.tif && "
                   "vxr texture convert plain.txl -o renders/plate.png")
                  .exit_code,
              0);
    folder.write("night.toml", "[[task]]\nverb = 'texture convert'\nfiles = ['maps']\nextension = 'png'\n");
    ASSERT_EQ(bash(folder, "vxr batch plan night.toml").exit_code, 0);
    folder.write("VORTANXR_AE.aex", made_pe());
    write_plugin(folder, {.folder = "VORTANXR_AE.plugin"});
    make_link(VXR_BUNDLE_PATH, folder.path("VORTANXR_AE.so"));
    // A debugger that only runs its program.
    folder.make_folder("bin");
    folder.write("bin/gdb", "#!/bin/sh\nshift\nexec \"$@\"\n");
    fs::permissions(folder.path("bin/gdb"), fs::perms::owner_all);
    // A scheduler that only takes the job.
    folder.write("bin/sbatch", "#!/bin/sh\ncat >/dev/null\necho 12\n");
    fs::permissions(folder.path("bin/sbatch"), fs::perms::owner_all);
}

struct ExampleResult {
    const char* command;
    int exit_code;
    const char* out;  ///< null for any
};

// The examples whose result is more than "it works".
const ExampleResult kExampleResults[] = {
    {"vxr import --json shot.aec | jq '.compositions[].name'", 0, "\"Main\"\n\"Inner\"\n"},
    {"vxr import --fail AEGP_CreateComp:2:4 shot.aec", 1, nullptr},
    {"vxr check --json shot.aec | jq -r '.files[].diagnostics[].code'", 0, ""},
    {"vxr check --strict --quiet renders/*.aec", 0, "renders/one.aec: ok\n"},
    {"vxr check --recursive renders", 0, nullptr},
    {"find renders -name '*.aec' -print0 | vxr check --null --files-from -", 0, nullptr},
    {"vxr export --recursive job --to glb --out-dir cameras", 4, nullptr},
    // Only After Effects writes this table.
    {"vxr proof shot.aec --compare measure-measured.tsv", 3, nullptr},
    {"vxr batch submit night.batch --on slurm --array-size 500", 0,
     "night.batch: 1 item, Slurm's job 12 of 1 task\n"},
    {"vxr batch merge night.batch -o night.txt", 3, nullptr},
    {"vxr batch merge night.batch", 3, nullptr},
    {"vxr modules --json | jq -r '.modules[].extensions[]'", 0, ".txl\n"},
    {"vxr texture info --json *.txl | jq '.files[] | [.file, .compression_ratio]'", 0, nullptr},
};

TEST(HelpExamples, RunAsTheyAreWritten) {
    std::vector<std::string> commands;
    for (const cli::HelpPage& page : cli::program_help_pages()) {
        for (const cli::Example& example : page.examples) {
            commands.push_back(example.command);
        }
    }
    std::sort(commands.begin(), commands.end());
    commands.erase(std::unique(commands.begin(), commands.end()), commands.end());
    for (const ExampleResult& one : kExampleResults) {
        EXPECT_TRUE(std::find(commands.begin(), commands.end(), one.command) != commands.end())
            << one.command;
    }
    // Made once for each texture, because making them takes longer than the examples.
    const TemporaryFolder one_alpha;
    const TemporaryFolder two_alphas;
    make_examples(one_alpha, 1);
    make_examples(two_alphas, 2);
    for (const std::string& command : commands) {
        const TemporaryFolder folder;
        const bool second = command.find("--alpha 2") != std::string::npos;
        fs::copy((second ? two_alphas : one_alpha).folder(), folder.folder(),
                 fs::copy_options::recursive | fs::copy_options::copy_symlinks);
        const auto* const expected =
            std::find_if(std::begin(kExampleResults), std::end(kExampleResults),
                         [&](const ExampleResult& one) { return one.command == command; });
        const bool known = expected != std::end(kExampleResults);
        const bool fish = command.ends_with("| source");
        folder.write("script", command + '\n');
        const ProcessResult run = bash(folder, fish ? "fish script" : ". ./script");
        EXPECT_EQ(run.exit_code, known ? expected->exit_code : 0) << command << '\n' << run.err;
        if (known && expected->out != nullptr) {
            EXPECT_EQ(run.out, expected->out) << command;
        }
        EXPECT_THAT(run.err, Not(HasSubstr("See `vxr"))) << command;
    }
}

}  // namespace
