#include "embedded/layer_model.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>
#include <numeric>
#include <set>

namespace embedded {
namespace {

constexpr A_long kNullSize_px = 100;  // the host's null is a square of this size

/// The distance at which a 50 mm lens on 36 mm film, the host's preset for new cameras, covers the
/// composition's width.
double starting_zoom(const Composition& composition) {
    return composition.width * 50.0 / 36.0;
}

bool has_camera_streams(LayerKind kind) {
    return kind == LayerKind::camera || kind == LayerKind::light;
}

struct Size {
    A_long width = 0;
    A_long height = 0;
};

Size source_size(const Project& project, const Layer& layer) {
    if (layer.source_item == 0) {
        return {kNullSize_px, kNullSize_px};
    }
    const Item& source = project.item(layer.source_item);
    if (source.kind == ItemKind::composition) {
        const Composition& composition = project.composition(source.content);
        return {composition.width, composition.height};
    }
    const Footage& footage = project.footage_of(source.content);
    return {footage.width, footage.height};
}

StreamComponents starting_value(const Project& project, const Layer& layer, AEGP_LayerStream kind) {
    const Composition& composition = project.composition(layer.composition);
    const A_FloatPoint center =
        layer.center.value_or(A_FloatPoint{composition.width / 2.0, composition.height / 2.0});
    switch (kind) {
        case kLayerStreamPosition: {
            const double z = has_camera_streams(layer.kind) ? -starting_zoom(composition) : 0.0;
            return {center.x, center.y, z, 0.0};
        }
        case kLayerStreamAnchorPoint: {
            if (has_camera_streams(layer.kind)) {
                return {center.x, center.y, 0.0, 0.0};
            }
            if (layer.kind == LayerKind::null) {
                return {};
            }
            const Size size = source_size(project, layer);
            return {size.width / 2.0, size.height / 2.0, 0.0, 0.0};
        }
        case kLayerStreamScale:
            return {100.0, 100.0, 100.0, 0.0};
        case kLayerStreamOpacity:
        case kLayerStreamIntensity:
            return {100.0, 0.0, 0.0, 0.0};
        case kLayerStreamZoom:
            return {starting_zoom(composition), 0.0, 0.0, 0.0};
        case kLayerStreamColor:
            return {1.0, 1.0, 1.0, 1.0};
        case kLayerStreamConeAngle:
            return {90.0, 0.0, 0.0, 0.0};
        default:
            return {};
    }
}

}  // namespace

Layer& add_layer(Session& session, Id composition, LayerKind kind, GivenName name, Id source_item) {
    session.handles.make<AEGP_LayerH>();
    Layer& made = session.project.layers.emplace_back();
    made.id = static_cast<Id>(session.project.layers.size());
    made.composition = composition;
    made.kind = kind;
    made.name = std::move(name.text);
    made.unicode_name = name.unicode;
    made.source_item = source_item;
    if (has_camera_streams(kind)) {
        made.flags = kLayerFlag3D;
    }
    if (kind == LayerKind::camera && session.options.generation == HostGeneration::classic) {
        made.flags |= kLayerFlagLookAtPointOfInterest;
    }
    Composition& parent = session.composition(composition);
    made.in_point = {0, parent.duration.scale};
    made.offset = made.in_point;
    made.duration = source_item == 0 ? parent.duration : natural_duration(session, source_item, composition);
    parent.layers.push_front(made.id);
    return made;
}

void set_light_type(const Session& session, Layer& light, AEGP_LightType type) {
    light.light_type = type;
    if (session.options.generation != HostGeneration::classic) {
        return;
    }
    const bool aimed = type == kLightTypeSpot || type == kLightTypeParallel;
    light.flags = aimed ? light.flags | kLayerFlagLookAtPointOfInterest
                        : light.flags & ~kLayerFlagLookAtPointOfInterest;
}

bool can_add_layer(const Project& project, Id item, Id composition) {
    const Item& source = project.item(item);
    if (source.kind == ItemKind::folder) {
        return false;
    }
    if (source.kind == ItemKind::footage) {
        return true;
    }
    // Not recursive: compositions nest as deep as a file says.
    std::vector<Id> to_visit{source.content};
    std::set<Id> visited;
    while (!to_visit.empty()) {
        const Id next = to_visit.back();
        to_visit.pop_back();
        if (next == composition) {
            return false;
        }
        if (!visited.insert(next).second) {
            continue;
        }
        for (const Id layer : project.composition(next).layers) {
            const Id inner = project.layer(layer).source_item;
            if (inner != 0 && project.item(inner).kind == ItemKind::composition) {
                to_visit.push_back(project.item(inner).content);
            }
        }
    }
    return true;
}

A_Time still_duration(const Session& session, Id composition) {
    return session.options.still_duration.value_or(session.project.composition(composition).duration);
}

A_Time natural_duration(const Session& session, Id item, Id composition) {
    const Project& project = session.project;
    const Item& source = project.item(item);
    if (source.kind == ItemKind::composition) {
        return project.composition(source.content).duration;
    }
    const A_Time duration = project.footage_of(source.content).duration;
    return duration.value == 0 ? still_duration(session, composition) : duration;
}

std::optional<StreamShape> stream_shape(const Layer& layer, AEGP_LayerStream kind) {
    const bool camera = layer.kind == LayerKind::camera;
    const bool light = layer.kind == LayerKind::light;
    const bool picture = !camera && !light;
    const auto when = [](bool exists, StreamShape shape) {
        return exists ? std::optional<StreamShape>(shape) : std::nullopt;
    };
    switch (kind) {
        case kLayerStreamAnchorPoint:
        case kLayerStreamPosition:
            return layer.is_3d() ? StreamShape::three_d : StreamShape::two_d;
        case kLayerStreamScale:
            return when(picture, layer.is_3d() ? StreamShape::three_d : StreamShape::two_d);
        case kLayerStreamZRotation:
            return StreamShape::one_d;
        case kLayerStreamOpacity:
            return when(picture, StreamShape::one_d);
        case kLayerStreamXRotation:
        case kLayerStreamYRotation:
            return when(layer.is_3d(), StreamShape::one_d);
        case kLayerStreamOrientation:
            return when(layer.is_3d(), StreamShape::three_d);
        case kLayerStreamZoom:
            return when(camera, StreamShape::one_d);
        case kLayerStreamIntensity:
        case kLayerStreamConeAngle:
            return when(light, StreamShape::one_d);
        case kLayerStreamColor:
            return when(light, StreamShape::color);
        case kLayerStreamCastsShadows:
            return when(light || (picture && layer.is_3d()), StreamShape::one_d);
        default:
            return std::nullopt;
    }
}

Stream* fetch_stream(Session& session, Layer& layer, AEGP_LayerStream kind) {
    const auto shape = stream_shape(layer, kind);
    if (!shape) {
        return nullptr;
    }
    const auto [entry, is_new] = layer.streams.try_emplace(kind);
    Stream& stream = entry->second;
    stream.shape = *shape;  // the layer may have become a 3D layer since
    if (is_new) {
        stream.kind = kind;
        stream.value = starting_value(session.project, layer, kind);
    }
    return &stream;
}

void insert_keyframes(Stream& stream, const std::vector<Session::Additions::Key>& keys) {
    const auto earlier = [](const Keyframe& left, const Keyframe& right) {
        return compare_times(left.time, right.time) < 0;
    };
    std::vector<Keyframe> added;
    added.reserve(keys.size());
    for (const Session::Additions::Key& key : keys) {
        added.push_back({key.time, key.value.value_or(stream.value)});
    }
    const auto not_earlier = [&](const Keyframe& left, const Keyframe& right) {
        return !earlier(left, right);
    };
    if (stream.keyframes.empty() &&
        std::adjacent_find(added.begin(), added.end(), not_earlier) == added.end()) {
        stream.keyframes = std::move(added);  // in order already, as in nearly every file
        return;
    }
    std::stable_sort(added.begin(), added.end(), earlier);

    // std::merge puts old keys before new ones at the same time; below, the last of those stays.
    std::vector<Keyframe> merged;
    merged.reserve(stream.keyframes.size() + added.size());
    std::merge(stream.keyframes.begin(), stream.keyframes.end(), added.begin(), added.end(),
               std::back_inserter(merged), earlier);
    std::vector<Keyframe> unique;
    unique.reserve(merged.size());
    for (const Keyframe& key : merged) {
        if (!unique.empty() && compare_times(unique.back().time, key.time) == 0) {
            unique.back() = key;
        } else {
            unique.push_back(key);
        }
    }
    stream.keyframes = std::move(unique);
}

StreamComponents components_of(const AEGP_StreamVal& value, StreamShape shape) {
    switch (shape) {
        case StreamShape::one_d:
            return {value.one_d};
        case StreamShape::two_d:
            return {value.two_d.x, value.two_d.y};
        case StreamShape::three_d:
            return {value.three_d.x, value.three_d.y, value.three_d.z};
        case StreamShape::color:
            break;
    }
    return {value.color.alpha, value.color.red, value.color.green, value.color.blue};
}

Json json_components(const StreamComponents& components, StreamShape shape) {
    switch (shape) {
        case StreamShape::one_d:
            return json_number(components[0]);
        case StreamShape::two_d:
            return Json{{"x", json_number(components[0])}, {"y", json_number(components[1])}};
        case StreamShape::three_d:
            return Json{{"x", json_number(components[0])},
                        {"y", json_number(components[1])},
                        {"z", json_number(components[2])}};
        case StreamShape::color:
            break;
    }
    return Json{{"alpha", json_number(components[0])},
                {"red", json_number(components[1])},
                {"green", json_number(components[2])},
                {"blue", json_number(components[3])}};
}

int compare_times(const A_Time& left, const A_Time& right) {
    // |value| <= 2^31 and scale < 2^32, so the products stay within 64 bits.
    const std::int64_t a = std::int64_t{left.value} * std::int64_t{right.scale};
    const std::int64_t b = std::int64_t{right.value} * std::int64_t{left.scale};
    return a < b ? -1 : (a > b ? 1 : 0);
}

std::optional<A_Time> subtract_times(const A_Time& left, const A_Time& right) {
    // On the least common scale, of which both scales are divisors.
    const std::uint64_t common = std::lcm(std::uint64_t{left.scale}, std::uint64_t{right.scale});
    const auto left_factor = static_cast<std::int64_t>(common / left.scale);
    const auto right_factor = static_cast<std::int64_t>(common / right.scale);
    constexpr std::int64_t kLimit = std::int64_t{1} << 30;  // keeps the difference within 64 bits
    if (common > std::numeric_limits<A_u_long>::max() || left_factor > kLimit || right_factor > kLimit) {
        return std::nullopt;
    }
    const std::int64_t value = left.value * left_factor - right.value * right_factor;
    if (value < std::numeric_limits<A_long>::min() || value > std::numeric_limits<A_long>::max()) {
        return std::nullopt;
    }
    return A_Time{static_cast<A_long>(value), static_cast<A_u_long>(common)};
}

}  // namespace embedded
