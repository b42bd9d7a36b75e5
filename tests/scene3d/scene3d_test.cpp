#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "handover/scene3d/gltf.h"
#include "handover/scene3d/usd.h"

namespace {

using handover::Handover;
using handover::ObjectKey;
using handover::ObjectKind;
using handover::SceneObject;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using Json = nlohmann::json;

constexpr double kInfinite = std::numeric_limits<double>::infinity();

ObjectKey key(std::int64_t frame, double heading, double pitch = 0, double bank = 0) {
    return {frame, {1, 2, 3}, heading, pitch, bank, 90, 1000};
}

SceneObject object(ObjectKind kind, std::vector<ObjectKey> keys, std::string name = "It") {
    SceneObject made;
    made.kind = kind;
    made.id = "vxr-0";
    made.name = std::move(name);
    made.keys = std::move(keys);
    made.light_word = kind == ObjectKind::light ? "SPOT" : "";
    made.shadow_word = kind == ObjectKind::light ? "SOFT" : "";
    return made;
}

Handover shot_with(std::vector<SceneObject> objects) {
    Handover made;
    made.shot.file = "shot.aec";
    made.shot.width_px = 720;
    made.shot.height_px = 576;
    made.shot.pixel_aspect = 1.0667;
    made.shot.from = 17;
    made.shot.to = 24;
    made.shot.rate_fps = 25;
    made.objects = std::move(objects);
    return made;
}

template <typename Write>
std::string written(Write write, const Handover& handover, const handover::Scene3dOptions& options = {}) {
    std::string text;
    write(handover, options, [&](std::string_view piece) { text += piece; });
    return text;
}

Json gltf_of(const Handover& handover) {
    return Json::parse(written(handover::write_gltf, handover));
}

// The floats of an accessor, read from the binary form, whose data follows its JSON.
std::vector<float> floats_of(const Handover& handover, const Json& file, std::size_t accessor) {
    const std::string glb = written(handover::write_glb, handover);
    const auto word_at = [&](std::size_t at) {
        std::uint32_t word = 0;
        for (std::size_t i = 4; i > 0; --i) {
            word = word << 8 | static_cast<unsigned char>(glb.at(at + i - 1));
        }
        return word;
    };
    const std::size_t data = 20 + word_at(12) + 8;
    const Json& view = file["bufferViews"][file["accessors"][accessor]["bufferView"].get<std::size_t>()];
    std::vector<float> floats;
    for (std::size_t at = 0; at < view["byteLength"].get<std::size_t>(); at += 4) {
        const std::uint32_t word = word_at(data + view["byteOffset"].get<std::size_t>() + at);
        float number = 0;
        std::memcpy(&number, &word, sizeof(number));
        floats.push_back(number);
    }
    return floats;
}

// Where a camera of the format looks: -z turned by the quaternion.
std::array<double, 3> view_of(const Json& node) {
    const auto q = node["rotation"].get<std::array<double, 4>>();
    return {-2 * (q[0] * q[2] + q[3] * q[1]), -2 * (q[1] * q[2] - q[3] * q[0]),
            -1 + 2 * (q[0] * q[0] + q[1] * q[1])};
}

std::vector<std::string> codes_of(const std::vector<handover::Loss>& losses) {
    std::vector<std::string> codes;
    for (const handover::Loss& loss : losses) {
        codes.emplace_back(loss.what.code.name());
    }
    return codes;
}

TEST(Gltf, TurnsAxesAndUnits) {
    struct Case {
        const char* name;
        double heading;
        double pitch;
        std::array<double, 3> view;  // the scene's view with z the other way
    };
    const Case cases[] = {
        {"without angles it looks along z, which is -z there", 0, 0, {0, 0, -1}},
        {"heading 90 looks along -x", 90, 0, {-1, 0, 0}},
        {"pitch 90 looks straight up", 0, 90, {0, 1, 0}},
        {"heading 180 looks back", 180, 0, {0, 0, 1}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Json file = gltf_of(shot_with({object(ObjectKind::camera, {key(17, c.heading, c.pitch)})}));
        const auto view = view_of(file["nodes"][0]);
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(view[i], c.view[i], 1e-6);
        }
    }
}

TEST(Gltf, OfAStandingCameraHasTheNumbersOfTheScene) {
    const Json file = gltf_of(shot_with({object(ObjectKind::camera, {key(17, 0)})}));
    const Json& lens = file["cameras"][0]["perspective"];
    // tan(yfov / 2) = 576 / (720 * 1.0667) for 90 degrees from side to side.
    EXPECT_NEAR(lens["yfov"].get<double>(), 1.2869722, 1e-6);
    EXPECT_NEAR(lens["aspectRatio"].get<double>(), 720 * 1.0667 / 576, 1e-12);
    const auto place = file["nodes"][0]["translation"].get<std::vector<double>>();
    EXPECT_NEAR(place[0], 0.01, 1e-9);
    EXPECT_NEAR(place[1], 0.02, 1e-9);
    EXPECT_NEAR(place[2], -0.03, 1e-9);
    EXPECT_EQ(file["asset"]["extras"]["scale"], 0.01);
    EXPECT_FALSE(file.contains("animations")) << "one key says nothing about time";
    EXPECT_FALSE(file.contains("buffers"));
}

TEST(Gltf, ATimeIsSecondsFromTheFirstFrame) {
    std::vector<ObjectKey> keys{key(17, 0), key(42, 0)};
    keys[1].position = {101, 2, 3};
    const Handover shot = shot_with({object(ObjectKind::null, keys)});
    const Json file = gltf_of(shot);
    EXPECT_THAT(floats_of(shot, file, 0), ElementsAre(0.0F, 1.0F));
    EXPECT_THAT(file["accessors"][0]["max"].get<std::vector<float>>(), ElementsAre(1.0F));
}

TEST(Gltf, BeforeTheFirstFrameIsNoTime) {
    // At frame 17 the null is three quarters of the way from 1 to 101.
    std::vector<ObjectKey> keys{key(2, 0), key(22, 0)};
    keys[1].position = {101, 2, 3};
    const Handover shot = shot_with({object(ObjectKind::null, keys)});
    const Json file = gltf_of(shot);
    EXPECT_THAT(floats_of(shot, file, 0), ElementsAre(0.0F, 0.2F));
    EXPECT_NEAR(floats_of(shot, file, 1)[0], 0.76F, 1e-6);
}

TEST(Gltf, ACutLiesJustBeforeItsFrame) {
    // 100 degrees from one frame to the next.
    const Handover shot = shot_with({object(ObjectKind::camera, {key(17, 0), key(18, 100), key(20, 100)})});
    const Json file = gltf_of(shot);
    const std::vector<float> times = floats_of(shot, file, 0);
    ASSERT_EQ(times.size(), 5U);
    EXPECT_EQ(times[0], 0.0F);
    // A 1024th of a frame of 0.04 seconds before, and for an instant before that the old turn.
    EXPECT_NEAR(times[2], 0.04F - 0.04F / 1024, 1e-8);
    EXPECT_EQ(times[1], std::nextafter(times[2], 0.0F));
    EXPECT_EQ(times[3], 0.04F);
    const std::vector<float> turns = floats_of(shot, file, 1);
    EXPECT_EQ(turns[4 * 1 + 3], turns[3]) << "until then nothing turns";
    EXPECT_NEAR(turns[4 * 2 + 3], std::cos(50 * 3.14159265 / 180), 1e-6);
    EXPECT_EQ(turns[4 * 3 + 3], turns[4 * 2 + 3]);
}

TEST(Gltf, FromOneFrameToTheNextAnglesTakeTheShortWay) {
    const Handover shot = shot_with({object(ObjectKind::camera, {key(17, 179), key(18, -179)})});
    const Json file = gltf_of(shot);
    const std::vector<float> turns = floats_of(shot, file, 1);
    ASSERT_EQ(turns.size(), 8U) << "two degrees about one axis need no keys between";
    // Half of 179 and of 181 degrees.
    EXPECT_NEAR(turns[1], std::sin(89.5 * 3.14159265 / 180), 1e-6);
    EXPECT_NEAR(turns[5], std::sin(90.5 * 3.14159265 / 180), 1e-6);
}

TEST(Gltf, KeysApartTurnAsTheyAreWritten) {
    // Backwards by 358 degrees in 8 frames; quaternions alone would go forwards by 2.
    const Handover shot = shot_with({object(ObjectKind::camera, {key(17, 179), key(25, -179)})});
    const Json file = gltf_of(shot);
    const std::vector<float> turns = floats_of(shot, file, 1);
    ASSERT_EQ(turns.size() % 4, 0U);
    EXPECT_GE(turns.size() / 4, 5U) << "no step of more than 90 degrees";
    for (std::size_t i = 4; i < turns.size(); i += 4) {
        double cosine = 0;
        for (std::size_t c = 0; c < 4; ++c) {
            cosine += double{turns[i + c]} * double{turns[i + c - 4]};
        }
        EXPECT_GE(cosine, 0.7) << "every step is the short way";
    }
}

TEST(Gltf, AnAngleOfViewThatChangesIsAnimatedAndNamed) {
    std::vector<ObjectKey> keys{key(17, 0), key(18, 0)};
    keys[1].view_angle = 60;
    const Handover shot = shot_with({object(ObjectKind::camera, keys)});
    const Json file = gltf_of(shot);
    EXPECT_EQ(
        file["animations"][0]["channels"][0]["target"]["extensions"]["KHR_animation_pointer"]["pointer"],
        "/cameras/0/perspective/yfov");
    EXPECT_THAT(file["extensionsUsed"].get<std::vector<std::string>>(), ElementsAre("KHR_animation_pointer"));
    EXPECT_THAT(codes_of(handover::gltf_losses(shot, {})), ElementsAre("handover-view-angle-lost"));
}

TEST(Gltf, WhatSevenDigitsDoNotHoldIsNamed) {
    // 720 pixels at 90 degrees: the focal length is 360 pixels, and a turn moves a corner by twice as much.
    const struct {
        const char* reason;
        double x;         // of the camera, at its first key
        double step;      // how far it moves in a frame
        double distance;  // of its point of interest
        bool named;
    } kCases[] = {
        {"one part in 2^23 of 10,000, half of 3 away, is half a pixel", 10'000, 0, 3, true},
        {"as far from things as cameras are", 10'000, 0, 1000, false},
        {"close to things near the origin", 10, 0, 3, false},
        {"so fast that the rounding of time shows", 0, 1e6, 10, true},
        {"as fast as cameras are", 0, 100, 100, false},
    };
    for (const auto& one : kCases) {
        std::vector<ObjectKey> keys{key(17, 0), key(18, 0), key(19, 0)};
        for (std::size_t i = 0; i < keys.size(); ++i) {
            keys[i].position = {one.x + one.step * static_cast<double>(i), 0, 0};
            keys[i].target_distance = one.distance;
        }
        const Handover shot = shot_with({object(ObjectKind::camera, keys)});
        const std::vector<std::string> codes = codes_of(handover::gltf_losses(shot, {}));
        EXPECT_EQ(std::count(codes.begin(), codes.end(), "handover-rounded"), one.named ? 1 : 0)
            << one.reason;
        EXPECT_THAT(codes_of(handover::usda_losses(shot, {})), Not(testing::Contains("handover-rounded")));
    }
}

TEST(Scene3d, NumbersWithoutAnEndAreLeftOutAndNamed) {
    std::vector<ObjectKey> keys{key(17, 0), key(18, 0), key(19, 0)};
    keys[1].position[0] = kInfinite;
    keys[0].view_angle = 0;
    keys[2].view_angle = 0;
    const Handover shot = shot_with({object(ObjectKind::camera, keys)});
    const std::string gltf = written(handover::write_gltf, shot);
    EXPECT_THAT(gltf, Not(HasSubstr("null")));
    EXPECT_THAT(written(handover::write_usda, shot), Not(HasSubstr("inf")));
    EXPECT_THAT(codes_of(handover::usda_losses(shot, {})),
                ElementsAre("handover-value-not-finite", "handover-value-not-finite"));
}

TEST(Scene3d, LightsOfEveryKind) {
    struct Case {
        const char* word;
        const char* gltf;
        const char* usd;
        bool changed;
    };
    const Case cases[] = {
        {"OMNI", "point", "SphereLight", false},       {"SPOT", "spot", "SphereLight", false},
        {"PAR", "directional", "DistantLight", false}, {"PSPOT", "directional", "DistantLight", true},
        {"TUBE", "point", "SphereLight", true},        {"AREA", "point", "SphereLight", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.word);
        Handover shot = shot_with({object(ObjectKind::light, {key(17, 0)})});
        SceneObject& light = shot.objects[0];
        light.light_word = c.word;
        light.shadow_word = "NONE";
        light.cone_angle = 45;
        light.color = {2, 1, 0};
        light.intensity = 0.5;
        const Json file = gltf_of(shot);
        const Json& made = file["extensions"]["KHR_lights_punctual"]["lights"][0];
        EXPECT_EQ(made["type"], c.gltf);
        EXPECT_EQ(made.contains("spot"), std::string(c.word) == "SPOT");
        if (made.contains("spot")) {
            EXPECT_NEAR(made["spot"]["outerConeAngle"].get<double>(), 22.5 * 3.14159265 / 180, 1e-6);
        }
        // Colours end at 1: the brightest number becomes intensity.
        EXPECT_THAT(made["color"].get<std::vector<double>>(), ElementsAre(1, 0.5, 0));
        EXPECT_EQ(made["intensity"], 1.0);
        EXPECT_THAT(written(handover::write_usda, shot), HasSubstr(std::string("def ") + c.usd + " \"It\""));
        const std::vector<std::string> codes = codes_of(handover::gltf_losses(shot, {}));
        EXPECT_EQ(codes.size(), c.changed ? 2U : 1U);
    }
}

TEST(Usd, OfAStandingCameraHasTheNumbersOfTheScene) {
    const std::string text =
        written(handover::write_usda, shot_with({object(ObjectKind::camera, {key(17, 10, 20, 30)})}));
    for (const char* line :
         {"    startTimeCode = 17\n", "    endTimeCode = 24\n", "    timeCodesPerSecond = 25\n",
          "    upAxis = \"Y\"\n", "    metersPerUnit = 0.01\n",
          // z first, then x, then y; z has the other sense because the axes are mirrored.
          "double3 xformOp:rotateZXY = (20, 10, -30)\n", "double3 xformOp:translate = (1, 2, -3)\n",
          "float horizontalAperture = 36\n"}) {
        EXPECT_THAT(text, HasSubstr(line));
    }
    EXPECT_THAT(text, Not(HasSubstr("timeSamples")));
    const auto number_after = [&](const std::string& name) {
        return std::stod(text.substr(text.find(name) + name.size()));
    };
    // Half the width of the film for 45 degrees on either side; its height for 4:3 but for the digits of the
    // aspect.
    EXPECT_NEAR(number_after("float focalLength = "), 18, 1e-9);
    EXPECT_NEAR(number_after("float verticalAperture = "), 26.99915627, 1e-6);
}

TEST(Usd, ATurnIsContinuedBeyondAWholeOne) {
    const std::string text = written(
        handover::write_usda,
        shot_with({object(ObjectKind::camera, {key(17, 177), key(18, 179), key(19, -179), key(20, 10)})}));
    EXPECT_THAT(text, HasSubstr("19: (0, 181, 0)"));
    // Not by 171 degrees backwards, which are more than a cut's 60.
    EXPECT_THAT(text, HasSubstr("19.999999: (0, 181, 0)"));
    EXPECT_THAT(text, Not(HasSubstr("18: (0, 179, 0)"))) << "it lies on the line between its neighbours";
}

TEST(Usd, NamesAreIdentifiersAndTheRealOnesAreKept) {
    const std::string text = written(
        handover::write_usda,
        shot_with({object(ObjectKind::null, {}, "Key light"), object(ObjectKind::null, {}, "Key/light"),
                   object(ObjectKind::null, {}, "2\"\n\\"), object(ObjectKind::null, {}, "")}));
    for (const char* piece : {"def Xform \"Key_light\"", "def Xform \"Key_light_2\"", "def Xform \"_2_\"",
                              "def Xform \"_\"", R"(vxr:name = "Key/light")", R"(vxr:name = "2\"\n\\")"}) {
        EXPECT_THAT(text, HasSubstr(piece));
    }
}

}  // namespace
