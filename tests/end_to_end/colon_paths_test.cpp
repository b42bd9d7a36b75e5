// The bundle as it is on macOS, where the importer keeps paths in the colon style of classic hosts. This
// build of it has a stand-in for that style (path_style_colon.cpp) and must pass POSIX paths to a current
// host.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "embedded/project_json.h"
#include "end_to_end/call_notation.h"
#include "end_to_end/texture_scene.h"
#include "support/loaded_bundle.h"
#include "support/scene_folder.h"

namespace {

using embedded::HostGeneration;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

/// The paths that the host was given for footage.
std::vector<std::string> footage_paths(const embedded::Project& project) {
    std::vector<std::string> paths;
    for (const embedded::Footage& footage : project.footage) {
        if (footage.kind != embedded::FootageKind::placeholder) {
            paths.push_back(footage.path);
        }
    }
    return paths;
}

/// The result of importing a scene with one build of the bundle.
struct Import {
    std::string project;
    std::vector<std::string> messages;
    std::vector<std::string> calls;
    std::vector<std::string> paths;
};

Import imported(const std::string& bundle_path, HostGeneration generation, const std::string& scene) {
    LoadedBundle bundle({}, generation, bundle_path);
    EXPECT_EQ(bundle.loaded().error, "");
    EXPECT_TRUE(bundle.host().verify(scene).importable);
    bundle.host().import_file(scene);
    bundle.host().unload();
    return {embedded::project_to_json(bundle.host().project()).dump(1), bundle.message_texts(),
            bundle.take_calls(), footage_paths(bundle.host().project())};
}

TEST(ColonPaths, ReachACurrentHostAsPosixPaths) {
    std::size_t scenes = 0;
    std::size_t paths = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(VXR_EXAMPLES_DIR)) {
        if (entry.path().extension() != ".aec") {
            continue;
        }
        const std::string scene = entry.path().string();
        SCOPED_TRACE(scene);
        ++scenes;
        const Import colons = imported(VXR_COLON_BUNDLE_PATH, HostGeneration::today, scene);
        for (const std::string& path : colons.paths) {
            EXPECT_THAT(path, StartsWith("/"));
            ++paths;
        }
        // The host sees what it sees from the ordinary bundle, whose paths are never converted.
        const Import ordinary = imported(VXR_BUNDLE_PATH, HostGeneration::today, scene);
        EXPECT_EQ(first_difference(ordinary.calls, colons.calls), "");
        EXPECT_EQ(ordinary.project, colons.project);
        EXPECT_EQ(ordinary.messages, colons.messages);
    }
    EXPECT_GE(scenes, 3U);
    EXPECT_GE(paths, 4U);
}

// Without this the test above could compare two builds that convert nothing.
TEST(ColonPaths, ReachAClassicHostAsTheyAre) {
    const SceneFolder folder;
    const std::string scene = folder.scene(
        "VORTAN XR COMPOSITION RESOLUTION 64 48 FROM 0 TO 3 RANGE 4 FPS 25\n"
        "COMPOSITION NRM \"Main\" {\n FILE NRM STRAIGHT \"" +
        folder.image("plate.tga") + "\"\n}\n");
    const Import classic = imported(VXR_COLON_BUNDLE_PATH, HostGeneration::classic, scene);
    EXPECT_THAT(classic.calls,
                ::testing::Contains(::testing::AllOf(HasSubstr("AEGP_NewFootage"), HasSubstr("\"Disk:"),
                                                     HasSubstr(":plate.tga\""))));
}

struct NameCase {
    const char* why;
    std::string folder;
    std::string name;
};

TEST(ColonPaths, LeadToFootageWithNamesOfEveryKind) {
    const NameCase cases[] = {
        {"plain", "shots", "plate.tga"},
        {"a folder that the colon style cannot express", "\u00DCberblendung", "plate.tga"},
        {"a name beside the scene that it cannot express", "shots", "bl\u00FCte \U0001F3AC.tga"},
        {"both", "\u00DCberblendung", "bl\u00FCte.tga"},
        {"blanks and full stops", "a b. c", " plate 1.tga"},
        {"a backslash in the folder's name", "take 1\\2", "plate.tga"},
    };
    for (const NameCase& c : cases) {
        SCOPED_TRACE(c.why);
        const SceneFolder folder;
        folder.files().make_folder(c.folder);
        const std::string plate = folder.image(c.folder + "/" + c.name);
        std::string in_colons = "Disk" + plate;
        for (char& byte : in_colons) {
            byte = byte == '/' ? ':' : byte == ':' ? '/' : byte;
        }
        for (const std::string& written :
             {plate, "C:\\elsewhere\\" + c.name, "/elsewhere/" + c.name, in_colons}) {
            SCOPED_TRACE(written);
            const std::string scene =
                folder.files().write(c.folder + "/shot.aec",
                                     "VORTAN XR COMPOSITION RESOLUTION 64 48 FROM 0 TO 3 RANGE 4 FPS 25\n"
                                     "COMPOSITION NRM \"Main\" {\n FILE NRM STRAIGHT \"" +
                                         written + "\"\n}\n");
            const Import current = imported(VXR_COLON_BUNDLE_PATH, HostGeneration::today, scene);
            EXPECT_THAT(current.messages, IsEmpty());
            EXPECT_THAT(current.paths, ::testing::ElementsAre(plate));
        }
    }
}

// Deliberate: a colon in a name is a slash in the colon style, by which the importer takes the path for a
// POSIX path and converts it once more. The file is not found; the import goes on with a placeholder.
TEST(ColonPaths, WithAColonInANameAreNotFound) {
    const SceneFolder folder;
    const std::string plate = folder.image("take 1:2.tga");
    const std::string scene = folder.scene(
        "VORTAN XR COMPOSITION RESOLUTION 64 48 FROM 0 TO 3 RANGE 4 FPS 25\n"
        "COMPOSITION NRM \"Main\" {\n FILE NRM STRAIGHT \"" +
        plate + "\"\n}\n");
    const Import current = imported(VXR_COLON_BUNDLE_PATH, HostGeneration::today, scene);
    EXPECT_THAT(current.messages, IsEmpty());
    EXPECT_THAT(current.paths, IsEmpty());
    EXPECT_THAT(current.calls, ::testing::Contains(HasSubstr("AEGP_NewPlaceholderFootage")));
}

TEST(ColonPaths, OfTexturesStayThoseOfTheHost) {
    const TemporaryFolder files;
    const std::string path = files.path("cloth 1.txl");
    ASSERT_FALSE(write_texture(path, make_texture(7, 5, Texture::kRgb, 1)).has_value());
    std::vector<std::vector<std::string>> logs;
    for (const char* bundle_path : {VXR_BUNDLE_PATH, VXR_COLON_BUNDLE_PATH}) {
        LoadedBundle bundle({}, HostGeneration::today, bundle_path);
        const embedded::OpenResult opened = bundle.host().open_with_module(path);
        ASSERT_EQ(opened.error, "");
        const embedded::DrawResult drawn = bundle.host().draw(opened.in_spec, {7, 5, 0, 0, 0, {0, 1}, 0});
        EXPECT_EQ(drawn.pixels.size(), 35U);
        EXPECT_EQ(bundle.host().dispose(opened.in_spec).code, 0);
        EXPECT_THAT(bundle.message_texts(), IsEmpty());
        logs.push_back(bundle.take_calls());
    }
    EXPECT_EQ(first_difference(logs[0], logs[1]), "");
    EXPECT_THAT(logs[0], ::testing::Contains(HasSubstr(path)));
}

}  // namespace
