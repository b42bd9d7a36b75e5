#include "cli/project/import_outcome.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/project_builder.h"
#include "support/scene_folder.h"

namespace {

using embedded::kRootFolder;
using embedded::Layer;
using embedded::LayerKind;

// A camera with two keys, one of them repeated, and a light.
const char* const kScene =
    "VORTAN XR COMPOSITION\nRESOLUTION 8 8 FROM 1 TO 8 RANGE 10 FPS 25\nCOMPOSITION NRM \"M\" { }\n"
    "CAMERA \"c\" { KEY 1 0 0 0 0 0 0 40 KEY 2 0 0 0 0 0 0 40 KEY 2 0 0 0 0 0 0 40 }\n"
    "LIGHT \"l\" { KEY 1 0 0 0 0 0 0 }\n";

cli::SceneReading reading() {
    const SceneFolder folder;
    return cli::read_scene(folder.scene(kScene));
}

struct Arrived {
    bool composition = true;
    bool light = true;
    bool shadows = true;
    bool camera = true;
    int zoom_keys = 2;
};

std::vector<std::string> missing(const Arrived& arrived, bool objects_wanted = true) {
    ProjectBuilder builder;
    if (arrived.composition) {
        builder.composition(kRootFolder, "M");
    }
    if (arrived.light) {
        Layer& light = builder.layer(1, LayerKind::light, "l");
        ProjectBuilder::keys(light, kLayerStreamPosition, 0, 1);
        light.streams[kLayerStreamCastsShadows].value_set = arrived.shadows;
    }
    if (arrived.camera) {
        Layer& camera = builder.layer(1, LayerKind::camera, "c");
        ProjectBuilder::keys(camera, kLayerStreamPosition, 0, 2);
        ProjectBuilder::keys(camera, kLayerStreamZoom, 0, arrived.zoom_keys);
    }
    return cli::missing_in_project(reading(), builder.project, objects_wanted);
}

using Texts = std::vector<std::string>;

TEST(ImportOutcome, EverythingArrived) {
    EXPECT_EQ(missing({}), Texts{});
}

TEST(ImportOutcome, ObjectThatIsMissing) {
    Arrived arrived;
    arrived.camera = false;
    EXPECT_EQ(missing(arrived), Texts{"camera \"c\" is missing"});
}

TEST(ImportOutcome, LightWithoutItsLastValue) {
    Arrived arrived;
    arrived.shadows = false;
    EXPECT_EQ(missing(arrived), Texts{"light \"l\" is not finished"});
}

TEST(ImportOutcome, CameraWithoutAllOfItsKeys) {
    Arrived arrived;
    arrived.zoom_keys = 1;
    EXPECT_EQ(missing(arrived), Texts{"camera \"c\" is not finished"});
}

TEST(ImportOutcome, OlderHostsGetNoObjects) {
    Arrived arrived;
    arrived.camera = false;
    arrived.light = false;
    EXPECT_EQ(missing(arrived, false), Texts{});
}

TEST(ImportOutcome, NothingWasBuilt) {
    Arrived arrived;
    arrived.composition = arrived.light = arrived.camera = false;
    EXPECT_EQ(missing(arrived, false), Texts{"1 of the compositions are missing"});
}

TEST(ImportOutcome, VersionsThatGetObjects) {
    EXPECT_FALSE(cli::gets_scene_objects(9, 31));
    EXPECT_TRUE(cli::gets_scene_objects(9, 32));
    EXPECT_TRUE(cli::gets_scene_objects(10, 0));
    EXPECT_FALSE(cli::gets_scene_objects(8, 99));
}

}  // namespace
