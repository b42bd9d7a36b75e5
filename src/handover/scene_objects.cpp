#include "handover/scene_objects.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <string>

#include "handover/loss.h"

namespace handover {
namespace {

constexpr std::array<const char*, 6> kLightWords{"OMNI", "SPOT", "PAR", "PSPOT", "TUBE", "AREA"};
constexpr std::array<const char*, 4> kShadowWords{"NONE", "SOFT", "HARD", "AREA"};

template <std::size_t kWords>
const char* word_for(const std::array<const char*, kWords>& words, A_long value) {
    const bool known = value >= 0 && static_cast<std::size_t>(value) < kWords;
    return words.at(known ? static_cast<std::size_t>(value) : 0);
}

ObjectKind object_kind(const CSceneObject& object) {
    if (object.isNull != 0) {
        return ObjectKind::null;
    }
    return dynamic_cast<const CCamera*>(&object) != nullptr ? ObjectKind::camera : ObjectKind::light;
}

ObjectKey key_of(const tagKeyFrame& key, ObjectKind kind) {
    ObjectKey made;
    made.frame = key.frame;
    std::copy(std::begin(key.position), std::end(key.position), made.position.begin());
    made.heading = key.rotation[0];
    made.pitch = key.rotation[1];
    made.bank = key.rotation[2];
    made.view_angle = kind == ObjectKind::camera ? key.fov : 0;
    made.target_distance = key.targetDistance;
    return made;
}

bool has_finite_numbers(const ObjectKey& key) {
    const std::array<double, 8> numbers{key.position[0], key.position[1],    key.position[2],
                                        key.heading,     key.pitch,          key.bank,
                                        key.view_angle,  key.target_distance};
    return std::all_of(numbers.begin(), numbers.end(), [](double number) { return std::isfinite(number); });
}

// The keys by rising frame, of one frame the last; their indices in the file's order.
std::vector<std::size_t> order_of(const CSceneObject& object) {
    std::vector<std::size_t> order(static_cast<std::size_t>(std::max<A_long>(object.keyCount, 0)));
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto frame = [&](std::size_t key) { return object.keys[key]->frame; };
    const auto earlier = [&](std::size_t a, std::size_t b) { return frame(a) < frame(b); };
    if (!std::is_sorted(order.begin(), order.end(), earlier)) {
        std::stable_sort(order.begin(), order.end(), earlier);
    }
    // Seen from the end, the first of equal frames stays.
    const auto kept = std::unique(order.rbegin(), order.rend(),
                                  [&](std::size_t a, std::size_t b) { return frame(a) == frame(b); });
    order.erase(order.begin(), kept.base());
    return order;
}

void add_keys(const SceneSource& scene, const CSceneObject& object, SceneObject& made,
              std::vector<Loss>& losses) {
    const std::vector<std::size_t> order = order_of(object);
    made.keys.reserve(order.size());
    std::int64_t left_out = 0;
    std::size_t first = 0;
    for (const std::size_t index : order) {
        const ObjectKey key = key_of(*object.keys[index], made.kind);
        if (has_finite_numbers(key)) {
            made.keys.push_back(key);
        } else if (++left_out == 1) {
            first = index;
        }
    }
    if (left_out > 0) {
        diagnostic::Diagnostic what =
            diagnostic::make(LossCode::value_not_finite, scene.place_of_key(object, first),
                             "a key with a number that is not finite is left out");
        what.count = left_out;
        losses.push_back({std::move(what), kEveryTarget});
    }
}

// What does not change over time. Numbers that are not finite keep the usual value.
void add_light(const SceneSource& scene, const CLight& light, SceneObject& made, std::vector<Loss>& losses) {
    made.light_word = word_for(kLightWords, light.lightType);
    made.shadow_word = word_for(kShadowWords, light.shadowType);
    const auto set = [&](double& to, double value, const char* word) {
        if (std::isfinite(value)) {
            to = value;
            return;
        }
        losses.push_back({diagnostic::make(LossCode::value_not_finite, scene.place_of(&light),
                                           std::string("a number of ") + word +
                                               " is not finite, and the usual value replaces it"),
                          kEveryTarget});
    };
    for (std::size_t i = 0; i < made.color.size(); ++i) {
        set(made.color[i], light.color[i], "COLOR");
    }
    set(made.intensity, light.intensity, "INTENSITY");
    set(made.cone_angle, light.coneAngle, "ANGLE");
}

}  // namespace

std::vector<SceneObject> scene_objects(const SceneSource& scene, const SceneWalk& walk, StableIds& ids,
                                       std::vector<Loss>& losses) {
    std::vector<SceneObject> objects;
    objects.reserve(walk.objects.size());
    for (const CSceneObject* object : walk.objects) {
        SceneObject& made = objects.emplace_back();
        made.kind = object_kind(*object);
        const std::string_view name = object->name != nullptr ? object->name : "";
        made.id = StableIds::text(ids.next(ids.root(), word_of(made.kind), name));
        made.at = scene.place_of(object);
        if (made.kind == ObjectKind::light) {
            add_light(scene, static_cast<const CLight&>(*object), made, losses);
        }
        add_keys(scene, *object, made, losses);
    }
    return objects;
}

}  // namespace handover
