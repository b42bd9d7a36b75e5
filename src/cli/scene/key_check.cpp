#include <algorithm>
#include <cstddef>
#include <set>
#include <string>

#include "cli/scene/scene_check.h"

namespace cli {
namespace {

// The keys of one object that have the same fault.
struct Offenders {
    const SceneKey* first = nullptr;
    std::string frames;  ///< "9, 12, 15 and 3 more"
    std::int64_t count = 0;

    void add(const SceneKey& key, A_long frame) {
        constexpr std::int64_t kShown = 8;
        if (++count == 1) {
            first = &key;
        }
        if (count <= kShown) {
            frames += (count == 1 ? "" : ", ") + std::to_string(frame);
        }
        shown = std::min(count, kShown);
    }
    [[nodiscard]] std::string list() const {
        return (count == 1 ? "frame " : "frames ") + frames +
               (count > shown ? " and " + std::to_string(count - shown) + " more" : "");
    }

  private:
    std::int64_t shown = 0;
};

void report(WarningList& warnings, ToolCode code, const Offenders& keys, const std::string& reason,
            const std::string& effect, const SceneBlock& object) {
    if (keys.count > 0) {
        Diagnostic& warning =
            warnings.add(code, keys.first->at(), reason + ": " + keys.list(), object.within);
        warning.effects.push_back(effect);
        warning.count = keys.count;
    }
}

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
    Offenders outside;
    Offenders disordered;
    Offenders repeated;
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
    report(warnings, ToolCode::key_outside_range, outside, "keys outside " + range,
           "they are still set, before or after the visible part of the layer", object);
    report(warnings, ToolCode::key_out_of_order, disordered, "keys that go back in time",
           "After Effects sorts keys by their time", object);
    report(warnings, ToolCode::key_repeated, repeated, "more than one key for one frame",
           "the last one written wins", object);
}

void check_fields_of_view(const SceneBlock& camera, WarningList& warnings) {
    constexpr int kNumbersWithFieldOfView = 8;
    Offenders zero;
    Offenders impossible;
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
    report(warnings, ToolCode::field_of_view, zero, "a field of view of 0",
           "the camera's zoom becomes infinite", camera);
    report(warnings, ToolCode::field_of_view, impossible, "a field of view that is not between 0 and 180",
           "the camera's zoom becomes negative or unrelated to the angle", camera);
}

}  // namespace

void check_keys(const SceneReading& reading, WarningList& warnings) {
    for (const SceneBlock& object : reading.facts.objects) {
        check_frames(object, *reading.settings, warnings);
        if (object.kind == BlockKind::camera) {
            check_fields_of_view(object, warnings);
        }
    }
}

}  // namespace cli
