#include "cli/project/import_outcome.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <utility>

#include "composition/build/host_values.h"

namespace cli {
namespace {

using embedded::Layer;
using embedded::LayerKind;

LayerKind layer_kind(BlockKind kind) {
    switch (kind) {
        case BlockKind::camera:
            return LayerKind::camera;
        case BlockKind::light:
            return LayerKind::light;
        case BlockKind::composition:
        case BlockKind::null_object:
            break;
    }
    return LayerKind::null;
}

// A host keeps one key per time.
std::size_t expected_keys(const SceneBlock& object, std::int64_t from) {
    std::set<A_long> times;
    for (std::size_t i = 0; i < key_count(object); ++i) {
        times.insert(clamp_to_long(object.object->keys[i]->frame - from));
    }
    return times.size();
}

std::string whole(const SceneBlock& object) {
    return object.within.empty() ? "an object" : object.within.back();
}

// The stream that the plug-in writes last on a layer of this kind.
bool is_finished(const Layer& layer, const SceneBlock& object, std::int64_t from) {
    const std::size_t keys = expected_keys(object, from);
    const auto stream = [&](AEGP_LayerStream kind) -> const embedded::Stream* {
        const auto found = layer.streams.find(kind);
        return found == layer.streams.end() ? nullptr : &found->second;
    };
    const auto keyed = [&](AEGP_LayerStream kind) {
        return stream(kind) != nullptr && stream(kind)->keyframes.size() == keys;
    };
    switch (object.kind) {
        case BlockKind::camera:
            return keyed(kLayerStreamPosition) && keyed(kLayerStreamZoom);
        case BlockKind::light: {
            const embedded::Stream* const shadows = stream(kLayerStreamCastsShadows);
            return keyed(kLayerStreamPosition) && shadows != nullptr && shadows->value_set;
        }
        case BlockKind::composition:
        case BlockKind::null_object:
            break;
    }
    return keyed(kLayerStreamPosition);
}

void compare_objects(const SceneReading& reading, const embedded::Project& project,
                     std::vector<std::string>& missing) {
    // Objects are added newest first, each as the next layer of its kind.
    std::map<LayerKind, std::vector<const Layer*>> layers;
    for (const Layer& layer : project.layers) {
        layers[layer.kind].push_back(&layer);
    }
    std::map<LayerKind, std::size_t> used;
    for (auto object = reading.facts.objects.rbegin(); object != reading.facts.objects.rend(); ++object) {
        const LayerKind kind = layer_kind(object->kind);
        const std::vector<const Layer*>& made = layers[kind];
        const std::size_t index = used[kind]++;
        if (index >= made.size()) {
            missing.push_back(whole(*object) + " is missing");
        } else if (!is_finished(*made[index], *object, reading.settings->from)) {
            missing.push_back(whole(*object) + " is not finished");
        }
    }
}

}  // namespace

bool gets_scene_objects(A_long major, A_long minor) {
    return major > 9 || (major == 9 && minor >= 32);
}

std::vector<std::string> missing_in_project(const SceneReading& reading, const embedded::Project& project,
                                            bool objects_wanted) {
    const SceneFacts& facts = reading.facts;
    std::vector<std::string> missing;
    if (project.compositions.size() < facts.compositions.size()) {
        missing.push_back(std::to_string(facts.compositions.size() - project.compositions.size()) +
                          " of the compositions are missing");
    }
    if (project.footage.size() < facts.footage.size()) {
        missing.push_back(std::to_string(facts.footage.size() - project.footage.size()) +
                          " of the footage items are missing");
    }
    if (objects_wanted) {
        compare_objects(reading, project, missing);
    }
    return missing;
}

}  // namespace cli
