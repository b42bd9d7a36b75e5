// Files that change while the verbs read them: the outcome is a result or a refusal, nothing hangs, and
// every output file is complete.

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "cli/doctor/bundle_files.h"
#include "support/changing_file.h"
#include "support/deadline.h"
#include "support/file_content.h"
#include "support/made_texture.h"
#include "support/program_run.h"
#include "support/temporary_folder.h"
#include "texture/value/texture_file.h"

namespace {

namespace fs = std::filesystem;
using cli::ExitCode;

const std::set<ExitCode> kEveryOutcome{ExitCode::fine, ExitCode::refused, ExitCode::cannot_read_or_write};

/// Runs a command repeatedly while the file changes, at least until the file has rested. Returns the exit
/// codes that occurred.
std::set<ExitCode> codes_of(const std::vector<std::string>& command, ChangingFile& changing) {
    constexpr int kRuns = 100;
    const Deadline deadline;
    std::set<ExitCode> codes;
    for (int i = 0; i < kRuns || !changing.has_rested(); ++i) {
        const Ran ran = run(command);
        EXPECT_TRUE(ran.code == ExitCode::fine || !(ran.out + ran.err).empty()) << "a failure is told";
        codes.insert(ran.code);
        changing.was_read();
    }
    return codes;
}

std::string texture_bytes(int size_px, int alphas) {
    const TemporaryFolder folder;
    const std::string path = folder.path("made.txl");
    EXPECT_FALSE(write_texture(path, made_texture(size_px, size_px, Texture::kRgb, alphas)).has_value());
    return content_of(path);
}

TEST(ChangingInputs, ATextureIsReadOrRefused) {
    const TemporaryFolder folder;
    ChangingFile changing(folder, "a.txl", texture_bytes(128, 1), texture_bytes(16, 0));
    EXPECT_EQ(codes_of({"texture", "check", folder.path("a.txl")}, changing), kEveryOutcome);
}

TEST(ChangingInputs, ConvertedFilesAreComplete) {
    const TemporaryFolder folder;
    const TemporaryFolder results;
    const std::string output = results.path("b.txl");
    const std::string whole = texture_bytes(128, 1);
    const std::string other = texture_bytes(16, 0);
    {
        ChangingFile changing(folder, "a.txl", whole, other);
        EXPECT_EQ(codes_of({"texture", "convert", folder.path("a.txl"), "-o", output}, changing),
                  kEveryOutcome);
    }
    EXPECT_EQ(run({"texture", "check", output}).code, ExitCode::fine);
    for (const fs::directory_entry& entry : fs::directory_iterator(results.folder())) {
        EXPECT_EQ(entry.path(), output) << "half written";
    }
}

TEST(ChangingInputs, ASceneIsReadOrRefused) {
    const TemporaryFolder folder;
    ChangingFile changing(folder, "a.aec", content_of(VXR_EXAMPLES_DIR "/interlaced/lantern_010.aec"),
                          content_of(VXR_EXAMPLES_DIR "/square/courtyard_020.aec"));
    // One file of its footage is missing.
    EXPECT_EQ(codes_of({"check", folder.path("a.aec")}, changing),
              (std::set{ExitCode::footage_missing, ExitCode::refused, ExitCode::cannot_read_or_write}));
}

TEST(ChangingInputs, AFileOfABundleIsReadOrRefused) {
    expect_both_outcomes("a.so", content_of(VXR_BUNDLE_PATH), 20000, [](const std::string& path) {
        const cli::doctor::ReadFile file = cli::doctor::read_file(path);
        EXPECT_NE(file.bytes.has_value(), !file.error.empty()) << file.error;
        return file.bytes.has_value();
    });
}

}  // namespace
