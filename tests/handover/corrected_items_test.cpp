#include <gtest/gtest.h>

#include "handover/made_handover.h"

namespace {

using namespace made;

using Values = std::vector<double>;

const char* const kCamera = "CAMERA \"Cam\" { KEY 0 0 0 0 0 0 0 45 }\n";

TEST(SquarePixels, GiveTheCameraACompositionOfItsOwnHeight) {
    const struct {
        const char* reason;
        const char* settings;
        std::int32_t height_px;
        double scale_percent;
    } kCases[] = {
        {"576 / 1.0667 is 539.98, up to 540", "ASPECT 1.0667", 540, 106.67},
        {"576 / 1.0668 is 539.93", "ASPECT 1.0668", 540, 106.68},
        {"576 / 1.065 is 540.8, up to an even number like 576", "ASPECT 1.065", 542, 106.5},
        {"577 / 1.0667 is 540.9, up to an odd number", "ASPECT 1.0667 RESOLUTION 720 577", 541, 106.67},
        {"577 / 1.07 is 539.3: 540 is even and 577 is not", "ASPECT 1.07 RESOLUTION 720 577", 541, 107},
        {"exact: 576 / 0.9", "ASPECT 0.9", 640, 90},
    };
    for (const auto& [reason, settings, height_px, scale_percent] : kCases) {
        const Handover handover = of_text(scene_text(settings, "", kCamera));
        ASSERT_EQ(handover.compositions.size(), 2U) << reason;
        const Composition& objects = handover.compositions[1];
        EXPECT_EQ(objects.width_px, 720) << reason;
        EXPECT_EQ(objects.height_px, height_px) << reason;
        EXPECT_EQ(objects.pixel_aspect, 1) << reason;
        const Values& scale = track_of(layer_named(handover, "Camera+Light"), Property::scale).values;
        EXPECT_NEAR(scale.at(0), scale_percent, 1e-9) << reason;
        EXPECT_NEAR(scale.at(1), scale_percent, 1e-9) << reason;
        EXPECT_EQ(layer_named(handover, "Cam").center_px[1], height_px / 2) << reason;
        EXPECT_EQ(count_of(handover, Correction::square_pixels), 1) << reason;
    }
}

TEST(SquarePixels, CanBeLeftOut) {
    const std::string text = scene_text("ASPECT 1.0667", "", kCamera);
    const Handover exact = of_text(text, Version::corrected, without({Correction::square_pixels}));
    EXPECT_EQ(exact.compositions[1].height_px, 576);
    EXPECT_EQ(exact.compositions[1].pixel_aspect, 1.0667);
    EXPECT_NEAR(track_of(layer_named(exact, "Camera+Light"), Property::scale).values[1], 106.67, 1e-12);
    const Handover neither =
        of_text(text, Version::corrected, without({Correction::square_pixels, Correction::exact_aspect}));
    EXPECT_EQ(neither.compositions[0].pixel_aspect, 1.06);
    EXPECT_EQ(neither.compositions[1].pixel_aspect, 1.06);
    EXPECT_EQ(count_of(neither, Correction::exact_aspect), 0);
}

TEST(SquarePixels, AreNothingNewWhereThereIsNoCameraOrAllPixelsAreSquare) {
    EXPECT_EQ(of_text(scene_text("ASPECT 1.0667", "", "")).compositions.size(), 1U);
    const Handover square = of_text(scene_text("", "", kCamera));
    EXPECT_EQ(count_of(square, Correction::square_pixels), 0);
    EXPECT_EQ(count_of(square, Correction::exact_aspect), 0);
}

TEST(PlateFrames, ShowTheFileOfEachFrame) {
    const struct {
        const char* reason;
        const char* settings;
        int first_file;
        int last_file;
        std::int64_t first, last;
        double start, length;
        std::int64_t changed;
        bool elsewhere;
        const char* name;
    } kCases[] = {
        {"the files are those of the scene", "FROM 5 TO 9", 5, 9, 5, 9, 0, 5, 0, false, "a[0005-0009].tga"},
        {"files before FROM are left out", "FROM 5 TO 9", 2, 9, 5, 9, 0, 5, 1, false, "a[0005-0009].tga"},
        {"files after TO are left out", "FROM 5 TO 9", 5, 12, 5, 9, 0, 5, 0, false, "a[0005-0009].tga"},
        {"the first file is later", "FROM 5 TO 9", 7, 12, 7, 9, 2, 3, 1, false, "a[0007-0009].tga"},
        {"with LOCAL the composition has the scene's frames", "FROM 5 TO 9 LOCAL", 7, 12, 7, 9, 7, 3, 1,
         false, "a[0007-0009].tga"},
        {"one frame in common", "FROM 5 TO 9", 9, 12, 9, 9, 4, 1, 1, false, "a[0009-0009].tga"},
        {"no frame in common", "FROM 5 TO 9", 10, 12, 10, 12, 0, 5, 0, true, "a[0010-0012].tga"},
        {"no frame in common, before", "FROM 5 TO 9 LOCAL", 1, 4, 1, 4, 5, 5, 0, true, "a[0001-0004].tga"},
    };
    for (const auto& one : kCases) {
        const SceneFolder folder;
        folder.sequence("a", one.first_file, one.last_file);
        const std::string named =
            "a00" + std::string(one.first_file < 10 ? "0" : "") + std::to_string(one.first_file) + ".tga";
        const Handover handover =
            handed_over(folder.scene(scene_text(one.settings, "FSEQ NRM STRAIGHT \"" + named + "\"\n", "")));
        const Footage& footage = handover.footage.at(0);
        const Layer& layer = handover.compositions[0].layers.at(0);
        EXPECT_EQ(footage.files.value().first, one.first) << one.reason;
        EXPECT_EQ(footage.files->last, one.last) << one.reason;
        EXPECT_EQ(footage.files->whole, one.elsewhere) << one.reason;
        EXPECT_EQ(footage.path, folder.files().path(file_name(*footage.files, one.first))) << one.reason;
        EXPECT_EQ(footage.frames, static_cast<double>(one.last - one.first + 1)) << one.reason;
        EXPECT_EQ(layer.start, one.start) << one.reason;
        EXPECT_EQ(layer.in, one.start) << one.reason;
        EXPECT_EQ(layer.length, one.length) << one.reason;
        EXPECT_EQ(handover.items.at(footage.item).name, one.name) << one.reason;
        EXPECT_EQ(layer.name, one.name) << one.reason << ": a layer is called after its footage";
        EXPECT_EQ(count_of(handover, Correction::plate_frames), one.changed) << one.reason;
        EXPECT_EQ(loss_codes(handover), one.elsewhere
                                            ? std::vector<std::string>{"handover-sequence-elsewhere"}
                                            : std::vector<std::string>{})
            << one.reason;
    }
}

TEST(PlateFrames, BeginAndEndWithFilesThatExist) {
    const SceneFolder folder;
    folder.sequence("a", 1, 3);
    folder.sequence("a", 7, 8);
    folder.sequence("a", 10, 10);
    folder.sequence("a", 15, 15);
    const Handover handover =
        handed_over(folder.scene(scene_text("FROM 4 TO 12", "FSEQ NRM STRAIGHT \"a0001.tga\"\n", "")));
    const NumberedFiles& files = handover.footage.at(0).files.value();
    EXPECT_EQ(files.first, 7);
    EXPECT_EQ(files.last, 10);
    EXPECT_EQ(files.missing, 1) << "number 9";
    EXPECT_EQ(handover.compositions[0].layers.at(0).start, 3);
    EXPECT_EQ(loss_codes(handover), std::vector<std::string>{"handover-sequence-gap"});
}

TEST(PlateFrames, CanBeLeftOut) {
    const SceneFolder folder;
    folder.sequence("a", 7, 12);
    const Handover handover =
        handed_over(folder.scene(scene_text("FROM 5 TO 9", "FSEQ NRM STRAIGHT \"a0007.tga\"\n", "")),
                    Version::corrected, without({Correction::plate_frames}));
    EXPECT_EQ(handover.compositions[0].layers.at(0).start, 0);
    EXPECT_TRUE(handover.footage.at(0).files.value().whole);
}

TEST(PlateFrames, LeaveScenesThatEndBeforeTheyBegin) {
    const SceneFolder folder;
    folder.sequence("a", 7, 12);
    const Handover handover =
        handed_over(folder.scene(scene_text("FROM 9 TO 7", "FSEQ NRM STRAIGHT \"a0007.tga\"\n", "")));
    EXPECT_EQ(loss_codes(handover), std::vector<std::string>{"handover-outside-host-range"});
}

TEST(WholeNames, AreNotCut) {
    const std::string name = "a_very_long_name_of_a_plate_0001_v07.tga";
    const std::string text = scene_text("", "FILE NRM STRAIGHT \"C:\\r\\" + name + "\"\n", "");
    const Handover whole = of_text(text);
    EXPECT_EQ(whole.items.back().name, name);
    EXPECT_EQ(whole.compositions[0].layers.at(0).name, name);
    EXPECT_EQ(count_of(whole, Correction::whole_names), 1);
    const Handover cut = of_text(text, Version::corrected, without({Correction::whole_names}));
    EXPECT_EQ(cut.items.back().name, name.substr(0, 32)) << "the importer keeps 32 bytes";
    EXPECT_EQ(loss_codes(cut), (std::vector<std::string>{"handover-footage-missing", "handover-name-cut"}));
}

TEST(FrameRate, IsThatOfTheUser) {
    const SceneFolder folder;
    folder.sequence("a", 0, 3);
    const std::string scene = folder.scene(
        scene_text("FPS 29", "FSEQ NRM STRAIGHT \"a0000.tga\"\nFILE NRM STRAIGHT \"gone.tga\"\n", kCamera));
    HandoverOptions options;
    options.rate_fps = 29.97;
    const Handover handover = handed_over(scene, Version::corrected, options);
    EXPECT_EQ(handover.shot.rate_fps, 29.97);
    EXPECT_EQ(handover.shot.written_fps, 29);
    EXPECT_EQ(handover.compositions[0].rate_fps, 29.97);
    EXPECT_EQ(handover.compositions[0].frames, 100) << "frames stay frames";
    EXPECT_EQ(handover.footage[0].rate_fps, 29.97);
    EXPECT_EQ(handover.footage[1].rate_fps, 29.97);
    EXPECT_EQ(count_of(handover, Correction::frame_rate), 3);
    options.left_out = {Correction::frame_rate};
    EXPECT_EQ(handed_over(scene, Version::corrected, options).shot.rate_fps, 29);
}

TEST(LayerCorrections, SetConesAndAnchors) {
    const std::string text =
        scene_text("", "", "LIGHT \"S\" { TYPE SPOT ANGLE 45 }\nLIGHT \"P\" { ANGLE 45 }\nNULL \"N\" { }\n");
    const Handover handover = of_text(text);
    EXPECT_EQ(track_of(layer_named(handover, "S"), Property::cone_angle).values, Values{45});
    EXPECT_EQ(track_of(layer_named(handover, "S"), Property::cone_feather).values, Values{0});
    EXPECT_EQ(find(layer_named(handover, "P"), Property::cone_angle), nullptr) << "a point light has no cone";
    EXPECT_EQ(track_of(layer_named(handover, "N"), Property::anchor).values, (Values{0, 0, 0}));
    EXPECT_EQ(loss_codes(handover), std::vector<std::string>{});
    const Handover left =
        of_text(text, Version::corrected, without({Correction::spot_cone, Correction::null_anchors}));
    EXPECT_EQ(find(layer_named(left, "S"), Property::cone_angle), nullptr);
    EXPECT_EQ(find(layer_named(left, "N"), Property::anchor), nullptr);
    EXPECT_EQ(loss_codes(left), std::vector<std::string>{"handover-cone-lost"});
}

TEST(Losses, NameWhatTheHostCannotHold) {
    const struct {
        const char* reason;
        std::string text;
        std::vector<std::string> codes;
    } kCases[] = {
        {"sizes", scene_text("RESOLUTION 3 4", "", ""), {"handover-outside-host-range"}},
        {"a size that fits", scene_text("RESOLUTION 4 30000", "", ""), {}},
        {"rates", scene_text("FPS 100", "", ""), {"handover-outside-host-range"}},
        {"the longest composition", scene_text("RANGE 270000", "", ""), {}},
        {"a longer one", scene_text("RANGE 270001", "", ""), {"handover-outside-host-range"}},
        {"an angle of view of 0",
         scene_text("", "", "CAMERA \"C\" { KEY 0 0 0 0 0 0 0 0 }\n"),
         {"handover-outside-host-range"}},
        {"an angle of view of 180 degrees",
         scene_text("", "", "CAMERA \"C\" { KEY 0 0 0 0 0 0 0 180 }\n"),
         {"handover-outside-host-range"}},
        {"a cone of 181 degrees",
         scene_text("", "", "LIGHT \"L\" { TYPE SPOT ANGLE 181 }\n"),
         {"handover-outside-host-range"}},
        {"a null that turns",
         scene_text("", "", "NULL \"N\" { KEY 0 0 0 0 10 0 0 }\n"),
         {"handover-null-orientation-open"}},
        {"kinds of light and shadow",
         scene_text("", "", "LIGHT \"L\" { TYPE AREA SHADOW SOFT }\n"),
         {"handover-light-kind-changed", "handover-shadow-kind-lost"}},
        {"hard shadows arrive", scene_text("", "", "LIGHT \"L\" { SHADOW HARD }\n"), {}},
    };
    for (const auto& [reason, text, codes] : kCases) {
        EXPECT_EQ(loss_codes(of_text(text)), codes) << reason;
    }
}

}  // namespace
