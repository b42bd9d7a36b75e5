#include "handover/proof/truth.h"

#include <gtest/gtest.h>

#include "proof/made_scene.h"

namespace {

using made::Key;
using made::Scene;
using proof::Landing;
using proof::Point;

Landing land(const Scene& scene, double frame, const Point& point) {
    const auto objects = proof::true_objects(scene.settings);
    const proof::TruthCamera camera(scene.settings, objects.at(0), 60);
    Landing landing;
    camera.land(frame, std::span(&point, 1), std::span(&landing, 1));
    return landing;
}

struct Case {
    const char* name;
    double aspect;
    Key key;
    Point point;
    double x_px;
    double y_px;
};

// 640 by 480 pixels at 90 degrees: f = 320 / tan 45 = 320. A point that is 1 to the right, 2 above and 4
// before the camera lands at 320 + 320 / 4 = 400, 240 - 320 * 2 / 4 = 80.
const Case kCases[] = {
    {"straight ahead", 1, {}, {1, 2, 4}, 400, 80},
    {"from another place", 1, {0, 10, 20, 30}, {11, 22, 34}, 400, 80},
    {"pixels twice as wide as high: y counts twice, 240 - 320 * 2 * 2 / 4", 2, {}, {1, 2, 4}, 400, -80},
    {"a heading of 90 looks to -x, with z to the right", 1, {0, 0, 0, 0, 90}, {-4, 2, 1}, 400, 80},
    {"a pitch of 90 looks up, with -z above", 1, {0, 0, 0, 0, 0, 90}, {1, 4, -2}, 400, 80},
    {"a bank of 90: below is to the right, right is above", 1, {0, 0, 0, 0, 0, 0, 90}, {2, -1, 4}, 400, 80},
    // f = 320 / tan 26.565 = 640: 320 + 640 / 4, 240 - 640 * 2 / 4.
    {"an angle of 53.130102 degrees", 1, {0, 0, 0, 0, 0, 0, 0, 53.130102}, {1, 2, 4}, 480, -80},
};

TEST(Truth, ProjectsByHand) {
    for (const Case& one : kCases) {
        Scene scene(640, 480, one.aspect);
        scene.camera({one.key});
        const Landing landing = land(scene, 0, one.point);
        EXPECT_TRUE(landing.seen) << one.name;
        // The angle of 53.130102 degrees is kept in single precision: 2e-6 degrees are 2e-5 pixels.
        EXPECT_NEAR(landing.x_px, one.x_px, 3e-5) << one.name;
        EXPECT_NEAR(landing.y_px, one.y_px, 3e-5) << one.name;
    }
}

TEST(Truth, BehindTheCameraIsNotSeen) {
    Scene scene(640, 480);
    scene.camera({Key{}});
    EXPECT_FALSE(land(scene, 0, {0, 0, -1}).seen);
    EXPECT_FALSE(land(scene, 0, {1, 1, 0}).seen);
    EXPECT_TRUE(land(scene, 0, {0, 0, 1}).seen);
}

struct TurnCase {
    const char* name;
    std::vector<Key> keys;
    double frame;
    Point ahead;  ///< where the camera looks: lands in the middle
};

const TurnCase kTurns[] = {
    {"half the way of a turn", {{0, 0, 0, 0, 0}, {10, 0, 0, 0, 180}}, 5, {-1, 0, 0}},
    {"a turn of nearly a whole turn is one, between keys that are not neighbours",
     {{0, 0, 0, 0, 5}, {2, 0, 0, 0, 355}},
     1,
     {0, 0, -1}},
    {"from one frame to the next it is the short way", {{0, 0, 0, 0, 5}, {1, 0, 0, 0, 355}}, 0.5, {0, 0, 1}},
    {"a turn of 60 degrees is none too far", {{0, 0, 0, 0, 0}, {1, 0, 0, 0, 60}}, 0.5, {-0.5, 0, 0.8660254}},
    {"a cut holds what was before", {{0, 0, 0, 0, 0}, {1, 0, 0, 0, 90}}, 0.99, {0, 0, 1}},
    {"and ends at its key", {{0, 0, 0, 0, 0}, {1, 0, 0, 0, 90}}, 1, {-1, 0, 0}},
    {"before the first key", {{3, 0, 0, 0, 90}, {5, 0, 0, 0, 0}}, 1, {-1, 0, 0}},
    {"after the last key", {{3, 0, 0, 0, 0}, {5, 0, 0, 0, 90}}, 9, {-1, 0, 0}},
    {"the last one written of two keys at one frame, in any order",
     {{5, 0, 0, 0, 0}, {3, 0, 0, 0, 0}, {3, 0, 0, 0, 90}},
     3,
     {-1, 0, 0}},
};

TEST(Truth, LooksBetweenKeys) {
    for (const TurnCase& one : kTurns) {
        Scene scene(640, 480);
        scene.camera(one.keys);
        const Landing landing = land(scene, one.frame, one.ahead);
        EXPECT_TRUE(landing.seen) << one.name;
        EXPECT_NEAR(landing.x_px, 320, 1e-4) << one.name;
        EXPECT_NEAR(landing.y_px, 240, 1e-4) << one.name;
    }
}

TEST(Truth, ObjectsAreInTheOrderOfTheFile) {
    Scene scene(640, 480);
    scene.null({{0, 1, 2, 3}, {10, 11, 22, 33}}).camera({Key{}});
    const auto objects = proof::true_objects(scene.settings);
    ASSERT_EQ(objects.size(), 2U);
    EXPECT_EQ(objects[0].kind, proof::TruthObject::Kind::null);
    EXPECT_EQ(objects[1].kind, proof::TruthObject::Kind::camera);
    const Point position = proof::true_position(objects[0], 5);
    EXPECT_DOUBLE_EQ(position.x, 6);
    EXPECT_DOUBLE_EQ(position.y, 12);
    EXPECT_DOUBLE_EQ(position.z, 18);
}

}  // namespace
