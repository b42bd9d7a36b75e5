#include <gtest/gtest.h>

#include <stdexcept>

#include "embedded/project.h"
#include "handover/exact_aspect.h"
#include "handover/made_handover.h"

namespace {

using namespace made;

using Values = std::vector<double>;

TEST(ImportedHandover, IsTheProjectThatThePlugInBuilds) {
    const SceneFolder folder;
    folder.image("plate.tga", true);
    folder.sequence("fog", 8, 11);
    const std::string scene = folder.scene(
        "VORTAN XR COMPOSITION RESOLUTION 720 577 FROM 10 TO 19 RANGE 12 FPS 24 ASPECT 1.0667 FIELDS EVEN "
        "LOCAL\n"
        "COMPOSITION NRM \"Main\" {\n"
        "  FILE ADD PREMUL \"C:\\r\\plate.tga\"\n"
        "  COMPOSITION MUL \"Inner\" {\n"
        "    FSEQ NRM STRAIGHT \"C:\\r\\fog0009.tga\"\n"
        "  }\n"
        "}\n"
        "FILE <-> PREMUL \"C:\\r\\gone.tga\"\n"
        "CAMERA \"Cam\" { KEY 12 1 2 3 0 0 5 90 100 }\n"
        "LIGHT \"Lamp\" { TYPE PSPOT SHADOW HARD INTENSITY 0.5 COLOR 1 0.5 0.25 }\n");
    const Handover handover = handed_over(scene, Version::imported);

    EXPECT_EQ(handover.version, Version::imported);
    EXPECT_EQ(handover.shot.file, scene);
    EXPECT_EQ(handover.shot.pixel_aspect, 1.0667) << "what the scene says, not what a float holds";
    EXPECT_EQ(handover.shot.from, 10);
    EXPECT_TRUE(handover.shot.local);
    EXPECT_EQ(handover.shot.fields, Fields::upper_first);

    std::vector<std::string> items;
    for (const Item& item : handover.items) {
        items.push_back(item.name + " in " + (item.folder == kNone ? "" : handover.items[item.folder].name) +
                        " line " + std::to_string(item.at.line.value_or(0)));
    }
    EXPECT_EQ(items,
              (std::vector<std::string>{"Main in  line 2", "Main in Main line 2", "plate.tga in Main line 3",
                                        "Inner in Main line 4", "Inner in Inner line 4",
                                        "fog[0008-0011].tga in Inner line 5", "Special Passes in  line 0",
                                        "gone.tga in Special Passes line 8", "Camera+Light in Main line 0"}));

    ASSERT_EQ(handover.footage.size(), 3U);
    const Footage& plate = handover.footage[0];
    EXPECT_EQ(plate.kind, FootageKind::still);
    EXPECT_EQ(plate.written, "C:\\r\\plate.tga");
    EXPECT_EQ(plate.path, folder.files().path("plate.tga"));
    EXPECT_EQ(plate.alpha, Alpha::premultiplied);
    EXPECT_EQ(plate.fields, Fields::upper_first);
    EXPECT_EQ(plate.pixel_aspect, 1.06);
    const Footage& fog = handover.footage[1];
    EXPECT_EQ(fog.kind, FootageKind::sequence);
    EXPECT_EQ(fog.path, folder.files().path("fog0008.tga")) << "the first file, not the named one";
    EXPECT_EQ(fog.frames, 4);
    EXPECT_EQ(fog.rate_fps, 24);
    EXPECT_EQ(fog.alpha, Alpha::none);
    ASSERT_TRUE(fog.files.has_value());
    EXPECT_EQ(file_name(*fog.files, 11), "fog0011.tga");
    EXPECT_TRUE(fog.files->whole);
    const Footage& gone = handover.footage[2];
    EXPECT_EQ(gone.kind, FootageKind::placeholder);
    EXPECT_EQ(gone.width_px, 720);
    EXPECT_EQ(gone.frames, 10) << "from FROM to TO";
    EXPECT_EQ(gone.rate_fps, 24);

    ASSERT_EQ(handover.compositions.size(), 3U);
    const Composition& root = handover.compositions[0];
    EXPECT_EQ(root.frames, 12) << "RANGE";
    EXPECT_EQ(root.rate_fps, 24);
    EXPECT_EQ(root.pixel_aspect, 1.06);
    ASSERT_EQ(root.layers.size(), 3U);
    EXPECT_EQ(root.layers[0].name, "Camera+Light") << "the last one made is on top";
    EXPECT_EQ(track_of(root.layers[0], Property::scale).values, (Values{100, 106.66999816894531, 100}))
        << "1.0667 in single precision, times 100";
    EXPECT_EQ(root.layers[1].name, "Inner");
    EXPECT_EQ(root.layers[1].blend, Blend::multiply);
    EXPECT_FALSE(root.layers[1].timed);
    EXPECT_EQ(root.layers[2].blend, Blend::add);
    EXPECT_EQ(root.layers[2].start, 10) << "LOCAL";
    EXPECT_EQ(root.layers[2].in, 10);
    EXPECT_EQ(root.layers[2].length, 10);

    const Composition& objects = handover.compositions[2];
    ASSERT_EQ(objects.layers.size(), 2U);
    const Layer& camera = layer_named(handover, "Cam");
    EXPECT_EQ(camera.kind, LayerKind::camera);
    EXPECT_TRUE(camera.aimed);
    EXPECT_TRUE(camera.three_d);
    EXPECT_EQ(camera.center_px, (std::array<double, 2>{360, 288})) << "of 577 pixels, cut";
    EXPECT_EQ(track_of(camera, Property::position).frames, Values{2}) << "from FROM on";
    EXPECT_EQ(track_of(camera, Property::position).values, (Values{1, -2, 3}));
    EXPECT_EQ(track_of(camera, Property::anchor).values, (Values{1, -2, 103}));
    EXPECT_EQ(track_of(camera, Property::orientation).values, (Values{0, 0, 5}));
    EXPECT_NEAR(track_of(camera, Property::zoom).values[0], 360, 1e-9);
    EXPECT_EQ(track_of(camera, Property::zoom).interpolation, Interpolation::host);

    const Layer& lamp = layer_named(handover, "Lamp");
    EXPECT_EQ(lamp.light, handover::LightKind::parallel);
    EXPECT_TRUE(lamp.aimed);
    EXPECT_EQ(track_of(lamp, Property::intensity).values, Values{50});
    EXPECT_EQ(track_of(lamp, Property::color).values, (Values{1, 0.5, 0.25}));
    EXPECT_EQ(track_of(lamp, Property::casts_shadows).values, Values{1});
    EXPECT_EQ(find(lamp, Property::position), nullptr) << "it has no keys";

    ASSERT_EQ(handover.objects.size(), 2U);
    EXPECT_EQ(handover.objects[0].name, "Cam") << "in the order of the file";
    EXPECT_EQ(handover.objects[1].light_word, "PSPOT");
    EXPECT_EQ(handover.objects[1].shadow_word, "HARD");
    EXPECT_EQ(handover.objects[1].at.line, 10);
    EXPECT_EQ(loss_codes(handover),
              (std::vector<std::string>{"handover-aspect-cut", "handover-footage-missing",
                                        "handover-light-kind-changed"}));
}

TEST(ImportedHandover, KeepsTheLastKeyOfEachFrame) {
    const Handover handover = of_text(
        scene_text("", "", "NULL \"N\" { KEY 5 1 0 0 0 0 0 KEY -3 2 0 0 0 0 0 KEY 5 3 0 0 0 0 0 }\n"));
    const std::vector<ObjectKey>& keys = handover.objects.at(0).keys;
    ASSERT_EQ(keys.size(), 2U);
    EXPECT_EQ(keys[0].frame, -3);
    EXPECT_EQ(keys[1].frame, 5);
    EXPECT_EQ(keys[1].position[0], 3);
    EXPECT_EQ(keys[1].target_distance, 1000);
}

TEST(ImportedHandover, LeavesOutKeysThatAreNotFinite) {
    for (const Version version : {Version::imported, Version::corrected}) {
        const Handover handover = of_text(scene_text("", "",
                                                     "LIGHT \"L\" { TYPE SPOT INTENSITY 1e39 ANGLE 1e39\n"
                                                     "KEY 0 1e39 0 0 0 0 0\nKEY 1 7 0 0 0 0 0 }\n"),
                                          version);
        ASSERT_EQ(handover.objects.at(0).keys.size(), 1U);
        EXPECT_EQ(handover.objects[0].cone_angle, 30) << "the usual one";
        EXPECT_EQ(track_of(layer_named(handover, "L"), Property::position).values, (Values{7, 0, 0}));
        EXPECT_EQ(find(layer_named(handover, "L"), Property::intensity), nullptr);
        EXPECT_EQ(handover.losses.at(0).what.code.name(), std::string("handover-value-not-finite"));
        EXPECT_EQ(handover.losses.at(2).what.at.line, 5) << "of the key";
    }
}

TEST(ImportedHandover, RefusesTheProjectOfAnotherScene) {
    const SceneFolder folder;
    const cli::SceneReading reading =
        cli::read_scene(folder.scene(scene_text("", "FILE NRM STRAIGHT \"a.tga\"\n", "")));
    embedded::Project project = embedded::empty_project();
    try {
        static_cast<void>(imported_handover(cli::source_of(reading), project));
        ADD_FAILURE() << "an empty project is accepted";
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find("it has 1 of 4 items"), std::string::npos) << error.what();
    }
}

TEST(ExactAspect, IsTheShortestDecimal) {
    const struct {
        float aspect;
        double decimal;
    } kCases[] = {{1.0667F, 1.0667}, {0.01F, 0.01},           {100.0F, 100},
                  {1.0F, 1},         {0.9090909F, 0.9090909}, {1.422222F, 1.422222}};
    for (const auto& [aspect, decimal] : kCases) {
        EXPECT_EQ(exact_aspect(aspect), decimal);
    }
}

}  // namespace
