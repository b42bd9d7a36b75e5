// What a check passes, an import in a current host builds.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/fuzz_inputs.h"
#include "support/program_run.h"
#include "support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;
using cli::ExitCode;

std::vector<std::string> scenes_below(const fs::path& folder) {
    std::vector<std::string> scenes;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.path().extension() == ".aec") {
            scenes.push_back(entry.path().string());
        }
    }
    std::sort(scenes.begin(), scenes.end());
    return scenes;
}

// How many of them the check passed, all of which the import built.
std::size_t passed_and_imported(const std::vector<std::string>& scenes) {
    std::size_t passed = 0;
    for (const std::string& scene : scenes) {
        const Ran checked = run({"check", "--quiet", scene});
        if (checked.code != ExitCode::fine && checked.code != ExitCode::footage_missing) {
            continue;
        }
        ++passed;
        const Ran imported = run({"import", "--bundle", VXR_BUNDLE_PATH, "--host", "today", "--json", scene});
        EXPECT_EQ(imported.code, ExitCode::fine) << scene << '\n' << checked.out << imported.err;
    }
    return passed;
}

TEST(CheckedImport, OfEveryExample) {
    const std::vector<std::string> scenes = scenes_below(VXR_EXAMPLES_DIR);
    EXPECT_GE(scenes.size(), 3U);
    EXPECT_EQ(passed_and_imported(scenes), scenes.size());
}

TEST(CheckedImport, OfWhatFuzzersFound) {
    const TemporaryFolder folder;
    std::vector<std::string> scenes;
    for (const char* const kind : {"corpus", "regress"}) {
        for (const FuzzInput& input : fuzz_inputs_in(std::string(VXR_PROJECT_DIR "/fuzz/") + kind)) {
            if (input.extension == ".aec") {
                scenes.push_back(folder.write(std::to_string(scenes.size()) + ".aec", input.bytes));
            }
        }
    }
    const std::size_t passed = passed_and_imported(scenes);
    EXPECT_GT(passed, 0U) << "none of the inputs is sound";
    EXPECT_LT(passed, scenes.size()) << "none of the inputs is broken";
}

TEST(CheckedImport, OfAnOldJob) {
    const TemporaryFolder folder;
    const std::string script = VXR_PROJECT_DIR "/tests/cli/old_job.py";
    const ProcessResult made = run_process({"python3", "-B", script, folder.path("old"), "24"});
    ASSERT_EQ(made.exit_code, 0) << made.err;
    const std::vector<std::string> scenes = scenes_below(folder.path("old/job"));
    ASSERT_EQ(scenes.size(), 24U);
    EXPECT_EQ(passed_and_imported(scenes), scenes.size());
}

}  // namespace
