#include "handover/proof/after_effects_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "handover/proof/truth.h"
#include "proof/made_scene.h"

namespace {

using handover::Handover;
using handover::Interpolation;
using handover::Property;
using made::Key;
using proof::after_effects_camera;
using proof::after_effects_position;
using proof::AfterEffectsRules;
using proof::Landing;
using proof::Point;

Landing land(const proof::Projector& projector, double frame, const Point& point) {
    Landing landing;
    projector.land(frame, std::span(&point, 1), std::span(&landing, 1));
    return landing;
}

Landing land(const Handover& project, const AfterEffectsRules& rules, const Point& point, double frame = 0) {
    const proof::AfterEffectsCamera camera = after_effects_camera(project, 0, rules);
    EXPECT_EQ(camera.problem, "");
    return camera.projector != nullptr ? land(*camera.projector, frame, point) : Landing{};
}

// In the root composition, with square pixels.
Handover square_project(const std::vector<Key>& keys, Interpolation interpolation = Interpolation::linear) {
    Handover project = made::project(640, 480, 1, 1);
    project.compositions[0].layers.push_back(made::camera_layer(keys, 640, 0, interpolation));
    return project;
}

handover::Track constant(Property property, const std::vector<double>& values) {
    handover::Track track = made::track(property, Interpolation::linear);
    track.values = values;
    return track;
}

// A camera without a point of interest, at the origin of the space, with a zoom of 320.
Handover one_node_project(const std::vector<handover::Track>& turns) {
    Handover project = made::project(640, 480, 1, 1);
    handover::Layer camera;
    camera.kind = handover::LayerKind::camera;
    camera.object = 0;
    camera.tracks = turns;
    camera.tracks.push_back(constant(Property::position, {0, 0, 0}));
    camera.tracks.push_back(constant(Property::zoom, {320}));
    project.compositions[0].layers.push_back(camera);
    return project;
}

struct TurnCase {
    const char* name;
    std::vector<handover::Track> turns;
    Point point;
};

// Each point is 1 to the right, 2 above and 4 before the turned camera: it lands at 320 + 320 / 4, 240 - 320
// 2 / 4. Points are in the scene's axes, y up; turns lead from y (down) to z (away), from z to x, from x to
// y.
const TurnCase kTurns[] = {
    {"no turn", {}, {1, 2, 4}},
    {"90 about x: down is away, away is up", {constant(Property::rotate_x, {90})}, {1, 4, -2}},
    {"90 about y: away is right, right is near", {constant(Property::rotate_y, {90})}, {4, 2, -1}},
    {"90 about z: right is down, down is left", {constant(Property::rotate_z, {90})}, {2, -1, 4}},
    {"the same as an orientation", {constant(Property::orientation, {0, 0, 90})}, {2, -1, 4}},
    // Rx(90) Ry(90): the camera's z is first turned to x, which Rx leaves; its x to -z, which Rx turns to y,
    // down; its up, -y, to -z, near. So right 1 is 1 down, up 2 is 2 nearer, before 4 is 4 to the right.
    {"x after y", {constant(Property::orientation, {90, 90, 0})}, {4, -1, -2}},
    {"an orientation and then a rotation is that, too",
     {constant(Property::orientation, {90, 0, 0}), constant(Property::rotate_y, {90})},
     {4, -1, -2}},
};

TEST(AfterEffectsModel, TurnsByHand) {
    for (const TurnCase& one : kTurns) {
        const Landing landing = land(one_node_project(one.turns), {}, one.point);
        EXPECT_TRUE(landing.seen) << one.name;
        EXPECT_NEAR(landing.x_px, 400, 1e-9) << one.name;
        EXPECT_NEAR(landing.y_px, 80, 1e-9) << one.name;
    }
}

TEST(AfterEffectsModel, AgreesWithThePinholeForSquarePixels) {
    std::mt19937 random(15);
    const auto number = [&](double least, double most) {
        return static_cast<float>(std::uniform_real_distribution<double>(least, most)(random));
    };
    double largest = 0;
    for (int i = 0; i < 500; ++i) {
        const Key key{0,
                      number(-900, 900),
                      number(-900, 900),
                      number(-900, 900),
                      number(-180, 180),
                      number(-89, 89),
                      number(-180, 180),
                      number(5, 120),
                      number(100, 3000)};
        made::Scene scene(640, 480);
        scene.camera({key});
        const auto objects = proof::true_objects(scene.settings);
        const proof::TruthCamera truth(scene.settings, objects[0], 60);
        const Point point =
            truth.point_of(0, {number(-1, 1), number(-1, 1), static_cast<double>(number(50, 2000))});
        const Landing expected = land(truth, 0, point);
        const Landing landing = land(square_project({key}), {}, point);
        largest = std::max(
            {largest, std::abs(landing.x_px - expected.x_px), std::abs(landing.y_px - expected.y_px)});
        // The other sense shows: a corner of a picture banked by 1 degree moves by 400 * 2 degrees = 14
        // pixels.
        const Landing other =
            land(square_project({key}), {.bank_clockwise = false}, {point.x, point.y, point.z});
        if (std::abs(key.bank) > 1 && std::abs(key.bank) < 179 &&
            std::hypot(expected.x_px - 320, expected.y_px - 240) > 1) {
            EXPECT_GT(std::hypot(other.x_px - expected.x_px, other.y_px - expected.y_px), 0.03);
        }
    }
    EXPECT_LT(largest, 1e-9);
}

TEST(AfterEffectsModel, LaysCompositionsByScaleAndAspect) {
    // Twice as wide pixels, 640 by 480: the point at 400, 80 with square pixels is at 400, 240 - 2 * 160 =
    // -80.
    const handover::Layer camera = made::camera_layer({Key{}}, 640, 0, Interpolation::linear);
    Handover plug_in = made::project(640, 480, 2, 2);
    made::nest(plug_in, camera, 640, 480, 2, 100, 200);
    // Square pixels, 240 high. Laid into pixels twice as wide x is halved, and both are doubled: y from the
    // middle is -160 * 2.
    Handover square = made::project(640, 480, 2, 2);
    made::nest(square, camera, 640, 240, 1, 200, 200);
    for (const Handover* project : {&plug_in, &square}) {
        const Landing landing = land(*project, {}, {1, 2, 4});
        EXPECT_NEAR(landing.x_px, 400, 1e-9);
        EXPECT_NEAR(landing.y_px, -80, 1e-9);
    }
    // Square pixels are not stretched either way.
    EXPECT_NEAR(land(square, {.stretches_space = true}, {1, 2, 4}).x_px, 400, 1e-9);
}

TEST(AfterEffectsModel, StretchedSpaceByHand) {
    // Pixels of aspect 2; the camera looks to -x: x is its depth, which is doubled. The point is 4 before it,
    // 1 to the right, 2 above: 320 + 320 * 1 / 8 / 2 = 340, 240 - 320 * 2 / 8 * 2 = 80. Without stretching it
    // is where the scene has it: 400, 240 - 320 * 2 * 2 / 4.
    const handover::Layer camera = made::camera_layer({{0, 0, 0, 0, 90}}, 640, 0, Interpolation::linear);
    Handover project = made::project(640, 480, 2, 2);
    made::nest(project, camera, 640, 480, 2, 100, 200);
    const Landing stretched = land(project, {.stretches_space = true}, {-4, 2, 1});
    EXPECT_NEAR(stretched.x_px, 340, 1e-9);
    EXPECT_NEAR(stretched.y_px, 80, 1e-9);
    const Landing as_it_is = land(project, {}, {-4, 2, 1});
    EXPECT_NEAR(as_it_is.x_px, 400, 1e-9);
    EXPECT_NEAR(as_it_is.y_px, -80, 1e-9);
}

TEST(AfterEffectsModel, TimeBeginsAtFromOrWithLocalAtFrom) {
    Handover project = made::project(640, 480, 1, 1);
    project.shot.from = 10;
    handover::Layer camera = made::camera_layer({{10, 0}, {20, 100}}, 640, 0, Interpolation::linear, 10);
    project.compositions[0].layers = {camera};
    // Half the way the camera is at x = 50, and sees what is there in the middle.
    EXPECT_NEAR(land(project, {}, {50, 0, 4}, 15).x_px, 320, 1e-9);
    project.shot.local = true;
    project.compositions[0].layers[0].start = 10;
    EXPECT_NEAR(land(project, {}, {50, 0, 4}, 15).x_px, 320, 1e-9);
    // A layer that starts a frame too late is 10 behind: 320 + 320 * 10 / 4.
    project.compositions[0].layers[0].start = 11;
    EXPECT_NEAR(land(project, {}, {50, 0, 4}, 15).x_px, 1120, 1e-9);
}

Handover moving_null(const std::vector<double>& frames, const std::vector<double>& xs,
                     Interpolation interpolation) {
    Handover project = made::project(640, 480, 1, 1);
    handover::Layer null;
    null.kind = handover::LayerKind::null;
    null.object = 0;
    handover::Track position = made::track(Property::position, interpolation);
    position.frames = frames;
    for (const double x : xs) {
        position.values.insert(position.values.end(), {x, 0, 0});
    }
    null.tracks = {position};
    project.compositions[0].layers = {null};
    return project;
}

double x_at(const Handover& project, double frame) {
    return after_effects_position(project, 0, frame, {})->x;
}

TEST(AfterEffectsModel, HeldPositionDriftsAwayFromItsNextWay) {
    // Keys 0, 0, 27: the handle before the second key is (27 - 0) / 6 = 4.5 before it, at -4.5. The curve is
    // -4.5 * 3 (1 - t) t t, least at t = 2/3: -4.5 * 4 / 9 = -2, which is 2/27 of the next way, away from it.
    const Handover project = moving_null({0, 10, 20}, {0, 0, 27}, Interpolation::host);
    double least = 0;
    double most = 0;
    for (int i = 0; i <= 1000; ++i) {
        least = std::min(least, x_at(project, i / 100.0));
        most = std::max(most, x_at(project, i / 100.0));
    }
    EXPECT_NEAR(least, -2, 1e-3);
    EXPECT_EQ(most, 0);
    // To and fro at constant speed, it is farthest at half the time.
    EXPECT_NEAR(x_at(project, 5), -2, 1e-2);
    EXPECT_EQ(x_at(project, 10), 0);
    const Handover held = moving_null({0, 10, 20}, {0, 0, 27}, Interpolation::linear);
    EXPECT_EQ(x_at(held, 5), 0);
}

TEST(AfterEffectsModel, SpeedIsConstantFromKeyToKey) {
    // On a line the curve is the line, whatever its handles.
    const Handover project = moving_null({0, 10, 20}, {0, 100, 400}, Interpolation::host);
    EXPECT_NEAR(x_at(project, 2.5), 25, 1e-9);
    EXPECT_NEAR(x_at(project, 15), 250, 1e-9);
}

TEST(AfterEffectsModel, HeldKeysStayUntilTheNext) {
    Handover project = moving_null({0, 10, 20}, {0, 100, 400}, Interpolation::linear);
    project.compositions[0].layers[0].tracks[0].holds = {1};
    EXPECT_EQ(x_at(project, 5), 50);
    EXPECT_EQ(x_at(project, 19.99), 100);
    EXPECT_EQ(x_at(project, 20), 400);
}

TEST(AfterEffectsModel, OrientationTakesTheShortWay) {
    Handover project = one_node_project({});
    handover::Track turn = made::track(Property::orientation, Interpolation::linear);
    turn.frames = {0, 10};
    turn.values = {0, 350, 0, 0, 10, 0};
    project.compositions[0].layers[0].tracks.push_back(turn);
    // Half the way from 350 to 10 is 0.
    EXPECT_NEAR(land(project, {}, {1, 2, 4}, 5).x_px, 400, 1e-9);
    // A tenth of it is 352: a point straight ahead lands 320 tan 8 = 44.9731 to the right.
    EXPECT_NEAR(land(project, {}, {0, 0, 4}, 1).x_px, 320 + 44.9731, 1e-4);
}

TEST(AfterEffectsModel, StraightUpHasNoPicture) {
    const Handover project = square_project({{0, 0, 0, 0, 0, 90}});
    // cos 90 degrees is 6e-17 in floating point, so the point of interest itself is put straight above.
    Handover upright = project;
    upright.compositions[0].layers[0].tracks[1].values = {0, -1000, 0};
    EXPECT_FALSE(land(upright, {}, {0, 5, 0}).seen);
}

TEST(AfterEffectsModel, SaysWhyThereIsNoCamera) {
    Handover project = square_project({Key{}});
    EXPECT_EQ(after_effects_camera(project, 1, {}).problem, "the project has no layer for this camera");
    project.compositions.push_back(project.compositions[0]);
    project.compositions[0].layers.clear();
    project.compositions[1].item = 7;
    EXPECT_EQ(after_effects_camera(project, 0, {}).problem,
              "the camera's composition is no layer of the root composition");
    EXPECT_FALSE(after_effects_position(project, 0, 0, {}));
}

}  // namespace
