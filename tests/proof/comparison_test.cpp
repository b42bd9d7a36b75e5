#include "handover/proof/comparison.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "handover/proof/handover_targets.h"
#include "proof/made_scene.h"

namespace {

using handover::Handover;
using handover::Interpolation;
using made::Key;
using made::Scene;
using proof::CameraResult;
using proof::ProofResult;
using proof::TargetResult;

// A camera on its way: right, up and around, with a bank.
const std::vector<Key> kWay = {
    {0, 0, 0, 0, 0, 0, 10, 50}, {40, 0, 0, 0, 0, 0, 10, 50}, {80, 300, 50, 100, 0, 0, 10, 50}};

ProofResult proved(const Scene& scene, const Handover& project, int grid_points = 27) {
    return proof::compare(scene.settings, proof::after_effects_targets(project), {grid_points, 60, {}});
}

std::string causes_of(const TargetResult& result) {
    std::string names;
    for (const auto& cause : result.causes) {
        names += (names.empty() ? "" : " ") + std::string(info_of(cause.cause).name);
    }
    return names;
}

Handover in_root(const std::vector<Key>& keys, Interpolation interpolation) {
    Handover project = made::project(640, 480, 1, 1);
    project.compositions[0].layers = {made::camera_layer(keys, 640, 0, interpolation)};
    return project;
}

TEST(Comparison, WhatIsTheSameDeviatesByNothing) {
    Scene scene(640, 480);
    scene.camera(kWay);
    Handover project = in_root(kWay, Interpolation::linear);
    project.version = handover::Version::corrected;
    const ProofResult result = proved(scene, project);
    ASSERT_EQ(result.cameras.size(), 1U);
    ASSERT_EQ(result.cameras[0].targets.size(), 1U);
    const TargetResult& target = result.cameras[0].targets[0];
    EXPECT_LT(target.deviation.largest.px, 1e-9);
    EXPECT_EQ(causes_of(target), "");
    EXPECT_GT(target.deviation.compared, 400);
    EXPECT_TRUE(result.meets_goal());
    // Keys 0, 40, 80, and TO; in each way of 40 frames 9 others and 4 fractions, in the 20 after the last key
    // none: parts 1/7, 1/4, 1/3, 1/2, 2/3, 3/4, 6/7 are frames 6, 10, 13, 20, 27, 30, 34, and 10, 20 and 30
    // are such exactly; 1 and 39 are beside the keys.
    EXPECT_EQ(result.cameras[0].keys_compared, 3);
    EXPECT_EQ(result.cameras[0].moments, 4 + 2 * (9 + 4));
}

TEST(Comparison, ListsThePointsOfTheFramesThatAreAskedFor) {
    Scene scene(640, 480);
    scene.camera({{0, 0, 0, 0, 0, 0, 0, 90, 100}}).null({{0, 20, 10, 100}, {10, 40, 10, 100}});
    const Handover project = made::project(640, 480, 1, 1);
    proof::ProofOptions options;
    options.grid_points = 1;
    options.listed_frames = {5, -7.5};
    // A target that arrives nowhere has no places; the truth of its points is listed all the same.
    const ProofResult result = proof::compare(scene.settings, proof::after_effects_targets(project), options);
    ASSERT_EQ(result.cameras[0].listed.size(), 2U);
    const proof::ListedFrame& listed = result.cameras[0].listed[0];
    EXPECT_EQ(listed.frame, 5);
    // The aim, four corners at three depths, the null halfway between its keys: 320 pixels from the middle
    // are as far as the point is away.
    ASSERT_EQ(listed.points.size(), 14U);
    const proof::ListedPoint& null = listed.points[13];
    EXPECT_EQ(null.label, "null \"Null\"");
    EXPECT_EQ(null.place.x, 30);
    EXPECT_NEAR(null.truth.x_px, 320 + 0.3 * 320, 1e-9);
    EXPECT_NEAR(null.truth.y_px, 240 - 0.1 * 320, 1e-9);
    ASSERT_EQ(null.landed.size(), result.targets.size());
    EXPECT_FALSE(null.landed[0].seen);
    EXPECT_EQ(result.cameras[0].listed[1].frame, -7.5);
    EXPECT_EQ(result.cameras[0].listed[1].points[13].place.x, 20);
}

TEST(Comparison, NamesACurveAndMeasuresIt) {
    Scene scene(640, 480);
    scene.camera(kWay);
    const TargetResult target = proved(scene, in_root(kWay, Interpolation::host)).cameras[0].targets[0];
    EXPECT_EQ(causes_of(target), "curve-between-keys");
    EXPECT_LT(target.deviation.at_keys_px, 1e-9);
    // The position drifts by 2/27 of (300, 50, 100). The point of interest drifts as far, so a point at the
    // target distance of 1000 moves by about 686 * 22.2 / 1007 = 15 pixels, one at half of it by twice as
    // many.
    EXPECT_GT(target.deviation.largest.px, 25);
    EXPECT_LT(target.deviation.largest.px, 40);
    EXPECT_LT(target.causes[0].after_px, 1e-9);
    EXPECT_EQ(target.causes[0].before_px, target.deviation.largest.px);
}

TEST(Comparison, NamesABankToTheOtherSide) {
    Scene scene(640, 480);
    scene.camera(kWay);
    Handover project = in_root(kWay, Interpolation::linear);
    for (double& angle : project.compositions[0].layers[0].tracks[2].values) {
        angle = -angle;
    }
    const TargetResult target = proved(scene, project, 1).cameras[0].targets[0];
    EXPECT_EQ(causes_of(target), "bank-sense");
    // The corners are 400 pixels from the middle and turned by 20 degrees: 800 sin 10 = 138.919.
    EXPECT_NEAR(target.deviation.in_frame_px, 138.919, 1e-3);
}

TEST(Comparison, NamesACutAspect) {
    // 1.0667 with square pixels for the camera, laid by the exact aspect into a root of 1.06: the pixels from
    // the middle are 1.0667 / 1.06 as far in x. A corner, 360 away, is off by 360 * 0.0067 / 1.06 = 2.27547.
    const std::vector<Key> keys = {Key{}};
    Scene scene(720, 576, 1.0667F);
    scene.camera(keys);
    const double aspect = scene.settings.aspect;
    Handover project = made::project(720, 576, aspect, 1.06);
    made::nest(project, made::camera_layer(keys, 720, 0, Interpolation::linear), 720, 540, 1, 100 * aspect,
               100 * aspect);
    const ProofResult result = proved(scene, project, 1);
    ASSERT_EQ(result.targets, (std::vector<std::string>{"imported", "imported, stretched"}));
    for (const TargetResult& target : result.cameras[0].targets) {
        EXPECT_EQ(causes_of(target), "aspect-cut");
        EXPECT_NEAR(target.deviation.in_frame_px, 2.27547, 1e-4);
    }
}

TEST(Comparison, SeesTwoCausesAtOnce) {
    Scene scene(640, 480);
    scene.camera(kWay);
    Handover project = in_root(kWay, Interpolation::host);
    for (double& angle : project.compositions[0].layers[0].tracks[2].values) {
        angle = -angle;
    }
    EXPECT_EQ(causes_of(proved(scene, project).cameras[0].targets[0]), "bank-sense curve-between-keys");
}

TEST(Comparison, WhatIsRightAtKeysOnlyIsInterpolation) {
    // A turn by 60 degrees: the point of interest goes straight, and half the way the view is right;
    // elsewhere not.
    const std::vector<Key> keys = {{0}, {40, 0, 0, 0, 60}};
    Scene scene(640, 480);
    scene.camera(keys);
    const TargetResult target = proved(scene, in_root(keys, Interpolation::linear)).cameras[0].targets[0];
    EXPECT_EQ(causes_of(target), "interpolation");
    EXPECT_LT(target.deviation.at_keys_px, 1e-9);
    EXPECT_GT(target.deviation.at_frames_px, 1);
}

TEST(Comparison, WhatNothingExplainsIsSaid) {
    Scene scene(640, 480);
    scene.camera({Key{}});
    Handover project = in_root({Key{}}, Interpolation::linear);
    project.compositions[0].layers[0].tracks[3].values = {321};
    const ProofResult result = proved(scene, project, 1);
    EXPECT_EQ(causes_of(result.cameras[0].targets[0]), "unexplained");
    // A corner is 400 pixels from the middle: 400 / 320.
    EXPECT_NEAR(result.cameras[0].targets[0].deviation.in_frame_px, 1.25, 1e-9);
    // The imported project is not judged.
    EXPECT_TRUE(result.meets_goal());
    project.version = handover::Version::corrected;
    EXPECT_FALSE(proved(scene, project).meets_goal());
}

TEST(Comparison, ACameraThatLooksNowhereIsLost) {
    Scene scene(640, 480);
    scene.camera({{0, 0, 0, 0, 0, 90}});
    Handover project = in_root({{0, 0, 0, 0, 0, 90}}, Interpolation::linear);
    project.version = handover::Version::corrected;
    project.compositions[0].layers[0].tracks[1].values = {0, -1000, 0};
    const ProofResult result = proved(scene, project);
    EXPECT_EQ(result.cameras[0].targets[0].deviation.compared, 0);
    EXPECT_GT(result.cameras[0].targets[0].deviation.lost, 0);
    EXPECT_EQ(causes_of(result.cameras[0].targets[0]), "undefined");
    EXPECT_FALSE(result.meets_goal());
}

TEST(Comparison, SaysWhatIsNotCompared) {
    Scene scene(640, 480, 1, 0);
    // One null behind the camera, one before it.
    scene.camera({Key{}}).null({{0, 0, 0, -100}}).null({{0, 0, 0, 100}});
    Handover project = in_root({Key{}}, Interpolation::linear);
    const CameraResult camera = proved(scene, project, 1).cameras[0];
    EXPECT_EQ(camera.left_out, 1);
    // The aim, 12 corners and a null, at frame 0.
    EXPECT_EQ(camera.targets[0].deviation.compared, 14);
    Scene blind(640, 480, 1, 0);
    blind.camera({{0, 0, 0, 0, 0, 0, 0, 0}});
    EXPECT_EQ(proved(blind, project).cameras[0].no_picture, 1);
}

TEST(Comparison, NullsAreComparedByPosition) {
    Scene scene(640, 480);
    scene.null({{0, 0}, {10, 0}, {20, 27}});
    Handover project = made::project(640, 480, 1, 1);
    handover::Layer null;
    null.object = 0;
    handover::Track position = made::track(handover::Property::position, Interpolation::host);
    position.frames = {0, 10, 20};
    position.values = {0, 0, 0, 0, 0, 0, 27, 0, 0};
    null.tracks = {position};
    project.compositions[0].layers = {null};
    const ProofResult result = proved(scene, project);
    EXPECT_TRUE(result.cameras.empty());
    ASSERT_EQ(result.nulls.size(), 1U);
    // It drifts by 2/27 of 27, and is there at half the time.
    EXPECT_NEAR(result.nulls[0].distances[0].value_or(-1), 2, 0.01);
    EXPECT_EQ(result.nulls[0].frames[0], 5);
    project.compositions[0].layers.clear();
    EXPECT_FALSE(proved(scene, project).nulls[0].distances[0]);
}

TEST(Comparison, ManyKeysAreSampledAndCounted) {
    std::vector<Key> keys;
    for (int i = 0; i < 1000; ++i) {
        keys.push_back({3 * i, static_cast<double>(i)});
    }
    Scene scene(640, 480, 1, 3000);
    scene.camera(keys);
    const CameraResult camera = proved(scene, in_root(keys, Interpolation::linear), 1).cameras[0];
    EXPECT_EQ(camera.keys, 1000);
    EXPECT_EQ(camera.keys_compared, 400);
    EXPECT_LT(camera.targets[0].deviation.largest.px, 1e-8);
}

}  // namespace
