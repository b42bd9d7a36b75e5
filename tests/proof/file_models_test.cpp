#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>
#include <string>

#include "handover/proof/file_targets.h"
#include "handover/proof/gltf_model.h"
#include "handover/proof/usda_model.h"
#include "handover/scene3d/gltf.h"
#include "handover/scene3d/usd.h"
#include "proof/made_scene.h"

namespace {

using handover::Handover;
using made::Key;
using proof::Landing;
using proof::Point;

std::string word(std::size_t number) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) {
        bytes += static_cast<char>(number >> (8 * i) & 0xFF);
    }
    return bytes;
}

std::string glb(std::string json, const std::string& data) {
    json.append((4 - json.size() % 4) % 4, ' ');
    return "glTF" + word(2) + word(28 + json.size() + data.size()) + word(json.size()) + "JSON" + json +
           word(data.size()) + std::string("BIN\0", 4) + data;
}

std::string floats(const std::vector<float>& numbers) {
    return {reinterpret_cast<const char*>(numbers.data()), numbers.size() * sizeof(float)};
}

// A camera of 640 by 480 at 90 degrees from left to right, so yfov = 2 atan(480 / 640) = 1.2870022 and 320
// pixels at depth 1. In one second it goes from (0, 0, 0) to (1, 2, -3) of the file, which at a scale of 0.5
// is (2, 4, 6) of the scene, and turns by 90 degrees about y, to -x: as a heading of 90 does.
const char* const kJson = R"({"asset":{"version":"2.0","extras":{"scale":0.5}},
"cameras":[{"type":"perspective","perspective":{"yfov":1.2870022175865687,"aspectRatio":1.3333333333333333}}],
"nodes":[{"camera":0,"extras":{"id":"c"}}],
"animations":[{"samplers":[{"input":0,"output":1},{"input":0,"output":2}],
"channels":[{"sampler":0,"target":{"node":0,"path":"translation"}},{"sampler":1,"target":{"node":0,"path":"rotation"}}]}],
"accessors":[{"bufferView":0,"componentType":5126,"count":2,"type":"SCALAR"},
{"bufferView":1,"componentType":5126,"count":2,"type":"VEC3"},{"bufferView":2,"componentType":5126,"count":2,"type":"VEC4"}],
"bufferViews":[{"byteOffset":0,"byteLength":8},{"byteOffset":8,"byteLength":24},{"byteOffset":32,"byteLength":32}]})";

std::string hand_made_glb(const std::string& json = kJson) {
    return glb(json, floats({0, 1, 0, 0, 0, 1, 2, -3, 0, 0, 0, 1, 0, 0.70710678F, 0, 0.70710678F}));
}

Landing land(const proof::Projector& projector, double frame, const Point& point) {
    Landing landing;
    projector.land(frame, std::span(&point, 1), std::span(&landing, 1));
    return landing;
}

TEST(GltfModel, ReadsByTheRulesOfTheFormat) {
    const auto file = proof::read_glb(hand_made_glb());
    const proof::GltfPicture picture{640, 480, 10, 25};
    const auto camera = file->camera("c", picture, {});
    ASSERT_NE(camera, nullptr);
    // At FROM, 1 to the right, 2 above and 4 before: 320 + 320 / 4, 240 - 320 * 2 / 4.
    const Landing first = land(*camera, 10, {1, 2, 4});
    EXPECT_NEAR(first.x_px, 400, 1e-4);
    EXPECT_NEAR(first.y_px, 80, 1e-4);
    // A second, 25 frames, later from (2, 4, 6), looking to -x, with z to the right.
    const Landing last = land(*camera, 35, {2 - 4, 4 + 2, 6 + 1});
    EXPECT_NEAR(last.x_px, 400, 1e-4);
    EXPECT_NEAR(last.y_px, 80, 1e-4);
    // At a quarter the place is (0.5, 1, 1.5), and the view is turned by 22.5 degrees: what is straight ahead
    // of the first view is to the right by 320 tan 22.5 = 132.5483.
    const Landing between = land(*camera, 16.25, {0.5, 1, 1.5 + 4});
    EXPECT_NEAR(between.x_px, 320 + 132.5483, 1e-3);
    EXPECT_NEAR(file->position("c", 35, picture)->z, 6, 1e-6);
    EXPECT_EQ(file->camera("d", picture, {}), nullptr);
}

struct FaultCase {
    const char* name;
    std::string bytes;
    std::string reason;
};

std::string replaced(std::string text, const std::string& what, const std::string& by) {
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return text.replace(at, what.size(), by);
}

TEST(GltfModel, RefusesWhatIsNotSound) {
    const std::string sound = hand_made_glb();
    const FaultCase kCases[] = {
        {"nothing", "", "its head is wrong"},
        {"cut off", sound.substr(0, sound.size() - 1), "its head is wrong"},
        {"a chunk that is longer than the file",
         replaced(sound, word(64) + std::string("BIN\0", 4), word(65) + std::string("BIN\0", 4)),
         "a chunk is longer than the file"},
        {"no JSON", glb("{", {}), "its JSON does not parse"},
        {"more numbers than there are",
         hand_made_glb(replaced(kJson, R"("count":2,"type":"VEC4")", R"("count":3,"type":"VEC4")")),
         "an accessor goes beyond the data"},
        {"so many that their size does not fit",
         hand_made_glb(
             replaced(kJson, R"("count":2,"type":"VEC4")", R"("count":4611686018427387904,"type":"VEC4")")),
         "an accessor goes beyond the data"},
        {"a node that there is not",
         hand_made_glb(replaced(kJson, R"("node":0,"path":"rotation")", R"("node":7,"path":"rotation")")),
         "a channel moves what these files never move"},
        {"a camera that there is not", hand_made_glb(replaced(kJson, R"("camera":0)", R"("camera":1)")),
         "a node has a camera that there is not"},
        {"a matrix", hand_made_glb(replaced(kJson, R"("camera":0)", R"("matrix":[1],"camera":0)")),
         "a node is scaled, which these files never do"},
        {"a scale of 0", hand_made_glb(replaced(kJson, R"("scale":0.5)", R"("scale":0)")),
         "its scale is not positive"},
    };
    for (const FaultCase& one : kCases) {
        try {
            (void)proof::read_glb(one.bytes);
            ADD_FAILURE() << one.name << " is accepted";
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(error.what(), "the glTF file is not sound: " + one.reason) << one.name;
        }
    }
}

// As above, in USD: 640 by 480 at 90 degrees, so the focal length is half of the aperture. The turn is by the
// heading of 90 at frame 20.
const char* const kUsda = R"(#usda 1.0
(
    doc = "with a ) in it"
    upAxis = "Y"
)

def Xform "Shot"
{
    def Camera "Camera" (
        prepend apiSchemas = ["Some"]
    )
    {
        custom string vxr:id = "c"
        float2 clippingRange = (1, 2)
        float focalLength = 18
        float horizontalAperture = 36
        float verticalAperture = 27
        token projection = "perspective"
        double3 xformOp:translate = (0, 0, 0)
        double3 xformOp:translate.timeSamples = {
            10: (0, 0, 0),
            20: (2, 4, -6),
        }
        double3 xformOp:rotateZXY = (0, 0, 0)
        double3 xformOp:rotateZXY.timeSamples = {
            10: (0, 0, 0),
            20: (0, 90, 0),
        }
        uniform token[] xformOpOrder = ["xformOp:translate", "xformOp:rotateZXY"]
    }
}
)";

TEST(UsdaModel, ReadsByTheRulesOfTheFormat) {
    const auto file = proof::read_usda(kUsda);
    const auto camera = file->camera("c", 640, 480);
    ASSERT_NE(camera, nullptr);
    const Landing first = land(*camera, 10, {1, 2, 4});
    EXPECT_NEAR(first.x_px, 400, 1e-9);
    EXPECT_NEAR(first.y_px, 80, 1e-9);
    const Landing last = land(*camera, 20, {2 - 4, 4 + 2, 6 + 1});
    EXPECT_NEAR(last.x_px, 400, 1e-9);
    EXPECT_NEAR(last.y_px, 80, 1e-9);
    // A quarter of the angle.
    EXPECT_NEAR(land(*camera, 12.5, {0.5, 1, 1.5 + 4}).x_px, 320 + 132.5483, 1e-4);
    EXPECT_NEAR(file->position("c", 15)->z, 3, 1e-12);
}

TEST(UsdaModel, TurnsInTheOrderOfItsName) {
    // About z, then x, then y: (90, 90, 0) leads the view, -z, to y and leaves it there; its right, x, to -z.
    const std::string text =
        replaced(replaced(kUsda, "20: (0, 90, 0)", "20: (90, 90, 0)"), "20: (2, 4, -6)", "20: (0, 0, 0)");
    const auto file = proof::read_usda(text);
    // 4 above, and 1 along -z of the file, which is z of the scene: to the right.
    const Landing landing = land(*file->camera("c", 640, 480), 20, {0, 4, 1});
    EXPECT_NEAR(landing.x_px, 400, 1e-9);
    EXPECT_NEAR(landing.y_px, 240, 1e-9);
}

TEST(UsdaModel, RefusesWithTheLine) {
    const std::string sound = kUsda;
    const FaultCase kCases[] = {
        {"another format", "#usd",
         "line 1 of the USD file is not understood: it does not begin with \"#usda 1.0\""},
        {"cut off", sound.substr(0, sound.size() - 3),
         "line 30 of the USD file is not understood: there is no word"},
        {"a bracket that is not closed", "#usda 1.0\n(\n",
         "line 3 of the USD file is not understood: a bracket is not closed"},
        {"no number", replaced(sound, "= 18", "= wide"),
         "line 15 of the USD file is not understood: there is no number"},
        {"four numbers", replaced(sound, "(2, 4, -6)", "(2, 4, -6, 1)"),
         "line 22 of the USD file is not understood: a tuple has more than three numbers"},
        {"times that do not rise", replaced(sound, "            20: (2", "            10: (2"),
         "line 22 of the USD file is not understood: the times of samples do not rise"},
    };
    for (const FaultCase& one : kCases) {
        try {
            (void)proof::read_usda(one.bytes);
            ADD_FAILURE() << one.name << " is accepted";
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(error.what(), one.reason) << one.name;
        }
    }
    EXPECT_THROW((void)proof::read_usda(replaced(sound, "\"xformOp:rotateZXY\"]", "\"xformOp:rotateZXW\"]"))
                     ->camera("c", 1, 1),
                 std::runtime_error);
}

// Cameras and nulls that move, as a handover has them and as a scene does.
struct MovingScene {
    MovingScene(unsigned seed, bool far) : scene(720, 576, 1.0667, 60) {
        project = made::project(720, 576, static_cast<double>(scene.settings.aspect), 1);
        project.version = handover::Version::corrected;
        project.shot.from = scene.settings.from = 3;
        project.shot.to = 60;
        project.shot.rate_fps = 25;
        std::mt19937 random(seed);
        const auto number = [&](double least, double most) {
            return std::uniform_real_distribution<double>(least, most)(random);
        };
        std::vector<Key> keys;
        for (int frame = 0; frame < 70; frame += 1 + static_cast<int>(number(0, 20))) {
            keys.push_back({frame, number(-300, 300), number(-300, 300), number(-300, 300), number(-120, 120),
                            number(-80, 80), number(-40, 40), number(30, 70),
                            number(200, far ? 90000 : 900)});
        }
        scene.camera(keys);
        scene.null(keys);
        for (const auto kind : {handover::ObjectKind::camera, handover::ObjectKind::null}) {
            handover::SceneObject object;
            object.kind = kind;
            object.id = kind == handover::ObjectKind::camera ? "camera" : "null";
            object.name = object.id;
            for (const Key& key : keys) {
                handover::ObjectKey one;
                one.frame = key.frame;
                one.position = {static_cast<float>(key.x), static_cast<float>(key.y),
                                static_cast<float>(key.z)};
                one.heading = static_cast<float>(key.heading);
                one.pitch = static_cast<float>(key.pitch);
                one.bank = static_cast<float>(key.bank);
                one.view_angle = static_cast<float>(key.view_angle);
                one.target_distance = static_cast<float>(key.distance);
                object.keys.push_back(one);
            }
            project.objects.push_back(object);
        }
    }

    made::Scene scene;
    Handover project;
};

template <typename Write>
std::string written(Write write, const Handover& project) {
    std::string bytes;
    write(project, handover::Scene3dOptions{}, [&](std::string_view piece) { bytes += piece; });
    return bytes;
}

TEST(FileTargets, WhatIsWrittenSaysWhatTheSceneSays) {
    for (unsigned seed = 1; seed <= 8; ++seed) {
        const MovingScene one(seed, seed % 2 == 0);
        std::vector<proof::ProofTarget> targets =
            proof::gltf_targets(one.project, written(handover::write_glb, one.project));
        for (const auto& target :
             proof::usda_targets(one.project, written(handover::write_usda, one.project))) {
            targets.push_back(target);
        }
        const proof::ProofResult result = proof::compare(one.scene.settings, targets, {8, 60, {}});
        ASSERT_EQ(result.targets,
                  (std::vector<std::string>{"glTF", "glTF, without KHR_animation_pointer", "USD"}));
        for (const proof::TargetResult& target : result.cameras[0].targets) {
            EXPECT_EQ(target.problem, "");
            EXPECT_GT(target.deviation.compared, 500);
            if (target.judged) {
                EXPECT_LT(target.judged_px(), proof::kGoal_px)
                    << target.target << " seed " << seed << " frame " << target.deviation.largest.frame << ' '
                    << target.deviation.largest.point << " keys " << target.deviation.at_keys_px << " frames "
                    << target.deviation.at_frames_px;
            } else {
                ASSERT_FALSE(target.causes.empty());
                EXPECT_STREQ(info_of(target.causes[0].cause).name, "view-angle");
                EXPECT_GT(target.deviation.largest.px, 1);
            }
        }
        EXPECT_LT(result.nulls[0].distances[0].value_or(1e9), 1e-3);
        EXPECT_LT(result.nulls[0].distances[2].value_or(1e9), 1e-3);
    }
}

}  // namespace
