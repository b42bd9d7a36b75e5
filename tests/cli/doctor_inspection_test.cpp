// What `vxr doctor` says about paths of every kind and libraries on Linux, what it loads, and what it says
// about loading.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/doctor/finding.h"
#include "cli/doctor/load_test.h"
#include "cli/doctor_inspection.h"
#include "support/made_binary.h"
#include "support/temporary_folder.h"

namespace {

using cli::ExitCode;
using cli::doctor::Answer;
using cli::doctor::Diagnosis;
using cli::doctor::LoadOutcome;
using cli::doctor::LoadTest;
using ::testing::ElementsAre;

TEST(DoctorInspection, OtherPathsAreRefused) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path("empty.plugin"));
    const struct {
        const char* name;
        std::string path;
        ExitCode code;
        const char* finding;
    } cases[] = {
        {"nothing there", folder.path("missing"), ExitCode::cannot_read_or_write, "cannot-read"},
        {"a device", "/dev/null", ExitCode::cannot_read_or_write, "cannot-read"},
        {"a folder", folder.folder().string(), ExitCode::refused, "not-a-bundle"},
        {"a folder with the right name", folder.path("empty.plugin"), ExitCode::refused, "not-a-bundle"},
        {"the code of a macOS bundle alone", folder.write("Sample", made_mach_o()), ExitCode::refused,
         "not-a-bundle"},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.name);
        const Diagnosis diagnosis = cli::doctor::inspect(one.path, listed);
        EXPECT_EQ(diagnosis.code, one.code);
        EXPECT_THAT(codes_of(diagnosis), ElementsAre(one.finding));
    }
}

TEST(DoctorOnLinuxFiles, LibrariesAreLookedForAsTheLoaderDoes) {
    const TemporaryFolder folder;
    folder.write("libbeside.so", made_elf());
    folder.write("libother.so", made_elf({.machine = 183}));
    const struct {
        const char* name;
        MadeElf elf;
        std::vector<std::string> findings;
    } cases[] = {
        {"in the system", {.needed = {"libc.so.6", "libm.so.6"}}, {}},
        {"nowhere", {.needed = {"libnowhere.so"}}, {"library-missing"}},
        {"beside it, without a search path", {.needed = {"libbeside.so"}}, {"library-missing"}},
        {"beside it", {.needed = {"libbeside.so"}, .run_path = "/nowhere:$ORIGIN"}, {}},
        {"beside it, in the other spelling", {.needed = {"libbeside.so"}, .run_path = "${ORIGIN}/."}, {}},
        {"beside it, for another processor",
         {.needed = {"libother.so"}, .run_path = "$ORIGIN"},
         {"library-missing"}},
        {"by its full path", {.needed = {folder.path("libbeside.so")}}, {}},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.name);
        const Diagnosis diagnosis = cli::doctor::inspect(folder.write("a.so", made_elf(one.elf)), listed);
        EXPECT_EQ(codes_of(diagnosis), one.findings);
        EXPECT_EQ(answer(diagnosis, "embedded", "today"), Answer::yes);
    }
}

TEST(DoctorLoadTest, OtherFilesAreNotLoaded) {
    const TemporaryFolder folder;
    int loaded = 0;
    const cli::doctor::RunLoadTest counting = [&loaded](const std::string& path,
                                                        embedded::HostGeneration generation) {
        ++loaded;
        return listed(path, generation);
    };
    const std::pair<std::string, std::string> cases[] = {
        {made_elf({.exports = {"other"}}), "entry-missing"},
        {made_elf({.program = true}), "wrong-kind"},
        {made_elf({.dynamic = false}), "wrong-kind"},
    };
    for (const auto& [bytes, finding] : cases) {
        const Diagnosis diagnosis = cli::doctor::inspect(folder.write("a.so", bytes), counting);
        EXPECT_THAT(codes_of(diagnosis), ElementsAre(finding));
        EXPECT_EQ(answer(diagnosis, "embedded", "classic"), Answer::no);
        EXPECT_EQ(diagnosis.code, ExitCode::refused);
    }
    EXPECT_EQ(loaded, 0);
    EXPECT_EQ(cli::doctor::inspect(folder.write("a.so", made_elf()), counting).code, ExitCode::fine);
    EXPECT_EQ(loaded, 2);
}

TEST(DoctorLoadTest, EveryOutcomeIsAFinding) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a.so", made_elf());
    const struct {
        LoadOutcome end;
        const char* finding;
        Answer answer;
        std::size_t findings;  ///< what the system cannot load is reported once
    } cases[] = {
        {LoadOutcome::listed, "registers-nothing", Answer::yes, 2},
        {LoadOutcome::failed, "entry-failed", Answer::no, 2},
        {LoadOutcome::not_loadable, "not-loadable", Answer::no, 1},
        {LoadOutcome::crashed, "load-crashed", Answer::no, 2},
        {LoadOutcome::timed_out, "load-timed-out", Answer::no, 2},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.finding);
        const Diagnosis diagnosis =
            cli::doctor::inspect(path, [&](const std::string&, embedded::HostGeneration generation) {
                return LoadTest{embedded::generation_label(generation), one.end, "why", {}, {"word"}};
            });
        EXPECT_EQ(codes_of(diagnosis), std::vector<std::string>(one.findings, one.finding));
        EXPECT_EQ(diagnosis.findings[0].effects.front(), "it said: word");
        for (const char* const generation : {"today", "classic"}) {
            EXPECT_EQ(answer(diagnosis, "embedded", generation), one.answer);
        }
    }
}

TEST(DoctorLoadTest, PassesThroughItsLineUnchanged) {
    const LoadTest load_test{"today",
                             LoadOutcome::failed,
                             "why \"not\"",
                             {{"importer", "n\xC3\xA4me", {".a", ".b"}}, {"input module", "", {}}},
                             {"one", "two"}};
    const std::string line = cli::doctor::load_test_line(load_test);
    EXPECT_EQ(line.find('\n'), line.size() - 1);
    const std::optional<LoadTest> back = cli::doctor::read_load_test_line(line);
    ASSERT_TRUE(back.has_value());
    EXPECT_EQ(cli::doctor::load_test_line(*back), line);
    for (const char* const other : {"", "{}", "[1]", "text", "{\"generation\":\"today\",\"end\":\"other\"}",
                                    "{\"generation\":1,\"end\":\"listed\"}"}) {
        EXPECT_FALSE(cli::doctor::read_load_test_line(other).has_value()) << other;
    }
}

TEST(DoctorFindings, EveryMeaningIsASentenceAndEveryRemedyIsNot) {
    for (const auto& row : cli::doctor::finding_table()) {
        const std::string meaning = row.info.meaning;
        const std::string remedy = row.info.remedy;
        EXPECT_EQ(meaning.back(), '.') << row.info.name;
        ASSERT_FALSE(remedy.empty()) << row.info.name;
        EXPECT_NE(remedy.back(), '.') << row.info.name;
    }
}

}  // namespace
