#include "composition/model/scene_object.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "composition/parsed_text.h"

namespace {

// A file with one object. `result` is that of the whole file.
template <class Object>
class Loaded {
  public:
    explicit Loaded(const std::string& text) : file(file_with_objects(text + "\n")), result(file.result) {
        object = dynamic_cast<Object*>(file.settings.objects.First());
    }

    ReadText file;
    int result;
    Object* object;
};

struct Case {
    const char* why;
    const char* text;
    int result;
};

void expect_results(std::initializer_list<Case> cases) {
    for (const Case& c : cases) {
        EXPECT_EQ(ReadText(file_with_objects(std::string(c.text) + "\n")).result, c.result) << c.why;
    }
}

TEST(Camera, Blocks) {
    expect_results({
        {"no keys", "CAMERA \"c\" { }", 1},
        {"empty name", "CAMERA \"\" { }", 1},
        {"name in single quotes", "CAMERA 'c' { }", 0},
        {"name without quotes", "CAMERA c { }", 0},
        {"no block", "CAMERA \"c\"", 0},
        {"no brace", "CAMERA \"c\" KEY 0 0 0 0 0 0 0 40 }", 0},
        {"never closed", "CAMERA \"c\" { ", 0},
        {"eight values", "CAMERA \"c\" { KEY 0 0 0 0 0 0 0 40 }", 1},
        {"nine values", "CAMERA \"c\" { KEY 0 0 0 0 0 0 0 40 500 }", 1},
        {"ten values", "CAMERA \"c\" { KEY 0 0 0 0 0 0 0 40 500 1 }", 0},
        {"seven values before the brace", "CAMERA \"c\" { KEY 0 0 0 0 0 0 0 }", 0},
        {"seven values before the next key", "CAMERA \"c\" { KEY 0 0 0 0 0 0 0 KEY 0 0 0 0 0 0 0 40 }", 0},
        {"key in lower case", "CAMERA \"c\" { key 0 0 0 0 0 0 0 40 }", 0},
        {"key in quotes", "CAMERA \"c\" { \"KEY\" 0 0 0 0 0 0 0 40 }", 0},
        {"words of lights", "CAMERA \"c\" { ANGLE 5 }", 0},
        {"a number as an entry", "CAMERA \"c\" { 5 }", 0},
    });
}

TEST(Camera, NinthValueIsOptional) {
    const Loaded<CCamera> camera(
        "CAMERA \"c\" { KEY 1 2 3 4 5 6 7 40 KEY 2 2 3 4 5 6 7 50 800.5 KEY 3 2 3 4 5 6 7 - - }");
    ASSERT_EQ(camera.result, 1);
    ASSERT_EQ(camera.object->keyCount, 3);
    const tagKeyFrame* const* const keys = camera.object->keys;
    EXPECT_EQ(keys[0]->frame, 1);
    EXPECT_THAT(keys[0]->position, testing::ElementsAre(2, 3, 4));
    EXPECT_THAT(keys[0]->rotation, testing::ElementsAre(5, 6, 7));
    EXPECT_EQ(keys[0]->fov, 40.0F);
    EXPECT_EQ(keys[0]->targetDistance, 1000.0F);
    EXPECT_EQ(keys[1]->fov, 50.0F);
    EXPECT_EQ(keys[1]->targetDistance, 800.5F);
    EXPECT_EQ(keys[2]->fov, 0.0F) << "a lone minus sign has no value: the field keeps what it began with";
    EXPECT_EQ(keys[2]->targetDistance, 1000.0F);
}

TEST(Null, Blocks) {
    expect_results({
        {"no keys", "NULL \"n\" { }", 1},
        {"seven values", "NULL \"n\" { KEY 0 0 0 0 0 0 0 }", 1},
        {"eight values", "NULL \"n\" { KEY 0 0 0 0 0 0 0 0 }", 0},
        {"six values", "NULL \"n\" { KEY 0 0 0 0 0 0 }", 0},
        {"a text as a value", "NULL \"n\" { KEY 0 0 0 \"0\" 0 0 0 }", 0},
        {"words of lights", "NULL \"n\" { COLOR 1 1 1 }", 0},
        {"name in single quotes", "NULL 'n' { }", 0},
        {"a text as an entry", "NULL \"n\" { \"KEY\" }", 0},
        {"never closed", "NULL \"n\" { KEY 0 0 0 0 0 0 0 ", 0},
    });
}

TEST(Light, Blocks) {
    expect_results({
        {"no entries", "LIGHT \"l\" { }", 1},
        {"lower-case kind", "LIGHT \"l\" { TYPE spot }", 0},
        {"kind in quotes", "LIGHT \"l\" { TYPE \"SPOT\" }", 0},
        {"kind of shadow as a kind of light", "LIGHT \"l\" { TYPE SOFT }", 0},
        {"kind as a number", "LIGHT \"l\" { TYPE 1 }", 0},
        {"kind of light as a kind of shadow", "LIGHT \"l\" { SHADOW OMNI }", 0},
        {"colour without its third value", "LIGHT \"l\" { COLOR 1 0.5 }", 0},
        {"colour with a fourth", "LIGHT \"l\" { COLOR 1 0.5 0 0 }", 0},
        {"intensity without a value", "LIGHT \"l\" { INTENSITY }", 0},
        {"angle without a value", "LIGHT \"l\" { ANGLE KEY }", 0},
        {"key with six values", "LIGHT \"l\" { KEY 0 0 0 0 0 0 }", 0},
        {"unknown word", "LIGHT \"l\" { FALLOFF 5 }", 0},
        {"a number as an entry", "LIGHT \"l\" { 5 }", 0},
        {"name in single quotes", "LIGHT 'l' { }", 0},
    });
}

TEST(Light, Defaults) {
    const Loaded<CLight> light("LIGHT \"l\" { }");
    ASSERT_EQ(light.result, 1);
    EXPECT_EQ(light.object->lightType, kLightOmni);
    EXPECT_EQ(light.object->shadowType, kShadowNone);
    EXPECT_THAT(light.object->color, testing::ElementsAre(1, 1, 1));
    EXPECT_EQ(light.object->intensity, 1.0F);
    EXPECT_EQ(light.object->coneAngle, 30.0F);
    EXPECT_EQ(light.object->keyCount, 0);
    EXPECT_EQ(light.object->keys, nullptr);
}

TEST(Light, WordsAndTheirNumbers) {
    const std::pair<const char*, A_long> types[] = {{"OMNI", 0},  {"SPOT", 1}, {"PAR", 2},
                                                    {"PSPOT", 3}, {"TUBE", 4}, {"AREA", 5}};
    for (const auto& [word, type] : types) {
        const Loaded<CLight> light("LIGHT \"l\" { TYPE " + std::string(word) + " }");
        ASSERT_EQ(light.result, 1) << word;
        EXPECT_EQ(light.object->lightType, type) << word;
    }
    const std::pair<const char*, A_long> shadows[] = {{"NONE", 0}, {"SOFT", 1}, {"HARD", 2}, {"AREA", 3}};
    for (const auto& [word, shadow] : shadows) {
        const Loaded<CLight> light("LIGHT \"l\" { SHADOW " + std::string(word) + " }");
        ASSERT_EQ(light.result, 1) << word;
        EXPECT_EQ(light.object->shadowType, shadow) << word;
    }
}

TEST(Light, LastValueWins) {
    const Loaded<CLight> light(
        "LIGHT \"l\" { ANGLE 5 KEY 0 1 2 3 4 5 6 COLOR 0 0 0 INTENSITY 2 ANGLE 6.5 COLOR 0.25 - 1 KEY 9 1 2 "
        "3 4 5 6 }");
    ASSERT_EQ(light.result, 1);
    EXPECT_EQ(light.object->coneAngle, 6.5F);
    EXPECT_THAT(light.object->color, testing::ElementsAre(0.25F, 0.0F, 1.0F));
    EXPECT_EQ(light.object->intensity, 2.0F);
    ASSERT_EQ(light.object->keyCount, 2);
    EXPECT_EQ(light.object->keys[1]->frame, 9);
    EXPECT_EQ(light.object->keys[1]->fov, 0.0F);
}

TEST(SceneObject, HalfReadKeysStay) {
    const Loaded<CNull> null_object("NULL \"n\" { KEY 7 1 2 }");
    EXPECT_EQ(null_object.result, 0);
    ASSERT_NE(null_object.object, nullptr) << "linked before it was read";
    EXPECT_STREQ(null_object.object->name, "n");
    ASSERT_EQ(null_object.object->keyCount, 1);
    const tagKeyFrame& key = *null_object.object->keys[0];
    EXPECT_EQ(key.frame, 7);
    EXPECT_THAT(key.position, testing::ElementsAre(1, 2, 0));
    EXPECT_THAT(key.rotation, testing::ElementsAre(0, 0, 0));
}

TEST(SceneObject, AThousandKeysInFileOrder) {
    std::string text = "NULL \"n\" {\n";
    for (int i = 0; i < 1000; ++i) {
        text += "KEY " + std::to_string(1000 - i) + " 0 0 0 0 0 0\n";
    }
    const Loaded<CNull> null_object(text + "}");
    ASSERT_EQ(null_object.result, 1);
    ASSERT_EQ(null_object.object->keyCount, 1000);
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(null_object.object->keys[i]->frame, 1000 - i);
    }
}

TEST(SceneObject, AddKeyframeGrowsByOneSlot) {
    CNull object;
    for (A_long i = 0; i < 3; ++i) {
        tagKeyFrame** const before = object.keys;
        tagKeyFrame* const key = object.AddKeyframe();
        EXPECT_NE(object.keys, before) << "a new array each time";
        EXPECT_EQ(object.keyCount, i + 1);
        EXPECT_EQ(object.keys[i], key);
        EXPECT_EQ(key->targetDistance, 1000.0F);
        EXPECT_EQ(key->frame, 0);
    }
}

TEST(SceneObject, BaseCannotBeRead) {
    ParsedText parsed("NULL \"n\" { }");
    CSceneObject object;
    EXPECT_EQ(object.Load(parsed.p), 0);
    EXPECT_STREQ(parsed.p.text, "NULL") << "and nothing was consumed";
    EXPECT_EQ(object.name, nullptr);
    EXPECT_EQ(object.layerH, nullptr);
}

}  // namespace
