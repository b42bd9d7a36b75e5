#include "composition/read/composition_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <typeinfo>
#include <vector>

#include "composition/model/scene_object.h"
#include "composition/parsed_text.h"

namespace {

constexpr const char* kExample = R"(VORTAN XR COMPOSITION
RESOLUTION 720 576
FROM 0
TO 99
RANGE 100
FPS 25
ASPECT 1.0667   / pixel aspect
FIELDS EVEN
LOCAL
COMPOSITION NRM "Main" {
  FILE NRM STRAIGHT "Macintosh HD:Renders:background.tif"
  FSEQ ADD PREMUL "Macintosh HD:Renders:glow0000.tif"
  COMPOSITION MUL "Shadow pass" {
    FSEQ NRM PREMUL "Macintosh HD:Renders:shadow0000.tif"
  }
}
FSEQ <-> PREMUL "Macintosh HD:Renders:objectbuffer0000.tif"
CAMERA "Camera" {
  KEY 0 0.0 100.0 -500.0 0.0 0.0 0.0 40.0 1000.0
  KEY 99 200.0 100.0 -400.0 15.0 0.0 0.0 40.0
}
LIGHT "Key light" {
  TYPE SPOT
  SHADOW SOFT
  COLOR 1.0 0.9 0.8
  INTENSITY 1.2
  ANGLE 45.0
  KEY 0 0.0 300.0 -300.0 0.0 -45.0 0.0
}
NULL "Target" {
  KEY 0 0.0 0.0 0.0 0.0 0.0 0.0
}
)";

void expect_key(const tagKeyFrame& key, A_long frame, const float (&position)[3],
                const float (&rotation)[3]) {
    EXPECT_EQ(key.frame, frame);
    EXPECT_THAT(key.position, testing::ElementsAreArray(position));
    EXPECT_THAT(key.rotation, testing::ElementsAreArray(rotation));
}

TEST(CompositionFile, EveryConstructTogether) {
    ReadText file(kExample);
    ASSERT_EQ(file.result, 1);
    tagProjectSettings& s = file.settings;
    EXPECT_EQ(s.width, 720);
    EXPECT_EQ(s.height, 576);
    EXPECT_EQ(s.from, 0);
    EXPECT_EQ(s.to, 99);
    EXPECT_EQ(s.range, 100);
    EXPECT_EQ(s.fps, 25);
    EXPECT_EQ(s.aspect, 1.0667F);
    EXPECT_EQ(s.local, 1);
    EXPECT_EQ(s.fields, kFieldsEven);
    EXPECT_EQ(s.firstFolder, nullptr);
    EXPECT_EQ(s.firstCompItem, nullptr);

    EXPECT_STREQ(s.composition.name, "Main");
    EXPECT_EQ(s.composition.blendMode, kBlendNormal);
    const std::vector<CCompoChild*> children = nodes_of(s.composition.children);
    ASSERT_EQ(children.size(), 3U);
    EXPECT_EQ(children[0]->item.file->path, file.parsed.folder.path("background.tif"));
    EXPECT_EQ(children[0]->item.file->alphaMode, kAlphaStraight);
    EXPECT_EQ(children[0]->item.file->isSequence, 0);
    EXPECT_EQ(children[1]->item.file->path, file.parsed.folder.path("glow0000.tif"));
    EXPECT_EQ(children[1]->item.file->blendMode, kBlendAdd);
    EXPECT_EQ(children[1]->item.file->alphaMode, kAlphaPremultiplied);
    EXPECT_EQ(children[1]->item.file->isSequence, 1);
    CComposition& shadow = *children[2]->item.composition;
    EXPECT_STREQ(shadow.name, "Shadow pass");
    EXPECT_EQ(shadow.blendMode, kBlendMultiply);
    EXPECT_EQ(shadow.parent, &s.composition);
    ASSERT_EQ(shadow.children.count, 1);
    EXPECT_EQ(nodes_of(shadow.children)[0]->item.file->path, file.parsed.folder.path("shadow0000.tif"));

    const std::vector<CCompoChild*> files = nodes_of(s.files);
    ASSERT_EQ(files.size(), 1U);
    EXPECT_EQ(files[0]->type, kChildFile);
    EXPECT_EQ(files[0]->item.file->path, file.parsed.folder.path("objectbuffer0000.tif"));
    EXPECT_EQ(files[0]->item.file->isSequence, 1);
    EXPECT_EQ(files[0]->item.file->blendMode, 0);

    const std::vector<CSceneObject*> objects = nodes_of(s.objects);
    ASSERT_EQ(objects.size(), 3U) << "newest first";
    EXPECT_STREQ(objects[0]->name, "Target");
    EXPECT_STREQ(objects[1]->name, "Key light");
    EXPECT_STREQ(objects[2]->name, "Camera");
    EXPECT_EQ(objects[0]->isNull, 1);
    expect_key(*objects[0]->keys[0], 0, {0, 0, 0}, {0, 0, 0});
    const auto& light = dynamic_cast<const CLight&>(*objects[1]);
    EXPECT_EQ(light.isNull, 0);
    EXPECT_EQ(light.lightType, kLightSpot);
    EXPECT_EQ(light.shadowType, kShadowSoft);
    EXPECT_THAT(light.color, testing::ElementsAre(1.0F, 0.9F, 0.8F));
    EXPECT_EQ(light.intensity, 1.2F);
    EXPECT_EQ(light.coneAngle, 45.0F);
    expect_key(*light.keys[0], 0, {0, 300, -300}, {0, -45, 0});
    const auto& camera = dynamic_cast<const CCamera&>(*objects[2]);
    ASSERT_EQ(camera.keyCount, 2);
    EXPECT_EQ(camera.isNull, 0);
    EXPECT_EQ(camera.zoom, 30.0F);
    expect_key(*camera.keys[0], 0, {0, 100, -500}, {0, 0, 0});
    EXPECT_EQ(camera.keys[0]->fov, 40.0F);
    EXPECT_EQ(camera.keys[0]->targetDistance, 1000.0F);
    expect_key(*camera.keys[1], 99, {200, 100, -400}, {15, 0, 0});
    EXPECT_EQ(camera.keys[1]->targetDistance, 1000.0F);
}

struct Case {
    const char* why;
    std::string text;
    int result;
};

void expect_results(std::initializer_list<Case> cases) {
    for (const Case& c : cases) {
        EXPECT_EQ(ReadText(c.text).result, c.result) << c.why;
    }
}

TEST(CompositionFile, Header) {
    const std::string rest = std::string(kSettings) + "COMPOSITION NRM \"a\" { }\n";
    expect_results({
        {"as written", "VORTAN XR COMPOSITION " + rest, 1},
        {"on lines of their own", "VORTAN\nXR\r\nCOMPOSITION " + rest, 1},
        {"a comment before it is not a token", "/ by hand\nVORTAN XR COMPOSITION " + rest, 1},
        {"other first word", "VORTAN2 XR COMPOSITION " + rest, 0},
        {"lower case", "vortan XR COMPOSITION " + rest, 0},
        {"first word in quotes", "\"VORTAN\" XR COMPOSITION " + rest, 0},
        {"other second word", "VORTAN XS COMPOSITION " + rest, 0},
        {"number as the second word", "VORTAN 4 COMPOSITION " + rest, 0},
        {"second word in quotes", "VORTAN \"XR\" COMPOSITION " + rest, 0},
        {"without the second word", "VORTAN COMPOSITION " + rest, 0},
        {"other third word", "VORTAN XR SCENE " + rest, 0},
        {"third word in quotes", "VORTAN XR \"COMPOSITION\" " + rest, 0},
        {"nothing after it", "VORTAN XR COMPOSITION ", 0},
        {"the first word alone", "VORTAN ", 0},
        {"a single byte", "V", 0},
    });
}

std::string with_settings(const std::string& settings) {
    return std::string(kHeader) + settings + " COMPOSITION NRM \"a\" { }\n";
}

TEST(CompositionFile, SettingsAreRequiredAndChecked) {
    const std::string all = kSettings;
    const auto without = [](const char* keyword, const char* values) {
        std::string text = kSettings;
        const std::string setting = std::string(keyword) + values;
        return with_settings(text.erase(text.find(setting), setting.size()));
    };
    const auto plus = [&](const char* more) { return with_settings(all + more); };
    expect_results({
        {"the required ones", with_settings(all), 1},
        {"no RESOLUTION", without("RESOLUTION", " 720 576"), 0},
        {"no FROM", without("FROM", " 0"), 0},
        {"no TO", without("TO", " 99"), 0},
        {"no RANGE", without("RANGE", " 100"), 0},
        {"no FPS", without("FPS", " 25"), 0},
        {"none at all", with_settings(""), 0},
        {"other order", with_settings("FPS 25 RANGE 1 LOCAL TO 0 FROM 0 RESOLUTION 1 1"), 1},
        {"width 0", plus("RESOLUTION 0 1"), 0},
        {"height 0", plus("RESOLUTION 1 0"), 0},
        {"negative width", plus("RESOLUTION -1 1"), 0},
        {"one number of two", plus("RESOLUTION 1"), 0},
        {"FROM -1", plus("FROM -1"), 0},
        {"FROM 0", plus("FROM 0"), 1},
        {"FROM with a lone minus keeps the value", plus("FROM -"), 1},
        {"TO 0", plus("TO 0"), 1},
        {"TO -1", plus("TO -1"), 0},
        {"TO before FROM is nobody's business", plus("FROM 90 TO 3"), 1},
        {"RANGE 0", plus("RANGE 0"), 0},
        {"RANGE 1", plus("RANGE 1"), 1},
        {"FPS 0", plus("FPS 0"), 0},
        {"FPS 0.9 is 0", plus("FPS 0.9"), 0},
        {"FPS 1", plus("FPS 1"), 1},
        {"FPS as a word", plus("FPS abc"), 0},
        {"FPS as a text", plus("FPS \"25\""), 0},
        {"ASPECT 0.009", plus("ASPECT 0.009"), 0},
        {"ASPECT 0.01", plus("ASPECT 0.01"), 1},
        {"ASPECT 100", plus("ASPECT 100"), 1},
        {"ASPECT 100.000001 is 100 in single precision", plus("ASPECT 100.000001"), 1},
        {"ASPECT 100.5", plus("ASPECT 100.5"), 0},
        {"ASPECT beyond the range", plus("ASPECT 1e99"), 0},
        {"ASPECT 0", plus("ASPECT 0"), 0},
        {"negative ASPECT", plus("ASPECT -1"), 0},
        {"ASPECT as a word", plus("ASPECT one"), 0},
        {"FIELDS in lower case", plus("FIELDS even"), 0},
        {"FIELDS in quotes", plus("FIELDS \"EVEN\""), 0},
        {"FIELDS as a number", plus("FIELDS 1"), 0},
        {"unknown FIELDS", plus("FIELDS BOTH"), 0},
        {"unknown keyword", plus("DEPTH 32"), 0},
        {"keyword in lower case", plus("fps 25"), 0},
        {"number where a keyword is expected", plus("FPS 25 25"), 0},
        {"text where a keyword is expected", plus("\"LOCAL\""), 0},
        {"brace where a keyword is expected", plus("{"), 0},
        {"the end where a keyword is expected", std::string(kHeader) + all, 0},
    });
}

TEST(CompositionFile, SettingsDefaultsAndLastValues) {
    ReadText defaults(with_settings(kSettings));
    ASSERT_EQ(defaults.result, 1);
    EXPECT_EQ(defaults.settings.aspect, 1.0F);
    EXPECT_EQ(defaults.settings.fields, kFieldsNone);
    EXPECT_EQ(defaults.settings.local, 0);

    ReadText twice(with_settings(
        std::string(kSettings) +
        "FPS 29.97 FIELDS EVEN FIELDS ODD ASPECT 2 ASPECT 0x0.8 ASPECT 0x LOCAL LOCAL FROM 7 FROM - "
        "TO 99999999999 RESOLUTION 1e3 0099 "));
    ASSERT_EQ(twice.result, 1);
    EXPECT_EQ(twice.settings.fps, 29);
    EXPECT_EQ(twice.settings.fields, kFieldsOdd);
    EXPECT_EQ(twice.settings.aspect, 0.5F) << "a hexadecimal prefix alone has no value";
    EXPECT_EQ(twice.settings.local, 1);
    EXPECT_EQ(twice.settings.from, 7) << "a lone minus sign has no value";
    EXPECT_EQ(twice.settings.to, 2147483647);
    EXPECT_EQ(twice.settings.width, 1);
    EXPECT_EQ(twice.settings.height, 99);
}

TEST(CompositionFile, NewSettings) {
    tagProjectSettings s;
    EXPECT_EQ(s.width + s.height + s.from + s.to + s.range + s.fps + s.local + s.fields, 0);
    EXPECT_EQ(s.aspect, 1.0F);
    EXPECT_EQ(s.files.count, 0);
    EXPECT_EQ(s.objects.count, 0);
    EXPECT_EQ(s.firstFolder, nullptr);
    EXPECT_EQ(s.firstCompItem, nullptr);
}

TEST(CompositionFile, WhatFollowsTheRootComposition) {
    const std::string footage = "FILE <-> PREMUL \"x.tif\"\n";
    const std::string null_object = "NULL \"n\" { }\n";
    expect_results({
        {"nothing", file_with("COMPOSITION NRM \"a\" { }"), 1},
        {"nothing, and no block", file_with("COMPOSITION NRM \"a\""), 1},
        {"blanks and a comment", file_with_objects(" \n / the end"), 1},
        {"footage", file_with_objects(footage), 1},
        {"objects", file_with_objects(null_object + null_object), 1},
        {"footage and objects", file_with_objects(footage + footage + null_object), 1},
        {"footage after objects is ignored", file_with_objects(null_object + "FILE <-> nonsense"), 1},
        {"a number after objects is ignored", file_with_objects(null_object + "5 "), 1},
        {"a brace after objects is ignored", file_with_objects(null_object + "}"), 1},
        {"a word of 512 characters after objects is ignored",
         file_with_objects(null_object + std::string(512, 'x') + " "), 1},
        {"unknown word", file_with_objects("SOLID "), 0},
        {"unknown word after footage", file_with_objects(footage + "SOLID "), 0},
        {"object word in quotes", file_with_objects("\"NULL\" \"n\" { }"), 0},
        {"object word in lower case", file_with_objects("null \"n\" { }"), 0},
        {"number", file_with_objects("5 "), 0},
        {"brace too many", file_with_objects("}"), 0},
        {"a word of 512 characters", file_with_objects(std::string(512, 'x') + " "), 0},
        {"a word cut off by the end counts as the end", file_with_objects("CAMERA"), 1},
        {"a text cut off by the end counts as the end", file_with_objects(footage + "\"abc"), 1},
        {"second root composition", file_with_objects("COMPOSITION NRM \"b\" { }"), 0},
        {"object whose block fails", file_with_objects("NULL \"n\" { SOLID }"), 0},
        {"second object fails", file_with_objects(null_object + "CAMERA { }"), 0},
    });
}

TEST(CompositionFile, TopLevelFootage) {
    expect_results({
        {"mark in one piece", file_with_objects("FILE <-> PREMUL \"x\"\n"), 1},
        {"mark with blanks", file_with_objects("FILE < - > STRAIGHT \"x\"\n"), 1},
        {"mark and alpha word without a blank", file_with_objects("FSEQ<->PREMUL\"x\"\n"), 1},
        {"no mark", file_with_objects("FILE PREMUL \"x\"\n"), 0},
        {"blend word in its place", file_with_objects("FILE NRM PREMUL \"x\"\n"), 0},
        {"mark with a number", file_with_objects("FILE <-1> PREMUL \"x\"\n"), 0},
        {"mark with two dashes", file_with_objects("FILE <--> PREMUL \"x\"\n"), 0},
        {"mark without the dash", file_with_objects("FILE <> PREMUL \"x\"\n"), 0},
        {"mark in quotes", file_with_objects("FILE \"<\"-\">\" PREMUL \"x\"\n"), 0},
        {"mark that opens twice", file_with_objects("FILE <-< PREMUL \"x\"\n"), 0},
        {"no alpha word", file_with_objects("FILE <-> \"x\"\n"), 0},
        {"unknown alpha word", file_with_objects("FILE <-> NONE \"x\"\n"), 0},
        {"a path that cannot be read stays without a path", file_with_objects("FILE <-> PREMUL \"\"\n"), 1},
    });

    ReadText file(
        file_with_objects("FILE <-> STRAIGHT \"a\"\nFSEQ <-> PREMUL \"unclosed\nFSEQ <-> PREMUL \"\"\n"
                          "FILE <-> PREMUL \"unended\""));
    ASSERT_EQ(file.result, 1);
    const std::vector<CCompoChild*> files = nodes_of(file.settings.files);
    ASSERT_EQ(files.size(), 4U);
    EXPECT_EQ(files[0]->item.file->path, file.parsed.folder.path("a"));
    EXPECT_EQ(files[0]->item.file->alphaMode, kAlphaStraight);
    EXPECT_EQ(files[0]->item.file->isSequence, 0);
    for (std::size_t i = 1; i < files.size(); ++i) {
        EXPECT_EQ(files[i]->item.file->path, nullptr) << i;
        EXPECT_EQ(files[i]->item.file->alphaMode, kAlphaPremultiplied) << i;
    }
    EXPECT_EQ(files[1]->item.file->isSequence, 1);
}

// The word after a root composition without a block is consumed in place of its brace.
TEST(CompositionFile, RootWithoutABlockConsumesTheNextWord) {
    expect_results({
        {"so the mark is left over", file_with("COMPOSITION NRM \"a\"\nFILE <-> PREMUL \"x\"\n"), 0},
        {"so the next word begins an entry", file_with("COMPOSITION NRM \"a\"\nFILE FILE <-> PREMUL \"x\"\n"),
         1},
    });
    ReadText file(file_with("COMPOSITION NRM \"a\"\nFSEQ FILE <-> PREMUL \"x\"\n"));
    ASSERT_EQ(file.settings.files.count, 1);
    EXPECT_EQ(nodes_of(file.settings.files)[0]->item.file->isSequence, 0);
    EXPECT_EQ(file.settings.composition.children.count, 0);
}

// Half a file never passes for a whole one. In each case what is left of the file when a block is short would
// be a complete file.
TEST(CompositionFile, ShortBlockFailsTheFileAnywhere) {
    constexpr std::size_t kKept = 5000;
    const auto padded = [](std::string text, const std::string& behind) {
        text += "/";
        text.append(kKept - text.size() - 1, '-');
        return text + "\n" + behind + std::string(5000, ' ');
    };
    const std::string root = "COMPOSITION NRM \"a\" { }\n";
    const Case cases[] = {
        {"before top-level footage", padded(file_with(root), ""), 0},
        {"after top-level footage", padded(file_with(root + "FILE <-> PREMUL \"x\"\n"), ""), 0},
        {"after an object", padded(file_with(root + "NULL \"n\" { }\n"), ""), 0},
        {"in the place of the root's brace", padded(file_with("COMPOSITION NRM \"a\"\n"), ""), 0},
        {"in a top-level path, whose result is ignored",
         file_with(root + "FILE <-> PREMUL \"") + std::string(12000, 'x') + "\"\n", 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        EXPECT_EQ(ReadText(c.text).result, 1) << "whole, it is fine";
        ParsedText parsed(c.text);
        ASSERT_EQ(parsed.init, 0);
        std::filesystem::resize_file(parsed.folder.path("shot.aec"), kKept);
        tagProjectSettings settings;
        EXPECT_EQ(read_composition_file(parsed.p, settings), c.result);
        EXPECT_EQ(parsed.p.status, kStatusReadFailed);
    }
}

}  // namespace
