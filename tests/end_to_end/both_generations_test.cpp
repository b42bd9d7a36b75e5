// Imports the same files into a host of each generation: both get the same project by the same calls.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <regex>
#include <string>
#include <vector>

#include "embedded/project_json.h"
#include "end_to_end/call_notation.h"
#include "end_to_end/texture_scene.h"
#include "support/loaded_bundle.h"
#include "support/scene_folder.h"

namespace {

using embedded::HostGeneration;

/// The result of running a bundle in one host.
struct Life {
    std::string project;
    std::string conformance;
    std::vector<std::string> messages;
    std::vector<std::string> calls;  ///< lines of the log
    bool clean = false;
};

/// The project as a classic host has it: with names of at most 31 bytes, and without the number of changes,
/// to which the bridge adds its own.
std::string in_classic_terms(embedded::Json project) {
    constexpr std::size_t kClassicNameBytes = 31;
    const auto cut = [](embedded::Json& named) {
        if (named.at("name").is_string()) {
            named["name"] = named.at("name").get<std::string>().substr(0, kClassicNameBytes);
        }
    };
    for (embedded::Json& item : project["items"]) {
        cut(item);
    }
    for (embedded::Json& composition : project["compositions"]) {
        for (embedded::Json& layer : composition["layers"]) {
            cut(layer);
        }
    }
    for (embedded::Json& step : project["undo_steps"]) {
        step.erase("changes");
    }
    return project.dump(1);
}

/// Findings without the numbers of the calls, which the bridge's own calls change.
std::string without_call_numbers(const std::string& conformance) {
    return std::regex_replace(conformance, std::regex("call [0-9]+ "), "call ");
}

template <class Use>
Life life_in(HostGeneration generation, embedded::HostOptions options, const Use& use) {
    LoadedBundle bundle(std::move(options), generation);
    EXPECT_EQ(bundle.loaded().error, "");
    use(bundle.host());
    bundle.host().unload();
    return {in_classic_terms(embedded::project_to_json(bundle.host().project())),
            without_call_numbers(bundle.host().conformance().to_text()), bundle.message_texts(),
            bundle.take_calls(), bundle.host().conformance().clean()};
}

template <class Use>
void expect_the_same_of(const embedded::HostOptions& options, const Use& use) {
    const Life classic = life_in(HostGeneration::classic, options, use);
    const Life today = life_in(HostGeneration::today, options, use);
    EXPECT_EQ(classic.project, today.project);
    EXPECT_EQ(classic.conformance, today.conformance);
    EXPECT_EQ(classic.messages, today.messages);
    EXPECT_TRUE(today.clean) << today.conformance;
    EXPECT_EQ(first_difference(classic.calls, in_classic_spelling(today.calls)), "");
    // The conversion makes the logs equal, and changes nothing in a classic log.
    EXPECT_NE(first_difference(classic.calls, today.calls), "");
    EXPECT_EQ(first_difference(classic.calls, in_classic_spelling(classic.calls)), "");
}

void import_scene(embedded::Host& host, const std::string& path) {
    EXPECT_TRUE(host.verify(path).importable);
    EXPECT_EQ(host.import_file(path).code, 0);
}

TEST(BothGenerations, ImportTheExamplesAlike) {
    std::size_t scenes = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(VXR_EXAMPLES_DIR)) {
        if (entry.path().extension() != ".aec") {
            continue;
        }
        SCOPED_TRACE(entry.path());
        ++scenes;
        expect_the_same_of({}, [&](embedded::Host& host) { import_scene(host, entry.path().string()); });
    }
    EXPECT_GE(scenes, 3U);
}

TEST(BothGenerations, ImportEveryKindOfEntryAndPreferenceAlike) {
    for (const char* name : {"minimal", "everything", "interlaced", "numbers", "older_host"}) {
        SCOPED_TRACE(name);
        const std::string scene = std::string(VXR_END_TO_END_DIR) + "/scenes/" + name + ".aec";
        embedded::HostOptions options;
        options.alpha_preference = 2;
        options.version = {9, 32};
        expect_the_same_of(options, [&](embedded::Host& host) { import_scene(host, scene); });
        options.version = {9, 31};
        expect_the_same_of(options, [&](embedded::Host& host) { import_scene(host, scene); });
    }
}

TEST(BothGenerations, ReadTexturesAlikeAloneAndInAScene) {
    const SceneFolder folder;
    const std::string path = folder.files().path("\U0001F3AC \u00E9toffe.txl");
    ASSERT_FALSE(write_texture(path, make_texture(31, 17, Texture::kRgb, 2)).has_value());
    const std::string scene = folder.scene(
        "VORTAN XR COMPOSITION RESOLUTION 64 48 FROM 0 TO 3 RANGE 4 FPS 25\n"
        "COMPOSITION NRM \"Main\" {\n FILE NRM STRAIGHT \"C:\\\U0001F3AC \u00E9toffe.txl\"\n}\n");
    std::vector<std::vector<PF_Pixel>> frames;
    expect_the_same_of({}, [&](embedded::Host& host) {
        import_scene(host, scene);
        const embedded::OpenResult opened = host.open_with_module(path);
        ASSERT_EQ(opened.error, "");
        frames.push_back(host.draw(opened.in_spec, {31, 17, 0, 0, 0, {0, 1}, 0x3C}).pixels);
        EXPECT_EQ(host.dispose(opened.in_spec).code, 0);
    });
    ASSERT_EQ(frames.size(), 2U);
    ASSERT_EQ(frames[0].size(), 527U);
    for (std::size_t i = 0; i < frames[0].size(); ++i) {
        EXPECT_EQ(frames[0][i].red, frames[1][i].red);
        EXPECT_EQ(frames[0][i].alpha, frames[1][i].alpha);
    }
}

TEST(BothGenerations, ReportTheSameFailures) {
    const SceneFolder folder;
    folder.files().write("cloth.txl", "no texture");
    const std::string scene = folder.scene(
        "VORTAN XR COMPOSITION RESOLUTION 64 48 FROM 0 TO 3 RANGE 4 FPS 25\n"
        "COMPOSITION NRM \"Main\" {\n FILE NRM STRAIGHT \"C:\\cloth.txl\"\n}\n");
    const auto use = [&](embedded::Host& host) { EXPECT_EQ(host.import_file(scene).code, 3); };
    const Life classic = life_in(HostGeneration::classic, {}, use);
    const Life today = life_in(HostGeneration::today, {}, use);
    EXPECT_EQ(classic.messages.size(), 4U);
    EXPECT_EQ(classic.messages, today.messages);
    EXPECT_EQ(classic.project, today.project);
    EXPECT_EQ(classic.conformance, today.conformance);
    EXPECT_EQ(first_difference(classic.calls, in_classic_spelling(today.calls)), "");
}

TEST(ClassicSpelling, LeavesOutWhatTheBridgeAdds) {
    const std::string create =
        R"({"n":7,"suite":"AEGP Comp Suite","version":15,"function":"AEGP_CreateCameraInComp","args":{"name":"c"},"out":{"layer":"layer:1"},"result":0})";
    const std::string acquire =
        R"("suite":"SPBasicSuite","version":0,"function":"AcquireSuite","args":{"name":"AEGP Layer Suite","version":11},"out":{"suite":"AEGP Layer Suite 11"},"result":0})";
    const std::string release =
        R"("suite":"SPBasicSuite","version":0,"function":"ReleaseSuite","args":{"name":"AEGP Layer Suite","version":11},"out":{},"result":0})";
    const std::string flag =
        R"("suite":"AEGP Layer Suite","version":11,"function":"AEGP_SetLayerFlag","args":{"layer":"layer:1","flag":)";
    const std::vector<std::string> today = {
        create,
        R"({"n":8,)" + acquire,
        R"({"n":9,)" + flag + R"(8192,"value":1},"out":{},"result":0})",
        R"({"n":10,)" + release,
        R"({"n":11,)" + acquire,
        R"({"n":12,)" + flag + R"(2048,"value":1},"out":{},"result":0})",
        R"({"n":13,)" + release,
    };
    const std::vector<std::string> classic = {
        R"({"n":7,"suite":"AEGP Comp Suite","version":9,"function":"AEGP_CreateCameraInComp","args":{"name":"c"},"out":{"layer":"layer:1"},"result":0})",
        R"({"n":8,)" + acquire,
        R"({"n":9,)" + flag + R"(2048,"value":1},"out":{},"result":0})",
        R"({"n":10,)" + release,
    };
    EXPECT_EQ(in_classic_spelling(today), classic);
}

TEST(ClassicSpelling, ChangesVersionsAndNothingElse) {
    const std::vector<std::string> today = {
        R"({"n":1,"suite":"SPBasicSuite","version":0,"function":"AcquireSuite","args":{"name":"AEGP Footage Suite","version":11},"out":{"suite":"AEGP Footage Suite 11"},"result":0})",
        R"({"n":2,"suite":"AEGP Footage Suite","version":11,"function":"AEGP_AddFootageToProject","args":{"footage":"footage:1","folder":"item:1"},"out":{"item":"item:2"},"result":0})",
        R"({"n":3,"suite":"AEGP Layer Suite","version":11,"function":"AEGP_SetLayerFlag","args":{},"out":{},"result":0})",
    };
    const std::vector<std::string> classic = {
        R"({"n":1,"suite":"SPBasicSuite","version":0,"function":"AcquireSuite","args":{"name":"AEGP Footage Suite","version":7},"out":{"suite":"AEGP Footage Suite 7"},"result":0})",
        R"({"n":2,"suite":"AEGP Footage Suite","version":7,"function":"AEGP_AddFootageToProject","args":{"footage":"footage:1","folder":"item:1"},"out":{"item":"item:2"},"result":0})",
        today[2],
    };
    EXPECT_EQ(in_classic_spelling(today), classic);
}

}  // namespace
