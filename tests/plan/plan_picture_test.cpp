#include "handover/plan/plan_picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <regex>
#include <string>
#include <vector>

#include "handover/plan/plan_style.h"
#include "plan/made_scene.h"

namespace {

using made::key;
using made::object;
using made::ObjectKey;
using made::ObjectKind;
using testing::HasSubstr;
using testing::Not;

constexpr double kCutAngle = 60;

std::string picture_of(std::vector<made::SceneObject> objects) {
    return plan::plan_picture(made::shot(std::move(objects)), kCutAngle);
}

// Every coordinate of the picture lies on its page or a little beside it.
void expect_on_the_page(const std::string& svg, const char* name) {
    const std::regex number("(?: x| y|cx|cy|width|height)=\"([^\"]*)\"|[ML]([-0-9.]+) ([-0-9.]+)");
    std::size_t count = 0;
    for (std::sregex_iterator at(svg.begin(), svg.end(), number), end; at != end; ++at) {
        for (std::size_t i = 1; i < at->size(); ++i) {
            const std::string text = (*at)[i];
            if (!text.empty() && text != "100%") {
                EXPECT_GE(std::stod(text), -20) << name;
                EXPECT_LE(std::stod(text), 20000) << name;
                ++count;
            }
        }
    }
    EXPECT_GT(count, 20U) << name;
}

ObjectKey wild(double number) {
    ObjectKey key;
    key.position = {number, -number, number};
    key.heading = key.pitch = key.bank = key.view_angle = key.target_distance = number;
    return key;
}

TEST(PlanPictureTest, AnythingIsDrawnWithinThePage) {
    const double infinite = std::numeric_limits<double>::infinity();
    const double largest = std::numeric_limits<double>::max();
    ObjectKey wide = key(0, 0, 0, 0);
    wide.view_angle = 179.999;
    ObjectKey later = wild(1e30);
    later.frame = 5;
    const auto camera = [](std::vector<ObjectKey> keys) {
        return object(ObjectKind::camera, "C", std::move(keys));
    };
    made::SceneObject lamp = object(ObjectKind::light, "L", {key(0, 5, 5, 5)});
    lamp.light_word = "SPOT";
    lamp.cone_angle = infinite;
    lamp.intensity = -infinite;
    lamp.color = {infinite, -1, std::numeric_limits<double>::quiet_NaN()};
    const struct {
        const char* name;
        std::vector<made::SceneObject> objects;
    } cases[] = {
        {"nothing at all", {}},
        {"everything at one place",
         {camera({key(0, 0, 0, 0)}), object(ObjectKind::null, "N", {key(0, 0, 0, 0)})}},
        {"not a number", {camera({wild(std::numeric_limits<double>::quiet_NaN())})}},
        {"infinite", {camera({wild(infinite)})}},
        {"the largest numbers", {camera({wild(largest)}), object(ObjectKind::null, "N", {wild(-largest)})}},
        {"the smallest numbers", {camera({wild(5e-324)})}},
        {"from near to very far", {camera({key(0, 0, 0, 0), later})}},
        {"nearly half a turn of view", {camera({wide})}},
        {"a light without sound numbers", {lamp}},
        {"far beside something near",
         {camera({key(0, 0, 0, 0)}), object(ObjectKind::null, "N", {key(0, 1e9, 0, 1e9)})}},
    };
    for (const auto& one : cases) {
        const std::string svg = picture_of(one.objects);
        expect_on_the_page(svg, one.name);
        EXPECT_THAT(svg, Not(HasSubstr("nan\""))) << one.name;
    }
}

TEST(PlanPictureTest, FramesMayBeAnyNumbers) {
    for (const std::int64_t frame : {std::int64_t{0}, INT64_MAX, INT64_MIN}) {
        made::Handover handover = made::shot({object(ObjectKind::camera, "C", {key(frame, 0, 0, 0)})});
        handover.shot.from = frame;
        for (const std::int64_t to : {std::int64_t{0}, INT64_MAX, INT64_MIN}) {
            handover.shot.to = to;
            expect_on_the_page(plan::plan_picture(handover, kCutAngle), "frames");
        }
    }
}

TEST(PlanPictureTest, SaysWhatItLeavesOut) {
    std::vector<ObjectKey> many;
    for (int i = 0; i < 100000; ++i) {
        many.push_back(key(0, i % 977, i % 491, i % 1009));
        many.back().frame = i;
    }
    const struct {
        const char* name;
        std::vector<made::SceneObject> objects;
        const char* note;
    } cases[] = {
        {"no camera", {object(ObjectKind::null, "N", {key(0, 0, 0, 0)})}, "No camera has a key."},
        {"a camera without keys",
         {object(ObjectKind::camera, "Still", {})},
         "Still has no key and is not shown."},
        {"several objects without keys",
         {object(ObjectKind::light, "A", {}), object(ObjectKind::null, "B", {}),
          object(ObjectKind::null, "C", {})},
         "A and 2 other objects have no keys and are not shown."},
        {"keys outside",
         {object(ObjectKind::camera, "C", {key(-1, 0, 0, 0), key(11, 0, 0, 0)})},
         "2 keys lie before FROM or after TO and are not shown."},
        {"far away",
         {object(ObjectKind::camera, "C", {key(0, 0, 0, 0), key(9, 50, 0, 0)}),
          object(ObjectKind::null, "N", {key(0, 1e7, 0, 0)})},
         "1 object is too far away for a map: an arrow at its edge shows the way."},
        {"nine cameras",
         std::vector<made::SceneObject>(9, object(ObjectKind::camera, "C", {key(0, 0, 0, 0)})),
         "1 object is not shown: the plan shows the first 8 cameras, 60 lights and 300 nulls of the scene."},
        {"25 lights", std::vector<made::SceneObject>(25, object(ObjectKind::light, "L", {key(0, 0, 0, 0)})),
         "Of 25 lights the intensity of the first 24 is shown."},
    };
    for (const auto& one : cases) {
        EXPECT_THAT(picture_of(one.objects), HasSubstr(one.note)) << one.name;
    }
    made::Handover handover = made::shot({object(ObjectKind::camera, "Wild", many)});
    handover.shot.to = 99999;
    const std::string svg = plan::plan_picture(handover, kCutAngle);
    EXPECT_THAT(svg, HasSubstr("Wild has 100000 keys: more than a picture can show."));
    EXPECT_LT(svg.size(), 2000000U);
}

TEST(PlanPictureTest, NamesAreTextAndNothingElse) {
    const std::string hebrew = "\xd7\x90\xd7\x91";
    const std::string svg =
        picture_of({object(ObjectKind::camera, "<script>alert(1)</script>", {key(0, 0, 0, 0)}),
                    object(ObjectKind::null, hebrew, {key(0, 50, 0, 50)})});
    EXPECT_THAT(svg, HasSubstr(">&lt;script&gt;alert(1)&lt;/script&gt;"));
    EXPECT_THAT(svg, Not(HasSubstr("<script")));
    EXPECT_THAT(svg, HasSubstr(">\xe2\x81\xa8" + hebrew + "\xe2\x81\xa9</text>"));
}

TEST(PlanPictureTest, IsTheSameEveryTime) {
    const std::vector<made::SceneObject> objects{
        object(ObjectKind::camera, "C", {key(0, 0, 0, 0), key(9, 50, 5, 0)}),
        object(ObjectKind::light, "L", {key(0, 20, 30, 40)})};
    EXPECT_EQ(picture_of(objects), picture_of(objects));
}

TEST(PlanPictureTest, StepsAreRound) {
    const struct {
        const char* name;
        double least;
        double step;
    } cases[] = {
        {"a step as it is", 2, 2},
        {"the next larger digit", 2.1, 5},
        {"the next power of ten", 6, 10},
        {"small", 0.0011, 0.002},
        {"large", 3e20, 5e20},
    };
    for (const auto& one : cases) {
        EXPECT_NEAR(plan::round_step(one.least), one.step, one.step * 1e-12) << one.name;
    }
}

TEST(PlanPictureTest, NumbersAreShort) {
    const struct {
        const char* name;
        double number;
        const char* text;
    } cases[] = {
        {"zero", 0, "0"},
        {"zero below zero", -0.0, "0"},
        {"four digits", 1.23456, "1.235"},
        {"no needless digits", 25, "25"},
        {"whole numbers keep theirs", 123456, "123456"},
        {"a small one", -0.00012345, "-0.0001235"},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(plan::short_number(one.number), one.text) << one.name;
    }
}

}  // namespace
