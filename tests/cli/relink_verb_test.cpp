#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "cli/footage/job_file.h"
#include "cli/job/relink_run.h"
#include "cli/job_folder.h"
#include "cli/json_schema.h"
#include "support/program_run.h"

namespace {

using cli::ExitCode;
using nlohmann::json;

std::vector<std::string> joined(std::vector<std::string> one, const std::vector<std::string>& other) {
    one.insert(one.end(), other.begin(), other.end());
    return one;
}

Ran relink(const std::vector<std::string>& arguments) {
    return run(joined({"relink"}, arguments));
}

// How many placeholders the import of the scene leaves.
int placeholders_in(const std::string& scene) {
    const Ran imported = run({"import", "--bundle", VXR_BUNDLE_PATH, "--json", scene});
    EXPECT_EQ(imported.code, ExitCode::fine) << imported.err;
    int count = 0;
    const json all_footage = json::parse(imported.out).at("footage");
    for (const json& footage : all_footage) {
        count += footage["kind"] == "placeholder" ? 1 : 0;
    }
    return count;
}

TEST(RelinkVerb, ChangesThePathsAndNoOtherByte) {
    const JobFolder job;
    job.image("new/a/plate.tga");
    job.image("new/the \"blue\" set/logo.tga");
    job.image(
        "new/K\xC3\xBC"
        "che.tga");
    job.image("new/glow0003.tga");
    const std::string before =
        "VORTAN XR COMPOSITION\r\nRESOLUTION 4 3 / size\r\nFROM 0 TO 7 RANGE 8 FPS 25\r"
        "COMPOSITION NRM \"C:\\r\\a\\plate.tga\" {\n"
        "  FILE NRM STRAIGHT \"C:\\r\\a\\plate.tga\" / a comment\r\n"
        "\tFILE ADD PREMUL\n\n      \"Disk:the \"blue\" set:logo.tga\"   \n"
        "  FILE NRM PREMUL \"Disk:K\x9F"
        "che.tga\"\n"
        "  FILE NRM PREMUL \"\\\\farm\\gone\\gone.tga\"\n"
        "}\n"
        "FSEQ <-> PREMUL \"/net/glow0001.tga\"\nCAMERA \"c\" { KEY 0 0 0 0 0 0 0 45 }\nrest "
        "\"C:\\r\\a\\plate.tga\"";
    std::string after = before;
    const auto replace = [&](const std::string& written, const std::string& path, std::size_t from) {
        after.replace(after.find(written, from), written.size(), path);
    };
    replace("C:\\r\\a\\plate.tga", job.path("new/a/plate.tga"), after.find("FILE"));
    replace("Disk:the \"blue\" set:logo.tga", job.path("new/the \"blue\" set/logo.tga"), 0);
    replace(
        "Disk:K\x9F"
        "che.tga",
        job.path("new/K\xC3\xBC"
                 "che.tga"),
        0);
    replace("/net/glow0001.tga", job.path("new/glow0003.tga"), 0);
    const std::string scene = job.write("shot.aec", before);

    const Ran ran = relink({scene, "--search", job.path("new"), "-o", job.path("out.aec")});
    EXPECT_EQ(ran.code, ExitCode::footage_missing) << ran.err;
    EXPECT_EQ(job.content("out.aec"), after);
    EXPECT_EQ(job.content("shot.aec"), before);
    EXPECT_NE(ran.out.find("5 paths: 4 found (2 tail, 1 mac-roman, 1 other-frame), 1 missing"),
              std::string::npos)
        << ran.out;
    EXPECT_EQ(placeholders_in(scene), 5);
    EXPECT_EQ(placeholders_in(job.path("out.aec")), 1);
}

TEST(RelinkVerb, WhatLiesBesideTheSceneIsFoundFromAnotherFolderToo) {
    const JobFolder job;
    job.image("job/plate.tga");
    const std::string scene = job.scene("job/shot.aec", "FILE NRM STRAIGHT \"C:\\plate.tga\"\n");
    ASSERT_EQ(relink({scene, "-o", job.path("job/same.aec")}).code, ExitCode::fine);
    EXPECT_EQ(job.content("job/same.aec"), job.content("job/shot.aec")) << "it lies beside the output too";
    ASSERT_EQ(relink({scene, "--out-dir", job.path("out/deep")}).code, ExitCode::fine);
    EXPECT_NE(job.content("out/deep/shot.aec").find('"' + job.path("job/plate.tga") + '"'),
              std::string::npos);
    EXPECT_EQ(placeholders_in(job.path("out/deep/shot.aec")), 0);
}

TEST(RelinkVerb, NeverGuesses) {
    const JobFolder job;
    job.image("a/plate.tga");
    job.image("b/plate.tga");
    const std::string scene = job.scene("shot.aec", "FILE NRM STRAIGHT \"C:\\r\\plate.tga\"\n");
    const std::vector<std::string> searched{scene,         "--search", job.path("b"),      "--search",
                                            job.path("a"), "-o",       job.path("out.aec")};
    const Ran ran = relink(searched);
    EXPECT_EQ(ran.code, ExitCode::footage_missing);
    EXPECT_EQ(job.content("out.aec"), job.content("shot.aec"));
    EXPECT_NE(ran.out.find(job.path("a/plate.tga") + " ?"), std::string::npos) << ran.out;
    EXPECT_NE(ran.out.find(job.path("b/plate.tga") + " ?"), std::string::npos) << ran.out;

    EXPECT_EQ(relink(joined(searched, {"--prefer", "first"})).code, ExitCode::fine);
    EXPECT_NE(job.content("out.aec").find('"' + job.path("b/plate.tga") + '"'), std::string::npos);
}

TEST(RelinkVerb, TellsProgramsTheSame) {
    const JobFolder job;
    job.image("a/plate.tga");
    job.image("a/logo.tga");
    job.image("b/logo.tga");
    const std::string scene =
        job.scene("shot.aec",
                  "FILE NRM STRAIGHT \"C:\\r\\plate.tga\"\nFSEQ NRM STRAIGHT \"\x9F.tga\"\n"
                  "FILE NRM STRAIGHT \"C:\\r\\logo.tga\"\n");
    const Ran ran =
        relink({scene, "--search", job.path("a"), "--search", job.path("b"), "--dry-run", "--json"});
    EXPECT_EQ(ran.code, ExitCode::footage_missing);
    EXPECT_EQ(schema_faults("relink.json", ran.out), "");
    const json document = json::parse(ran.out);
    EXPECT_EQ(document["schema"], 1);
    EXPECT_EQ(document["exit_code"], 4);
    EXPECT_EQ(document["dry_run"], true);
    const json& one = document["scenes"][0];
    EXPECT_EQ(one["scene"], scene);
    EXPECT_EQ(one["written"], false);
    const json& paths = one["paths"];
    ASSERT_EQ(paths.size(), 3U);
    EXPECT_EQ(paths[0]["line"], 5);
    EXPECT_EQ(paths[0]["column"], 19);
    EXPECT_EQ(paths[0]["written"], "C:\\r\\plate.tga");
    EXPECT_EQ(paths[0]["outcome"], "found");
    EXPECT_EQ(paths[0]["rule"], "tail");
    EXPECT_EQ(paths[0]["result"], job.path("a/plate.tga"));
    EXPECT_EQ(paths[1]["written"]["bytes"], "9f2e746761");
    EXPECT_EQ(paths[1]["sequence"], true);
    EXPECT_EQ(paths[1]["outcome"], "missing");
    EXPECT_TRUE(paths[1]["rule"].is_null());
    EXPECT_TRUE(paths[1]["result"].is_null());
    EXPECT_EQ(paths[2]["outcome"], "ambiguous");
    EXPECT_EQ(paths[2]["candidates"][0]["path"], job.path("a/logo.tga"));
    EXPECT_EQ(paths[2]["candidates"][1]["path"], job.path("b/logo.tga"));
}

struct Refusal {
    const char* name;
    std::vector<std::string> output;  ///< "%" is the folder
};

const Refusal kRefusals[] = {
    {"the scene itself", {"-o", "%/job/shot.aec"}},
    {"a link to the scene", {"-o", "%/link.aec"}},
    {"a second name of the scene", {"-o", "%/hard.aec"}},
    {"footage that was found", {"-o", "%/new/plate0001.tga"}},
    {"another frame of that footage", {"-o", "%/new/plate0002.tga"}},
    {"the job file", {"-o", "%/job.toml"}},
    {"the folder of the scene", {"--out-dir", "%/job"}},
    {"that folder through a link", {"--out-dir", "%/folder"}},
    {"the scene as a new job file", {"-o", "%/out.aec", "--save-map", "%/job/shot.aec"}},
    {"one file for both outputs", {"-o", "%/out.aec", "--save-map", "%/out.aec"}},
};

TEST(RelinkVerb, WritesOntoNothingThatItReads) {
    const JobFolder job;
    job.image("new/plate0001.tga");
    job.image("new/plate0002.tga");
    job.write("job.toml", cli::job_file_text({}));
    const std::string scene = job.scene("job/shot.aec", "FSEQ NRM STRAIGHT \"C:\\plate0001.tga\"\n");
    std::filesystem::create_symlink(scene, job.path("link.aec"));
    std::filesystem::create_hard_link(scene, job.path("hard.aec"));
    std::filesystem::create_directory_symlink(job.path("job"), job.path("folder"));
    const std::string text = job.content("job/shot.aec");
    const std::string picture = job.content("new/plate0002.tga");
    for (const Refusal& one : kRefusals) {
        std::vector<std::string> arguments{scene, "--search", job.path("new"), "--use", job.path("job.toml")};
        for (std::string word : one.output) {
            if (word[0] == '%') {
                word.replace(0, 1, job.folder().folder().string());
            }
            arguments.push_back(word);
        }
        const Ran ran = relink(arguments);
        EXPECT_EQ(ran.code, ExitCode::usage) << one.name;
        EXPECT_NE(ran.err.find("would"), std::string::npos) << one.name << ": " << ran.err;
        EXPECT_EQ(job.content("job/shot.aec"), text) << one.name;
        EXPECT_EQ(job.content("new/plate0002.tga"), picture) << one.name;
        EXPECT_FALSE(std::filesystem::exists(job.path("out.aec"))) << one.name;
    }
}

TEST(RelinkVerb, KeepsThePlanOfAJob) {
    const JobFolder job;
    job.image("new/plate.tga");
    job.image("a/logo.tga", 1);
    job.image("b/logo.tga", 2);
    const std::string one = job.scene("one.aec", "FILE NRM STRAIGHT \"C:\\plate.tga\"\n");
    const std::string two =
        job.scene("two.aec", "FILE NRM STRAIGHT \"C:\\plate.tga\"\nFILE NRM STRAIGHT \"\x9F:logo.tga\"\n");
    const Ran planned = relink({one, two, "--search", job.path("new"), "--search", job.path("a"), "--dry-run",
                                "--save-map", job.path("job.toml")});
    EXPECT_EQ(planned.code, ExitCode::fine) << planned.out << planned.err;
    std::filesystem::remove_all(job.path("a"));
    // The search folder is gone, and the job file names it.
    const Ran gone = relink({two, "--use", job.path("job.toml"), "-o", job.path("out.aec")});
    EXPECT_EQ(gone.code, ExitCode::footage_missing) << gone.err;

    std::string problem;
    auto options = cli::parse_job_file(job.content("job.toml"), problem);
    ASSERT_TRUE(options) << problem;
    EXPECT_EQ(options->kept.at("C:\\plate.tga"), job.path("new/plate.tga"));
    options->kept["\x9F:logo.tga"] = job.path("b/logo.tga");
    job.write("job.toml", cli::job_file_text(*options));
    EXPECT_EQ(relink({one, two, "--use", job.path("job.toml"), "--out-dir", job.path("out")}).code,
              ExitCode::fine);
    EXPECT_NE(job.content("out/two.aec").find(job.path("b/logo.tga")), std::string::npos);
    EXPECT_EQ(placeholders_in(job.path("out/one.aec")) + placeholders_in(job.path("out/two.aec")), 0);
}

TEST(RelinkVerb, ScenesOfOneNameKeepTheirFolders) {
    const JobFolder job;
    const std::string one = job.scene("job/a/shot.aec", "");
    const std::string two = job.scene("job/b/shot.aec", "");
    const std::string three = job.scene("job/b/other.aec", "");
    ASSERT_EQ(relink({one, three, "--out-dir", job.path("flat")}).code, ExitCode::fine);
    EXPECT_EQ(job.names_in("flat"), (std::set<std::string>{"other.aec", "shot.aec"}));
    ASSERT_EQ(relink({one, two, three, "--out-dir", job.path("deep")}).code, ExitCode::fine);
    EXPECT_EQ(job.names_in("deep"), (std::set<std::string>{"a", "b"}));
    EXPECT_EQ(job.names_in("deep/b"), (std::set<std::string>{"other.aec", "shot.aec"}));
}

TEST(RelinkVerb, RefusesByNameWhatTheLanguageCannotSay) {
    const JobFolder job;
    job.image("new/two\nlines/plate.tga");
    const std::string scene = job.scene("shot.aec", "FILE NRM STRAIGHT \"C:\\plate.tga\"\n");
    const Ran ran = relink({scene, "--search", job.path("new"), "-o", job.path("out.aec")});
    EXPECT_EQ(ran.code, ExitCode::footage_missing);
    EXPECT_NE(ran.err.find("two\\x0alines/plate.tga\" cannot be written into a scene"), std::string::npos)
        << ran.err;
    EXPECT_EQ(job.content("out.aec"), job.content("shot.aec"));
}

TEST(RelinkVerb, ARefusedSceneIsNotWrittenAndTheOthersAre) {
    const JobFolder job;
    const std::string good = job.scene("good.aec", "");
    const std::string bad = job.write("bad.aec", "VORTAN XR COMPOSITION\nFPS abc\n");
    const Ran ran = relink({bad, good, job.path("gone.aec"), "--out-dir", job.path("out")});
    EXPECT_EQ(ran.code, ExitCode::cannot_read_or_write);
    EXPECT_NE(ran.err.find("bad.aec:2:5: error: expected a number"), std::string::npos) << ran.err;
    EXPECT_EQ(job.names_in("out"), (std::set<std::string>{"good.aec"}));
    EXPECT_EQ(relink({bad, good, "--out-dir", job.path("out")}).code, ExitCode::refused);
}

TEST(RelinkVerb, UsageIsChecked) {
    const JobFolder job;
    const std::string scene = job.scene("shot.aec", "");
    const struct {
        const char* name;
        std::vector<std::string> arguments;
        const char* message;
    } cases[] = {
        {"no output", {scene}, "-o, --out-dir or --dry-run is required"},
        {"two kinds of output", {scene, "-o", "a", "--out-dir", "b"}, "exclude each other"},
        {"one output for two scenes", {scene, scene, "-o", job.path("a")}, "-o is for one SCENE"},
        {"a search folder that is none", {scene, "--search", scene, "--dry-run"}, "is not a folder"},
        {"a second folder after --search",
         {scene, "--search", job.path(""), job.path(""), "--dry-run"},
         "one each"},
        {"a map without a side", {scene, "--map", "C:=", "--dry-run"}, "is not FROM=TO"},
        {"the standard input", {"-", "--dry-run"}, "the standard input has no name"},
        {"an unknown preference", {scene, "--prefer", "oldest", "--dry-run"}, "oldest"},
        {"no terminal", {scene, "--interactive", "--dry-run"}, "needs a terminal"},
    };
    for (const auto& one : cases) {
        const Ran ran = relink(one.arguments);
        EXPECT_EQ(ran.code, ExitCode::usage) << one.name;
        EXPECT_NE(ran.err.find(one.message), std::string::npos) << one.name << ": " << ran.err;
    }
}

TEST(RelinkVerb, AsksUntilItIsAnswered) {
    cli::SoughtFootage footage;
    footage.at = {100, 7, 3};
    footage.written = "C:\\plate.tga";
    footage.finding.candidates = {{"/a/plate.tga", cli::FindingRule::tail, 0},
                                  {"/b/plate.tga", cli::FindingRule::tail, 1}};
    cli::RelinkedScene scene;
    scene.file = "shot.aec";
    const struct {
        const char* name;
        const char* typed;
        std::optional<std::size_t> answer;
    } cases[] = {
        {"the first", "1\n", 0},
        {"the last, after numbers that are none", "0\n3\nx\n1x\n99999999999999999999\n2\n", 1},
        {"nothing", "\n1\n", std::nullopt},
        {"the end", "", std::nullopt},
    };
    for (const auto& one : cases) {
        std::istringstream in(one.typed);
        std::ostringstream out;
        EXPECT_EQ(ask_for_candidate(in, out, scene, footage), one.answer) << one.name;
        EXPECT_EQ(
            out.str().find("shot.aec:7:3: \"C:\\plate.tga\" may be\n  1  /a/plate.tga\n  2  /b/plate.tga\n"),
            0U)
            << out.str();
    }
}

TEST(Finding, ImportShowsTheProjectAsIfRelinked) {
    const JobFolder job;
    job.image("new/plate.tga");
    job.image("new/s.0001.tga");
    job.image("new/s.0002.tga");
    const std::string scene = job.scene("job/shot.aec",
                                        "FILE NRM STRAIGHT \"C:\\plate.tga\"\n"
                                        "FSEQ NRM STRAIGHT \"D:\\s.0001.tga\"\n");
    const std::vector<std::string> command{"import", "--bundle", VXR_BUNDLE_PATH, "--json", scene};
    const std::set<std::string> before = job.names_in("job");
    const Ran ran = run(joined(command, {"--search", job.path("new")}));
    EXPECT_EQ(ran.code, ExitCode::fine) << ran.err;
    const json document = json::parse(ran.out);
    EXPECT_EQ(document["footage"][0]["kind"], "file");
    EXPECT_EQ(document["footage"][0]["path"], job.path("new/plate.tga"));
    EXPECT_EQ(document["footage"][1]["name"], "s.[0001-0002].tga");
    EXPECT_EQ(document["import"]["file"], scene);
    EXPECT_EQ(document["import"]["notes"], json::array());
    EXPECT_EQ(job.names_in("job"), before) << "nothing is written";

    const Ran mapped = run(joined(command, {"--map", "C:=" + job.path("new")}));
    EXPECT_EQ(json::parse(mapped.out)["footage"][1]["kind"], "placeholder");
    EXPECT_NE(mapped.out.find("`vxr check " + scene + "`"), std::string::npos)
        << "notes name the scene itself";
}

TEST(Finding, CheckIsSilentAboutFootageThatIsFound) {
    const JobFolder job;
    job.image("new/plate.tga");
    job.image("new/s.0001.tga");
    job.image("new/s.0003.tga");
    job.image("a/logo.tga");
    job.image("b/logo.tga");
    const auto check = [&](const char* path, const std::vector<std::string>& where) {
        const std::string scene = job.scene("shot.aec", std::string("FSEQ NRM STRAIGHT \"") + path + "\"\n");
        return run(joined({"check", scene}, where)).err;
    };
    EXPECT_NE(check("C:\\s.0001.tga", {}).find("[footage-missing]"), std::string::npos);
    const std::string found = check("C:\\s.0001.tga", {"--search", job.path("new")});
    EXPECT_EQ(found.find("[footage-missing]"), std::string::npos) << found;
    EXPECT_NE(found.find("[sequence-gap]"), std::string::npos) << "what was found is checked\n" << found;
    const std::string several = check("C:\\logo.tga", {"--search", job.path("")});
    EXPECT_NE(several.find("it may be \"" + job.path("a/logo.tga") + '"'), std::string::npos) << several;
    EXPECT_NE(several.find("it may be \"" + job.path("b/logo.tga") + '"'), std::string::npos) << several;
}

TEST(Finding, FrameDrawsTheTextureWhereItIs) {
    const JobFolder job;
    job.folder().make_folder("a");
    job.folder().make_folder("b");
    std::filesystem::copy_file(VXR_EXAMPLES_DIR "/textures/flat_grey_alpha.txl", job.path("a/bark.txl"));
    const std::vector<std::string> command{
        "frame",    "--bundle",  VXR_BUNDLE_PATH, "Disk:old:bark.txl", "-o", job.path("frame.tga"),
        "--search", job.path("")};
    EXPECT_EQ(run(command).code, ExitCode::fine);
    EXPECT_TRUE(std::filesystem::exists(job.path("frame.tga")));
    std::filesystem::copy_file(job.path("a/bark.txl"), job.path("b/bark.txl"));
    const Ran several = run(command);
    EXPECT_EQ(several.code, ExitCode::footage_missing);
    EXPECT_NE(several.err.find("Disk:old:bark.txl may be " + job.path("b/bark.txl")), std::string::npos)
        << several.err;
}

TEST(JobFile, ReadsWhatItWrites) {
    cli::FinderOptions options;
    options.search = {"/mnt/\"new\"", "/mnt/\xFF"};
    options.maps = {{"C:\\renders", "/mnt/c"},
                    {"Disk:K\x9F"
                     "che",
                     "/mnt/d"}};
    options.prefer = cli::Preference::largest;
    options.kept = {{"\x8E\n\t:plate.tga", "/mnt/'a'/\x01.tga"}, {"C:\\logo.tga", "/mnt/\xC3\xBC.tga"}};
    std::string problem;
    const auto read = cli::parse_job_file(cli::job_file_text(options), problem);
    ASSERT_TRUE(read) << problem;
    EXPECT_EQ(read->search, options.search);
    ASSERT_EQ(read->maps.size(), 2U);
    EXPECT_EQ(read->maps[1].from, options.maps[1].from);
    EXPECT_EQ(read->maps[1].to, options.maps[1].to);
    EXPECT_EQ(read->prefer, options.prefer);
    EXPECT_EQ(read->kept, options.kept);
}

TEST(JobFile, SaysWhatIsWrongWithAnother) {
    const struct {
        const char* name;
        const char* text;
        const char* problem;
    } cases[] = {
        {"nothing", "", "schema is not 1"},
        {"no TOML", "schema = 1\nmap = [", "line 2, column"},
        {"a later schema", "schema = 2", "schema is not 1"},
        {"a map without a side", "schema = 1\n[[map]]\nfrom = \"C:\"", "an entry has no to"},
        {"a map that is no list", "schema = 1\nmap = 3", "map is not a list"},
        {"a list of numbers", "schema = 1\nfootage = [1]", "an entry that is not a table"},
        {"bytes that are none", "schema = 1\n[[footage]]\nwritten_bytes = \"8X\"\npath = \"/a\"",
         "hexadecimal"},
        {"half a byte", "schema = 1\n[[footage]]\nwritten_bytes = \"8e9\"\npath = \"/a\"", "hexadecimal"},
        {"an unknown preference", "schema = 1\nprefer = \"oldest\"", "prefer is not"},
    };
    for (const auto& one : cases) {
        std::string problem;
        EXPECT_FALSE(cli::parse_job_file(one.text, problem)) << one.name;
        EXPECT_NE(problem.find(one.problem), std::string::npos) << one.name << ": " << problem;
    }
}

}  // namespace
