// What the public headers say of files, by values worked out from the files' text.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vortanxr/scene.h>
#include <vortanxr/texture.h>

#include <cstddef>
#include <cstdio>
#include <iterator>
#include <string>
#include <vector>

#include "support/file_content.h"
#include "support/temporary_folder.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const std::string kExamples = VXR_EXAMPLES_DIR;

vortanxr::Scene courtyard() {
    const vortanxr::SceneReading reading = vortanxr::read_scene(kExamples + "/square/courtyard_020.aec");
    EXPECT_FALSE(reading.error.has_value());
    return reading.scene.value_or(vortanxr::Scene{});
}

TEST(PublicScene, SettingsAreThoseOfTheFile) {
    const vortanxr::Scene scene = courtyard();
    EXPECT_EQ(scene.width_px, 640);
    EXPECT_EQ(scene.height_px, 360);
    EXPECT_EQ(scene.first_frame, 1);
    EXPECT_EQ(scene.last_frame, 8);
    EXPECT_EQ(scene.frame_range, 9);
    EXPECT_EQ(scene.fps, 24);
    EXPECT_EQ(scene.pixel_aspect, 1.0F);
    EXPECT_TRUE(scene.local);
    EXPECT_EQ(scene.fields, vortanxr::Fields::none);
}

TEST(PublicScene, CompositionsAreAListWithTheRootFirst) {
    const vortanxr::Scene scene = courtyard();
    std::vector<std::string> names;
    for (const vortanxr::Composition& one : scene.compositions) {
        names.push_back(one.name);
    }
    EXPECT_THAT(names, ElementsAre("Courtyard 020", "Shadow pass", "The \"hero\" pot", "Light passes",
                                   "For the titles", "Held back"));
    ASSERT_EQ(scene.compositions.size(), 6U);
    EXPECT_FALSE(scene.compositions[0].parent.has_value());
    EXPECT_EQ(scene.compositions[1].blend, vortanxr::Blend::multiply);
    EXPECT_EQ(scene.compositions[3].parent, 2U);
    EXPECT_EQ(scene.compositions[3].blend, vortanxr::Blend::add);
    EXPECT_EQ(scene.compositions[3].at.line, 29);
    EXPECT_EQ(scene.compositions[3].at.column, 21);
    // Plate, floor, four compositions, flare, haze.
    const std::vector<vortanxr::Entry>& entries = scene.compositions[0].entries;
    ASSERT_EQ(entries.size(), 8U);
    EXPECT_EQ(entries[2].kind, vortanxr::Entry::Kind::composition);
    EXPECT_EQ(entries[2].index, 1U);
    EXPECT_EQ(entries[7].kind, vortanxr::Entry::Kind::footage);
    EXPECT_EQ(scene.footage.at(entries[7].index).written, "Macintosh HD:Renders:courtyard_020:haze.tga");
}

TEST(PublicScene, FootageKeepsItsWordsAndItsPath) {
    const vortanxr::Scene scene = courtyard();
    ASSERT_EQ(scene.footage.size(), 10U);
    const vortanxr::Footage& contact = scene.footage[3];
    EXPECT_EQ(contact.written, "/Volumes/renders/courtyard_020/contact.png");
    EXPECT_EQ(contact.blend, vortanxr::Blend::multiply);
    EXPECT_EQ(contact.alpha, vortanxr::Alpha::straight);
    EXPECT_FALSE(contact.is_sequence);
    EXPECT_FALSE(contact.top_level);
    EXPECT_EQ(contact.at.line, 25);
    const vortanxr::Footage& buffer = scene.footage[8];
    EXPECT_TRUE(buffer.is_sequence);
    EXPECT_TRUE(buffer.top_level);
    EXPECT_EQ(buffer.alpha, vortanxr::Alpha::premultiplied);
    ASSERT_TRUE(buffer.path.has_value());
    EXPECT_THAT(*buffer.path, HasSubstr("/square/objectbuffer0001.tif"));
}

TEST(PublicScene, KeysAreThoseOfTheFile) {
    const vortanxr::Scene scene = courtyard();
    ASSERT_EQ(scene.cameras.size(), 1U);
    const vortanxr::Camera& camera = scene.cameras[0];
    EXPECT_EQ(camera.name, "Camera");
    EXPECT_EQ(camera.at.line, 45);
    EXPECT_EQ(camera.at.column, 8);
    ASSERT_EQ(camera.keys.size(), 3U);
    EXPECT_EQ(camera.keys[0].target_distance, 1000.0F) << "what a key without one has";
    EXPECT_EQ(camera.keys[1].frame, 4);
    EXPECT_THAT(camera.keys[1].position, ElementsAre(12.5F, 118.0F, -548.5F));
    EXPECT_THAT(camera.keys[1].rotation_degrees, ElementsAre(0.5F, -4.0F, 0.0F));
    EXPECT_EQ(camera.keys[1].field_of_view_degrees, 44.25F);
    EXPECT_EQ(camera.keys[1].target_distance, 548.5F);
    ASSERT_EQ(scene.nulls.size(), 2U);
    EXPECT_EQ(scene.nulls[0].name, "Pot");
    ASSERT_EQ(scene.nulls[0].keys.size(), 2U);
    EXPECT_THAT(scene.nulls[0].keys[1].rotation_degrees, ElementsAre(0.0F, 45.0F, 0.0F));
    EXPECT_THAT(scene.nulls[1].keys, IsEmpty());
}

TEST(PublicScene, LightsHaveTheWordsOfTheFile) {
    using vortanxr::LightType;
    using vortanxr::Shadow;
    const vortanxr::Scene scene = courtyard();
    struct Row {
        const char* name;
        LightType type;
        Shadow shadow;
        float intensity;
        std::size_t keys;
    };
    const Row rows[] = {
        {"Sun", LightType::parallel, Shadow::hard, 1.25F, 1},
        {"Spot on the pot", LightType::spot, Shadow::soft, 0.8F, 2},
        {"Sky", LightType::area, Shadow::area, 0.35F, 1},
        {"Doorway", LightType::omni, Shadow::none, 0.5F, 1},
        {"Slit", LightType::parallel_spot, Shadow::none, 1.0F, 1},
        {"Neon", LightType::tube, Shadow::none, 1.0F, 1},
        {"Fill", LightType::omni, Shadow::none, 1.0F, 0},
    };
    ASSERT_EQ(scene.lights.size(), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const vortanxr::Light& light = scene.lights[i];
        EXPECT_EQ(light.name, rows[i].name);
        EXPECT_EQ(light.type, rows[i].type) << light.name;
        EXPECT_EQ(light.shadow, rows[i].shadow) << light.name;
        EXPECT_EQ(light.intensity, rows[i].intensity) << light.name;
        EXPECT_EQ(light.keys.size(), rows[i].keys) << light.name;
    }
    EXPECT_THAT(scene.lights[3].color, ElementsAre(1.0F, 0.72F, 0.4F));
    EXPECT_EQ(scene.lights[1].cone_angle_degrees, 32.0F);
}

TEST(PublicScene, AMistakeHasItsPlaceAndNoScene) {
    const TemporaryFolder folder;
    const std::string path = folder.write("no_rate.aec", "VORTAN XR COMPOSITION\nRESOLUTION 4 4\nFPS abc\n");
    const vortanxr::SceneReading reading = vortanxr::read_scene(path);
    EXPECT_FALSE(reading.scene.has_value());
    ASSERT_TRUE(reading.error.has_value());
    EXPECT_EQ(vortanxr::text_of(*reading.error),
              path + ":3:5: error: expected a number after FPS, found \"abc\" [expected-number]");
    EXPECT_EQ(reading.error->offset_bytes, 41);
}

struct Unreadable {
    const char* name;
    const char* path;
    const char* scene_code;
    const char* texture_code;
};
const Unreadable kUnreadable[] = {
    {"a missing file", "nowhere", "cannot-read", "cannot-open"},
    {"an empty path", "", "cannot-read", "cannot-open"},
    {"a folder", "/", "cannot-read", "cannot-open"},
    {"a device", "/dev/null", "cannot-read", "cannot-open"},
    {"the name by which the command line reads its standard input", "-", "cannot-read", "cannot-open"},
    {"the device of the standard input", "/dev/stdin", "cannot-read", "cannot-open"},
};

TEST(PublicReading, WhatCannotBeReadIsAnError) {
    // A device, whatever the test runs with: a regular file could be read by that name.
    ASSERT_NE(std::freopen("/dev/null", "r", stdin), nullptr);
    for (const Unreadable& one : kUnreadable) {
        const vortanxr::SceneReading scene = vortanxr::read_scene(one.path);
        EXPECT_FALSE(scene.scene.has_value()) << one.name;
        ASSERT_TRUE(scene.error.has_value()) << one.name;
        EXPECT_EQ(scene.error->code, one.scene_code) << one.name;
        EXPECT_EQ(scene.error->file, one.path) << one.name;
        const vortanxr::TextureReading texture = vortanxr::read_texture(one.path);
        EXPECT_FALSE(texture.texture.has_value()) << one.name;
        ASSERT_TRUE(texture.error.has_value()) << one.name;
        EXPECT_EQ(texture.error->code, one.texture_code) << one.name;
        EXPECT_EQ(texture.error->file, one.path) << one.name;
    }
}

TEST(PublicTexture, EveryByteIsThatOfTheFile) {
    const vortanxr::TextureReading reading = vortanxr::read_texture(kExamples + "/textures/tiny.txl");
    ASSERT_TRUE(reading.texture.has_value());
    EXPECT_FALSE(reading.error.has_value());
    EXPECT_THAT(reading.warnings, IsEmpty());
    EXPECT_EQ(reading.texture->width_px, 4);
    EXPECT_EQ(reading.texture->height_px, 2);
    EXPECT_EQ(reading.texture->channels, 1);
    EXPECT_THAT(reading.texture->pixels, ElementsAre(7, 7, 7, 7, 1, 2, 3, 4));
    ASSERT_EQ(reading.texture->alphas.size(), 1U);
    EXPECT_EQ(reading.texture->alphas[0].name, "Alpha");
    EXPECT_THAT(reading.texture->alphas[0].values, ElementsAre(255, 255, 255, 255, 0, 64, 128, 192));
}

TEST(PublicTexture, WhatWasRepairedIsAWarning) {
    // The flag of the picture's second row, by docs/texture-format.md; 9 is none, so the row is that above
    // it.
    constexpr std::size_t kFlagAt = 0x56;
    std::string bytes = content_of(kExamples + "/textures/tiny.txl");
    bytes.at(kFlagAt) = 9;
    const TemporaryFolder folder;
    const vortanxr::TextureReading reading = vortanxr::read_texture(folder.write("flag.txl", bytes));
    ASSERT_TRUE(reading.texture.has_value());
    EXPECT_THAT(reading.texture->pixels, ElementsAre(7, 7, 7, 7, 7, 7, 7, 7));
    ASSERT_EQ(reading.warnings.size(), 1U);
    EXPECT_EQ(reading.warnings[0].code, "row-repeated");
    EXPECT_EQ(reading.warnings[0].severity, vortanxr::Severity::loss);
    EXPECT_EQ(reading.warnings[0].file, folder.path("flag.txl"));
    EXPECT_THAT(reading.warnings[0].within, ElementsAre("502", "TaVx"));
}

TEST(PublicTexture, AFileThatIsNoneIsRefused) {
    const TemporaryFolder folder;
    const vortanxr::TextureReading reading =
        vortanxr::read_texture(folder.write("no.txl", "VORTAN XR COMPOSITION"));
    EXPECT_FALSE(reading.texture.has_value());
    ASSERT_TRUE(reading.error.has_value());
    EXPECT_EQ(reading.error->code, "not-a-texture");
    EXPECT_EQ(reading.error->severity, vortanxr::Severity::error);
}

TEST(PublicVersion, TheLibraryHasTheVersionOfItsHeaders) {
    const vortanxr::Version version = vortanxr::library_version();
    EXPECT_EQ(version.major_number, VORTANXR_VERSION_MAJOR);
    EXPECT_EQ(version.minor_number, VORTANXR_VERSION_MINOR);
    EXPECT_EQ(version.patch_number, VORTANXR_VERSION_PATCH);
    EXPECT_FALSE(vortanxr::library_problem("shot.aec").has_value());
}

}  // namespace
