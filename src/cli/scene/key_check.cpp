#include <algorithm>
#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "cli/scene/scene_check.h"
#include "cli/scene/written_number.h"

namespace cli {
namespace {

// Keys of one object that have a fault in common.
struct Offenders {
    const SceneKey* first = nullptr;
    std::string frames;  ///< "9, 12, 15 and 3 more"
    std::int64_t count = 0;

    void add(const SceneKey& key) {
        constexpr std::int64_t kShown = 8;
        if (++count == 1) {
            first = &key;
        }
        if (count <= kShown) {
            frames += (count == 1 ? "" : ", ") + std::to_string(key.frame);
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

// Frames that rise within the range, as those of most objects do: there is nothing to say about them.
bool rise_in_range(const std::vector<SceneKey>& keys, const SceneNumbers& numbers) {
    const auto not_rising = [](const SceneKey& one, const SceneKey& next) { return next.frame <= one.frame; };
    return keys.empty() || (keys.front().frame >= numbers.from && keys.back().frame <= numbers.to &&
                            std::adjacent_find(keys.begin(), keys.end(), not_rising) == keys.end());
}

void check_frames(const SceneBlock& object, const SceneNumbers& numbers, WarningList& warnings) {
    if (rise_in_range(object.keys, numbers)) {
        return;
    }
    Offenders outside;
    Offenders disordered;
    Offenders repeated;
    // Most tracks only rise: the set of frames is made at the first key that does not.
    std::set<std::int64_t> seen;
    bool rising = true;
    for (std::size_t i = 0; i < object.keys.size(); ++i) {
        const SceneKey& key = object.keys[i];
        if (key.frame < numbers.from || key.frame > numbers.to) {
            outside.add(key);
        }
        const bool falls = i > 0 && key.frame < object.keys[i - 1].frame;
        if (rising && i > 0 && key.frame <= object.keys[i - 1].frame) {
            rising = false;
            for (std::size_t before = 0; before < i; ++before) {
                seen.insert(object.keys[before].frame);
            }
        }
        if (!rising && !seen.insert(key.frame).second) {
            repeated.add(key);
        } else if (falls) {
            disordered.add(key);
        }
    }
    const std::string range = "FROM " + std::to_string(numbers.from) + " to TO " + std::to_string(numbers.to);
    report(warnings, ToolCode::key_outside_range, outside, "keys outside " + range,
           "they are set all the same, before or behind what the layer shows", object);
    report(warnings, ToolCode::key_out_of_order, disordered, "keys that go back in time",
           "the host puts keys in the order of their time", object);
    report(warnings, ToolCode::key_repeated, repeated, "more than one key for one frame",
           "the one written last stays", object);
}

void check_fields_of_view(const SceneBlock& object, WarningList& warnings) {
    Offenders zero;
    Offenders impossible;
    for (const SceneKey& key : object.keys) {
        if (!key.field_of_view) {
            continue;
        }
        if (*key.field_of_view == 0) {
            zero.add(key);
        } else if (*key.field_of_view < 0 || *key.field_of_view >= 180) {
            impossible.add(key);
        }
    }
    report(warnings, ToolCode::field_of_view, zero, "a field of view of 0",
           "the camera's zoom becomes infinite", object);
    report(warnings, ToolCode::field_of_view, impossible, "a field of view that is not between 0 and 180",
           "the camera's zoom becomes negative, or has nothing to do with the angle", object);
}

}  // namespace

void check_keys(const SceneReading& reading, WarningList& warnings) {
    for (const SceneBlock& object : reading.facts.objects) {
        check_frames(object, reading.numbers, warnings);
        check_fields_of_view(object, warnings);
    }
}

}  // namespace cli
