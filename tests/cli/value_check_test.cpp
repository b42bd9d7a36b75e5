#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "cli/scene/written_number.h"
#include "scene_places.h"

namespace {

using cli::Diagnostic;
using cli::ToolCode;

// The first effect of the only changed value.
std::string effect_of(const std::string& text) {
    const std::vector<Diagnostic> warnings = warnings_of_code(text, ToolCode::value_changed);
    if (warnings.size() != 1 || warnings[0].effects.empty()) {
        return std::to_string(warnings.size()) + " warnings";
    }
    return warnings[0].effects[0];
}

struct EffectCase {
    const char* name;
    std::string text;
    const char* effect;
};

const std::string kRest = " COMPOSITION NRM \"M\" { }\n";

// Worked out by hand; 100 (1 - 29 / 29.97) = 3.2366 frames, 240 (1 - 23 / 23.976) = 9.7698 frames.
const EffectCase kEffects[] = {
    {"a hundred frames at the rate of NTSC", kHead + "RANGE 100 FPS 29.97" + kRest,
     "100 frames of a composition last 3.45 s at 29 frames a second; a clip of 100 frames at 29.97 ends 3.24 "
     "frames early"},
    {"the length after the rate counts too", kHead + "FPS 23.976 RANGE 240" + kRest,
     "240 frames of a composition last 10.4 s at 23 frames a second; a clip of 240 frames at 23.976 ends "
     "9.77 "
     "frames early"},
    {"a rate that is no number", kHead + "FPS 25.0.0" + kRest,
     "8 frames of a composition last 0.32 s at 25 frames a second"},
    {"a width with a fraction", kHead + "RESOLUTION 640.5 360" + kRest,
     "every composition and placeholder is 640 pixels wide"},
    {"a height with a fraction", kHead + "RESOLUTION 640 360.5" + kRest,
     "every composition and placeholder is 360 pixels high"},
    {"a length with a fraction", kHead + "RANGE 8.5" + kRest, "every composition has 8 frames"},
    {"a first frame with a fraction", kHead + "FROM 1.5" + kRest,
     "layers begin with frame 1 of the scene, and keys move with it"},
    {"a last frame with a fraction", kHead + "TO 7.5" + kRest, "layers last 7 frames, up to frame 7"},
    {"a pixel aspect that is two numbers", kHead + "ASPECT 1.2.3" + kRest,
     "compositions and footage get the pixel aspect 1.2"},
    {"the frame of a key with a fraction", kScene + "NULL \"n\" { KEY 1.5 0 0 0 0 0 0 }",
     "the key is set at frame 1, which is 0.5 frames early"},
    {"the frame of a key with a fraction before zero", kScene + "NULL \"n\" { KEY -1.5 0 0 0 0 0 0 }",
     "the key is set at frame -1, which is 0.5 frames late"},
    {"a position that is two numbers", kScene + "NULL \"n\" { KEY 1 0 1.2.3 0 0 0 0 }",
     "y of the position at this key is 1.2 in After Effects"},
    {"a position beyond single precision", kScene + "NULL \"n\" { KEY 1 0 0 1e99 0 0 0 }",
     "z of the position at this key becomes infinite, which After Effects cannot show"},
    {"an angle that is two numbers", kScene + "NULL \"n\" { KEY 1 0 0 0 0 0 1.2.3 }",
     "the third angle at this key is 1.2 in After Effects"},
    {"a target distance that is two numbers", kScene + "CAMERA \"c\" { KEY 1 0 0 0 0 0 0 40 7.5.1 }",
     "the target distance at this key is 7.5 in After Effects"},
    {"a colour that is two numbers", kScene + "LIGHT \"l\" { COLOR 1 1 0.5.5 }",
     "the blue of the light is 0.5 in After Effects"},
    {"an intensity that is two numbers", kScene + "LIGHT \"l\" { INTENSITY 0.5.5 }",
     "the intensity of the light in per cent is 50 in After Effects"},
    {"a cone angle, which is not sent", kScene + "LIGHT \"l\" { ANGLE 30.5.5 }",
     "nothing differs, because no cone angle reaches After Effects"},
};

TEST(ValueCheck, EveryChangedValueSaysWhatDiffers) {
    for (const EffectCase& one : kEffects) {
        EXPECT_EQ(effect_of(one.text), one.effect) << one.name;
    }
}

TEST(ValueCheck, OtherNumbersOfTheBlockAreCounted) {
    const std::vector<Diagnostic> warnings = warnings_of_code(
        kScene + "NULL \"n\" { KEY 1.5 0 0 0 0 0 0\n KEY 2.5 0 0 0 0 0 0 }", ToolCode::value_changed);
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_EQ(warnings[0].count, 2);
    EXPECT_EQ(warnings[0].effects,
              (std::vector<std::string>{"the key is set at frame 1, which is 0.5 frames early",
                                        "in this block 2 numbers after KEY are changed; this is the first"}));
}

TEST(ValueCheck, MeasuredNumbers) {
    struct Case {
        double value;
        const char* text;
    };
    const Case cases[] = {{0, "0"}, {0.01234, "0.0123"}, {12.3456, "12.3"}, {999, "999"}, {1234.5, "1234"}};
    for (const Case& one : cases) {
        EXPECT_EQ(cli::measured_text(one.value), one.text);
    }
    EXPECT_EQ(cli::measured_text(std::numeric_limits<double>::max()).size(), 309U);
}

struct RangeCase {
    const char* name;
    std::string text;
    Places expected;
};

// 3 hours at 25 frames a second are 270,000 frames.
const RangeCase kRanges[] = {
    {"the smallest size", kHead + "RESOLUTION 4 4" + kRest, {}},
    {"a width below it", kHead + "RESOLUTION 3 4" + kRest, {"outside-host-range 3:19"}},
    {"a height below it", kHead + "RESOLUTION 4 3" + kRest, {"outside-host-range 3:21"}},
    {"the largest size", kHead + "RESOLUTION 30000 30000" + kRest, {}},
    {"both sides beyond it",
     kHead + "RESOLUTION 30001 30001" + kRest,
     {"outside-host-range 3:19", "outside-host-range 3:25"}},
    {"the highest rate", kHead + "FPS 99" + kRest, {}},
    {"a rate above it", kHead + "FPS 100" + kRest, {"outside-host-range 3:12"}},
    {"three hours", kHead + "RANGE 270000" + kRest, {}},
    {"a frame more", kHead + "RANGE 270001" + kRest, {"outside-host-range 3:14"}},
    {"layers of three hours", kHead + "TO 270000" + kRest, {}},
    {"layers of a frame more", kHead + "TO 270001" + kRest, {"outside-host-range 3:11"}},
    {"layers as long as their composition are told once",
     kHead + "TO 270001 RANGE 270001" + kRest,
     {"outside-host-range 3:24"}},
    {"the largest numbers of 32 bits at once",
     kHead + "TO 2147483647 RANGE 2147483647 FPS 2147483647 RESOLUTION 2147483647 2147483647" + kRest,
     {"outside-host-range 3:43", "outside-host-range 3:65", "outside-host-range 3:76"}},
    {"a size of nothing is refused, and that says it", kHead + "RESOLUTION 0 4" + kRest, {}},
    {"a setting that was not reached",
     "VORTAN XR COMPOSITION FPS 100 RESOLUTION x",
     {"outside-host-range 1:27"}},
};

TEST(ValueCheck, WhatAfterEffectsCannotHold) {
    for (const RangeCase& one : kRanges) {
        EXPECT_EQ(places_of(warnings_of_code(one.text, ToolCode::outside_host_range)), one.expected)
            << one.name;
    }
}

TEST(ValueCheck, LimitsAreNamed) {
    const auto reason = [](const std::string& settings) {
        const auto warnings = warnings_of_code(kHead + settings + kRest, ToolCode::outside_host_range);
        return warnings.empty() ? std::string() : warnings[0].reason;
    };
    EXPECT_EQ(reason("RESOLUTION 40000 4"),
              "a width of 40,000 pixels is outside the 4 to 30,000 of After Effects");
    EXPECT_EQ(reason("FPS 120"), "120 frames a second are more than the 99 of After Effects");
    EXPECT_EQ(
        reason("RANGE 300000"),
        "compositions of 300,000 frames, 12,000 seconds, are longer than the 10,800 seconds (3 hours) of "
        "After Effects");
}

}  // namespace
