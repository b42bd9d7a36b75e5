#include "cli/project/import_outcome.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>

#include "cli/project/object_values.h"

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

std::string whole(const SceneBlock& object) {
    return object.within.empty() ? "an object" : object.within.back();
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
            continue;
        }
        const std::string difference = object_difference(*made[index], *object, *reading.settings);
        if (!difference.empty()) {
            missing.push_back(whole(*object) + difference);
        }
    }
}

}  // namespace

std::vector<std::string> left_changed(const embedded::Host& host,
                                      const std::optional<std::uint8_t>& preference) {
    std::vector<std::string> left;
    for (const auto& [key, value] : host.project().preferences) {
        // An import must not leave a preference, whatever its value, in a host that had none.
        const bool as_before = preference && value == std::vector<std::uint8_t>{*preference};
        if (!as_before) {
            left.push_back("the preference " + key.second + " was not put back");
        }
    }
    if (host.conformance().count(embedded::RuleViolation::undo_group_unbalanced) > 0) {
        left.emplace_back("the undo group did not end");
    }
    return left;
}

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
