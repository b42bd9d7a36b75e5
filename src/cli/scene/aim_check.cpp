#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

#include "cli/scene/motion_check.h"
#include "cli/scene/scene_geometry.h"
#include "cli/scene/written_number.h"
#include "composition/build/host_values.h"

namespace cli {
namespace {

// Exporters write angles with two or three decimals, so 89.99 degrees may mean straight up, and 89.98 do not.
constexpr double kVertical_degrees = 0.015;

// Between two keys a point of interest takes the straight way, and the orientation the shorter one. From half
// a turn on that is not the way of the scene.
constexpr double kHalfTurn_degrees = 180;

// A roll of a degree on both sides of its turning point goes on past its key by at most 2/27 of a degree,
// which moves the corner of a picture of 720 x 576 by half a pixel.
constexpr double kVisibleRoll_degrees = 1;

constexpr std::size_t kHeading = 0;
constexpr std::size_t kPitch = 1;
constexpr std::size_t kBank = 2;

void check_views(const SceneBlock& camera, const KeyTrack& keys, WarningList& warnings) {
    const double vertical = std::sin(radians_from_degrees(kVertical_degrees));
    FaultyKeys upright;
    FaultyKeys over;
    FaultyKeys aimless;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const tagKeyFrame& key = keys[i];
        // Of an infinite pitch this is no number, and no comparison is true.
        const double level = std::cos(radians_from_degrees(double{key.rotation[kPitch]}));
        if (key.targetDistance == 0) {
            aimless.add(keys.written(i), key.frame);
        } else if (std::abs(level) <= vertical) {
            upright.add(keys.written(i), key.frame);
        } else if (level < 0) {
            over.add(keys.written(i), key.frame);
        }
    }
    upright.report(
        warnings, ToolCode::aim_undefined, "a camera that looks straight up or down",
        "its point of interest no longer tells its heading, so its picture may be turned by any angle",
        camera);
    over.report(
        warnings, ToolCode::aim_undefined, "a camera that is upside down, by a pitch beyond 90 degrees",
        "aimed at its point of interest it stays upright, so its picture is turned by 180 degrees", camera);
    aimless.report(warnings, ToolCode::aim_undefined, "a camera with a target distance of 0",
                   "its point of interest is at the camera itself, so it looks anywhere", camera);
}

// A turn in one of the three angles from one key to the next.
struct Turn {
    double degrees = 0;
    std::size_t at = 0;  ///< the key before it
    std::int64_t count = 0;
};

void check_turns(const SceneBlock& object, const KeyTrack& keys, WarningList& warnings) {
    constexpr std::array<const char*, 3> kAngles = {"heading", "pitch", "bank"};
    // A light does not look different when it rolls.
    const std::size_t angles = object.kind == BlockKind::camera ? 3 : 2;
    for (std::size_t angle = kHeading; angle < angles; ++angle) {
        Turn worst;
        for (std::size_t i = 0; i + 1 < keys.size(); ++i) {
            const double turn =
                std::abs(double{keys[i + 1].rotation[angle]} - double{keys[i].rotation[angle]});
            if (turn >= kHalfTurn_degrees && std::isfinite(turn) && keys.has_frames_after(i)) {
                ++worst.count;
                if (turn > worst.degrees) {
                    worst.degrees = turn;
                    worst.at = i;
                }
            }
        }
        if (worst.count > 0) {
            Diagnostic& warning = warnings.add(ToolCode::turn_too_far, keys.written(worst.at).at(),
                                               std::string("the ") + kAngles[angle] + " turns by " +
                                                   measured_text(worst.degrees) + " degrees between frames " +
                                                   std::to_string(keys[worst.at].frame) + " and " +
                                                   std::to_string(keys[worst.at + 1].frame),
                                               object.within);
            warning.count = worst.count;
            warning.effects.insert(
                warning.effects.begin(),
                angle == kBank ? "After Effects rolls the shorter way"
                               : "After Effects moves the point of interest the straight way instead");
        }
    }
}

void check_roll(const SceneBlock& camera, const KeyTrack& keys, WarningList& warnings) {
    FaultyKeys turning;
    for (std::size_t i = 1; i + 1 < keys.size(); ++i) {
        if (!keys.has_frames_after(i - 1) && !keys.has_frames_after(i)) {
            continue;
        }
        const double before = double{keys[i].rotation[kBank]} - double{keys[i - 1].rotation[kBank]};
        const double after = double{keys[i + 1].rotation[kBank]} - double{keys[i].rotation[kBank]};
        if (before * after < 0 && std::min(std::abs(before), std::abs(after)) >= kVisibleRoll_degrees) {
            turning.add(keys.written(i), keys[i].frame);
        }
    }
    turning.report(warnings, ToolCode::roll_reverses, "a roll that changes its direction",
                   "After Effects bends the orientation between keys, so the camera may roll on past its key "
                   "before it turns back",
                   camera);
}

}  // namespace

void check_aim(const SceneBlock& object, const KeyTrack& keys, WarningList& warnings) {
    if (!is_aimed(object)) {
        return;
    }
    check_turns(object, keys, warnings);
    if (object.kind == BlockKind::camera) {
        check_views(object, keys, warnings);
        check_roll(object, keys, warnings);
    }
}

}  // namespace cli
