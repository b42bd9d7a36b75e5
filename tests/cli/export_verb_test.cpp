#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/job_folder.h"
#include "support/program_run.h"

namespace {

using cli::ExitCode;
using nlohmann::json;

const std::string kExamples = VXR_PROJECT_DIR "/examples";
const std::string kShot = kExamples + "/square/courtyard_020.aec";

Ran exported(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"export", "--bundle", VXR_BUNDLE_PATH});
    return run(arguments);
}

TEST(ExportVerb, WritesEveryFormat) {
    const JobFolder job;
    const struct {
        const char* format;
        const char* beginning;
    } kCases[] = {{"gltf", "{"}, {"glb", "glTF"}, {"usda", "#usda 1.0"}};
    for (const auto& [format, beginning] : kCases) {
        const std::string path = job.path(std::string("shot.") + format);
        const Ran ran = exported({kShot, "--to", format, "-o", path});
        EXPECT_EQ(ran.code, ExitCode::fine) << ran.err;
        EXPECT_TRUE(content_of(path).starts_with(beginning)) << format;
        EXPECT_NE(ran.out.find(kShot + " -> " + path + ": 4 corrections, "), std::string::npos) << ran.out;
    }
}

TEST(ExportVerb, RefusesWrongUsageBeforeItReadsAnything) {
    const JobFolder job;
    const std::string out = job.path("out.glb");
    const struct {
        const char* reason;
        std::vector<std::string> arguments;
        const char* error;
    } kCases[] = {
        {"no scene", {"--to", "glb", "-o", out}, "SCENE is required"},
        {"no format", {"gone.aec", "-o", out}, "--to is required"},
        {"an unknown format", {"gone.aec", "--to", "obj", "-o", out}, "obj"},
        {"nowhere to write",
         {"gone.aec", "--to", "glb"},
         "-o, --out-dir, --package or --list-losses is required"},
        {"two places", {"gone.aec", "--to", "glb", "-o", out, "--out-dir", "x"}, "exclude each other"},
        {"two scenes for one file", {"a.aec", "b.aec", "--to", "glb", "-o", out}, "-o is for one SCENE"},
        {"a list is no file",
         {"a.aec", "--to", "glb", "--list-losses", "-o", out},
         "--list-losses writes no file"},
        {"an unknown correction",
         {"a.aec", "--to", "glb", "-o", out, "--without", "turn"},
         "did you mean \"turns\""},
        {"corrections of an imported project",
         {"a.aec", "--to", "glb", "-o", out, "--as", "imported", "--without", "turns"},
         "--without is for --as corrected"},
        {"a rate for an imported project",
         {"a.aec", "--to", "glb", "-o", out, "--as", "imported", "--fps", "25"},
         "--fps is for --as corrected"},
        {"a rate of 0", {"a.aec", "--to", "glb", "-o", out, "--fps", "0"}, "is not a number from 1 to 99"},
        {"a rate above all",
         {"a.aec", "--to", "glb", "-o", out, "--fps", "99.01"},
         "is not a number from 1 to 99"},
        {"a negative angle",
         {"a.aec", "--to", "glb", "-o", out, "--cut-angle", "-1"},
         "is not a number from 0 to 180"},
        {"a scale of nothing", {"a.aec", "--to", "glb", "-o", out, "--scale", "0"}, "is not a number from"},
        {"an angle in words", {"a.aec", "--to", "glb", "-o", out, "--cut-angle", "1.2.3"}, "is not a number"},
        {"a tolerance without a number",
         {"a.aec", "--to", "glb", "-o", out, "--tolerance", "."},
         "is not a number"},
        {"the standard input has no name", {"-", "--to", "glb", "--out-dir", "x"}, "has no name"},
        {"a NUL list without a list", {"a.aec", "--to", "glb", "-o", out, "-0"}, "--null needs --files-from"},
    };
    for (const auto& [reason, arguments, error] : kCases) {
        const Ran ran = exported(arguments);
        EXPECT_EQ(ran.code, ExitCode::usage) << reason << ran.err;
        EXPECT_NE(ran.err.find(error), std::string::npos) << reason << ": " << ran.err;
        EXPECT_EQ(job.names_in("."), std::set<std::string>{}) << reason;
    }
}

TEST(ExportVerb, WritesNothingForScenesThatDoNotArrive) {
    const JobFolder job;
    const struct {
        const char* reason;
        std::string scene;
        ExitCode code;
        const char* error;
    } kCases[] = {
        {"missing", job.path("gone.aec"), ExitCode::cannot_read_or_write, "cannot-read"},
        {"empty", job.write("empty.aec", ""), ExitCode::refused, "empty-file"},
        {"no scene", job.write("text.aec", "hello, world"), ExitCode::refused, "not-importable"},
        {"a mistake", job.write("mistake.aec", "VORTAN XR COMPOSITION\nFPS abc\n"), ExitCode::refused,
         "expected-number"},
        {"a cut file", job.write("cut.aec", content_of(kShot).substr(0, 700)), ExitCode::refused, "error: "},
        {"footage that no one reads",
         (job.write("bad.png", "no picture"), job.scene("bad.aec", "  FILE NRM STRAIGHT \"bad.png\"\n")),
         ExitCode::refused, "the import ended with host error"},
    };
    for (const auto& [reason, scene, code, error] : kCases) {
        const Ran ran = exported({scene, "--to", "glb", "-o", job.path("out.glb")});
        EXPECT_EQ(ran.code, code) << reason << ran.err;
        EXPECT_NE(ran.err.find(error), std::string::npos) << reason << ": " << ran.err;
        EXPECT_FALSE(std::filesystem::exists(job.path("out.glb"))) << reason;
        const Ran listed = exported({scene, "--to", "glb", "--list-losses", "--json"});
        EXPECT_EQ(listed.code, code) << reason;
        const json document = json::parse(listed.out);
        EXPECT_EQ(document["scenes"][0]["exit_code"], static_cast<int>(code)) << reason;
        EXPECT_EQ(document["scenes"][0]["written"], false) << reason;
    }
}

TEST(ExportVerb, LeavesTheOldFileWhereNothingIsWritten) {
    const JobFolder job;
    const std::string old = job.write("out.glb", "old");
    EXPECT_EQ(exported({job.write("empty.aec", ""), "--to", "glb", "-o", old}).code, ExitCode::refused);
    EXPECT_EQ(job.content("out.glb"), "old");
    const Ran ran = exported({kShot, "--to", "glb", "-o", job.path("out.glb/below.glb")});
    EXPECT_EQ(ran.code, ExitCode::cannot_read_or_write) << ran.err;
    EXPECT_EQ(job.names_in("."), (std::set<std::string>{"empty.aec", "out.glb"}));
}

TEST(ExportVerb, DoesNotWriteOntoWhatItReads) {
    const JobFolder job;
    job.image("plate.tga");
    const std::string scene = job.scene("shot.aec", "  FILE NRM STRAIGHT \"plate.tga\"\n");
    const std::string before = job.content("shot.aec");
    std::filesystem::create_hard_link(scene, job.path("other.glb"));
    for (const char* output : {"shot.aec", "plate.tga", "other.glb"}) {
        const Ran ran = exported({scene, "--to", "glb", "-o", job.path(output)});
        EXPECT_EQ(ran.code, ExitCode::usage) << output << ran.err;
        EXPECT_NE(ran.err.find("would be overwritten"), std::string::npos) << ran.err;
    }
    EXPECT_EQ(exported({scene, "--to", "glb", "-o", VXR_BUNDLE_PATH}).code, ExitCode::usage);
    EXPECT_EQ(job.content("shot.aec"), before);
    const std::string list = job.write("list.txt", scene + '\n');
    const Ran ran = exported({"--files-from", list, "--to", "glb", "-o", list});
    EXPECT_EQ(ran.code, ExitCode::usage) << "the list of scenes is read, too";
    EXPECT_NE(ran.err.find("the list of files, would be overwritten"), std::string::npos) << ran.err;
    EXPECT_EQ(job.content("list.txt"), scene + '\n');
}

TEST(ExportVerb, TakesFoldersAndNamesFilesAfterTheirScenes) {
    const JobFolder job;
    job.scene("in/one.aec", "");
    job.scene("in/deep/one.aec", "");
    job.scene("in/two.AEC", "");
    job.write("in/notes.txt", "");
    const Ran flat = exported({job.path("in"), "--to", "usda", "--out-dir", job.path("flat")});
    EXPECT_EQ(flat.code, ExitCode::fine) << flat.err;
    EXPECT_EQ(job.names_in("flat"), (std::set<std::string>{"one.usda", "two.usda"}));
    const Ran deep = exported({"-r", job.path("in"), "--to", "usda", "--out-dir", job.path("deep")});
    EXPECT_EQ(deep.code, ExitCode::fine) << deep.err;
    EXPECT_EQ(job.names_in("deep"), (std::set<std::string>{"deep", "one.usda", "two.usda"}))
        << "two scenes of one name keep their folders";
    EXPECT_EQ(job.names_in("deep/deep"), std::set<std::string>{"one.usda"});
    std::filesystem::create_directory(job.path("none"));
    const Ran none = exported({job.path("none"), "--to", "usda", "--out-dir", job.path("x")});
    EXPECT_EQ(none.code, ExitCode::cannot_read_or_write);
    EXPECT_NE(none.err.find("no file in the folder"), std::string::npos);
}

TEST(ExportVerb, GoesOnAfterASceneThatIsRefused) {
    const JobFolder job;
    const std::string bad = job.write("bad.aec", "VORTAN XR COMPOSITION\n");
    const Ran ran = exported({bad, kShot, "--to", "glb", "--out-dir", job.path("out"), "--json"});
    EXPECT_EQ(ran.code, ExitCode::refused);
    EXPECT_EQ(job.names_in("out"), std::set<std::string>{"courtyard_020.glb"});
    const json document = json::parse(ran.out);
    EXPECT_EQ(document["exit_code"], 1);
    EXPECT_EQ(document["to"], "glb");
    EXPECT_EQ(document["as"], "corrected");
    EXPECT_EQ(document["scenes"][0]["diagnostics"].size(), 1U);
    EXPECT_EQ(document["scenes"][1]["written"], true);
    EXPECT_EQ(document["scenes"][1]["output"], job.path("out/courtyard_020.glb"));
}

TEST(ExportVerb, ListsCorrectionsAndLosses) {
    const std::string scene = kExamples + "/interlaced/lantern_010.aec";
    const Ran ran = exported({scene, "--to", "jsx", "--list-losses", "--json"});
    EXPECT_EQ(ran.code, ExitCode::footage_missing) << "the example lacks a file on purpose";
    const json listed = json::parse(ran.out)["scenes"][0];
    EXPECT_EQ(listed["corrections"][0]["name"], "square-pixels");
    EXPECT_EQ(listed["corrections"][0]["count"], 1);
    EXPECT_EQ(listed["losses"][0]["code"], "handover-footage-missing");
    EXPECT_EQ(listed["losses"][0]["at"]["line"], 21);
    EXPECT_TRUE(listed["output"].is_null());

    const Ran less = exported(
        {scene, "--to", "jsx", "--list-losses", "--without", "square-pixels", "--without", "exact-aspect"});
    EXPECT_EQ(less.out.find("square-pixels"), std::string::npos) << less.out;
    EXPECT_NE(less.out.find("[handover-aspect-cut]"), std::string::npos) << less.out;
    const Ran imported = exported({scene, "--to", "jsx", "--as", "imported", "--list-losses"});
    EXPECT_NE(imported.out.find(": 0 corrections, "), std::string::npos) << imported.out;
    EXPECT_NE(imported.out.find("[handover-curve-between-keys]"), std::string::npos) << imported.out;

    const Ran corrections = exported({"--list-corrections"});
    EXPECT_EQ(corrections.code, ExitCode::fine);
    EXPECT_EQ(std::count(corrections.out.begin(), corrections.out.end(), '\n'), 11);
}

TEST(ExportVerb, FindsFootageAndKeepsTheNameOfTheScene) {
    const JobFolder job;
    job.image("renders/plate.tga");
    const std::string scene = job.scene("shot.aec", "  FILE NRM STRAIGHT \"C:\\old\\plate.tga\"\n");
    const std::vector<std::string> arguments{scene, "--to", "jsx", "--list-losses"};
    EXPECT_EQ(exported(arguments).code, ExitCode::footage_missing);
    std::vector<std::string> searching = arguments;
    searching.insert(searching.end(), {"--search", job.path("renders")});
    const Ran found = exported(searching);
    EXPECT_EQ(found.code, ExitCode::fine) << found.out << found.err;
    EXPECT_TRUE(found.out.starts_with(scene + ": ")) << found.out;
}

}  // namespace
