#include <algorithm>
#include <cstddef>
#include <iterator>
#include <set>
#include <string>

#include "cli/report/diagnostic_text.h"
#include "cli/scene/key_track.h"
#include "cli/scene/motion_check.h"
#include "cli/scene/scene_check.h"

namespace cli {
namespace {

A_long frame_of(const SceneBlock& object, std::size_t key) {
    return object.object->keys[key]->frame;
}

// Whether frames rise within the range, as those of most objects do; then there is nothing to check.
bool rise_in_range(const SceneBlock& object, const tagProjectSettings& settings) {
    const std::size_t count = key_count(object);
    if (count == 0) {
        return true;
    }
    for (std::size_t i = 1; i < count; ++i) {
        if (frame_of(object, i) <= frame_of(object, i - 1)) {
            return false;
        }
    }
    return frame_of(object, 0) >= settings.from && frame_of(object, count - 1) <= settings.to;
}

void check_frames(const SceneBlock& object, const tagProjectSettings& settings, WarningList& warnings) {
    if (rise_in_range(object, settings)) {
        return;
    }
    FaultyKeys outside;
    FaultyKeys disordered;
    FaultyKeys repeated;
    // Most tracks only rise, so the set of frames is built at the first key that does not.
    std::set<A_long> seen;
    bool rising = true;
    for (std::size_t i = 0; i < key_count(object); ++i) {
        const SceneKey& key = object.keys[i];
        const A_long frame = frame_of(object, i);
        if (frame < settings.from || frame > settings.to) {
            outside.add(key, frame);
        }
        const bool falls = i > 0 && frame < frame_of(object, i - 1);
        if (rising && i > 0 && frame <= frame_of(object, i - 1)) {
            rising = false;
            for (std::size_t before = 0; before < i; ++before) {
                seen.insert(frame_of(object, before));
            }
        }
        if (!rising && !seen.insert(frame).second) {
            repeated.add(key, frame);
        } else if (falls) {
            disordered.add(key, frame);
        }
    }
    const std::string range =
        "FROM " + std::to_string(settings.from) + " to TO " + std::to_string(settings.to);
    outside.report(warnings, ToolCode::key_outside_range, "keys outside " + range,
                   "they are still set, before or after the visible part of the layer", object);
    disordered.report(warnings, ToolCode::key_out_of_order, "keys that go back in time",
                      "After Effects sorts keys by their time", object);
    repeated.report(warnings, ToolCode::key_repeated, "more than one key for one frame",
                    "the last one written wins", object);
}

void check_fields_of_view(const SceneBlock& camera, WarningList& warnings) {
    constexpr int kNumbersWithFieldOfView = 8;
    FaultyKeys zero;
    FaultyKeys impossible;
    for (std::size_t i = 0; i < key_count(camera); ++i) {
        const SceneKey& key = camera.keys[i];
        if (key.numbers_read < kNumbersWithFieldOfView) {
            continue;
        }
        const tagKeyFrame& record = *camera.object->keys[i];
        if (record.fov == 0) {
            zero.add(key, record.frame);
        } else if (record.fov < 0 || record.fov >= 180) {
            impossible.add(key, record.frame);
        }
    }
    zero.report(warnings, ToolCode::field_of_view, "a field of view of 0",
                "the camera's zoom becomes infinite", camera);
    impossible.report(warnings, ToolCode::field_of_view, "a field of view that is not between 0 and 180",
                      "the camera's zoom becomes negative or unrelated to the angle", camera);
}

// Nothing is lost, but a thousand keys say what one would.
void check_equality(const SceneBlock& object, const KeyTrack& keys, WarningList& warnings) {
    const auto same = [&](const tagKeyFrame& a, const tagKeyFrame& b) {
        return std::equal(std::begin(a.position), std::end(a.position), std::begin(b.position)) &&
               std::equal(std::begin(a.rotation), std::end(a.rotation), std::begin(b.rotation)) &&
               a.targetDistance == b.targetDistance && (object.kind != BlockKind::camera || a.fov == b.fov);
    };
    for (std::size_t i = 1; i < keys.size(); ++i) {
        if (!same(keys[i], keys[0])) {
            return;
        }
    }
    if (keys.size() > 1) {
        const auto count = static_cast<std::int64_t>(keys.size());
        warnings
            .add(ToolCode::keys_all_equal, keys.written(0).at(),
                 "all " + grouped(count) + " keys of the object are equal", object.within)
            .count = count;
    }
}

}  // namespace

void check_keys(const SceneReading& reading, WarningList& warnings) {
    for (const SceneBlock& object : reading.facts.objects) {
        check_frames(object, *reading.settings, warnings);
        const KeyTrack keys(object);
        check_equality(object, keys, warnings);
        check_path(object, keys, *reading.settings, warnings);
        check_aim(object, keys, warnings);
        if (object.kind == BlockKind::camera) {
            check_fields_of_view(object, warnings);
        }
    }
}

}  // namespace cli
