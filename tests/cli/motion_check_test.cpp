#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "scene_places.h"

namespace {

using cli::Diagnostic;
using cli::ToolCode;

const std::string kMotion =
    "VORTAN XR COMPOSITION\nRESOLUTION 640 360 FROM 0 TO 100 RANGE 101\nFPS 25 COMPOSITION NRM \"M\" { }\n";

struct Case {
    const char* name;
    std::string object;  ///< its first key is in line 5
    Places expected;
};

void expect_places(const Case& one, ToolCode code) {
    EXPECT_EQ(places_of(warnings_of_code(kMotion + one.object, code)), one.expected) << one.name;
}

// A null, camera or light with a key a line.
std::string object(const char* block, const std::vector<std::string>& keys) {
    std::string text = std::string(block) + "\n";
    for (const std::string& key : keys) {
        text += "KEY " + key + "\n";
    }
    return text + "}\n";
}

std::string null_object(const std::vector<std::string>& keys) {
    return object("NULL \"n\" {", keys);
}

// Of 90 degrees: at its target distance of 1000 units, 3.125 units are a pixel of the 640.
std::string camera(const std::vector<std::string>& keys) {
    return object("CAMERA \"c\" {", keys);
}

// A host's curve leaves a held key by 3 (1 - t) t t of a sixth of the next way, at most 2/27 of that way.
const Case kHolds[] = {
    {"a null that holds before it moves",
     null_object({"0 0 0 0 0 0 0", "50 0 0 0 0 0 0", "100 100 0 0 0 0 0"}),
     {"hold-drifts 5:1"}},
    {"a null that holds after it moved",
     null_object({"0 100 0 0 0 0 0", "50 0 0 0 0 0 0", "100 0 0 0 0 0 0"}),
     {"hold-drifts 6:1"}},
    {"a null that never moves", null_object({"0 5 0 0 0 0 0", "50 5 0 0 0 0 0", "100 5 0 0 0 0 0"}), {}},
    {"a null that moves all the time",
     null_object({"0 0 0 0 0 0 0", "50 50 0 0 0 0 0", "100 100 0 0 0 0 0"}),
     {}},
    {"no frame between the equal keys", null_object({"0 0 0 0 0 0 0", "1 0 0 0 0 0 0", "2 9 0 0 0 0 0"}), {}},
    {"one frame between them",
     null_object({"0 0 0 0 0 0 0", "2 0 0 0 0 0 0", "4 9 0 0 0 0 0"}),
     {"hold-drifts 5:1"}},
    {"keys after the last frame",
     null_object({"200 0 0 0 0 0 0", "250 0 0 0 0 0 0", "300 100 0 0 0 0 0"}),
     {}},
    {"keys in another order are taken by their frames",
     null_object({"100 100 0 0 0 0 0", "0 0 0 0 0 0 0", "50 0 0 0 0 0 0"}),
     {"hold-drifts 6:1"}},
    {"of two keys for one frame the last one counts",
     null_object({"0 0 0 0 0 0 0", "50 7 0 0 0 0 0", "50 0 0 0 0 0 0", "100 100 0 0 0 0 0"}),
     {"hold-drifts 5:1"}},
    {"of two keys for one frame the first one does not",
     null_object({"0 0 0 0 0 0 0", "50 0 0 0 0 0 0", "50 50 0 0 0 0 0", "100 100 0 0 0 0 0"}),
     {}},
    {"infinite numbers", null_object({"0 0 0 0 0 0 0", "50 0 0 0 0 0 0", "100 1e99 0 0 0 0 0"}), {}},
    {"frames as far apart as 32 bits allow",
     null_object({"-2147483648 0 0 0 0 0 0", "2147483647 0 0 0 0 0 0"}),
     {}},
    {"a camera that drifts by less than half a pixel",
     camera({"0 0 0 0 0 0 0 90", "50 0 0 0 0 0 0 90", "100 21 0 0 0 0 0 90"}),
     {}},
    {"a camera that drifts by half a pixel",
     camera({"0 0 0 0 0 0 0 90", "50 0 0 0 0 0 0 90", "100 22 0 0 0 0 0 90"}),
     {"hold-drifts 5:1"}},
    {"a camera that stays and turns after a hold",
     camera({"0 0 0 0 0 0 0 90", "50 0 0 0 0 0 0 90", "100 0 0 0 30 0 0 90"}),
     {"hold-drifts 5:1"}},
    {"a spot light that stays and turns after a hold",
     object("LIGHT \"l\" { TYPE SPOT", {"0 0 0 0 0 0 0", "50 0 0 0 0 0 0", "100 0 0 0 30 0 0"}),
     {"hold-drifts 5:1"}},
    {"a light without direction",
     object("LIGHT \"l\" { TYPE OMNI", {"0 0 0 0 0 0 0", "50 0 0 0 0 0 0", "100 0 0 0 30 0 0"}),
     {}},
    {"a null that turns", null_object({"0 0 0 0 0 0 0", "50 0 0 0 0 0 0", "100 0 0 0 30 0 0"}), {}},
};

TEST(MotionCheck, Holds) {
    for (const Case& one : kHolds) {
        expect_places(one, ToolCode::hold_drifts);
    }
}

// A corner of 90 degrees bends the ways beside it by 4/9 of a sixth of the other way. Of a path from (0, 0)
// by (100, 0) to (200, y) the first half is bent by 4/9 y / 6, which is a hundredth of its length from y
// = 27.27 on.
const Case kBends[] = {
    {"a straight way", null_object({"0 0 0 0 0 0 0", "50 100 0 0 0 0 0", "100 200 0 0 0 0 0"}), {}},
    {"a straight way at two speeds",
     null_object({"0 0 0 0 0 0 0", "90 100 0 0 0 0 0", "100 200 0 0 0 0 0"}),
     {}},
    {"only two keys", null_object({"0 0 0 0 0 0 0", "100 100 50 0 0 0 0"}), {}},
    {"a corner",
     null_object({"0 0 0 0 0 0 0", "50 100 0 0 0 0 0", "100 100 100 0 0 0 0"}),
     {"path-bends 5:1"}},
    {"a corner with a key on every frame",
     null_object({"0 0 0 0 0 0 0", "1 100 0 0 0 0 0", "2 100 100 0 0 0 0"}),
     {}},
    {"a path bent by less than a hundredth",
     null_object({"0 0 0 0 0 0 0", "50 100 0 0 0 0 0", "100 200 27 0 0 0 0"}),
     {}},
    {"a path bent by more",
     null_object({"0 0 0 0 0 0 0", "50 100 0 0 0 0 0", "100 200 28 0 0 0 0"}),
     {"path-bends 5:1"}},
    {"a camera bent by half a pixel",
     camera({"0 0 0 0 0 0 0 90", "50 1000 0 0 0 0 0 90", "100 2000 22 0 0 0 0 90"}),
     {"path-bends 5:1"}},
    {"a camera bent by less",
     camera({"0 0 0 0 0 0 0 90", "50 1000 0 0 0 0 0 90", "100 2000 21 0 0 0 0 90"}),
     {}},
    {"a camera without a field of view is measured by its path",
     camera({"0 0 0 0 0 0 0 0", "50 1000 0 0 0 0 0 0", "100 2000 22 0 0 0 0 0"}),
     {}},
    {"infinite numbers", null_object({"0 0 0 0 0 0 0", "50 1e99 0 0 0 0 0", "100 1 1 0 0 0 0"}), {}},
};

TEST(MotionCheck, Bends) {
    for (const Case& one : kBends) {
        expect_places(one, ToolCode::path_bends);
    }
}

TEST(MotionCheck, TextsSayByHowMuch) {
    // 2/27 of 100 units.
    const auto hold =
        warnings_of_code(kMotion + null_object({"0 0 0 0 0 0 0", "50 0 0 0 0 0 0", "100 100 0 0 0 0 0"}),
                         ToolCode::hold_drifts);
    ASSERT_EQ(hold.size(), 1U);
    EXPECT_EQ(
        hold[0].reason,
        "the null holds its position, and After Effects moves it by about 7.41 units between frames 0 and "
        "50");
    EXPECT_EQ(hold[0].within, std::vector<std::string>{"null \"n\""});

    // Between ways of 60 units each: 30 t (1 - t) (1 - 2 t) is at most 30 / (6 sqrt(3)) = 2.887.
    const auto stop = warnings_of_code(
        kMotion + null_object({"0 -60 0 0 0 0 0", "20 0 0 0 0 0 0", "60 0 0 0 0 0 0", "100 60 0 0 0 0 0"}),
        ToolCode::hold_drifts);
    ASSERT_EQ(stop.size(), 1U);
    EXPECT_EQ(stop[0].reason,
              "the null holds its position, and After Effects moves it by about 2.89 units between frames 20 "
              "and 60");

    // 4/9 of a sixth of 100 units, on both sides of the corner.
    const auto bend =
        warnings_of_code(kMotion + null_object({"0 0 0 0 0 0 0", "50 100 0 0 0 0 0", "100 100 100 0 0 0 0"}),
                         ToolCode::path_bends);
    ASSERT_EQ(bend.size(), 1U);
    EXPECT_EQ(bend[0].reason,
              "the path of the null leaves the straight line by about 7.41 units between frames 0 and 50");
    EXPECT_EQ(bend[0].count, 2);

    // The point of interest goes from (0, 0, 1000) to (-500, 0, 866), 517.6 units; 2/27 of them.
    const auto aim =
        warnings_of_code(kMotion + camera({"0 0 0 0 0 0 0 90", "50 0 0 0 0 0 0 90", "100 0 0 0 30 0 0 90"}),
                         ToolCode::hold_drifts);
    ASSERT_EQ(aim.size(), 1U);
    EXPECT_EQ(
        aim[0].reason,
        "the camera holds its point of interest, and After Effects moves it by about 38.3 units between "
        "frames 0 and 50");
}

const Case kEqual[] = {
    {"one key", null_object({"0 1 2 3 4 5 6"}), {}},
    {"two equal keys", null_object({"0 1 2 3 4 5 6", "9 1 2 3 4 5 6"}), {"keys-all-equal 5:1"}},
    {"a position that differs", null_object({"0 1 2 3 4 5 6", "9 1 2 0 4 5 6"}), {}},
    {"an angle that differs", null_object({"0 1 2 3 4 5 6", "9 1 2 3 4 5 0"}), {}},
    {"a field of view that differs", camera({"0 1 2 3 4 5 6 40", "9 1 2 3 4 5 6 41"}), {}},
    {"a target distance that differs", camera({"0 1 2 3 4 5 6 40 9", "9 1 2 3 4 5 6 40"}), {}},
    {"equal keys of a camera", camera({"0 1 2 3 4 5 6 40", "9 1 2 3 4 5 6 40"}), {"keys-all-equal 5:1"}},
    {"two keys for one frame are one", null_object({"0 1 2 3 4 5 6", "0 1 2 3 4 5 6"}), {}},
};

TEST(MotionCheck, EqualKeys) {
    for (const Case& one : kEqual) {
        expect_places(one, ToolCode::keys_all_equal);
    }
}

const Case kViews[] = {
    {"level", camera({"0 0 0 0 30 0 0 40"}), {}},
    {"straight up", camera({"0 0 0 0 0 90 0 40"}), {"aim-undefined 5:1"}},
    {"straight down", camera({"0 0 0 0 0 -90 0 40"}), {"aim-undefined 5:1"}},
    {"straight up after a whole turn", camera({"0 0 0 0 0 450 0 40"}), {"aim-undefined 5:1"}},
    {"straight up as two decimals say it", camera({"0 0 0 0 0 89.99 0 40"}), {"aim-undefined 5:1"}},
    {"steeply up", camera({"0 0 0 0 0 89.98 0 40"}), {}},
    {"upside down", camera({"0 0 0 0 0 91 0 40"}), {"aim-undefined 5:1"}},
    {"the right way up after a turn", camera({"0 0 0 0 0 360 0 40"}), {}},
    {"rolled over, which the orientation carries", camera({"0 0 0 0 0 0 180 40"}), {}},
    {"nowhere", camera({"0 0 0 0 0 0 0 40 0"}), {"aim-undefined 5:1"}},
    {"an infinite pitch", camera({"0 0 0 0 0 1e99 0 40"}), {}},
    {"a light that shines straight down", object("LIGHT \"l\" { TYPE SPOT", {"0 0 0 0 0 -90 0"}), {}},
    {"a null", null_object({"0 0 0 0 0 90 0"}), {}},
    {"up and upside down are told apart",
     camera({"0 0 0 0 0 90 0 40", "1 0 0 0 0 91 0 40"}),
     {"aim-undefined 5:1", "aim-undefined 6:1"}},
};

TEST(MotionCheck, Views) {
    for (const Case& one : kViews) {
        expect_places(one, ToolCode::aim_undefined);
    }
}

const Case kTurns[] = {
    {"less than half a turn", camera({"0 0 0 0 0 0 0 40", "50 0 0 0 179 0 0 40"}), {}},
    {"half a turn", camera({"0 0 0 0 0 0 0 40", "50 0 0 0 180 0 0 40"}), {"turn-too-far 5:1"}},
    {"half a turn back", camera({"0 0 0 0 90 0 0 40", "50 0 0 0 -90 0 0 40"}), {"turn-too-far 5:1"}},
    {"a jump with no frame between", camera({"0 0 0 0 179 0 0 40", "1 0 0 0 -179 0 0 40"}), {}},
    {"half a roll", camera({"0 0 0 0 0 0 0 40", "50 0 0 0 0 0 180 40"}), {"turn-too-far 5:1"}},
    {"half a turn of pitch", camera({"0 0 0 0 0 0 0 40", "50 0 0 0 0 180 0 40"}), {"turn-too-far 5:1"}},
    {"a parallel light",
     object("LIGHT \"l\" { TYPE PAR", {"0 0 0 0 0 0 0", "50 0 0 0 200 0 0"}),
     {"turn-too-far 5:1"}},
    {"a light that rolls", object("LIGHT \"l\" { TYPE PAR", {"0 0 0 0 0 0 0", "50 0 0 0 0 0 200"}), {}},
    {"a light without direction", object("LIGHT \"l\" {", {"0 0 0 0 0 0 0", "50 0 0 0 200 0 0"}), {}},
    {"a null, whose angles keep their turns", null_object({"0 0 0 0 0 0 0", "50 0 0 0 900 0 0"}), {}},
    {"an infinite turn", camera({"0 0 0 0 0 0 0 40", "50 0 0 0 1e99 0 0 40"}), {}},
};

TEST(MotionCheck, Turns) {
    for (const Case& one : kTurns) {
        expect_places(one, ToolCode::turn_too_far);
    }
    const auto turns =
        warnings_of_code(kMotion + camera({"0 0 0 0 0 0 0 40", "40 0 0 0 200 0 0 40", "90 0 0 0 -70 0 0 40"}),
                         ToolCode::turn_too_far);
    ASSERT_EQ(turns.size(), 1U);
    EXPECT_EQ(turns[0].reason, "the heading turns by 270 degrees between frames 40 and 90");
    EXPECT_EQ(turns[0].count, 2);
}

const Case kRolls[] = {
    {"on and on", camera({"0 0 0 0 0 0 0 40", "50 0 0 0 0 0 30 40", "100 0 0 0 0 0 40 40"}), {}},
    {"on and back",
     camera({"0 0 0 0 0 0 0 40", "50 0 0 0 0 0 30 40", "100 0 0 0 0 0 10 40"}),
     {"roll-reverses 6:1"}},
    {"on and held", camera({"0 0 0 0 0 0 0 40", "50 0 0 0 0 0 30 40", "100 0 0 0 0 0 30 40"}), {}},
    {"a degree",
     camera({"0 0 0 0 0 0 0 40", "50 0 0 0 0 0 1 40", "100 0 0 0 0 0 0 40"}),
     {"roll-reverses 6:1"}},
    {"less than a degree", camera({"0 0 0 0 0 0 0 40", "50 0 0 0 0 0 0.9 40", "100 0 0 0 0 0 0 40"}), {}},
    {"a key on every frame", camera({"0 0 0 0 0 0 0 40", "1 0 0 0 0 0 30 40", "2 0 0 0 0 0 10 40"}), {}},
    {"frames on one side",
     camera({"0 0 0 0 0 0 0 40", "1 0 0 0 0 0 30 40", "9 0 0 0 0 0 10 40"}),
     {"roll-reverses 6:1"}},
    {"a light",
     object("LIGHT \"l\" { TYPE SPOT", {"0 0 0 0 0 0 0", "50 0 0 0 0 0 30", "100 0 0 0 0 0 10"}),
     {}},
    {"a null", null_object({"0 0 0 0 0 0 0", "50 0 0 0 0 0 30", "100 0 0 0 0 0 10"}), {}},
};

TEST(MotionCheck, Rolls) {
    for (const Case& one : kRolls) {
        expect_places(one, ToolCode::roll_reverses);
    }
}

TEST(MotionCheck, AKeyThatWasNotReadToItsEndIsNotLookedAt) {
    EXPECT_EQ(
        places_of(warnings_of_code(
            kMotion + "CAMERA \"c\" {\nKEY 0 0 0 0 0 -90 0 40\nKEY 1 0 0 0 0 0 0 40\nKEY 2 0 0 0 0 90 x",
            ToolCode::aim_undefined)),
        Places{"aim-undefined 5:1"});
    EXPECT_EQ(places_of(warnings_of_code(kMotion + "CAMERA \"c\" {\nKEY 0 0 0 0 0 0 0 40\nKEY 1 0 0 0 0 90 x",
                                         ToolCode::aim_undefined)),
              Places{});
}

}  // namespace
