// A whole job of old scenes, made by old_job.py: checked, relinked, collected and imported.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/job_folder.h"
#include "support/child_process.h"
#include "support/program_run.h"
#include "text/printable.h"

namespace {

using cli::ExitCode;
using nlohmann::json;

constexpr int kScenes = 60;  // every kind of path twice at least

// Bytes as old_job.py writes them.
std::string hexadecimal(const json& text) {
    return text.is_string() ? text::hexadecimal_bytes(text.get<std::string>())
                            : text["bytes"].get<std::string>();
}

std::vector<std::string> command(const JobFolder& folder, const char* verb, const json& expected) {
    std::vector<std::string> words{verb};
    for (const auto& [scene, paths] : expected.items()) {
        words.push_back(folder.path("old/job/" + scene));
    }
    for (const char* search : {"old/disk/archive", "old/disk/backup"}) {
        words.insert(words.end(), {"--search", folder.path(search)});
    }
    words.insert(words.end(), {"--map", "Q:/vault=" + folder.path("old/disk/vault")});
    return words;
}

std::size_t count_of(const json& paths, const char* outcome) {
    std::size_t count = 0;
    for (const json& path : paths) {
        count += path["outcome"] == outcome ? 1U : 0U;
    }
    return count;
}

// The number of placeholders and of all footage after an import.
std::pair<std::size_t, std::size_t> footage_of(const std::string& scene) {
    const Ran imported = run({"import", "--bundle", VXR_BUNDLE_PATH, "--json", scene});
    EXPECT_EQ(imported.code, ExitCode::fine) << imported.err;
    std::size_t missing = 0;
    const json footage = json::parse(imported.out)["footage"];
    for (const json& one : footage) {
        missing += one["kind"] == "placeholder" ? 1U : 0U;
    }
    return {missing, footage.size()};
}

std::size_t lines_in(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

// As many scenes as a job has; with sanitizers, more than a screen has lines.
#if defined(VXR_SANITIZED)
constexpr int kScenesOfAJob = 75;
#else
constexpr int kScenesOfAJob = 300;
#endif

TEST(OldJob, IsCheckedInOneScreen) {
    constexpr std::size_t kScreen = 50;  // lines
    const std::string scenes = std::to_string(kScenesOfAJob);
    const JobFolder folder;
    const ProcessResult made =
        run_process({"python3", "-B", VXR_PROJECT_DIR "/tests/cli/old_job.py", folder.path("old"), scenes});
    ASSERT_EQ(made.exit_code, 0) << made.err;
    const Ran checked = run({"check", folder.path("old/job")});
    EXPECT_EQ(checked.code, ExitCode::footage_missing);
    EXPECT_LE(lines_in(checked.out) + lines_in(checked.err), kScreen) << checked.out << checked.err;
    EXPECT_NE(checked.out.find(scenes + " files: " + scenes + " incomplete\n"), std::string::npos)
        << checked.out;

    const json planted = json::parse(folder.content("old/planted.json"));
    ASSERT_EQ(planted.size(), 4U);
    const json document = json::parse(run({"check", "--json", folder.path("old/job")}).out);
    std::map<std::string, json> found;
    for (const json& code : document["summary"]["codes"]) {
        EXPECT_NE(code["severity"], "error") << code;
        found[code["code"]] = code["count"];
    }
    for (const auto& [code, count] : planted.items()) {
        EXPECT_EQ(found[code], count) << code;
        EXPECT_NE(checked.out.find(code), std::string::npos) << code;
    }
}

TEST(OldJob, IsFoundAgainToTheLastPathThatCanBeKnown) {
    const JobFolder folder;
    const ProcessResult made = run_process({"python3", "-B", VXR_PROJECT_DIR "/tests/cli/old_job.py",
                                            folder.path("old"), std::to_string(kScenes)});
    ASSERT_EQ(made.exit_code, 0) << made.err;
    const json expected = json::parse(folder.content("old/expected.json"));
    ASSERT_EQ(expected.size(), static_cast<std::size_t>(kScenes));

    std::vector<std::string> relink = command(folder, "relink", expected);
    relink.insert(relink.end(), {"--out-dir", folder.path("out"), "--json"});
    const Ran relinked = run(relink);
    EXPECT_EQ(relinked.code, ExitCode::footage_missing) << relinked.err;
    const json document = json::parse(relinked.out);
    std::size_t scene_number = 0;
    for (const auto& [scene, paths] : expected.items()) {
        const json& got = document["scenes"][scene_number++]["paths"];
        ASSERT_EQ(got.size(), paths.size()) << scene;
        for (std::size_t i = 0; i < paths.size(); ++i) {
            EXPECT_EQ(hexadecimal(got[i]["written"]), paths[i]["written"]) << scene;
            EXPECT_EQ(got[i]["outcome"], paths[i]["outcome"]) << scene << ' ' << got[i];
            EXPECT_EQ(got[i]["rule"], paths[i]["rule"]) << scene << ' ' << got[i];
            EXPECT_EQ(got[i]["result"], paths[i]["result"]) << scene << ' ' << got[i];
        }
    }

    std::vector<std::string> collect = command(folder, "collect", expected);
    collect.insert(collect.end(), {"--by", "hardlink", "-o", folder.path("delivery")});
    EXPECT_EQ(run(collect).code, ExitCode::footage_missing);
    std::filesystem::rename(folder.path("delivery"), folder.path("elsewhere"));

    // Every fifth, among them those with planted losses.
    for (std::size_t i = 3; i < expected.size(); i += 5) {
        const std::string scene = document["scenes"][i]["output"];
        const std::string name = std::filesystem::path(scene).filename();
        const json& paths = expected[name];
        const std::pair losses(count_of(paths, "missing") + count_of(paths, "ambiguous"), paths.size());
        EXPECT_EQ(footage_of(scene), losses) << name;
        EXPECT_EQ(footage_of(folder.path("elsewhere/" + name)), losses) << name;
    }
}

}  // namespace
