// What counts in a check, which files it reads, and how much it says.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/footage/job_file.h"
#include "cli/job_folder.h"
#include "cli/verb/check_inputs.h"
#include "support/child_process.h"
#include "support/program_run.h"

namespace {

using cli::ExitCode;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

std::vector<std::string> joined(std::vector<std::string> words, const std::vector<std::string>& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

std::size_t lines_in(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

// One scene of each severity, and one of both kinds that end with an exit code of their own.
struct Scenes {
    JobFolder job;
    std::string sound = job.scene("sound.aec", "");
    std::string note = job.scene("note.aec", "}\nLIGHT \"L\" { TYPE SPOT SHADOW SOFT KEY 1 0 0 0 0 0 0 ");
    std::string warning = job.scene("warning.aec", "}\nNULL \"N\" { KEY 20 0 0 0 0 0 0 ");
    std::string loss = job.scene("loss.aec", "", "ASPECT 1.0667\n");
    std::string incomplete = job.scene("incomplete.aec", "FILE NRM STRAIGHT \"C:\\gone.tga\"\n");
    std::string unreadable_footage = [this] {
        job.write("notes.tga", "no picture");
        return job.scene("unreadable_footage.aec", "FILE NRM STRAIGHT \"C:\\notes.tga\"\n");
    }();
    std::string refused = job.write("refused.aec", "VORTAN XR COMPOSITION\nFPS abc\n");
};

TEST(CheckOptions, WhatFailOnAndIgnoreNameDecides) {
    const Scenes scenes;
    using Words = std::vector<std::string>;
    const struct {
        const char* name;
        Words options;
        const std::string& scene;
        int exit_code;
        const char* verdict;
    } cases[] = {
        {"nothing is wrong", {}, scenes.sound, 0, "ok"},
        {"a note is accepted", {}, scenes.note, 0, "ok, 1 note"},
        {"a warning is accepted", {}, scenes.warning, 0, "ok, 1 warning"},
        {"a loss is accepted", {}, scenes.loss, 0, "ok, 1 loss"},
        {"missing footage has its exit code", {}, scenes.incomplete, 4, "incomplete, 1 loss"},
        {"an import that ends midway", {}, scenes.unreadable_footage, 1, "refused"},
        {"a mistake", {}, scenes.refused, 1, "refused"},

        {"error is the default", {"--fail-on", "error"}, scenes.loss, 0, "ok, 1 loss"},
        {"a loss when it counts", {"--fail-on", "loss"}, scenes.loss, 1, "refused, 1 loss"},
        {"missing footage is a loss", {"--fail-on", "loss"}, scenes.incomplete, 1, "refused, 1 loss"},
        {"a warning is no loss", {"--fail-on", "loss"}, scenes.warning, 0, "ok, 1 warning"},
        {"a loss is more than a warning", {"--fail-on", "warning"}, scenes.loss, 1, "refused, 1 loss"},
        {"a warning when it counts", {"--fail-on=warning"}, scenes.warning, 1, "refused, 1 warning"},
        {"a note is no warning", {"--fail-on", "warning"}, scenes.note, 0, "ok, 1 note"},
        {"a note when it counts", {"--fail-on", "note"}, scenes.note, 1, "refused, 1 note"},
        {"nothing to count", {"--fail-on", "note"}, scenes.sound, 0, "ok"},
        {"strictly, a warning", {"--strict"}, scenes.warning, 1, "refused, 1 warning"},
        {"strictly, a note", {"--strict"}, scenes.note, 0, "ok, 1 note"},

        {"this code", {"--fail-on", "shadow-kind-not-sent"}, scenes.note, 1, "refused, 1 note"},
        {"another code", {"--fail-on", "shadow-kind-not-sent"}, scenes.loss, 0, "ok, 1 loss"},
        {"the second of two codes", {"--fail-on", "name-cut,aspect-cut"}, scenes.loss, 1, "refused, 1 loss"},
        {"codes of two options",
         {"--fail-on", "aspect-cut", "--fail-on", "name-cut"},
         scenes.loss,
         1,
         "refused, 1 loss"},
        {"a code beside a severity",
         {"--fail-on", "loss,shadow-kind-not-sent"},
         scenes.note,
         1,
         "refused, 1 note"},
        {"errors whatever is named", {"--fail-on", "name-cut"}, scenes.refused, 1, "refused"},

        {"what is ignored does not count",
         {"--fail-on", "loss", "--ignore", "aspect-cut"},
         scenes.loss,
         0,
         "ok"},
        {"the second of two", {"--ignore", "name-cut,aspect-cut"}, scenes.loss, 0, "ok"},
        {"missing footage that nobody misses", {"--ignore", "footage-missing"}, scenes.incomplete, 0, "ok"},
        {"footage that only the host reads",
         {"--ignore", "footage-unreadable"},
         scenes.unreadable_footage,
         0,
         "ok"},
        {"a mistake in the file cannot be ignored",
         {"--ignore", "expected-number"},
         scenes.refused,
         1,
         "refused"},
    };
    for (const auto& one : cases) {
        const Ran ran = run(joined({"check", one.scene}, one.options));
        EXPECT_EQ(static_cast<int>(ran.code), one.exit_code) << one.name << '\n' << ran.err;
        EXPECT_EQ(ran.out, one.scene + ": " + one.verdict + '\n') << one.name << '\n' << ran.err;
    }
}

TEST(CheckOptions, UnknownWordsAreWrongUsage) {
    const struct {
        const char* name;
        std::vector<std::string> options;
        const char* message;
    } cases[] = {
        {"a severity misspelt",
         {"--fail-on", "los"},
         "--fail-on: no severity and no code is called \"los\"; did you mean \"loss\"?"},
        {"a code misspelt behind a good one",
         {"--fail-on", "name-cut,footage-mising"},
         "--fail-on: no severity and no code is called \"footage-mising\"; did you mean "
         "\"footage-missing\"?"},
        {"nothing between commas",
         {"--fail-on", "loss,"},
         "--fail-on: no severity and no code is called \"\""},
        {"an ignored code misspelt",
         {"--ignore", "aspct-cut"},
         "--ignore: no code is called \"aspct-cut\"; did you mean \"aspect-cut\"?"},
        {"severities are not ignored", {"--ignore", "note"}, "--ignore: no code is called \"note\""},
        {"quiet and verbose", {"--quiet", "--verbose"}, "--quiet and --verbose exclude each other"},
        {"NULs in no list", {"--null"}, "--null needs --files-from"},
        {"when to show progress", {"--progress", "alway"}, "--progress: \"alway\" is not auto or never"},
        {"more jobs than there may be", {"-j", "257"}, "--jobs: \"257\" is not a number from 0 to 256"},
    };
    const Scenes scenes;
    for (const auto& one : cases) {
        const Ran ran = run(joined({"check", scenes.sound}, one.options));
        EXPECT_EQ(ran.code, ExitCode::usage) << one.name;
        EXPECT_THAT(ran.err, HasSubstr(std::string("vxr: error: ") + one.message)) << one.name;
        EXPECT_EQ(ran.out, "") << one.name;
    }
    EXPECT_THAT(run({"texture", "check", "--ignore", "footage-missing", "a.txl"}).err,
                HasSubstr("no code is called \"footage-missing\""))
        << "each verb has its codes";
}

TEST(ProjectFile, TheNearestCountsAndOptionsWin) {
    const JobFolder job;
    const std::string aspect = "ASPECT 1.0667\n";
    const std::string above = job.scene("above.aec", "", aspect);
    const std::string inside = job.scene("show/shot/inside.aec", "", aspect);
    const std::string nearer = job.scene("show/near/nearer.aec", "", aspect);
    job.write("show/.vxr.toml", "[check]\nfail-on = \"loss\"\n");
    job.write("show/near/.vxr.toml", "[check]\nignore = [\"name-cut\", \"aspect-cut\"]\n");
    EXPECT_EQ(run({"check", "-q", above, inside, nearer}).out,
              above + ": ok, 1 loss\n" + inside + ": refused, 1 loss\n" + nearer + ": ok\n");
    EXPECT_EQ(run({"check", inside}).code, ExitCode::refused);
    EXPECT_EQ(run({"check", "--fail-on", "name-cut", inside}).code, ExitCode::fine)
        << "instead of the file's";
    EXPECT_EQ(run({"check", "--strict", nearer}).code, ExitCode::fine) << "the file's ignore stays";
    EXPECT_EQ(run({"check", "--strict", "--ignore", "name-cut", nearer}).code, ExitCode::refused);
    EXPECT_EQ(run({"check", "--ignore", "aspect-cut", inside}).code, ExitCode::fine);
}

TEST(ProjectFile, MistakesNameTheFileAndTheLine) {
    const struct {
        const char* name;
        const char* text;
        const char* message;
    } cases[] = {
        {"no TOML", "[check]\nfail-on =\n", ":2: "},
        {"not UTF-8", "[check]\n# \xff\n", ":2: "},
        {"an unknown table", "\n[chek]\n", ":2: nothing is called \"chek\" here; did you mean \"check\"?"},
        {"an unknown key", "[check]\n\nfail_on = \"loss\"\n",
         ":3: nothing is called \"fail_on\" here; did you mean \"fail-on\"?"},
        {"an unknown key of the other verb", "[texture-check]\nstrict = true\n",
         ":2: nothing is called \"strict\" here"},
        {"a key outside of tables", "ignore = \"name-cut\"\n", ":1: nothing is called \"ignore\" here"},
        {"no table", "check = 1\n", ":1: check is not a table; write [check] on a line of its own"},
        {"a number", "[check]\nfail-on = 1\n", ":2: fail-on is neither a text nor a list of texts"},
        {"a number in a list", "[check]\nignore = [\n  \"name-cut\",\n  7]\n",
         ":4: ignore is neither a text nor a list of texts"},
        {"an unknown code", "[check]\nignore = [\n  \"name-cut\",\n  \"nam-cut\"]\n",
         ":4: no code is called \"nam-cut\"; did you mean \"name-cut\"?"},
        {"an unknown severity", "[check]\nfail-on = \"looss\"\n",
         ":2: no severity and no code is called \"looss\"; did you mean \"loss\"?"},
    };
    for (const auto& one : cases) {
        const JobFolder job;
        const std::string scene = job.scene("shot.aec", "");
        const std::string file = job.write(".vxr.toml", one.text);
        for (const char* option : {"--quiet", "--strict", "--ignore=name-cut"}) {
            const Ran ran = run({"check", option, scene});
            EXPECT_EQ(ran.code, ExitCode::cannot_read_or_write) << one.name;
            EXPECT_THAT(ran.err, HasSubstr("vxr: error: " + file + one.message)) << one.name;
            EXPECT_EQ(ran.out, "") << one.name;
        }
    }
}

TEST(ProjectFile, IsNeverWaitedFor) {
    const JobFolder job;
    const std::string scene = job.scene("shot.aec", "");
    ASSERT_EQ(run_process({"mkfifo", job.path(".vxr.toml")}).exit_code, 0);
    const Ran ran = run({"check", scene});
    EXPECT_EQ(ran.code, ExitCode::cannot_read_or_write);
    EXPECT_THAT(ran.err, HasSubstr(".vxr.toml:1: this is not a readable regular file of up to 1 MiB"));
}

TEST(ProjectFile, HasATableForTextures) {
    const auto verbs =
        cli::parse_project_file("[check]\nignore = []\n[texture-check]\nfail-on = \"alpha-straight\"\n");
    ASSERT_EQ(verbs.size(), 2U);
    EXPECT_TRUE(verbs.at("check").ignore.has_value());
    EXPECT_FALSE(verbs.at("check").fail_on.has_value());
    EXPECT_EQ(verbs.at("texture-check").fail_on->at(0).text, "alpha-straight");

    const JobFolder job;
    std::filesystem::copy(VXR_EXAMPLES_DIR "/textures/tiny.txl", job.path("tiny.txl"));
    EXPECT_EQ(run({"texture", "check", job.path("tiny.txl")}).code, ExitCode::fine);
    job.write(".vxr.toml", "[texture-check]\nfail-on = \"alpha-straight\"\n");
    EXPECT_EQ(run({"texture", "check", job.path("tiny.txl")}).code, ExitCode::refused);
    EXPECT_EQ(run({"check", job.scene("shot.aec", "")}).code, ExitCode::fine) << "not its table";
}

TEST(CheckInputs, FoldersAreSearchedInOrder) {
    const JobFolder job;
    for (const char* name : {"job/b.aec", "job/A.AEC", "job/c.txt", "job/._b.aec", "job/sub/d.aec",
                             "job/sub/deep/e.aec", "job/.git/f.aec", "job/aec", "other/g.aec"}) {
        job.scene(name, "");
    }
    job.folder().make_folder("empty");
    job.folder().make_folder("job/folder.aec");
    std::filesystem::create_directory_symlink(job.path("other"), job.path("job/link"));
    std::filesystem::create_directory_symlink(job.path("job"), job.path("job/sub/circle"));
    std::filesystem::create_symlink(job.path("other/g.aec"), job.path("job/linked.aec"));
    const auto found = [&](bool recursive, const std::vector<std::string>& names) {
        std::vector<std::string> paths;
        for (const std::string& name : names) {
            paths.push_back(job.path(name));
        }
        std::vector<std::string> files;
        for (const std::string& file : cli::find_inputs({paths, {}, false, recursive}, ".aec").files) {
            files.push_back(file.substr(job.path("").size()));
        }
        return files;
    };
    EXPECT_THAT(found(false, {"job"}), ElementsAre("job/A.AEC", "job/b.aec", "job/linked.aec"));
    EXPECT_THAT(found(true, {"job"}), ElementsAre("job/A.AEC", "job/b.aec", "job/linked.aec", "job/sub/d.aec",
                                                  "job/sub/deep/e.aec"));
    EXPECT_THAT(found(false, {"other", "job/c.txt", "gone.aec", "job/link"}),
                ElementsAre("other/g.aec", "job/c.txt", "gone.aec", "job/link/g.aec"))
        << "what is named is read, whatever it is called";

    const Ran nothing = run({"check", job.path("empty"), job.path("other")});
    EXPECT_EQ(nothing.code, ExitCode::cannot_read_or_write);
    EXPECT_EQ(nothing.out, job.path("other/g.aec") + ": ok\n");
    EXPECT_EQ(nothing.err, "vxr: error: no file in the folder \"" + job.path("empty") +
                               "\" ends with .aec; --recursive searches the folders below it, too\n");
    EXPECT_EQ(run({"check", "--json", "--recursive", job.path("empty")}).code,
              ExitCode::cannot_read_or_write);
}

TEST(CheckInputs, ListsNameFilesAndFolders) {
    const JobFolder job;
    job.scene("a.aec", "");
    job.scene("with line\nend.aec", "");
    job.scene("sub/b.aec", "");
    job.write("lines", "sub\r\n\na.aec\ngone.aec");
    job.write("nulls", std::string("with line\nend.aec\0a.aec\0", 24));
    const auto check = [&](const std::string& script) {
        return run_process({"sh", "-c", "cd " + job.path("") + " && " + script});
    };
    const std::string vxr = std::string(VXR_PROGRAM) + " check --quiet ";
    const ProcessResult lines = check(vxr + "--files-from lines");
    EXPECT_EQ(lines.out, "sub/b.aec: ok\na.aec: ok\ngone.aec: unreadable\n") << lines.err;
    EXPECT_EQ(lines.exit_code, 3);
    EXPECT_EQ(check(vxr + "--files-from nulls --null").out, "with line\\x0aend.aec: ok\na.aec: ok\n");
    EXPECT_EQ(check(vxr + "sub --files-from - < nulls -0").out,
              "sub/b.aec: ok\nwith line\\x0aend.aec: ok\na.aec: ok\n");
    EXPECT_EQ(check(vxr + "--files-from - < /dev/null").exit_code, 0) << "nothing to do is done";
    EXPECT_EQ(check(vxr + "--files-from - -").exit_code, 2) << "the standard input is there once";
    const ProcessResult no_list = check(vxr + "--files-from nowhere");
    EXPECT_EQ(no_list.exit_code, 3);
    EXPECT_THAT(no_list.err, HasSubstr("the list of files \"nowhere\" cannot be read"));
}

// As many scenes as are not described one by one: the first without a loss, the n-th with n more paths that
// lead nowhere.
std::vector<std::string> many_scenes(const JobFolder& job, int count) {
    std::vector<std::string> scenes;
    for (int i = 0; i < count; ++i) {
        std::string entries;
        for (int path = 0; path < i; ++path) {
            entries += "FILE NRM STRAIGHT \"C:\\gone_" + std::to_string(path) + ".tga\"\n";
        }
        scenes.push_back(job.scene("s" + std::to_string(10 + i) + ".aec", entries));
    }
    return scenes;
}

TEST(CheckOutput, SummaryCountsEachCodeAndNamesTheFilesHitMost) {
    const JobFolder job;
    const std::vector<std::string> scenes = many_scenes(job, 11);
    const Ran ran = run(joined({"check"}, scenes));
    EXPECT_EQ(ran.code, ExitCode::footage_missing);
    EXPECT_EQ(ran.out,
              "11 files: 1 ok, 10 incomplete\n\n"
              "severity  count  code             files  most in\n"
              "loss         55  footage-missing     10  " +
                  scenes[10] + " (10), " + scenes[9] + " (9), " + scenes[8] + " (8)\n");
    EXPECT_EQ(ran.err, "vxr: note: --verbose shows every place\n");

    const json summary = json::parse(run(joined({"check", "--json"}, scenes)).out)["summary"];
    EXPECT_EQ(summary, json({{"files", 11},
                             {"ok", 1},
                             {"incomplete", 10},
                             {"refused", 0},
                             {"unreadable", 0},
                             {"ignored", 0},
                             {"codes",
                              {{{"code", "footage-missing"},
                                {"severity", "loss"},
                                {"count", 55},
                                {"files", 10},
                                {"most",
                                 {{{"file", scenes[10]}, {"count", 10}},
                                  {{"file", scenes[9]}, {"count", 9}},
                                  {{"file", scenes[8]}, {"count", 8}}}}}}}}));
    EXPECT_EQ(json::parse(run(joined({"check", "--json", "--ignore", "footage-missing"}, scenes))
                              .out)["summary"]["ignored"],
              55);
}

TEST(CheckOutput, SeriousCodesComeFirst) {
    const Scenes scenes;
    const Ran ran = run({"check", scenes.note, scenes.warning, scenes.sound, scenes.loss, scenes.refused,
                         scenes.incomplete, scenes.incomplete, scenes.job.path("gone.aec")});
    EXPECT_EQ(ran.code, ExitCode::cannot_read_or_write);
    const std::string summary = ran.out.substr(ran.out.find("\n\n") + 2);
    std::vector<std::string> codes;
    for (const char* code : {"cannot-read", "expected-number", "footage-missing", "aspect-cut",
                             "key-outside-range", "shadow-kind-not-sent"}) {
        EXPECT_THAT(summary, HasSubstr(code));
        codes.push_back(std::to_string(1000 + summary.find(code)));
    }
    EXPECT_TRUE(std::is_sorted(codes.begin(), codes.end())) << summary;
    EXPECT_EQ(summary.substr(0, summary.find('\n')), "8 files: 4 ok, 2 incomplete, 1 refused, 1 unreadable");
}

TEST(CheckOutput, TenPlacesOfACodeAreEnough) {
    const JobFolder job;
    const std::vector<std::string> scenes = many_scenes(job, 6);  // 15 paths
    const Ran ran = run(joined({"check"}, scenes));
    std::size_t places = 0;
    for (std::size_t at = 0; (at = ran.err.find(": loss: ", at)) != std::string::npos; ++at) {
        ++places;
    }
    EXPECT_EQ(places, 10U);
    EXPECT_THAT(ran.err, testing::EndsWith(
                             "\nand 5 more [footage-missing]\nvxr: note: --verbose shows every place\n"));
    EXPECT_EQ(lines_in(ran.out), 6U + 1 + 4) << "a line for each file, and the summary";

    const Ran verbose = run(joined({"check", "--verbose"}, scenes));
    EXPECT_THAT(verbose.err, Not(HasSubstr("more")));
    EXPECT_THAT(verbose.err, HasSubstr("gone_4.tga"));
    EXPECT_EQ(verbose.out, ran.out);
}

TEST(CheckOutput, ErrorsOfManyFilesAreALineEach) {
    const JobFolder job;
    std::vector<std::string> scenes = many_scenes(job, 3);
    for (int i = 0; i < 12; ++i) {
        scenes.push_back(job.write("bad" + std::to_string(i) + ".aec", "VORTAN XR COMPOSITION\nFPS abc\n"));
    }
    const Ran ran = run(joined({"check"}, scenes));
    EXPECT_EQ(ran.code, ExitCode::refused);
    EXPECT_EQ(lines_in(ran.err), 10U + 2) << ran.err;
    EXPECT_THAT(ran.err, HasSubstr("bad9.aec:2:5: error: expected a number after FPS, found \"abc\" "
                                   "[expected-number]\nand 2 more errors\n"));
    EXPECT_THAT(ran.err, Not(HasSubstr("bad10.aec")));

    const Ran quiet = run(joined({"check", "--quiet"}, scenes));
    EXPECT_EQ(quiet.err, "");
    EXPECT_EQ(lines_in(quiet.out), scenes.size());
    const Ran verbose = run(joined({"check", "--verbose"}, scenes));
    EXPECT_THAT(verbose.err, HasSubstr("bad11.aec:2:5: error"));
    EXPECT_EQ(lines_in(verbose.out), scenes.size() + 1 + 5) << verbose.out;
}

TEST(CheckOutput, IsTheSameWithAnyNumberOfJobs) {
    const JobFolder job;
    std::vector<std::string> scenes = many_scenes(job, 9);
    scenes.push_back(job.path("gone.aec"));
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{}, {"--verbose"}, {"--quiet"}, {"--json"}, {"--search", job.path("")}}) {
        const Ran one = run(joined(joined({"check", "--jobs", "1"}, options), scenes));
        const Ran several = run(joined(joined({"check", "--jobs", "4"}, options), scenes));
        EXPECT_EQ(several.code, one.code);
        EXPECT_EQ(several.out, one.out);
        EXPECT_EQ(several.err, one.err);
    }
}

TEST(CheckOutput, ProgressIsForTerminalsAndForThoseWhoWantIt) {
    const JobFolder job;
    const std::vector<std::string> scenes = many_scenes(job, 3);
    const auto shown = [&](const std::vector<std::string>& options) {
        std::ostringstream out;
        std::ostringstream err;
        cli::Terminal terminal{out, err, cli::Paint(false), cli::Paint(false), true};
        cli::run_program(joined(joined({"check"}, options), scenes), terminal);
        return err.str();
    };
    EXPECT_THAT(shown({}), HasSubstr("[2/3] "));
    EXPECT_THAT(shown({"--jobs", "2"}), HasSubstr("] 3/3"));
    for (const char* option : {"--progress=never", "--quiet"}) {
        EXPECT_THAT(shown({option}), Not(HasSubstr("/3"))) << option;
    }
    EXPECT_THAT(run(joined({"check"}, scenes)).err, Not(HasSubstr("/3"))) << "no terminal";
}

TEST(CheckOutput, TexturesHaveCodesFoldersAndASummary) {
    const Ran codes = run({"texture", "check", "--list-codes"});
    EXPECT_EQ(codes.code, ExitCode::fine);
    EXPECT_THAT(codes.out, HasSubstr("\nrow-cleared: loss: "));
    EXPECT_THAT(codes.out, HasSubstr("\nchunk-skipped: warning: "));
    EXPECT_THAT(codes.out, HasSubstr("\nalpha-straight: note: "));
    EXPECT_EQ(codes.out.substr(0, 20), "cannot-open: error: ");
    EXPECT_EQ(json::parse(run({"texture", "check", "--list-codes", "--json"}).out)["codes"].size(),
              lines_in(codes.out));

    const std::string folder = VXR_EXAMPLES_DIR "/textures";
    EXPECT_EQ(run({"texture", "check", "--quiet", "--fail-on", "loss", folder}).code, ExitCode::refused);
    EXPECT_EQ(run({"texture", "check", "--quiet", "--fail-on", "loss", "--ignore",
                   "row-cleared,row-repeated,rows-missing", folder})
                  .code,
              ExitCode::fine);
    EXPECT_THAT(run({"texture", "check", folder}).out, HasSubstr("warning       8  chunk-skipped"));
}

}  // namespace
