// Files that change while the verbs read them: what comes of it is a result or a refusal, nobody waits, and
// what is written is whole.

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "cli/doctor/bundle_files.h"
#include "support/made_texture.h"
#include "support/program_run.h"
#include "support/special_files.h"
#include "support/temporary_folder.h"
#include "texture/texture_file.h"

namespace {

namespace fs = std::filesystem;
using cli::ExitCode;

std::string content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Rewrites the file `name` of a folder for as long as it lives: whole, cut short, another, longer, gone, a
/// folder, a pipe without a writer, a link onto itself.
class ChangingFile {
  public:
    ChangingFile(const TemporaryFolder& folder, std::string name, std::string whole, std::string other)
        : folder_(folder),
          name_(std::move(name)),
          whole_(std::move(whole)),
          other_(std::move(other)),
          changes_([this](const std::stop_token& stop) { change(stop); }) {}

  private:
    static constexpr std::chrono::milliseconds kRest{3};

    void change(const std::stop_token& stop) const {
        const std::string path = folder_.path(name_);
        const std::string aside = folder_.path(name_ + ".aside");
        while (!stop.stop_requested()) {
            folder_.write(name_, whole_);
            fs::resize_file(path, whole_.size() / 2);
            folder_.write(name_, whole_);
            folder_.write(name_, other_);
            fs::resize_file(path, other_.size() + 100);
            fs::remove(path);
            folder_.write(name_, whole_);
            std::this_thread::sleep_for(kRest);  // or it would hardly ever be read as it is
            fs::resize_file(path, 0);
            fs::remove(path);
            fs::create_directory(path);
            fs::remove(path);
            folder_.write(name_, other_);
            make_pipe(aside);
            fs::rename(aside, path);  // in one step, between any look and the next
            fs::remove(path);
            make_link(path, path);
            fs::remove(path);
        }
    }

    const TemporaryFolder& folder_;
    std::string name_;
    std::string whole_;
    std::string other_;
    std::jthread changes_;  // last: it uses the others
};

// What a file is when a verb looks is chance; that it is there and that it is not both happen in so many
// runs.
const std::set<ExitCode> kEveryOutcome{ExitCode::fine, ExitCode::refused, ExitCode::cannot_read_or_write};

/// Ends the program when somebody waits, while this lives, for who does not come.
class Impatience {
  public:
    Impatience() { ::alarm(kPatience_s); }
    ~Impatience() { ::alarm(0); }
    Impatience(const Impatience&) = delete;
    Impatience& operator=(const Impatience&) = delete;

  private:
    static constexpr unsigned kPatience_s = 120;
};

/// Runs a command again and again beside the changes, and further while an outcome has not come; which exit
/// codes there were.
std::set<ExitCode> codes_of(const std::vector<std::string>& command) {
    constexpr int kRuns = 100;
    constexpr int kMostRuns = 20 * kRuns;
    const Impatience impatience;
    std::set<ExitCode> codes;
    for (int i = 0; i < kRuns || (codes != kEveryOutcome && i < kMostRuns); ++i) {
        const Ran ran = run(command);
        EXPECT_TRUE(ran.code == ExitCode::fine || !(ran.out + ran.err).empty()) << "a failure is told";
        codes.insert(ran.code);
    }
    return codes;
}

std::string texture_bytes(int size_px, int alphas) {
    const TemporaryFolder folder;
    const std::string path = folder.path("made.txl");
    EXPECT_FALSE(write_texture(path, made_texture(size_px, size_px, Texture::kRgb, alphas)).has_value());
    return content(path);
}

TEST(ChangingInputs, ATextureIsReadOrRefused) {
    const TemporaryFolder folder;
    const ChangingFile changing(folder, "a.txl", texture_bytes(128, 1), texture_bytes(16, 0));
    EXPECT_EQ(codes_of({"texture", "check", folder.path("a.txl")}), kEveryOutcome);
}

TEST(ChangingInputs, WhatIsConvertedIsWhole) {
    const TemporaryFolder folder;
    const TemporaryFolder results;
    const std::string output = results.path("b.txl");
    const std::string whole = texture_bytes(128, 1);
    const std::string other = texture_bytes(16, 0);
    {
        const ChangingFile changing(folder, "a.txl", whole, other);
        EXPECT_EQ(codes_of({"texture", "convert", folder.path("a.txl"), "-o", output}), kEveryOutcome);
    }
    EXPECT_EQ(run({"texture", "check", output}).code, ExitCode::fine);
    for (const fs::directory_entry& entry : fs::directory_iterator(results.folder())) {
        EXPECT_EQ(entry.path(), output) << "half written";
    }
}

TEST(ChangingInputs, ASceneIsReadOrRefused) {
    const TemporaryFolder folder;
    const ChangingFile changing(folder, "a.aec", content(VXR_EXAMPLES_DIR "/interlaced/lantern_010.aec"),
                                content(VXR_EXAMPLES_DIR "/square/courtyard_020.aec"));
    EXPECT_EQ(codes_of({"check", folder.path("a.aec")}), kEveryOutcome);
}

TEST(ChangingInputs, AFileOfABundleIsReadOrRefused) {
    constexpr int kRuns = 20000;
    constexpr int kMostRuns = 20 * kRuns;
    const TemporaryFolder folder;
    const ChangingFile changing(folder, "a.so", content(VXR_BUNDLE_PATH), "no plug-in");
    const Impatience impatience;
    int read = 0;
    int refused = 0;
    for (int i = 0; i < kRuns || (i < kMostRuns && (read == 0 || refused == 0)); ++i) {
        const cli::doctor::ReadFile file = cli::doctor::read_file(folder.path("a.so"));
        EXPECT_NE(file.bytes.has_value(), !file.error.empty()) << file.error;
        ++(file.bytes ? read : refused);
    }
    EXPECT_GT(read, 0);
    EXPECT_GT(refused, 0);
}

}  // namespace
