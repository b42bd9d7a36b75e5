// The bundle imports the examples of the repository.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "end_to_end/project_text.h"
#include "support/loaded_bundle.h"

namespace {

using testing::IsEmpty;

std::vector<std::filesystem::path> scenes_in_examples() {
    std::vector<std::filesystem::path> scenes;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(VXR_EXAMPLES_DIR)) {
        if (entry.path().extension() == ".aec") {
            scenes.push_back(entry.path());
        }
    }
    return scenes;
}

embedded::Project imported(const std::string& example) {
    LoadedBundle bundle;
    const std::string path = std::string(VXR_EXAMPLES_DIR) + "/" + example;
    EXPECT_TRUE(bundle.host().verify(path).importable);
    EXPECT_EQ(bundle.host().import_file(path).code, 0);
    return bundle.host().project();
}

TEST(Examples, ImportCleanlyAsOneUndoStepEach) {
    const auto scenes = scenes_in_examples();
    ASSERT_GE(scenes.size(), 3U);
    for (const std::filesystem::path& scene : scenes) {
        SCOPED_TRACE(scene);
        LoadedBundle bundle;
        ASSERT_EQ(bundle.loaded().error, "");
        EXPECT_TRUE(bundle.host().verify(scene.string()).importable);
        EXPECT_EQ(bundle.host().import_file(scene.string()).code, 0);
        EXPECT_THAT(bundle.message_texts(), IsEmpty());
        EXPECT_FALSE(bundle.host().project().compositions.empty());
        ASSERT_EQ(bundle.host().project().undo_steps.size(), 1U);
        EXPECT_EQ(bundle.host().project().undo_steps[0].name, "Import media");
        EXPECT_TRUE(bundle.host().project().undo_steps[0].closed);
        EXPECT_GT(bundle.host().project().undo_steps[0].changes, 0);
        bundle.host().unload();
        EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
        EXPECT_EQ(bundle.host().conformance().to_text(), "");
    }
}

TEST(Examples, AllInOneProject) {
    LoadedBundle bundle;
    std::size_t steps = 0;
    std::size_t compositions = 0;
    for (int round = 0; round < 2; ++round) {
        for (const std::filesystem::path& scene : scenes_in_examples()) {
            EXPECT_EQ(bundle.host().import_file(scene.string()).code, 0);
            EXPECT_EQ(bundle.host().project().undo_steps.size(), ++steps);
            EXPECT_GT(bundle.host().project().compositions.size(), compositions);
            compositions = bundle.host().project().compositions.size();
        }
    }
    EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
}

TEST(Examples, Square) {
    const embedded::Project project = imported("square/courtyard_020.aec");
    const std::string comp_facts = " 640x360 100/100 9@24 2400/100\n";
    const std::string still = " fields 0/0 pixels 100/100\n";
    EXPECT_EQ(items_text(project),
              "folder \"Courtyard 020\"\n"
              "  comp \"Courtyard 020\"" +
                  comp_facts + "  file plate.tif 640x360 alpha 0" + still +
                  "  file floor.tif 640x360 alpha 1" + still +
                  "  folder \"Shadow pass\"\n"
                  "    comp \"Shadow pass\"" +
                  comp_facts + "    sequence shadow0001.png 640x360 1-8 at 24.0 alpha 0" + still +
                  "    file contact.png 640x360 alpha 0" + still +
                  "  folder \"The \"hero\" pot\"\n"
                  "    comp \"The \"hero\" pot\"" +
                  comp_facts + "    sequence pot0001.tif 640x360 1-8 at 24.0 alpha 1" + still +
                  "    folder \"Light passes\"\n"
                  "      comp \"Light passes\"" +
                  comp_facts + "      sequence sun0001.tif 640x360 1-8 at 24.0 alpha 1" + still +
                  "  folder \"For the titles\"\n"
                  "    comp \"For the titles\"" +
                  comp_facts +
                  "  folder \"Held back\"\n"
                  "    comp \"Held back\"" +
                  comp_facts + "  file flare.png 640x360 alpha 0" + still +
                  "  file haze.tga 640x360 alpha 0" + still +
                  "folder \"Special Passes\"\n"
                  "  sequence objectbuffer0001.tif 640x360 1-8 at 24.0 alpha 1" +
                  still + "  file grey_card.jpg 640x360 alpha 0" + still);
    // New layers go on top: the first entry of the file is at the bottom. Objects are added newest first.
    EXPECT_EQ(layers_text(project, "Courtyard 020"),
              "camera \"Camera\" keys 3 at 1@24 for 8@24\n"
              "light \"Sun\" type 0 keys 1 at 1@24 for 8@24\n"
              "light \"Spot on the pot\" type 1 keys 2 at 1@24 for 8@24\n"
              "light \"Sky\" type 2 keys 1 at 1@24 for 8@24\n"
              "light \"Doorway\" type 2 keys 1 at 1@24 for 8@24\n"
              "light \"Slit\" type 0 keys 1 at 1@24 for 8@24\n"
              "light \"Neon\" type 2 keys 1 at 1@24 for 8@24\n"
              "light \"Fill\" type 2 keys 0 at 1@24 for 8@24\n"
              "null \"Pot\" keys 2 at 1@24 for 8@24\n"
              "null \"World\" keys 0 at 1@24 for 8@24\n"
              "file haze.tga mode 2 at 1@24 for 8@24\n"
              "file flare.png mode 4 at 1@24 for 8@24\n"
              "comp \"Held back\" mode 2\n"
              "comp \"For the titles\" mode 2\n"
              "comp \"The \"hero\" pot\" mode 2\n"
              "comp \"Shadow pass\" mode 5\n"
              "file floor.tif mode 2 at 1@24 for 8@24\n"
              "file plate.tif mode 2 at 1@24 for 8@24\n");
    EXPECT_EQ(layers_text(project, "Shadow pass"),
              "file contact.png mode 5 at 1@24 for 8@24\n"
              "sequence shadow0001.png mode 2 at 1@24 for 8@24\n");
    EXPECT_EQ(layers_text(project, "The \"hero\" pot"),
              "comp \"Light passes\" mode 4\n"
              "sequence pot0001.tif mode 2 at 1@24 for 8@24\n");
    EXPECT_EQ(layers_text(project, "Light passes"), "sequence sun0001.tif mode 4 at 1@24 for 8@24\n");
    EXPECT_EQ(layers_text(project, "For the titles") + layers_text(project, "Held back"), "");
}

TEST(Examples, Interlaced) {
    const embedded::Project project = imported("interlaced/lantern_010.aec");
    const std::string comp_facts = " 720x576 106/100 50@25 2500/100\n";
    const std::string upper_first = " fields 1/0 pixels 106/100\n";
    EXPECT_EQ(items_text(project),
              "folder \"Lantern 010\"\n"
              "  comp \"Lantern 010\"" +
                  comp_facts + "  file street.rla 720x576 alpha 4" + upper_first +
                  "  folder \"Shadow pass\"\n"
                  "    comp \"Shadow pass\"" +
                  comp_facts + "    sequence shadow0017.tif 720x576 17-24 at 25.0 alpha 0" + upper_first +
                  "  file post.rla 720x576 alpha 1" + upper_first +
                  "  sequence lantern0017.tif 720x576 17-24 at 25.0 alpha 1" + upper_first +
                  "  folder \"Light passes\"\n"
                  "    comp \"Light passes\"" +
                  comp_facts + "    sequence glow0017.tif 720x576 17-24 at 25.0 alpha 1" + upper_first +
                  "    missing dust0017.tif 720x576 8@25 alpha 1" + upper_first +
                  "    folder \"Flicker\"\n"
                  "      comp \"Flicker\"" +
                  comp_facts + "      sequence flicker0017.tif 720x576 17-24 at 25.0 alpha 0" + upper_first +
                  "  comp \"Camera+Light\"" + comp_facts +
                  "folder \"Special Passes\"\n"
                  "  sequence objectbuffer0017.tif 720x576 17-24 at 25.0 alpha 1" +
                  upper_first + "  sequence depth0017.tif 720x576 17-24 at 25.0 alpha 0" + upper_first);
    EXPECT_EQ(layers_text(project, "Lantern 010"),
              "comp \"Camera+Light\" mode 2\n"
              "comp \"Light passes\" mode 4\n"
              "sequence lantern0017.tif mode 2 at 17@25 for 8@25\n"
              "file post.rla mode 2 at 17@25 for 8@25\n"
              "comp \"Shadow pass\" mode 5\n"
              "file street.rla mode 2 at 17@25 for 8@25\n");
    EXPECT_EQ(layers_text(project, "Light passes"),
              "comp \"Flicker\" mode 4\n"
              "missing dust0017.tif mode 4 at 17@25 for 8@25\n"
              "sequence glow0017.tif mode 2 at 17@25 for 8@25\n");
    EXPECT_EQ(layers_text(project, "Flicker"), "sequence flicker0017.tif mode 2 at 17@25 for 8@25\n");
    EXPECT_EQ(layers_text(project, "Camera+Light"),
              "camera \"Camera\" keys 3 at 17@25 for 8@25\n"
              "light \"Lantern\" type 2 keys 3 at 17@25 for 8@25\n"
              "light \"Moon\" type 0 keys 1 at 17@25 for 8@25\n"
              "null \"Pivot\" keys 3 at 17@25 for 8@25\n");
    // Scaled by the aspect of the file, which is slightly less than 1.0667 in single precision.
    const embedded::Layer& stretched = project.layer(project.composition(1).layers.front());
    const embedded::Stream& scale = stretched.streams.at(kLayerStreamScale);
    EXPECT_EQ(scale.value[0], 100.0);
    EXPECT_EQ(scale.value[1], 106.66999816894531);
    // Keys begin at the layer's own time 0.
    EXPECT_EQ(project.layers.back().streams.at(kLayerStreamZoom).keyframes.front().time.value, 0);
    EXPECT_EQ(project.layers.back().streams.at(kLayerStreamZoom).keyframes.back().time.value, 7);
}

TEST(Examples, Keyframes) {
    const embedded::Project project = imported("keyframes/orbit_030.aec");
    EXPECT_EQ(items_text(project),
              "folder \"Orbit 030\"\n"
              "  comp \"Orbit 030\" 640x360 100/100 100@25 2500/100\n"
              "  file stage.tif 640x360 alpha 0 fields 0/0 pixels 100/100\n");
    ASSERT_EQ(project.layers.size(), 5U);
    std::size_t objects = 0;
    for (const embedded::Layer& layer : project.layers) {
        if (layer.source_item != 0) {
            continue;
        }
        ++objects;
        std::size_t animated = 0;
        for (const auto& [kind, stream] : layer.streams) {
            if (stream.keyframes.empty()) {
                continue;
            }
            ++animated;
            ASSERT_EQ(stream.keyframes.size(), 100U);
            for (A_long i = 0; i < 100; ++i) {
                EXPECT_EQ(stream.keyframes[static_cast<std::size_t>(i)].time.value, i);
            }
        }
        // Position, point of interest, orientation, and a camera's zoom; a null's position and three angles.
        EXPECT_EQ(animated, layer.kind == embedded::LayerKind::light ? 3U : 4U) << layer.name;
    }
    EXPECT_EQ(objects, 4U);
}

}  // namespace
