#include "cli/project/import_outcome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "cli/project_builder.h"
#include "support/scene_folder.h"

namespace {

using embedded::kRootFolder;
using embedded::Layer;
using embedded::LayerKind;

// A camera with two keys, one of them repeated, a light and a null. Frame 1 is the layers' frame 0.
const char* const kScene =
    "VORTAN XR COMPOSITION\nRESOLUTION 640 8 FROM 1 TO 8 RANGE 10 FPS 25\nCOMPOSITION NRM \"M\" { }\n"
    "CAMERA \"c\" { KEY 1 1 2 3 90 0 7 90 100 KEY 2 0 0 0 0 0 0 40 KEY 2 1 2 3 90 0 7 90 100 }\n"
    "LIGHT \"l\" { TYPE PSPOT COLOR 1 0.5 0.25 INTENSITY 0.5 SHADOW SOFT KEY 1 0 0 0 0 90 0 }\n"
    "NULL \"n\" { KEY 1 1 2 3 10 20 30 }\n";

cli::SceneReading reading() {
    const SceneFolder folder;
    return cli::read_scene(folder.scene(kScene));
}

/// A constant stream.
void value(Layer& layer, AEGP_LayerStream kind, const embedded::StreamComponents& value) {
    embedded::Stream& stream = layer.streams[kind];
    stream.kind = kind;
    stream.value = value;
    stream.value_set = true;
}

/// The project that the scene becomes, worked out by hand. The camera at (1, 2, 3) looks along -x, 100 units
/// far; its 90 degrees over 640 pixels are a zoom of 320. The light at the origin looks up.
ProjectBuilder imported() {
    ProjectBuilder builder;
    builder.composition(kRootFolder, "M");
    Layer& null = builder.layer(1, LayerKind::null, "n");
    ProjectBuilder::keys(null, kLayerStreamPosition, 0, 1, {1, -2, 3});
    ProjectBuilder::keys(null, kLayerStreamXRotation, 0, 1, {10});
    ProjectBuilder::keys(null, kLayerStreamYRotation, 0, 1, {-20});
    ProjectBuilder::keys(null, kLayerStreamZRotation, 0, 1, {30});
    Layer& light = builder.layer(1, LayerKind::light, "l");
    light.light_type = kLightTypeParallel;
    ProjectBuilder::keys(light, kLayerStreamPosition, 0, 1, {0, 0, 0});
    ProjectBuilder::keys(light, kLayerStreamAnchorPoint, 0, 1, {0, -1000, 0});
    ProjectBuilder::keys(light, kLayerStreamOrientation, 0, 1, {0, 0, 0});
    value(light, kLayerStreamColor, {1, 1, 0.5, 0.25});
    value(light, kLayerStreamIntensity, {50});
    value(light, kLayerStreamCastsShadows, {1});
    Layer& camera = builder.layer(1, LayerKind::camera, "c");
    ProjectBuilder::keys(camera, kLayerStreamPosition, 0, 2, {1, -2, 3});
    ProjectBuilder::keys(camera, kLayerStreamAnchorPoint, 0, 2, {-99, -2, 3});
    ProjectBuilder::keys(camera, kLayerStreamOrientation, 0, 2, {0, 0, 7});
    ProjectBuilder::keys(camera, kLayerStreamZoom, 0, 2, {320});
    return builder;
}

using Texts = std::vector<std::string>;

TEST(ImportOutcome, EverythingArrived) {
    EXPECT_EQ(cli::missing_in_project(reading(), imported().project, true), Texts{});
}

// Each case changes one thing of the project.
struct Difference {
    const char* why;
    std::function<void(Layer& null, Layer& light, Layer& camera)> change;
    std::string missing;  ///< empty: no difference
};

const Difference kDifferences[] = {
    {"a zoom that the host made up",
     [](Layer&, Layer&, Layer& c) { c.streams[kLayerStreamZoom].keyframes[1].value = {879}; },
     "camera \"c\" has the zoom 879, and the scene says 320, at frame 2"},
    {"rounding is no difference",
     [](Layer&, Layer&, Layer& c) { c.streams[kLayerStreamZoom].keyframes[1].value = {320 + 1e-8}; }, ""},
    {"more than rounding",
     [](Layer&, Layer&, Layer& c) { c.streams[kLayerStreamZoom].keyframes[0].value = {320.0001}; },
     "camera \"c\" has the zoom 320.0001, and the scene says 320, at frame 1"},
    {"an infinite zoom",
     [](Layer&, Layer&, Layer& c) {
         c.streams[kLayerStreamZoom].keyframes[0].value = {std::numeric_limits<double>::infinity()};
     },
     "camera \"c\" has the zoom inf, and the scene says 320, at frame 1"},
    {"a zoom that is not a number",
     [](Layer&, Layer&, Layer& c) {
         c.streams[kLayerStreamZoom].keyframes[0].value = {std::numeric_limits<double>::quiet_NaN()};
     },
     "camera \"c\" has the zoom nan, and the scene says 320, at frame 1"},
    {"a key too few", [](Layer&, Layer&, Layer& c) { c.streams[kLayerStreamZoom].keyframes.pop_back(); },
     "camera \"c\" is not finished"},
    {"a key at another time",
     [](Layer&, Layer&, Layer& c) {
         c.streams[kLayerStreamPosition].keyframes[1].time = {3, 25};
     },
     "camera \"c\" has a key of its position at another time than the scene, at frame 2"},
    {"the same time on another scale",
     [](Layer&, Layer&, Layer& c) {
         c.streams[kLayerStreamPosition].keyframes[1].time = {2, 50};
     },
     ""},
    {"a position with the wrong sign",
     [](Layer&, Layer&, Layer& c) {
         c.streams[kLayerStreamPosition].keyframes[0].value = {1, 2, 3};
     },
     "camera \"c\" has the position (1, 2, 3), and the scene says (1, -2, 3), at frame 1"},
    {"another point of interest",
     [](Layer&, Layer&, Layer& c) {
         c.streams[kLayerStreamAnchorPoint].keyframes[0].value = {101, -2, 3};
     },
     "camera \"c\" has the point of interest (101, -2, 3), and the scene says (-99, -2, 3), at frame 1"},
    {"no bank", [](Layer&, Layer&, Layer& c) { c.streams[kLayerStreamOrientation].keyframes[0].value = {}; },
     "camera \"c\" has the orientation (0, 0, 0), and the scene says (0, 0, 7), at frame 1"},
    {"a camera that looks straight ahead", [](Layer&, Layer&, Layer& c) { c.flags = kLayerFlag3D; },
     "camera \"c\" looks 90 degrees away from where the scene says, at frame 1: it does not turn towards its "
     "point of interest"},
    {"a light that does not turn", [](Layer&, Layer& l, Layer&) { l.flags = kLayerFlag3D; },
     "light \"l\" looks 90 degrees away from where the scene says, at frame 1: it does not turn towards its "
     "point of interest"},
    {"a light of the host's kind", [](Layer&, Layer& l, Layer&) { l.light_type.reset(); },
     "light \"l\" is a light, and the scene says parallel light"},
    {"another kind of light", [](Layer&, Layer& l, Layer&) { l.light_type = kLightTypeSpot; },
     "light \"l\" is a spot light, and the scene says parallel light"},
    {"another colour",
     [](Layer&, Layer& l, Layer&) {
         value(l, kLayerStreamColor, {1, 1, 1, 1});
     },
     "light \"l\" has the colour (1, 1, 1), and the scene says (1, 0.5, 0.25)"},
    {"another intensity", [](Layer&, Layer& l, Layer&) { value(l, kLayerStreamIntensity, {100}); },
     "light \"l\" has the intensity 100, and the scene says 50"},
    {"no shadows", [](Layer&, Layer& l, Layer&) { value(l, kLayerStreamCastsShadows, {0}); },
     "light \"l\" casts no shadows, and the scene says it does"},
    {"a light without its last value",
     [](Layer&, Layer& l, Layer&) { l.streams[kLayerStreamCastsShadows].value_set = false; },
     "light \"l\" is not finished"},
    {"a flat null", [](Layer& n, Layer&, Layer&) { n.flags = 0; }, "null \"n\" is not a 3D layer"},
    {"a null turned the other way",
     [](Layer& n, Layer&, Layer&) { n.streams[kLayerStreamYRotation].keyframes[0].value = {20}; },
     "null \"n\" has the Y rotation 20, and the scene says -20, at frame 1"},
};

TEST(ImportOutcome, DifferencesFromTheScene) {
    for (const Difference& one : kDifferences) {
        ProjectBuilder builder = imported();
        std::vector<Layer>& layers = builder.project.layers;
        one.change(layers[0], layers[1], layers[2]);
        EXPECT_EQ(cli::missing_in_project(reading(), builder.project, true),
                  one.missing.empty() ? Texts{} : Texts{one.missing})
            << one.why;
    }
}

TEST(ImportOutcome, ObjectThatIsMissing) {
    ProjectBuilder builder = imported();
    builder.project.layers.pop_back();
    EXPECT_EQ(cli::missing_in_project(reading(), builder.project, true), Texts{"camera \"c\" is missing"});
}

TEST(ImportOutcome, OlderHostsGetNoObjects) {
    ProjectBuilder builder = imported();
    builder.project.layers.clear();
    EXPECT_EQ(cli::missing_in_project(reading(), builder.project, false), Texts{});
}

TEST(ImportOutcome, NothingWasBuilt) {
    EXPECT_EQ(cli::missing_in_project(reading(), ProjectBuilder().project, false),
              Texts{"1 of the compositions are missing"});
}

TEST(ImportOutcome, VersionsThatGetObjects) {
    EXPECT_FALSE(cli::gets_scene_objects(9, 31));
    EXPECT_TRUE(cli::gets_scene_objects(9, 32));
    EXPECT_TRUE(cli::gets_scene_objects(10, 0));
    EXPECT_FALSE(cli::gets_scene_objects(8, 99));
}

}  // namespace
