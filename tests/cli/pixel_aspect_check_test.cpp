#include <gtest/gtest.h>

#include <string>

#include "scene_places.h"

namespace {

using cli::ToolCode;

// A scene of these settings with a camera that has this one key.
std::string scene(const std::string& settings, const std::string& key) {
    return "VORTAN XR COMPOSITION\nFROM 0 TO 9 RANGE 10 FPS 25\n" + settings +
           "\nCOMPOSITION NRM \"M\" { }\nCAMERA \"c\" {\nKEY 0 " + key + "\n}\n";
}

std::string reason(const std::string& settings, const std::string& key) {
    const auto warnings = warnings_of_code(scene(settings, key), ToolCode::aspect_turns_camera);
    return warnings.size() == 1 ? warnings[0].reason : std::to_string(warnings.size()) + " warnings";
}

std::string off_by(const std::string& aspect, const std::string& shift) {
    return "a turned camera among pixels of aspect " + aspect +
           ": at frame 0 the corners of the picture can be off by " + shift;
}

struct Case {
    const char* name;
    std::string settings;
    std::string key;
    std::string expected;  ///< the reason, or "0 warnings"
};

const std::string kDouble = "RESOLUTION 640 360 ASPECT 2";
const std::string kPal = "RESOLUTION 720 576 ASPECT 1.0667";
const std::string kNone = "0 warnings";

// With W, H and aspect a, a corner is at (W/2, H/2) from the middle. Stretched along x by a, the space shows
// it
// - for a heading of 90 degrees, when x is the depth, at (W/2 / a / a, H/2 / a): (80, 90) instead of (320,
// 180);
// - for a bank of 90 degrees, when x is the picture's height, at (W/2 / a, H/2 a): (160, 360).
// - for a heading of h, with e = tan(v/2), t = e H / (W a), c = int(100 a) / 100 and k = atan(c tan(h)), the
// corner
//   (X, Y) = (-e, t) has x = c (X cos h - sin h), z = X sin h + cos h, depth d = z cos k - x sin k, and is
//   shown at
//   ((x cos k + z sin k) / d / c, a Y / d) W/2 / e. For h = 30 and v = 45 degrees a short Python program
//   gives a distance of 20.872 for PAL; for the aspect 1.5 it gives 0.4998 at 0.15 and 0.5332 at 0.16
//   degrees.
const Case kCases[] = {
    {"a quarter of a turn", kDouble, "0 0 0 90 0 0 45", off_by("2", "up to 256 pixels")},
    {"a quarter of a turn to the other side", kDouble, "0 0 0 -90 0 0 45", off_by("2", "up to 256 pixels")},
    {"a quarter of a turn with another field of view", kDouble, "0 0 0 90 0 0 20",
     off_by("2", "up to 256 pixels")},
    {"wherever it stands", kDouble, "9 -8 7 90 0 0 45 33", off_by("2", "up to 256 pixels")},
    {"a quarter of a roll", kDouble, "0 0 0 0 0 90 45", off_by("2", "up to 241 pixels")},
    {"thirty degrees in PAL, whose aspect is cut to 1.06", kPal, "0 0 0 30 0 0 45",
     off_by("1.06", "up to 20.9 pixels")},
    {"looking straight ahead", kDouble, "0 0 0 0 0 0 45", kNone},
    {"looking straight back", kDouble, "0 0 0 180 0 0 45", kNone},
    {"pitch alone, which has nothing to do with x", kDouble, "0 0 0 0 40 0 45", kNone},
    {"square pixels", "RESOLUTION 640 360 ASPECT 1", "0 0 0 30 0 0 45", kNone},
    {"an aspect that is cut to square pixels", "RESOLUTION 640 360 ASPECT 1.009", "0 0 0 90 0 0 45", kNone},
    {"no field of view", kDouble, "0 0 0 90 0 0 0", kNone},
    {"an infinite heading", kDouble, "0 0 0 1e99 0 0 45", kNone},
    {"an infinite pitch", kDouble, "0 0 0 30 1e99 0 45", kNone},
};

TEST(PixelAspectCheck, Shifts) {
    for (const Case& one : kCases) {
        EXPECT_EQ(reason(one.settings, one.key), one.expected) << one.name;
    }
}

TEST(PixelAspectCheck, HalfAPixelIsSeen) {
    const std::string settings = "RESOLUTION 640 360 ASPECT 1.5";
    EXPECT_EQ(reason(settings, "0 0 0 0.15 0 0 45"), kNone);
    EXPECT_EQ(reason(settings, "0 0 0 0.16 0 0 45"), off_by("1.5", "up to 0.533 pixels"));
}

TEST(PixelAspectCheck, CornersBehindTheCameraAreBeyondAnyNumber) {
    EXPECT_EQ(reason("RESOLUTION 640 360 ASPECT 100", "0 0 0 60 0 0 120"),
              off_by("100", "more than the width of the picture"));
}

TEST(PixelAspectCheck, TheLargestOfAllKeysIsNamed) {
    const auto warnings =
        warnings_of_code(scene(kDouble, "0 0 0 0 0 0 45\nKEY 3 0 0 0 90 0 0 45\nKEY 9 0 0 0 10 0 0 45"),
                         ToolCode::aspect_turns_camera);
    ASSERT_EQ(places_of(warnings), Places{"aspect-turns-camera 7:1"});
    EXPECT_EQ(warnings[0].count, 2);
    EXPECT_EQ(
        warnings[0].reason,
        "a turned camera among pixels of aspect 2: at frame 3 the corners of the picture can be off by up "
        "to 256 pixels");
    ASSERT_EQ(warnings[0].effects.size(), 2U);
    EXPECT_EQ(warnings[0].effects[1],
              "right in either case: square pixels for \"Camera+Light\", and a scale of 200 % by 200 % for "
              "its layer");
}

// 720 pixels of 1.0667 are 768.0 square ones wide, of 1.06 they are 763.2.
TEST(PixelAspectCheck, ACutAspectSaysHowMuchNarrowerThePictureIs) {
    const auto warnings = warnings_of_code(scene(kPal, "0 0 0 0 0 0 45"), ToolCode::aspect_cut);
    ASSERT_EQ(warnings.size(), 1U);
    ASSERT_FALSE(warnings[0].effects.empty());
    EXPECT_EQ(warnings[0].effects[0],
              "with square pixels the picture is shown 763 pixels wide instead of 768, which is 2.41 pixels "
              "less on each side");
}

}  // namespace
