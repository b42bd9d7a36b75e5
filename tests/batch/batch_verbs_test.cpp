// Batches from the plan to the results, with processes that go wrong, by the program itself.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "support/child_process.h"
#include "support/file_content.h"
#include "support/made_texture.h"
#include "support/temporary_folder.h"
#include "texture/value/texture_file.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

const std::string kConvert =
    "[limits]\nseconds = 60\nmemory-mib = 300\n"
    "[[task]]\nverb = 'texture convert'\nfiles = ['in']\nrecursive = true\nout-dir = 'out'\n"
    "extension = 'txl'\n";  // OpenImageIO, which takes seven times as long to load, is not needed

class Batch : public testing::Test {
  protected:
    void write_textures(const std::vector<std::string>& names) const {
        folder_.make_folder("in/below");
        folder_.make_folder("faults");
        for (const std::string& name : names) {
            ASSERT_FALSE(
                write_texture(folder_.path("in/" + name), made_texture(8, 8, Texture::kRgb, 0)).has_value());
            // Long ago, so that their state tells whether they changed.
            fs::last_write_time(folder_.path("in/" + name),
                                fs::file_time_type::clock::now() - std::chrono::hours(1));
        }
    }

    /// Runs a script of bash in the folder, in which `vxr` is the program.
    [[nodiscard]] ProcessResult bash(const std::string& script) const {
        const std::string path = "PATH=" VXR_PROGRAM_DIR ":/usr/bin:/bin";
        const std::string faults = "VXR_TEST_FAULTS=" + folder_.path("faults");
        return run_process(
            {"env", "-C", folder_.folder().string(), path, faults, "timeout", "100", "bash", "-c", script});
    }

    [[nodiscard]] ProcessResult run_with_faults(const std::string& options = {}) const {
        return bash("LD_PRELOAD=" VXR_PLANTED_FAULT " vxr batch run job.batch " + options);
    }

    /// Names and contents of the files of a folder.
    [[nodiscard]] std::vector<std::pair<std::string, std::string>> files_in(const std::string& name) const {
        std::vector<std::pair<std::string, std::string>> files;
        for (const auto& entry : fs::recursive_directory_iterator(folder_.path(name))) {
            if (entry.is_regular_file()) {
                files.emplace_back(fs::relative(entry.path(), folder_.path(name)).string(),
                                   content_of(entry.path().string()));
            }
        }
        std::sort(files.begin(), files.end());
        return files;
    }

    const TemporaryFolder folder_;
};

TEST_F(Batch, NamesPassUnharmedAndWhatIsDoneIsNotDoneAgain) {
    const std::vector<std::string> names{"plain", "it's\na \"quote\" $HOME `x` \\", "-o", "below/\xff\xfe"};
    std::vector<std::string> textures;
    textures.reserve(names.size());
    for (const std::string& name : names) {
        textures.push_back(name + ".txl");
    }
    write_textures(textures);
    folder_.write("job.toml", kConvert);
    EXPECT_EQ(bash("vxr batch plan job.toml").out, "job.batch: 4 items\n");
    EXPECT_EQ(bash("vxr batch status job.batch").out, "job.batch: 4 items: 4 not-done\n");
    const ProcessResult first = bash("vxr batch run job.batch");
    EXPECT_EQ(first.out, "job.batch: 4 items: 4 fine\n") << first.err;
    EXPECT_EQ(first.exit_code, 0);
    std::vector<fs::file_time_type> times;
    for (const std::string& name : names) {
        ASSERT_TRUE(fs::exists(folder_.path("out/" + name + ".txl"))) << name;
        times.push_back(fs::last_write_time(folder_.path("out/" + name + ".txl")));
    }
    const auto results = files_in("job.batch/results");
    EXPECT_EQ(results.size(), 4U);

    EXPECT_EQ(bash("vxr batch run job.batch").out, first.out);
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(fs::last_write_time(folder_.path("out/" + names[i] + ".txl")), times[i]) << names[i];
    }

    // A changed input and a lost output are work, and nothing else is.
    ASSERT_FALSE(
        write_texture(folder_.path("in/plain.txl"), made_texture(9, 9, Texture::kRgb, 0)).has_value());
    fs::remove(folder_.path("out/-o.txl"));
    EXPECT_EQ(bash("vxr batch status job.batch").out, "job.batch: 4 items: 2 fine, 2 not-done\n");
    EXPECT_EQ(bash("vxr batch run job.batch").out, first.out);
    EXPECT_TRUE(fs::exists(folder_.path("out/-o.txl")));
    EXPECT_NE(fs::last_write_time(folder_.path("out/plain.txl")), times[0]);
    EXPECT_EQ(fs::last_write_time(folder_.path("out/" + names[1] + ".txl")), times[1]);

    // Planned again, with one file more: only that is work.
    write_textures({"new.txl"});
    EXPECT_EQ(bash("vxr batch plan job.toml").out, "job.batch: 5 items\n");
    EXPECT_EQ(bash("vxr batch status job.batch").out, "job.batch: 5 items: 4 fine, 1 not-done\n");
}

TEST_F(Batch, ProcessesThatGoWrongHaveTheirOwnResults) {
    write_textures({"a.txl", "b.txl", "c.txl", "d.txl", "f.txl"});
    folder_.write("in/e.txl", "no texture");
    std::string file = kConvert;
    folder_.write("job.toml", file.replace(file.find("60"), 2, "5"));
    ASSERT_EQ(bash("vxr batch plan job.toml").exit_code, 0);
    folder_.write("faults/a.txl", "crash");
    folder_.write("faults/b.txl", "hang");
    folder_.write("faults/c.txl", "hog");
    folder_.write("faults/f.txl", "flood");
    const ProcessResult first = run_with_faults();
    EXPECT_EQ(first.exit_code, 3);
    EXPECT_EQ(first.out, "job.batch: 6 items: 1 fine, 1 refused, 1 crashed, 1 too-long, 2 too-large\n")
        << first.err;
    EXPECT_THAT(first.err, HasSubstr("in/a.txl: crashed (log: "));
    const std::string logs = bash("cat job.batch/logs/*/*").out;
    EXPECT_THAT(logs, HasSubstr("ended by SIGABRT"));
    EXPECT_THAT(logs, HasSubstr("ended after 5 s"));
    EXPECT_THAT(logs, HasSubstr("took more than 300 MiB"));
    EXPECT_THAT(logs, HasSubstr("wrote more than 16 MiB"));

    EXPECT_EQ(bash("vxr batch run job.batch").out, first.out) << "what failed waits for retry";
    EXPECT_EQ(bash("vxr batch retry job.batch").exit_code, 2);
    EXPECT_EQ(bash("vxr batch retry job.batch --failed").out, "job.batch: 5 items to be done again\n");
    const ProcessResult second = run_with_faults();
    EXPECT_EQ(second.out, "job.batch: 6 items: 5 fine, 1 refused\n");
    EXPECT_EQ(second.exit_code, 1);
    EXPECT_THAT(bash("vxr batch status --list job.batch").out,
                StartsWith(folder_.path("in/e.txl") + ": refused (log: "));
    EXPECT_EQ(files_in("job.batch/logs").size(), 1U) << "logs of earlier attempts are gone";
}

TEST_F(Batch, ASignalEndsItCleanlyAndItIsResumed) {
    write_textures({"a.txl", "b.txl", "c.txl"});
    folder_.write("job.toml", kConvert);
    ASSERT_EQ(bash("vxr batch plan job.toml").exit_code, 0);
    folder_.write("faults/b.txl", "hang");
    // Ended once the process of the second item has begun to hang.
    const ProcessResult ended =
        bash("set -m; LD_PRELOAD=" VXR_PLANTED_FAULT
             " vxr batch run --jobs 1 job.batch & "
             "until [ -s faults/b.txl.pid ]; do sleep 0.05; done; kill -INT %1; wait %1; echo $?; "
             "sleep 0.2; grep -qs '^State:.*[RSD] ' /proc/$(cat faults/b.txl.pid)/status || echo gone");
    EXPECT_EQ(ended.out, "130\ngone\n") << ended.err;
    for (const auto& [name, content] : files_in("job.batch")) {
        EXPECT_FALSE(fs::path(name).filename().string().starts_with('.')) << name;
    }
    EXPECT_EQ(bash("vxr batch status job.batch").out, "job.batch: 3 items: 1 fine, 2 not-done\n");
    EXPECT_EQ(bash("vxr batch run job.batch").out, "job.batch: 3 items: 3 fine\n");
}

TEST_F(Batch, AProcessThatOthersEndIsNotDone) {
    write_textures({"a.txl"});
    folder_.write("job.toml", kConvert);
    ASSERT_EQ(bash("vxr batch plan job.toml").exit_code, 0);
    folder_.write("faults/a.txl", "killed");
    const ProcessResult ended = run_with_faults();
    EXPECT_EQ(ended.out, "job.batch: 1 item: 1 not-done\n") << ended.err;
    EXPECT_EQ(ended.exit_code, 3);
    EXPECT_TRUE(files_in("job.batch/results").empty());
}

TEST_F(Batch, PartsAreTheWholeAndMayOverlap) {
    write_textures({"a.txl", "b.txl", "c.txl", "d.txl", "e.txl"});
    folder_.write("job.toml", kConvert);
    ASSERT_EQ(bash("vxr batch plan job.toml").exit_code, 0);
    EXPECT_EQ(bash("vxr batch run job.batch --part 1/3").out, "job.batch: 1 item: 1 fine\n");
    EXPECT_EQ(bash("vxr batch run job.batch --part 3/3 & vxr batch run job.batch --part 2/3; wait").exit_code,
              0);
    EXPECT_EQ(bash("vxr batch status job.batch").out, "job.batch: 5 items: 5 fine\n");
    EXPECT_EQ(bash("vxr batch run job.batch --part 7/9").out, "job.batch: 0 items\n");
    // Two at a time on the same items: each is there once, as after one run.
    const auto results = files_in("job.batch/results");
    EXPECT_EQ(bash("rm -r out/*; vxr batch run job.batch & vxr batch run job.batch; wait").exit_code, 0);
    EXPECT_EQ(files_in("job.batch/results"), results);
    EXPECT_EQ(files_in("out").size(), 5U);
    for (const char* part : {"0/3", "4/3", "1", "1/0", "a/b", "1/3x"}) {
        EXPECT_EQ(bash(std::string("vxr batch run job.batch --part ") + part).exit_code, 2) << part;
    }
}

TEST_F(Batch, LinesForXargsDoEverything) {
    write_textures({"a.txl", "b\n'\xff.txl", "c.txl", "d.txl", "e.txl"});
    folder_.write("job.toml", kConvert);
    ASSERT_EQ(bash("vxr batch plan job.toml -o $'a \\'job\\'\\n\\xff.batch'").exit_code, 0);
    const std::string job = "job=$'a \\'job\\'\\n\\xff.batch'; ";
    const ProcessResult lines = bash(job + "vxr batch submit \"$job\" --on xargs --array-size 2");
    EXPECT_EQ(std::count(lines.out.begin(), lines.out.end(), '\n'), 2) << lines.out;
    const ProcessResult run =
        bash(job + "vxr batch submit \"$job\" --on xargs | xargs -d '\\n' -n 1 -P 2 sh -c | sort -u");
    EXPECT_THAT(run.out, testing::EndsWith(": 1 item: 1 fine\n")) << run.err;
    EXPECT_EQ(files_in("out").size(), 5U);
    EXPECT_THAT(bash(job + "vxr batch merge \"$job\"").out, testing::EndsWith(": 5 items: 5 fine\n"));
}

TEST_F(Batch, TheBlockOfTheReadmeRunsAsPrinted) {
    const std::string readme = content_of(VXR_PROJECT_DIR "/README.md");
    const std::size_t begin = readme.find("cat >night.toml");
    ASSERT_NE(begin, std::string::npos);
    const std::string block = readme.substr(begin, readme.find("```", begin) - begin);
    write_textures({"a.txl", "b.txl"});
    fs::rename(folder_.path("in"), folder_.path("textures"));
    // A scheduler that does every task at once.
    folder_.write("sbatch",
                  "#!/bin/sh\nfor word; do case $word in --array=1-*) n=$word;; esac; done\n"
                  "n=${n##*-}; cat >script; export SLURM_ARRAY_JOB_ID=1 SLURM_ARRAY_TASK_ID\n"
                  "for SLURM_ARRAY_TASK_ID in $(seq $n); do sh script; done; echo 1\n");
    const ProcessResult run =
        bash("chmod +x sbatch; PATH=$PWD:$PATH; set -e\n" + block + "cat night.batch/logs/slurm-1-2.log");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out,
              "night.batch: 2 items\n"
              "night.batch: 2 items: 2 fine\n"
              "night.batch: 2 items, Slurm's job 1 of 2 tasks\n"
              "night.batch: 0 items to be done again\n"
              "night.batch: 2 items: 2 fine\n" +
                  folder_.path("night.batch") + ": 1 item: 1 fine\n");
    EXPECT_TRUE(fs::exists(folder_.path("pictures/b.png")));
}

TEST_F(Batch, SubmittingSaysWhatIsWrong) {
    write_textures({"a.txl"});
    folder_.write("job.toml", kConvert);
    ASSERT_EQ(bash("vxr batch plan job.toml").exit_code, 0);
    folder_.make_folder("none");
    const std::string submit = " vxr batch submit job.batch ";
    const struct {
        const char* name;
        std::string script;
        int exit_code;
        const char* message;
    } cases[] = {
        {"without a scheduler", submit, 2, "--on is required"},
        {"an unknown scheduler", submit + "--on cron", 2, "--on"},
        {"a partition for xargs", submit + "--on xargs --partition night", 2,
         "--partition is for --on slurm"},
        {"no part", submit + "--on xargs --array-size 0", 2, "--array-size"},
        {"no job folder", "vxr batch submit in --on xargs", 3, "in is no job folder"},
        {"no Slurm", "p=$(command -v vxr); PATH=none exec $p batch submit job.batch --on slurm", 3,
         "there is no program sbatch here"},
        {"a scheduler that refuses",
         "printf '#!/bin/sh\\necho >&2 sbatch: error: too many; exit 1\\n' >none/sbatch; chmod +x "
         "none/sbatch; "
         "PATH=$PWD/none:$PATH" +
             submit + "--on slurm",
         3, "sbatch did not take the job: sbatch: error: too many"},
    };
    for (const auto& one : cases) {
        const ProcessResult run = bash(one.script);
        EXPECT_EQ(run.exit_code, one.exit_code) << one.name;
        EXPECT_THAT(run.err, HasSubstr(one.message)) << one.name;
    }
}

TEST_F(Batch, MergingSumsUpAndWritesWhatTheVerbsWrote) {
    folder_.make_folder("in");
    folder_.write("in/a.aec", "VORTAN XR COMPOSITION\nFPS abc\n");
    folder_.write("in/b.aec", "no scene");
    folder_.write("job.toml", "[[task]]\nverb = 'check'\nfiles = ['in']\n");
    folder_.write("pages.toml",
                  "[[task]]\nverb = 'report'\nfiles = ['in']\nout-dir = 'pages'\nextension = 'html'\n");
    ASSERT_EQ(bash("vxr batch plan job.toml && vxr batch plan pages.toml").exit_code, 0);
    const ProcessResult early = bash("vxr batch merge job.batch");
    EXPECT_EQ(early.exit_code, 3) << "what is not done is missing";
    EXPECT_THAT(early.out, testing::EndsWith("job.batch: 2 items: 2 not-done\n"));
    EXPECT_EQ(bash("vxr batch run job.batch").exit_code, 1);
    const ProcessResult merged = bash("vxr batch merge job.batch -o all.txt");
    EXPECT_EQ(merged.exit_code, 1);
    EXPECT_THAT(merged.out, testing::EndsWith("job.batch: 2 items: 2 refused\n"));
    EXPECT_EQ(content_of(folder_.path("all.txt")),
              bash("d=$PWD; vxr check \"$d/in/a.aec\"; vxr check \"$d/in/b.aec\"").out);
    EXPECT_EQ(bash("vxr batch merge job.batch -o in/a.aec").exit_code, 2);
    EXPECT_EQ(bash("vxr batch merge job.batch --report all.html").exit_code, 2);
    const ProcessResult page =
        bash("vxr batch run pages.batch; vxr batch merge pages.batch --report all.html");
    EXPECT_EQ(page.exit_code, 1) << page.err;
    const std::string text = content_of(folder_.path("all.html"));
    EXPECT_THAT(text, HasSubstr("a.aec"));
    EXPECT_THAT(text, HasSubstr("b.aec"));
}

TEST_F(Batch, PlanningRefusesWhatCannotBeMeant) {
    write_textures({"a.txl", "b.txl"});
    folder_.write("in/a.tif", "x");
    folder_.make_folder("other");
    folder_.write("other/notes", "x");
    const std::string task = "[[task]]\nverb = 'texture convert'\n";
    const struct {
        const char* name;
        std::string text;
        const char* options;
        int exit_code;
        const char* message;
    } cases[] = {
        {"an output onto its input", task + "files = ['in']\nextension = 'txl'\n", "", 2,
         "in/a.txl would be overwritten by the output"},
        {"an output onto another input", task + "files = ['in/a.tif', 'in/a.txl']\nextension = 'tif'\n", "",
         2, "in/a.tif would be overwritten by the output"},
        {"two outputs in one file", task + "files = ['in/a.*']\nextension = 'png'\n", "", 2,
         "would both be written to "},
        {"two tasks for one file",
         task + "files = ['in/a.txl']\nextension = 'png'\n" + task +
             "options = ['--alpha', 'none']\nfiles = ['in/a.txl']\nextension = 'png'\n",
         "", 2, "would both be written to "},
        {"an output onto the list", task + "files-from = 'list.png'\nout-dir = '.'\nextension = 'png'\n", "",
         2, "list.png, the list of files, would be overwritten"},
        {"a missing file", task + "files = ['in/c.txl']\nextension = 'png'\n", "", 3,
         "in/c.txl: No such file"},
        {"a pattern for nothing", task + "files = ['in/c*']\nextension = 'png'\n", "", 3,
         "there is no file for "},
        {"an empty folder", task + "files = ['in/below']\nextension = 'png'\n", "", 3,
         "no file in the folder "},
        {"a mistake, with its place", task + "files = ['in']\nextensoin = 'png'\n", "", 3,
         "job.toml:4:1: error: nothing is called \"extensoin\""},
        {"an option that the verb lacks",
         task + "options = ['--alpah', '1']\nfiles = ['in']\nextension = 'png'\n", "", 3,
         "job.toml:1:1: error: the options of texture convert: there is no option \"--alpah\""},
        {"a folder of something else", task + "files = ['in/b.txl']\nextension = 'png'\n", "-o other", 3,
         "other is no job folder: it holds \"notes\""},
    };
    folder_.write("list.png", "in/a.txl\n");
    fs::copy(folder_.path("in/a.txl"), folder_.path("in/list.txl"));
    folder_.write("list.png", "in/list.txl\n");
    for (const auto& one : cases) {
        folder_.write("job.toml", one.text);
        const ProcessResult run = bash(std::string("vxr batch plan job.toml ") + one.options);
        EXPECT_EQ(run.exit_code, one.exit_code) << one.name;
        EXPECT_THAT(run.err, HasSubstr(one.message)) << one.name;
        EXPECT_FALSE(fs::exists(folder_.path("job.batch"))) << one.name;
    }
    EXPECT_EQ(bash("vxr batch run in").exit_code, 3);
    EXPECT_THAT(bash("vxr batch run job.toml").err, HasSubstr("`vxr batch plan` makes one"));
}

TEST_F(Batch, AFullDiskLosesNothing) {
    write_textures({"a.txl", "b.txl"});
    folder_.write("job.toml", kConvert);
    ASSERT_EQ(bash("vxr batch plan job.toml").exit_code, 0);
    // No file can grow: neither the output of an item nor its result, nor the one that has what bash says.
    const ProcessResult full =
        bash("(ulimit -f 0; vxr batch run --jobs 1 job.batch 2>&1) | cat; exit ${PIPESTATUS[0]}");
    EXPECT_EQ(full.exit_code, 3);
    EXPECT_THAT(full.out, HasSubstr("cannot write "));
    EXPECT_TRUE(files_in("job.batch/results").empty());
    EXPECT_EQ(bash("vxr batch run job.batch").out, "job.batch: 2 items: 2 fine\n");
    EXPECT_EQ(files_in("out").size(), 2U);
}

TEST_F(Batch, ResultsThatCannotBeWrittenEndTheRun) {
    write_textures({"a.txl", "b.txl", "c.txl"});
    folder_.write("job.toml", kConvert);
    ASSERT_EQ(bash("vxr batch plan job.toml").exit_code, 0);
    fs::rename(folder_.path("job.batch/results"), folder_.path("away"));
    const ProcessResult run = bash("vxr batch run --jobs 1 job.batch");
    EXPECT_EQ(run.exit_code, 3);
    EXPECT_THAT(run.err, HasSubstr("cannot write "));
    EXPECT_EQ(files_in("out").size(), 1U) << "nothing more is done that could not be kept";
    EXPECT_FALSE(fs::exists(folder_.path("job.batch/results"))) << "folders are made by planning alone";
    fs::rename(folder_.path("away"), folder_.path("job.batch/results"));
    EXPECT_EQ(bash("vxr batch run job.batch").out, "job.batch: 3 items: 3 fine\n");
    // A result that was cut by a full disk is none.
    EXPECT_EQ(bash("for f in job.batch/results/*/*; do : > $f; done; vxr batch status job.batch").out,
              "job.batch: 3 items: 3 not-done\n");
}

}  // namespace
