// Cameras, lights and nulls between their keys. What is expected follows from the scene's meaning: every
// number changes linearly, and the projection is that of a pinhole; the host's transformations are multiplied
// out here, matrix by matrix.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>

#include "handover/made_handover.h"

namespace {

using namespace made;

using Values = std::vector<double>;
using Vector = std::array<double, 3>;
using Matrix = std::array<Vector, 3>;  // rows

constexpr double kDegree = std::numbers::pi / 180;

Matrix product(const Matrix& a, const Matrix& b) {
    Matrix c{};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            for (std::size_t k = 0; k < 3; ++k) {
                c[i][j] += a[i][k] * b[k][j];
            }
        }
    }
    return c;
}

Matrix about_x(double degrees) {
    const double c = std::cos(degrees * kDegree);
    const double s = std::sin(degrees * kDegree);
    return {{{1, 0, 0}, {0, c, -s}, {0, s, c}}};
}

Matrix about_y(double degrees) {
    const double c = std::cos(degrees * kDegree);
    const double s = std::sin(degrees * kDegree);
    return {{{c, 0, s}, {0, 1, 0}, {-s, 0, c}}};
}

Matrix about_z(double degrees) {
    const double c = std::cos(degrees * kDegree);
    const double s = std::sin(degrees * kDegree);
    return {{{c, -s, 0}, {s, c, 0}, {0, 0, 1}}};
}

// The value of a track at a frame, as a host draws lines and holds.
Values value_at(const Layer& layer, Property property, double frame) {
    const Track& track = track_of(layer, property);
    const std::size_t size = component_count(property);
    const auto key = [&](std::size_t i) {
        const auto begin = track.values.begin() + static_cast<std::ptrdiff_t>(i * size);
        return Values(begin, begin + static_cast<std::ptrdiff_t>(size));
    };
    if (track.frames.empty() || frame <= track.frames.front()) {
        return key(0);
    }
    std::size_t next = 1;
    while (next < track.frames.size() && track.frames[next] <= frame) {
        ++next;
    }
    if (next == track.frames.size()) {
        return key(next - 1);
    }
    if (std::find(track.holds.begin(), track.holds.end(), next - 1) != track.holds.end()) {
        return key(next - 1);
    }
    EXPECT_EQ(track.interpolation, Interpolation::linear);
    const double part = (frame - track.frames[next - 1]) / (track.frames[next] - track.frames[next - 1]);
    Values value = key(next - 1);
    for (std::size_t i = 0; i < size; ++i) {
        value[i] += (key(next)[i] - value[i]) * part;
    }
    return value;
}

// The axes of a camera layer at a frame: right, down and view as columns, in the host's axes.
Matrix axes_at(const Layer& camera, double frame) {
    const auto one = [&](Property property) {
        return find(camera, property) != nullptr ? value_at(camera, property, frame).at(0) : 0.0;
    };
    const Values orientation = value_at(camera, Property::orientation, frame);
    Matrix turned =
        product(about_x(orientation[0]), product(about_y(orientation[1]), about_z(orientation[2])));
    turned =
        product(turned, product(about_x(one(Property::rotate_x)),
                                product(about_y(one(Property::rotate_y)), about_z(one(Property::rotate_z)))));
    if (!camera.aimed) {
        EXPECT_EQ(find(camera, Property::anchor), nullptr);
        return turned;
    }
    const Values position = value_at(camera, Property::position, frame);
    const Values aim = value_at(camera, Property::anchor, frame);
    Vector view{aim[0] - position[0], aim[1] - position[1], aim[2] - position[2]};
    const double length = std::hypot(view[0], view[1], view[2]);
    for (double& number : view) {
        number /= length;
    }
    // Right is level: down (0, 1, 0) times view.
    Vector right{view[2], 0, -view[0]};
    const double level = std::hypot(right[0], right[2]);
    right[0] /= level;
    right[2] /= level;
    const Vector down{view[1] * right[2] - view[2] * right[1], view[2] * right[0] - view[0] * right[2],
                      view[0] * right[1] - view[1] * right[0]};
    const Matrix look{
        {{right[0], down[0], view[0]}, {right[1], down[1], view[1]}, {right[2], down[2], view[2]}}};
    return product(look, turned);
}

struct Stance {
    double heading, pitch, bank, view_angle;
};

// The axes that the scene means, as columns in the host's axes: right, down, view.
Matrix meant_axes(const Stance& stance) {
    const double h = stance.heading * kDegree;
    const double p = stance.pitch * kDegree;
    const double b = stance.bank * kDegree;
    const Vector right{std::cos(h), 0, std::sin(h)};
    const Vector up{std::sin(p) * std::sin(h), std::cos(p), -std::sin(p) * std::cos(h)};
    const Vector view{-std::cos(p) * std::sin(h), std::sin(p), std::cos(p) * std::cos(h)};
    Matrix axes{};
    for (std::size_t i = 0; i < 3; ++i) {
        const double flip = i == 1 ? -1 : 1;  // the scene's y axis points up
        axes[i] = {flip * (right[i] * std::cos(b) - up[i] * std::sin(b)),
                   -flip * (up[i] * std::cos(b) + right[i] * std::sin(b)), flip * view[i]};
    }
    return axes;
}

// How far apart the two cameras put the corners of a picture of 720 x 576, at most, in pixels.
double distance_px(const Layer& camera, double frame, const Stance& meant) {
    const Matrix got = axes_at(camera, frame);
    const Matrix axes = meant_axes(meant);
    const double focal = 360 / std::tan(meant.view_angle * kDegree / 2);
    const double zoom = value_at(camera, Property::zoom, frame).at(0);
    double worst = 0;
    for (const double x : {-360.0, 0.0, 360.0}) {
        for (const double y : {-288.0, 0.0, 288.0}) {
            // The point that the meant camera shows at x, y, in the axes of the other one.
            Vector ray{};
            Vector seen{};
            for (std::size_t i = 0; i < 3; ++i) {
                ray[i] = axes[i][0] * x + axes[i][1] * y + axes[i][2] * focal;
            }
            for (std::size_t j = 0; j < 3; ++j) {
                seen[j] = got[0][j] * ray[0] + got[1][j] * ray[1] + got[2][j] * ray[2];
            }
            worst = std::max(worst, std::hypot(zoom * seen[0] / seen[2] - x, zoom * seen[1] / seen[2] - y));
        }
    }
    return worst;
}

std::string key_text(int frame, const Stance& stance, const char* position = "100 50 -900") {
    std::string text = "KEY " + std::to_string(frame) + ' ' + position;
    for (const double number : {stance.heading, stance.pitch, stance.bank, stance.view_angle}) {
        text += ' ' + std::to_string(number);
    }
    return text + " 800\n";
}

Handover of_keys(const std::string& keys, const HandoverOptions& options = {}) {
    return of_text(scene_text("", "", "CAMERA \"Cam\" {\n" + keys + "}\n"), Version::corrected, options);
}

Stance between(const Stance& a, const Stance& b, double part) {
    const auto mixed = [part](double from, double to) { return from + (to - from) * part; };
    return {mixed(a.heading, b.heading), mixed(a.pitch, b.pitch), mixed(a.bank, b.bank),
            mixed(a.view_angle, b.view_angle)};
}

TEST(LinearKeys, ShowWhatTheSceneMeansAtAndBetweenFrames) {
    const struct {
        const char* reason;
        Stance a, b;
        int frames;
        bool aimed;
    } kCases[] = {
        {"a camera that stands still", {30, 10, 5, 40}, {30, 10, 5, 40}, 50, true},
        {"a pan", {0, 0, 0, 40}, {80, 0, 0, 40}, 50, true},
        {"a pan with raised view", {0, 40, 0, 40}, {80, 40, 0, 40}, 50, true},
        {"everything at once", {-30, -20, 10, 30}, {60, 35, -40, 70}, 40, true},
        {"three whole turns", {0, 10, 0, 50}, {1080, 10, 0, 50}, 99, true},
        {"a roll of two turns", {0, 10, -360, 50}, {0, 10, 360, 50}, 30, true},
        {"a zoom", {0, 0, 0, 90}, {0, 0, 0, 10}, 20, true},
        {"straight down", {20, -90, 0, 40}, {50, -90, 0, 40}, 20, false},
        {"over the top", {20, 60, 10, 40}, {20, 120, -30, 40}, 20, false},
        {"near the vertical at the end", {20, 0, 0, 40}, {20, 89.5, 0, 40}, 20, false},
        {"so near that it may still be aimed", {20, 0, 0, 40}, {20, 88.5, 0, 40}, 20, true},
        {"upside down all the time", {20, 180, 0, 40}, {30, 190, 0, 40}, 20, false},
        {"upright again after a turn", {20, 360, 0, 40}, {30, 350, 0, 40}, 20, true},
        {"faster than a point of interest can follow", {0, 20, 0, 40}, {400, 20, 0, 40}, 9, false},
    };
    for (const auto& one : kCases) {
        const Handover handover = of_keys(key_text(0, one.a) + key_text(one.frames, one.b));
        const Layer& camera = layer_named(handover, "Cam");
        EXPECT_EQ(camera.aimed, one.aimed) << one.reason;
        for (int step = 0; step <= 8 * one.frames; ++step) {
            const double frame = step / 8.0;
            const double miss = distance_px(camera, frame, between(one.a, one.b, frame / one.frames));
            const bool whole = step % 8 == 0;
            EXPECT_LT(miss, whole ? 0.02 : 0.05) << one.reason << ", frame " << frame;
        }
        EXPECT_EQ(count_of(handover, Correction::upright_aim), one.aimed ? 0 : 1) << one.reason;
        EXPECT_EQ(loss_codes(handover), std::vector<std::string>{}) << one.reason;
    }
}

TEST(LinearKeys, AddNoMoreKeysThanItTakes) {
    const Stance start{0, 0, 0, 40};
    const Handover still = of_keys(key_text(0, start) + key_text(50, start, "900 0 0"));
    EXPECT_EQ(track_of(layer_named(still, "Cam"), Property::anchor).frames, (Values{0, 50}))
        << "a camera that only moves goes straight with its point of interest";
    const Handover pan = of_keys(key_text(0, start) + key_text(50, {10, 0, 0, 40}));
    const std::size_t keys = track_of(layer_named(pan, "Cam"), Property::anchor).frames.size();
    EXPECT_GT(keys, 2U);
    EXPECT_LT(keys, 10U) << "a slow pan does not need a key at every frame";
}

TEST(LinearKeys, CanBeLeftOut) {
    const Handover handover = of_keys(key_text(0, {0, 0, 0, 40}) + key_text(50, {80, 20, 0, 40}),
                                      without({Correction::linear_keys, Correction::key_noise}));
    const Layer& camera = layer_named(handover, "Cam");
    EXPECT_EQ(track_of(camera, Property::anchor).frames, (Values{0, 50}));
    EXPECT_EQ(track_of(camera, Property::anchor).interpolation, Interpolation::host);
    EXPECT_EQ(loss_codes(handover), std::vector<std::string>{"handover-curve-between-keys"});
}

TEST(UprightAim, CanBeLeftOut) {
    const std::string keys = key_text(0, {20, -90, 0, 40}) + key_text(20, {50, -90, 0, 40});
    const Handover handover = of_keys(keys, without({Correction::upright_aim}));
    EXPECT_TRUE(layer_named(handover, "Cam").aimed);
    EXPECT_THAT(loss_codes(handover), testing::Contains("handover-aim-undefined"));
}

TEST(UprightAim, IsALossWhereItIsNotMade) {
    const struct {
        const char* reason;
        Stance first;
        Stance second;
        bool lost;
    } kCases[] = {
        {"level", {20, 0, 0, 40}, {50, 10, 0, 40}, false},
        {"straight down at a key", {20, 0, 0, 40}, {20, -90, 0, 40}, true},
        {"straight up between keys", {20, 80, 0, 40}, {20, 100, 0, 40}, true},
        {"upside down", {20, 170, 0, 40}, {30, 170, 0, 40}, true},
    };
    for (const auto& one : kCases) {
        const std::string text = scene_text(
            "", "", "CAMERA \"Cam\" {\n" + key_text(0, one.first) + key_text(20, one.second) + "}\n");
        for (const Version version : {Version::imported, Version::corrected}) {
            const std::vector<std::string> codes = loss_codes(of_text(text, version));
            const bool lost = std::find(codes.begin(), codes.end(), "handover-aim-undefined") != codes.end();
            EXPECT_EQ(lost, one.lost && version == Version::imported) << one.reason;
        }
    }
}

TEST(UprightAim, IsNeededWhereTheTargetIsAtTheCameraOrBehindIt) {
    const struct {
        const char* distance;
        bool aimed;
    } kCases[] = {{"0", false}, {"-5", false}, {"1", true}};
    for (const auto& [distance, aimed] : kCases) {
        const Handover handover = of_keys(std::string("KEY 0 1 2 3 10 20 0 40 ") + distance + "\n");
        EXPECT_EQ(layer_named(handover, "Cam").aimed, aimed) << distance;
        EXPECT_LT(distance_px(layer_named(handover, "Cam"), 0, {10, 20, 0, 40}), 1e-6) << distance;
    }
}

TEST(UprightAim, IsNotForLights) {
    const Handover handover = of_text(scene_text("", "", "LIGHT \"L\" { TYPE SPOT KEY 0 0 9 0 20 -90 0 }\n"));
    EXPECT_TRUE(layer_named(handover, "L").aimed) << "a light looks the same when it rolls";
}

TEST(Turns, TakeTheShortWayFromFrameToFrame) {
    const Handover handover = of_keys(key_text(0, {170, 0, 179, 40}) + key_text(1, {-175, 0, -178, 40}) +
                                      key_text(2, {-160, 0, -170, 40}));
    const Layer& camera = layer_named(handover, "Cam");
    const Stance meant[] = {{170, 0, 179, 40}, {185, 0, 182, 40}, {200, 0, 190, 40}};
    for (int step = 0; step <= 16; ++step) {
        const int before = std::min(step / 8, 1);
        const Stance stance = between(meant[before], meant[before + 1], step / 8.0 - before);
        EXPECT_LT(distance_px(camera, step / 8.0, stance), 0.05) << step / 8.0;
    }
    EXPECT_EQ(track_of(camera, Property::rotate_z).values, (Values{179, 182, 190}));
    EXPECT_TRUE(track_of(camera, Property::rotate_z).holds.empty());
    EXPECT_EQ(count_of(handover, Correction::turns), 1);
}

TEST(Turns, StayAsWrittenBetweenKeysThatAreFartherApart) {
    const Handover handover = of_text(scene_text(
        "", "",
        "NULL \"N\" { KEY 0 0 0 0 350 0 0 KEY 1 0 0 0 5 0 0 KEY 11 0 0 0 -5 0 0 KEY 12 0 0 0 0 0 0 }\n"));
    // 350 to 365 is the short way; then ten degrees back in ten frames, and on.
    EXPECT_EQ(track_of(layer_named(handover, "N"), Property::rotate_x).values, (Values{350, 365, 355, 360}));
    const Handover far =
        of_text(scene_text("", "", "NULL \"N\" { KEY 0 0 0 0 350 0 0 KEY 2 0 0 0 5 0 0 }\n"));
    EXPECT_EQ(track_of(layer_named(far, "N"), Property::rotate_x).values, (Values{350, 5}));
}

TEST(Turns, HoldAtCuts) {
    const struct {
        const char* reason;
        Stance next;
        double cut_angle;
        bool cut;
    } kCases[] = {
        {"just over the angle", {61, 0, 0, 40}, 60, true},
        {"just under the angle", {59, 0, 0, 40}, 60, false},
        {"a larger angle is asked for", {61, 0, 0, 40}, 90, false},
        {"the short way counts", {330, 0, 0, 40}, 60, false},
        {"a view that tilts", {0, -61, 0, 40}, 60, true},
        {"a roll", {0, 0, 61, 40}, 60, true},
        {"never, with half a turn", {170, 0, 0, 40}, 180, false},
    };
    for (const auto& [reason, next, cut_angle, cut] : kCases) {
        HandoverOptions options;
        options.cut_angle_degrees = cut_angle;
        const Handover handover = of_keys(
            key_text(4, {0, 0, 0, 40}, "1 2 3") + key_text(5, next, "700 8 9") + key_text(6, next, "800 8 9"),
            options);
        const Layer& camera = layer_named(handover, "Cam");
        const Track& position = track_of(camera, Property::position);
        EXPECT_EQ(position.holds, cut ? std::vector<std::size_t>{0} : std::vector<std::size_t>{}) << reason;
        const double x = value_at(camera, Property::position, 4.5).at(0);
        EXPECT_NEAR(x, cut ? 1 : 350.5, 1e-9) << reason;
        if (cut) {
            EXPECT_LT(distance_px(camera, 4.99, {0, 0, 0, 40}), 1e-6) << reason;
            EXPECT_EQ(count_of(handover, Correction::turns), 1) << reason;
        }
        EXPECT_LT(distance_px(camera, 5, next), 0.02) << reason;
    }
}

TEST(Turns, CanBeLeftOut) {
    const Handover handover =
        of_keys(key_text(0, {0, 0, 0, 40}) + key_text(1, {100, 0, 0, 40}), without({Correction::turns}));
    EXPECT_TRUE(track_of(layer_named(handover, "Cam"), Property::position).holds.empty());
    EXPECT_EQ(count_of(handover, Correction::turns), 0);
}

TEST(Motion, EndsForAnyScene) {
    const struct {
        const char* reason;
        std::string keys;
    } kCases[] = {
        {"frames as far apart as they can be",
         "KEY -2147483647 0 0 0 0 0 0 10\nKEY 2147483647 0 0 0 3e38 80 0 100\n"},
        {"an angle of view of 0", "KEY 0 0 0 0 0 0 0 0\nKEY 9 0 0 0 0 0 0 40\n"},
        {"angles beyond all measure", "KEY 0 0 0 0 -3e38 3e38 3e38 3e38\nKEY 1 0 0 0 3e38 -3e38 9 9\n"},
        {"positions beyond all measure",
         "KEY 0 3e38 -3e38 3e38 0 0 0 40 3e38\nKEY 9 -3e38 3e38 0 90 0 0 40 3e38\n"},
    };
    for (const auto& [reason, keys] : kCases) {
        const Handover handover = of_keys(keys);
        EXPECT_FALSE(layer_named(handover, "Cam").tracks.empty()) << reason;
    }
}

}  // namespace
