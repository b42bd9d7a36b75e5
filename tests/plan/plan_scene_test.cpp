#include "handover/plan/plan_scene.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "plan/made_scene.h"

namespace {

using made::key;
using made::object;
using made::ObjectKey;
using made::ObjectKind;
using plan::Mover;
using plan::Scene;

constexpr double kCutAngle = 60;

Scene scene_of(const made::Handover& handover) {
    return plan::scene_of(handover, kCutAngle);
}

std::string frames_of(const std::vector<plan::Frustum>& frusta) {
    std::string text;
    for (const plan::Frustum& frustum : frusta) {
        text += (text.empty() ? "" : " ") + std::to_string(static_cast<int>(frustum.frame));
    }
    return text;
}

TEST(PlanSceneTest, TheFrustumIsThatOfThePicture) {
    // 90 degrees across 200 x 100 pixels: at 100 units half as high as it is wide, which is 100 to each side.
    ObjectKey ahead = key(0, 10, 20, 30);
    ObjectKey to_the_left = ahead;
    to_the_left.heading = 90;
    ObjectKey banked = ahead;
    banked.bank = 90;
    const struct {
        const char* name;
        ObjectKey key;
        double aspect;
        plan::Vector aim;
        plan::Vector top_left;
        plan::Vector bottom_right;
    } cases[] = {
        {"straight ahead", ahead, 1, {10, 20, 130}, {-90, 70, 130}, {110, -30, 130}},
        {"wide pixels see less upwards", ahead, 2, {10, 20, 130}, {-90, 45, 130}, {110, -5, 130}},
        {"turned to the left", to_the_left, 1, {-90, 20, 30}, {-90, 70, -70}, {-90, -30, 130}},
        {"banked clockwise: the left is up", banked, 1, {10, 20, 130}, {60, 120, 130}, {-40, -80, 130}},
    };
    for (const auto& one : cases) {
        made::Handover handover = made::shot({object(ObjectKind::camera, "C", {one.key})});
        handover.shot.pixel_aspect = one.aspect;
        const Scene scene = scene_of(handover);
        ASSERT_EQ(scene.cameras.size(), 1U);
        const plan::Frustum& frustum = scene.cameras[0].frusta.at(0);
        ASSERT_EQ(frustum.corners.size(), 4U) << one.name;
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(frustum.eye[i], one.key.position[i], 1e-9) << one.name;
            EXPECT_NEAR(frustum.aim[i], one.aim[i], 1e-9) << one.name;
            EXPECT_NEAR(frustum.corners[0][i], one.top_left[i], 1e-9) << one.name << ", " << i;
            EXPECT_NEAR(frustum.corners[2][i], one.bottom_right[i], 1e-9) << one.name << ", " << i;
        }
    }
}

TEST(PlanSceneTest, FrustaAreAtTheEndsBetweenAndBesideCuts) {
    ObjectKey across = key(6, 0, 0, 0);
    across.heading = 61;
    const struct {
        const char* name;
        std::vector<ObjectKey> keys;
        const char* frames;
        std::size_t stretches;
    } cases[] = {
        {"one key stands for the whole shot", {key(0, 0, 0, 0)}, "0 3 5 8 10", 1},
        {"keys before the shot and after it", {key(-5, 0, 0, 0), key(20, 0, 0, 0)}, "0 3 5 8 10", 1},
        {"a turn of more than the cut angle from frame to frame",
         {key(5, 0, 0, 0), across},
         "0 3 5 6 8 10",
         2},
        {"the same turn in two frames is one", {key(4, 0, 0, 0), across}, "0 3 5 8 10", 1},
    };
    for (const auto& one : cases) {
        const Scene scene = scene_of(made::shot({object(ObjectKind::camera, "C", one.keys)}));
        EXPECT_EQ(frames_of(scene.cameras.at(0).frusta), one.frames) << one.name;
        EXPECT_EQ(scene.cameras.at(0).stretches.size(), one.stretches) << one.name;
    }
}

TEST(PlanSceneTest, MotionIsWithinTheShot) {
    const Scene scene = scene_of(made::shot(
        {object(ObjectKind::null, "N", {key(-10, 0, 0, 0), key(5, 30, 0, 0), key(15, 130, 0, 0)})}));
    const Mover& null = scene.nulls.at(0);
    ASSERT_EQ(null.stretches.size(), 1U);
    const std::vector<plan::Moment>& moments = null.stretches[0].moments;
    ASSERT_EQ(moments.size(), 3U);
    // Ten of fifteen frames of the first way, and five of ten of the second, have passed.
    EXPECT_NEAR(moments[0].pose.position[0], 20, 1e-9);
    EXPECT_NEAR(moments[1].pose.position[0], 30, 1e-9);
    EXPECT_NEAR(moments[2].pose.position[0], 80, 1e-9);
    EXPECT_EQ(null.keys, std::vector<std::int64_t>{5});
    EXPECT_EQ(null.keys_within, 1);
    EXPECT_EQ(null.keys_outside, 2);
    EXPECT_TRUE(null.moves());
}

TEST(PlanSceneTest, NoAngleOfViewMeansNoFrustum) {
    for (const double angle : {0.0, -5.0, 180.0, 400.0}) {
        ObjectKey one = key(0, 0, 0, 0);
        one.view_angle = angle;
        const Scene scene = scene_of(made::shot({object(ObjectKind::camera, "C", {one})}));
        EXPECT_TRUE(scene.cameras.at(0).frusta.at(0).corners.empty()) << angle;
    }
    made::Handover flat = made::shot({object(ObjectKind::camera, "C", {key(0, 0, 0, 0)})});
    flat.shot.height_px = 0;
    EXPECT_TRUE(scene_of(flat).cameras.at(0).frusta.at(0).corners.empty());
}

TEST(PlanSceneTest, WhatIsNowhereIsCounted) {
    ObjectKey nowhere = key(0, std::numeric_limits<double>::quiet_NaN(), 0, 0);
    const Scene scene = scene_of(
        made::shot({object(ObjectKind::light, "Fill", {}), object(ObjectKind::null, "Lost", {nowhere}),
                    object(ObjectKind::null, "Found", {nowhere, key(3, 1, 2, 3)})}));
    EXPECT_EQ(scene.without_keys, 2);
    EXPECT_EQ(scene.first_without_key, "Fill");
    ASSERT_EQ(scene.nulls.size(), 1U);
    EXPECT_EQ(scene.nulls[0].first().pose.position, (plan::Vector{1, 2, 3}));
}

TEST(PlanSceneTest, NumbersOfObjectsAndMomentsAreBounded) {
    std::vector<made::SceneObject> objects(plan::kMostNulls + 2,
                                           object(ObjectKind::null, "N", {key(0, 0, 0, 0)}));
    std::vector<ObjectKey> keys;
    for (int i = 0; i < 100000; ++i) {
        keys.push_back(key(i, i, i % 7, 0));
    }
    objects.push_back(object(ObjectKind::camera, "C", keys));
    made::Handover handover = made::shot(objects);
    handover.shot.to = 99999;
    const Scene scene = scene_of(handover);
    EXPECT_EQ(scene.nulls.size(), plan::kMostNulls);
    EXPECT_EQ(scene.not_drawn, 2);
    const Mover& camera = scene.cameras.at(0);
    EXPECT_EQ(camera.keys_within, 100000);
    EXPECT_EQ(camera.keys.size(), plan::kMostMoments);
    ASSERT_EQ(camera.stretches.size(), 1U);
    EXPECT_EQ(camera.stretches[0].moments.size(), plan::kMostMoments);
    EXPECT_EQ(camera.first().frame, 0);
    EXPECT_EQ(camera.last().frame, 99999);
}

}  // namespace
