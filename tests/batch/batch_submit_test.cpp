// Parts of batches as commands and scripts, run by real shells.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "cli/batch/batch_submit.h"
#include "support/child_process.h"
#include "support/temporary_folder.h"

namespace {

using cli::JobFolder;

std::string odd_bytes() {
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    return bytes + "' \" $(x) `x` \\ \\n %s %% \xff";
}

TEST(BatchSubmit, AnyTextIsOneWordOfAShellOnOneLine) {
    const struct {
        const char* name;
        std::string text;
    } cases[] = {
        {"nothing", ""},
        {"plain text", "/shows/a-b_c.batch"},
        {"a blank", "two words"},
        {"quotes", "it's \"this\""},
        {"what shells replace", "$HOME `x` $(x) * ~ ! \\"},
        {"a line end", "a\nb"},
        {"what printf replaces, with a line end", "%s %% \\n \\\\ '\n."},
        {"digits after a byte in digits",
         "\n1\xff"
         "7"},
        {"every byte", odd_bytes()},
    };
    for (const auto& one : cases) {
        const std::string word = cli::script_word(one.text);
        EXPECT_EQ(word.find('\n'), std::string::npos) << one.name;
        for (const char c : word) {
            EXPECT_TRUE(c >= ' ' && c <= '~') << one.name;
        }
        for (const char* const shell : {"sh", "bash"}) {
            const ProcessResult run =
                run_process({shell, "-c", "show() { printf '%s|%s.' \"$#\" \"$1\"; }; show " + word});
            EXPECT_EQ(run.out, "1|" + one.text + '.') << one.name << " in " << shell << ": " << word;
        }
    }
}

TEST(BatchSubmit, ThereIsAPartForEachItemUpToTheMost) {
    EXPECT_EQ(cli::part_count(0, 5), 0U);
    EXPECT_EQ(cli::part_count(4, 5), 4U);
    EXPECT_EQ(cli::part_count(5, 5), 5U);
    EXPECT_EQ(cli::part_count(6, 5), 5U);
}

// The script as a task of Slurm runs it, with a program that writes its words.
TEST(BatchSubmit, AScriptOfSlurmRunsThePartOfItsTask) {
    const TemporaryFolder folder;
    for (const std::string name : {"plain.batch", "it's a\n\"job\" %d \xff", "ends with one\n"}) {
        folder.make_folder(name + "/logs");
        const std::string job = folder.path(name);
        const std::string program =
            folder.write("program '\xfe",
                         "#!/bin/sh\nfor word; do printf '<%s>' \"$word\"; done; echo >&2 said; exit 5\n");
        const std::string script = folder.write("script", cli::slurm_script(program, JobFolder(job), 20));
        const ProcessResult run = run_process(
            {"env", "SLURM_ARRAY_JOB_ID=12", "SLURM_ARRAY_TASK_ID=3", "SLURM_CPUS_PER_TASK=4", "sh", "-c",
             "chmod +x \"$1\" && sh \"$2\"; echo \"$?\"; cat \"$3\"/logs/slurm-12-3.log", "sh", program,
             script, job});
        const std::string shown = job.ends_with('\n') ? job + "/." : job;
        EXPECT_EQ(run.out, "5\n<batch><run><--quiet><--jobs><4><--part><3/20><--><" + shown + ">said\n")
            << name;
    }
}

}  // namespace
