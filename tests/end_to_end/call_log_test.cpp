// The bundle's calls into a host. The expected calls are written by hand from the rules of the formats and of
// the host's interface; none is recorded.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "end_to_end/call_notation.h"
#include "support/loaded_bundle.h"
#include "support/scene_folder.h"

namespace {

using testing::IsEmpty;

std::string data_path(const std::string& name) {
    return VXR_END_TO_END_DIR "/" + name;
}

void write_footage(const SceneFolder& folder) {
    folder.image("plate.tga");
    folder.image("flare.tga", true);
    folder.image("card.tga");
    folder.sequence("shadow", 10, 19, true);
    folder.sequence("objectbuffer", 0, 7, true);
    const std::filesystem::path examples = VXR_EXAMPLES_DIR "/interlaced";
    std::filesystem::copy_file(examples / "street.rla", folder.files().path("street.rla"));
    std::filesystem::copy_file(examples / "post.rla", folder.files().path("post.RLA"));
}

struct Scene {
    const char* name;  // scenes/<name>.aec and expected/<name>.calls
    embedded::InterfaceVersion version;
    std::optional<std::uint8_t> alpha_preference;
    std::size_t footage_in_folder;  // number of files that the scene finds
};

const Scene kScenes[] = {
    {"minimal", {11, 0}, std::nullopt, 0},
    {"everything", {11, 0}, 2, 4},
    {"interlaced", {11, 0}, std::nullopt, 3},
    {"older_host", {9, 31}, std::nullopt, 1},
};

class CallLog : public testing::TestWithParam<Scene> {};

TEST_P(CallLog, IsTheExpectedOne) {
    const Scene& scene = GetParam();
    const SceneFolder folder;
    write_footage(folder);
    const std::string path = folder.files().path("shot.aec");
    std::filesystem::copy_file(data_path("scenes/" + std::string(scene.name) + ".aec"), path);
    embedded::HostOptions options;
    options.version = scene.version;
    options.alpha_preference = scene.alpha_preference;
    LoadedBundle bundle(options);
    ASSERT_EQ(bundle.loaded().error, "");
    bundle.take_calls();

    EXPECT_EQ(bundle.host().import_file(path).code, 0);

    const auto expected = read_expected_calls(data_path("expected/" + std::string(scene.name) + ".calls"));
    const auto made = calls_in_notation(bundle.take_calls(), folder.files().folder().string());
    EXPECT_EQ(first_difference(expected, made), "");
    EXPECT_THAT(bundle.message_texts(), IsEmpty());
    EXPECT_EQ(bundle.host().conformance().clean(), true) << bundle.host().conformance().to_text();
    std::size_t found = 0;
    for (const embedded::Footage& footage : bundle.host().project().footage) {
        found += footage.kind != embedded::FootageKind::placeholder ? 1 : 0;
    }
    EXPECT_EQ(found, scene.footage_in_folder);
}

INSTANTIATE_TEST_SUITE_P(Scenes, CallLog, testing::ValuesIn(kScenes),
                         [](const auto& scene) { return std::string(scene.param.name); });

TEST(CallLogOfTheEntryPoint, RegistersTheImporterAndThenTheModule) {
    LoadedBundle bundle;
    ASSERT_EQ(bundle.loaded().error, "");
    EXPECT_EQ(bundle.loaded().entry.code, 0);
    const auto made = calls_in_notation(bundle.take_calls(), "");
    EXPECT_EQ(first_difference(read_expected_calls(data_path("expected/load.calls")), made), "");
}

TEST(CallLogOfTheEntryPoint, IsTheSameInEveryHostVersion) {
    for (const embedded::InterfaceVersion version :
         {embedded::InterfaceVersion{9, 0}, {9, 31}, {9, 32}, {10, 0}, {12, 0}, {13, 0}, {25, 3}}) {
        embedded::HostOptions options;
        options.version = version;
        LoadedBundle bundle(options);
        ASSERT_EQ(bundle.loaded().error, "");
        const auto made = calls_in_notation(bundle.take_calls(), "");
        EXPECT_EQ(first_difference(read_expected_calls(data_path("expected/load.calls")), made), "")
            << version.major << "." << version.minor;
    }
}

TEST(CallLogOfTheDeathHook, IsEmpty) {
    LoadedBundle bundle;
    ASSERT_EQ(bundle.loaded().error, "");
    bundle.take_calls();
    bundle.host().unload();
    EXPECT_THAT(bundle.take_calls(), IsEmpty());
    EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
}

TEST(CallNotation, TellsDifferentCallsApart) {
    const std::vector<std::string> expected = {"a()", "b(1)", "c()"};
    EXPECT_EQ(first_difference(expected, expected), "");
    EXPECT_NE(first_difference(expected, {"a()", "b(2)", "c()"}), "");
    EXPECT_NE(first_difference(expected, {"a()", "b(1)"}), "");
    EXPECT_NE(first_difference(expected, {"a()", "b(1)", "c()", "d()"}), "");
    EXPECT_NE(first_difference({}, {"a()"}), "");
}

TEST(CallNotation, KeepsTheBitsOfNumbersAndTheSignOfZero) {
    const std::vector<std::string> log = {
        R"({"n":1,"suite":"PF ANSI Suite","version":1,"function":"sin","args":{"x":-0.0},"out":{},"result":-0.0})",
        R"({"n":2,"suite":"PF ANSI Suite","version":1,"function":"sin","args":{"x":3.141592653589793},"out":{},"result":1.2246467991473532e-16})",
        R"({"n":3,"suite":"AEGP Item Suite","version":10,"function":"AEGP_CreateNewFolder","args":{"name":"a","parent":"item:1"},"out":{},"result":4})",
        R"({"n":4,"suite":"SPBasicSuite","version":0,"function":"AcquireSuite","args":{"name":"a","version":1},"out":{"suite":null},"result":0})",
    };
    EXPECT_THAT(
        calls_in_notation(log, ""),
        testing::ElementsAre("sin(-0.0) -> -0.0", "sin(3.141592653589793) -> 1.2246467991473532e-16",
                             "AEGP_CreateNewFolder(\"a\", item:1) !4", "AcquireSuite(\"a\", 1) -> null"));
}

}  // namespace
