#include <vortanxr/scene.h>

#include <algorithm>
#include <cstddef>
#include <unordered_map>

#include "cli/scene/scene_reading.h"
#include "composition/model/composition.h"
#include "composition/model/project_settings.h"
#include "composition/model/scene_object.h"
#include "library/public_diagnostic.h"

namespace library {
namespace {

// The model's numbers and the public enumerations have the same order.
static_assert(kBlendNormal == static_cast<int>(vortanxr::Blend::normal) &&
              kBlendMultiply == static_cast<int>(vortanxr::Blend::multiply));
static_assert(kAlphaPremultiplied == static_cast<int>(vortanxr::Alpha::premultiplied) &&
              kAlphaStraight == static_cast<int>(vortanxr::Alpha::straight));
static_assert(kFieldsNone == static_cast<int>(vortanxr::Fields::none) &&
              kFieldsEven == static_cast<int>(vortanxr::Fields::even) &&
              kFieldsOdd == static_cast<int>(vortanxr::Fields::odd));
static_assert(kLightOmni == static_cast<int>(vortanxr::LightType::omni) &&
              kLightParallelSpot == static_cast<int>(vortanxr::LightType::parallel_spot) &&
              kLightArea == static_cast<int>(vortanxr::LightType::area));
static_assert(kShadowNone == static_cast<int>(vortanxr::Shadow::none) &&
              kShadowArea == static_cast<int>(vortanxr::Shadow::area));

vortanxr::TextPlace place_of(const TextPosition& at) {
    return {at.line, at.column};
}

std::string text_or_empty(const char* text) {
    return text == nullptr ? std::string() : text;
}

template <class PublicKey>
std::vector<PublicKey> keys_of(const cli::SceneBlock& object) {
    std::vector<PublicKey> keys(cli::key_count(object));
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const tagKeyFrame& from = *object.object->keys[i];
        PublicKey& key = keys[i];
        key.frame = from.frame;
        std::copy_n(from.position, 3, key.position.begin());
        std::copy_n(from.rotation, 3, key.rotation_degrees.begin());
        if constexpr (requires { key.field_of_view_degrees; }) {
            key.field_of_view_degrees = from.fov;
            key.target_distance = from.targetDistance;
        }
    }
    return keys;
}

vortanxr::Light light_of(const cli::SceneBlock& block) {
    const auto& from = static_cast<const CLight&>(*block.object);
    vortanxr::Light light;
    light.name = text_or_empty(from.name);
    light.at = place_of(block.name_at);
    light.type = static_cast<vortanxr::LightType>(from.lightType);
    light.shadow = static_cast<vortanxr::Shadow>(from.shadowType);
    std::copy_n(from.color, 3, light.color.begin());
    light.intensity = from.intensity;
    light.cone_angle_degrees = from.coneAngle;
    light.keys = keys_of<vortanxr::Key>(block);
    return light;
}

void add_objects(const cli::SceneReading& reading, vortanxr::Scene& scene) {
    for (const cli::SceneBlock& block : reading.facts.objects) {
        const std::string name = text_or_empty(block.object->name);
        const vortanxr::TextPlace at = place_of(block.name_at);
        if (block.kind == BlockKind::camera) {
            scene.cameras.push_back({name, at, keys_of<vortanxr::CameraKey>(block)});
        } else if (block.kind == BlockKind::light) {
            scene.lights.push_back(light_of(block));
        } else {
            scene.nulls.push_back({name, at, keys_of<vortanxr::Key>(block)});
        }
    }
}

void add_footage(const cli::SceneReading& reading, vortanxr::Scene& scene) {
    for (const cli::SceneFootage& from : reading.facts.footage) {
        vortanxr::Footage footage;
        if (!from.problem) {
            footage.written = from.written;
        }
        if (from.file->path != nullptr) {
            footage.path = from.file->path;
        }
        footage.is_sequence = from.file->isSequence != 0;
        footage.top_level = from.top_level;
        footage.blend = static_cast<vortanxr::Blend>(from.file->blendMode);
        footage.alpha = static_cast<vortanxr::Alpha>(from.file->alphaMode);
        footage.at = place_of(from.path_at);
        scene.footage.push_back(std::move(footage));
    }
}

void add_compositions(const cli::SceneReading& reading, vortanxr::Scene& scene) {
    std::unordered_map<const CComposition*, std::size_t> place_in_scene;
    for (const cli::SceneBlock& block : reading.facts.compositions) {
        place_in_scene.emplace(block.composition, place_in_scene.size());
    }
    std::unordered_map<const CFileItem*, std::size_t> footage_in_scene;
    for (const cli::SceneFootage& footage : reading.facts.footage) {
        footage_in_scene.emplace(footage.file, footage_in_scene.size());
    }
    for (const cli::SceneBlock& block : reading.facts.compositions) {
        vortanxr::Composition composition;
        composition.name = text_or_empty(block.composition->name);
        composition.at = place_of(block.name_at);
        composition.blend = static_cast<vortanxr::Blend>(block.composition->blendMode);
        if (block.composition->parent != nullptr) {
            composition.parent = place_in_scene.at(block.composition->parent);
        }
        // The list has no other way through.
        auto& children = const_cast<CComposition*>(block.composition)->children;
        for (CCompoChild* child = children.First(); child != nullptr; child = children.Next(child)) {
            const bool nested = child->type == kChildComposition;
            composition.entries.push_back(nested ? vortanxr::Entry{vortanxr::Entry::Kind::composition,
                                                                   place_in_scene.at(child->item.composition)}
                                                 : vortanxr::Entry{vortanxr::Entry::Kind::footage,
                                                                   footage_in_scene.at(child->item.file)});
        }
        scene.compositions.push_back(std::move(composition));
    }
}

vortanxr::Scene scene_of(const cli::SceneReading& reading) {
    const tagProjectSettings& settings = *reading.settings;
    vortanxr::Scene scene;
    scene.path = reading.full_path;
    scene.width_px = settings.width;
    scene.height_px = settings.height;
    scene.first_frame = settings.from;
    scene.last_frame = settings.to;
    scene.frame_range = settings.range;
    scene.fps = settings.fps;
    scene.pixel_aspect = settings.aspect;
    scene.local = settings.local != 0;
    scene.fields = static_cast<vortanxr::Fields>(settings.fields);
    add_compositions(reading, scene);
    add_footage(reading, scene);
    add_objects(reading, scene);
    return scene;
}

}  // namespace
}  // namespace library

namespace vortanxr {
inline namespace v1 {
namespace detail {

SceneReading read_scene(const std::string& path) {
    return library::guarded<SceneReading>(path, [&path] {
        SceneReading reading;
        const cli::SceneReading read = cli::read_scene(library::file_name_of(path));
        if (read.error) {
            reading.error = library::public_diagnostic(*read.error, path);
        } else {
            reading.scene = library::scene_of(read);
        }
        return reading;
    });
}

}  // namespace detail
}  // namespace v1
}  // namespace vortanxr
