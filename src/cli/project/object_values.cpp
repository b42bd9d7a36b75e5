#include "cli/project/object_values.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "cli/project/project_labels.h"

namespace cli {
namespace {

using embedded::Keyframe;
using embedded::Layer;
using embedded::Stream;
using Vector = std::array<double, 3>;

constexpr double kPi = 3.14159265358979323846;

double radians(double degrees) {
    return degrees * kPi / 180;
}

Vector vector_of(const embedded::StreamComponents& value) {
    return {value[0], value[1], value[2]};
}

// The scene's y axis points up and the host's down.
Vector position(const tagKeyFrame& key) {
    return {key.position[0], -double{key.position[1]}, key.position[2]};
}

/// Where a camera or light looks, in the host's axes; of length 1.
Vector view(const tagKeyFrame& key) {
    const double heading = radians(key.rotation[0]);
    const double pitch = radians(key.rotation[1]);
    return {-std::cos(pitch) * std::sin(heading), -std::sin(pitch), std::cos(pitch) * std::cos(heading)};
}

Vector point_of_interest(const tagKeyFrame& key) {
    Vector point = position(key);
    const Vector direction = view(key);
    for (std::size_t i = 0; i < point.size(); ++i) {
        point[i] += direction[i] * key.targetDistance;
    }
    return point;
}

double zoom(const tagKeyFrame& key, const tagProjectSettings& settings) {
    return settings.width / 2.0 / std::tan(radians(key.fov) / 2);
}

/// A stream of an object with its value at a key.
struct KeyedStream {
    AEGP_LayerStream kind;
    const char* name;
    std::size_t dimensions;
    Vector (*value)(const tagKeyFrame& key, const tagProjectSettings& settings);
};

constexpr KeyedStream kPosition = {
    kLayerStreamPosition, "position", 3,
    [](const tagKeyFrame& key, const tagProjectSettings& /*settings*/) { return position(key); }};
constexpr KeyedStream kPointOfInterest = {
    kLayerStreamAnchorPoint, "point of interest", 3,
    [](const tagKeyFrame& key, const tagProjectSettings& /*settings*/) { return point_of_interest(key); }};
constexpr KeyedStream kOrientation = {kLayerStreamOrientation, "orientation", 3,
                                      [](const tagKeyFrame& key, const tagProjectSettings& /*settings*/) {
                                          return Vector{0, 0, key.rotation[2]};
                                      }};
constexpr KeyedStream kZoom = {
    kLayerStreamZoom, "zoom", 1,
    [](const tagKeyFrame& key, const tagProjectSettings& settings) { return Vector{zoom(key, settings)}; }};
constexpr KeyedStream kXRotation = {
    kLayerStreamXRotation, "X rotation", 1,
    [](const tagKeyFrame& key, const tagProjectSettings& /*settings*/) { return Vector{key.rotation[0]}; }};
constexpr KeyedStream kYRotation = {kLayerStreamYRotation, "Y rotation", 1,
                                    [](const tagKeyFrame& key, const tagProjectSettings& /*settings*/) {
                                        return Vector{-double{key.rotation[1]}};
                                    }};
constexpr KeyedStream kZRotation = {
    kLayerStreamZRotation, "Z rotation", 1,
    [](const tagKeyFrame& key, const tagProjectSettings& /*settings*/) { return Vector{key.rotation[2]}; }};

constexpr KeyedStream kCameraStreams[] = {kPosition, kPointOfInterest, kOrientation, kZoom};
constexpr KeyedStream kLightStreams[] = {kPosition, kPointOfInterest, kOrientation};
constexpr KeyedStream kNullStreams[] = {kPosition, kXRotation, kYRotation, kZRotation};

std::span<const KeyedStream> keyed_streams(BlockKind kind) {
    switch (kind) {
        case BlockKind::camera:
            return kCameraStreams;
        case BlockKind::light:
            return kLightStreams;
        case BlockKind::composition:
        case BlockKind::null_object:
            break;
    }
    return kNullStreams;
}

/// A key of the scene at its time in the layer, in frames.
struct SceneKeyAt {
    A_long frame = 0;
    const tagKeyFrame* key = nullptr;
};

/// The keys as a host keeps them: in ascending order, and only the last of those at one time.
std::vector<SceneKeyAt> ordered_keys(const SceneBlock& object, const tagProjectSettings& settings) {
    std::vector<SceneKeyAt> keys;
    const std::size_t count = key_count(object);
    keys.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const tagKeyFrame& key = *object.object->keys[i];
        const std::int64_t frame = std::int64_t{key.frame} - settings.from;
        // Times have 32 bits.
        keys.push_back({static_cast<A_long>(std::clamp<std::int64_t>(
                            frame, std::numeric_limits<A_long>::min(), std::numeric_limits<A_long>::max())),
                        &key});
    }
    std::stable_sort(keys.begin(), keys.end(), [](const SceneKeyAt& left, const SceneKeyAt& right) {
        return left.frame < right.frame;
    });
    std::vector<SceneKeyAt> kept;
    kept.reserve(keys.size());
    for (const SceneKeyAt& key : keys) {
        if (!kept.empty() && kept.back().frame == key.frame) {
            kept.back() = key;
        } else {
            kept.push_back(key);
        }
    }
    return kept;
}

const Stream* find_stream(const Layer& layer, AEGP_LayerStream kind) {
    const auto found = layer.streams.find(kind);
    return found == layer.streams.end() ? nullptr : &found->second;
}

/// Equal but for rounding, which grows with `scale`, the largest number that took part.
bool is_close(double one, double other, double scale) {
    constexpr double kRounding = 1e-9;
    if (std::isnan(one) || std::isnan(other)) {
        return std::isnan(one) && std::isnan(other);
    }
    return one == other || std::abs(one - other) <= kRounding * scale;
}

std::string vector_text(const Vector& value, std::size_t dimensions) {
    if (dimensions == 1) {
        return plain_number(value[0]);
    }
    return "(" + plain_number(value[0]) + ", " + plain_number(value[1]) + ", " + plain_number(value[2]) + ")";
}

bool same_value(const KeyedStream& stream, const Vector& found, const Vector& wanted,
                const tagKeyFrame& key) {
    double scale = std::abs(wanted[0]);
    if (stream.dimensions == 3) {
        scale = std::abs(double{key.targetDistance});
        for (const float coordinate : key.position) {
            scale = std::max(scale, std::abs(double{coordinate}));
        }
        scale = std::max(scale, std::abs(double{key.rotation[2]}));
    }
    for (std::size_t i = 0; i < stream.dimensions; ++i) {
        if (!is_close(found[i], wanted[i], scale)) {
            return false;
        }
    }
    return true;
}

std::string at_frame(const SceneKeyAt& key) {
    return ", at frame " + std::to_string(key.key->frame);
}

std::string has_instead(const char* name, const std::string& found, const std::string& wanted) {
    return std::string(" has the ") + name + " " + found + ", and the scene says " + wanted;
}

bool is_at(const Keyframe& key, A_long frame, A_long fps) {
    return std::int64_t{key.time.value} * fps == std::int64_t{frame} * std::int64_t{key.time.scale};
}

/// For streams with as many keys as the scene has.
std::string key_difference(const Layer& layer, const KeyedStream& wanted, const std::vector<SceneKeyAt>& keys,
                           const tagProjectSettings& settings) {
    const Stream& stream = *find_stream(layer, wanted.kind);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const Keyframe& found = stream.keyframes[i];
        if (!is_at(found, keys[i].frame, settings.fps)) {
            return std::string(" has a key of its ") + wanted.name + " at another time than the scene" +
                   at_frame(keys[i]);
        }
        const Vector value = wanted.value(*keys[i].key, settings);
        if (!same_value(wanted, vector_of(found.value), value, *keys[i].key)) {
            return has_instead(wanted.name, vector_text(vector_of(found.value), wanted.dimensions),
                               vector_text(value, wanted.dimensions)) +
                   at_frame(keys[i]);
        }
    }
    return {};
}

/// Deliberately repeats host_light_type of the importer: object_values.h says why.
AEGP_LightType wanted_light_type(const CLight& light) {
    switch (light.lightType) {
        case kLightSpot:
            return kLightTypeSpot;
        case kLightParallel:
        case kLightParallelSpot:
            return kLightTypeParallel;
        default:
            return kLightTypePoint;
    }
}

std::string light_difference(const Layer& layer, const CLight& light) {
    Layer wanted;
    wanted.kind = embedded::LayerKind::light;
    wanted.light_type = wanted_light_type(light);
    if (layer.light_type != wanted.light_type) {
        return " is a " + light_type_label(layer) + ", and the scene says " + light_type_label(wanted);
    }
    const Stream* const color = find_stream(layer, kLayerStreamColor);
    const Stream* const intensity = find_stream(layer, kLayerStreamIntensity);
    const Stream* const shadows = find_stream(layer, kLayerStreamCastsShadows);
    for (const Stream* const stream : {color, intensity, shadows}) {
        if (stream == nullptr || !stream->value_set) {
            return " is not finished";
        }
    }
    for (std::size_t i = 0; i < std::size(light.color); ++i) {
        if (color->value[i + 1] != double{light.color[i]}) {
            return has_instead(
                "colour", vector_text({color->value[1], color->value[2], color->value[3]}, 3),
                vector_text({double{light.color[0]}, double{light.color[1]}, double{light.color[2]}}, 3));
        }
    }
    // The scene's 1 is the host's 100 %, in single precision.
    const float percent = light.intensity * 100;
    if (!is_close(intensity->value[0], percent, std::abs(double{percent}))) {
        return has_instead("intensity", plain_number(intensity->value[0]), plain_number(percent));
    }
    const double casts = light.shadowType == kShadowNone ? 0 : 1;
    return shadows->value[0] == casts
               ? ""
               : std::string(casts == 0 ? " casts shadows, and the scene says it casts none"
                                        : " casts no shadows, and the scene says it does");
}

double length(const Vector& vector) {
    return std::hypot(vector[0], vector[1], vector[2]);
}

double degrees_between(const Vector& one, const Vector& other) {
    const double product = one[0] * other[0] + one[1] * other[1] + one[2] * other[2];
    const Vector cross = {one[1] * other[2] - one[2] * other[1], one[2] * other[0] - one[0] * other[2],
                          one[0] * other[1] - one[1] * other[0]};
    return std::atan2(length(cross), product) * 180 / kPi;
}

bool has_aim(const SceneBlock& object) {
    if (object.kind == BlockKind::camera) {
        return true;
    }
    return object.kind == BlockKind::light &&
           wanted_light_type(static_cast<const CLight&>(*object.object)) != kLightTypePoint;
}

/// Where the layer looks at its key `i`, in the host's axes. A layer that does not turn towards its point of
/// interest looks straight ahead: the orientation of a scene's object only turns it about that axis.
Vector looks_at(const Layer& layer, std::size_t i) {
    if (!layer.looks_at_point_of_interest()) {
        return {0, 0, 1};
    }
    const Vector from = vector_of(find_stream(layer, kLayerStreamPosition)->keyframes[i].value);
    Vector to = vector_of(find_stream(layer, kLayerStreamAnchorPoint)->keyframes[i].value);
    for (std::size_t axis = 0; axis < to.size(); ++axis) {
        to[axis] -= from[axis];
    }
    return to;
}

/// For layers whose values are the scene's.
std::string aim_difference(const Layer& layer, const SceneBlock& object,
                           const std::vector<SceneKeyAt>& keys) {
    if (!has_aim(object)) {
        return {};
    }
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const tagKeyFrame& key = *keys[i].key;
        // A point of interest at the layer's own position, but for rounding, gives no direction. One behind
        // the layer is what the scene itself says.
        const double far = length(position(key));
        constexpr double kDigits = 1e-6;
        if (!(key.targetDistance > kDigits * far) || !std::isfinite(far)) {
            continue;
        }
        constexpr double kAllowed_degrees = 0.01;
        const double off = degrees_between(looks_at(layer, i), view(key));
        if (!(off <= kAllowed_degrees)) {
            return " looks " + plain_number(off) + " degrees away from where the scene says" +
                   at_frame(keys[i]) +
                   (layer.looks_at_point_of_interest() ? ""
                                                       : ": it does not turn towards its point of interest");
        }
    }
    return {};
}

}  // namespace

std::string object_difference(const Layer& layer, const SceneBlock& object,
                              const tagProjectSettings& settings) {
    const std::vector<SceneKeyAt> keys = ordered_keys(object, settings);
    const std::span<const KeyedStream> streams = keyed_streams(object.kind);
    for (const KeyedStream& wanted : streams) {
        const Stream* const stream = find_stream(layer, wanted.kind);
        if (stream == nullptr || stream->keyframes.size() != keys.size()) {
            return " is not finished";
        }
    }
    std::string difference;
    if (object.kind == BlockKind::light) {
        difference = light_difference(layer, static_cast<const CLight&>(*object.object));
    } else if (object.kind == BlockKind::null_object && !layer.is_3d()) {
        difference = " is not a 3D layer";
    }
    for (const KeyedStream& wanted : streams) {
        if (difference.empty()) {
            difference = key_difference(layer, wanted, keys, settings);
        }
    }
    return difference.empty() ? aim_difference(layer, object, keys) : difference;
}

}  // namespace cli
