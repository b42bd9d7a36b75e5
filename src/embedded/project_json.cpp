#include "embedded/project_json.h"

#include <nlohmann/json.hpp>

#include "embedded/layer_model.h"

namespace embedded {
namespace {

/// Null for id 0, which means "none".
Json json_id(Id id) {
    return id == 0 ? Json() : Json(id);
}

const char* label(ItemKind kind) {
    switch (kind) {
        case ItemKind::folder:
            return "folder";
        case ItemKind::footage:
            return "footage";
        case ItemKind::composition:
            return "composition";
    }
    return "unknown";
}

const char* label(FootageKind kind) {
    switch (kind) {
        case FootageKind::file:
            return "file";
        case FootageKind::sequence:
            return "sequence";
        case FootageKind::module_file:
            return "module_file";
        case FootageKind::placeholder:
            return "placeholder";
    }
    return "unknown";
}

const char* label(LayerKind kind) {
    switch (kind) {
        case LayerKind::footage:
            return "footage";
        case LayerKind::composition:
            return "composition";
        case LayerKind::camera:
            return "camera";
        case LayerKind::light:
            return "light";
        case LayerKind::null:
            return "null";
    }
    return "unknown";
}

const char* label(StreamShape shape) {
    switch (shape) {
        case StreamShape::one_d:
            return "one_d";
        case StreamShape::two_d:
            return "two_d";
        case StreamShape::three_d:
            return "three_d";
        case StreamShape::color:
            return "color";
    }
    return "unknown";
}

const char* stream_label(AEGP_LayerStream kind) {
    switch (kind) {
        case kLayerStreamAnchorPoint:
            return "anchor_point";
        case kLayerStreamPosition:
            return "position";
        case kLayerStreamScale:
            return "scale";
        case kLayerStreamZRotation:
            return "z_rotation";
        case kLayerStreamOpacity:
            return "opacity";
        case kLayerStreamXRotation:
            return "x_rotation";
        case kLayerStreamYRotation:
            return "y_rotation";
        case kLayerStreamOrientation:
            return "orientation";
        case kLayerStreamZoom:
            return "zoom";
        case kLayerStreamIntensity:
            return "intensity";
        case kLayerStreamColor:
            return "color";
        case kLayerStreamConeAngle:
            return "cone_angle";
        case kLayerStreamCastsShadows:
            return "casts_shadows";
        default:
            return "unknown";
    }
}

Json json_light_type(const std::optional<AEGP_LightType>& type) {
    if (!type) {
        return {};
    }
    switch (*type) {
        case kLightTypeParallel:
            return "parallel";
        case kLightTypeSpot:
            return "spot";
        case kLightTypePoint:
            return "point";
        default:
            return "ambient";
    }
}

Json json_item(const Item& item) {
    return Json{{"id", item.id},
                {"kind", label(item.kind)},
                {"name", json_text(item.name)},
                {"parent_folder", json_id(item.parent_folder)},
                {"content", json_id(item.content)}};
}

Json json_sequence(const std::optional<SequenceFrames>& sequence) {
    if (!sequence) {
        return {};
    }
    Json gaps = Json::array();
    for (const FrameRange& gap : sequence->gaps) {
        gaps.push_back(Json{{"first", gap.first}, {"last", gap.last}});
    }
    return Json{{"pattern", json_text(sequence->pattern)},
                {"first", sequence->range.first},
                {"last", sequence->range.last},
                {"count", sequence->count},
                {"padding", sequence->padding},
                {"gaps", gaps}};
}

Json json_footage(const Footage& footage) {
    return Json{{"id", footage.id},
                {"kind", label(footage.kind)},
                {"item", json_id(footage.item)},
                {"path", json_text(footage.path)},
                {"name", json_text(footage.name)},
                {"width", footage.width},
                {"height", footage.height},
                {"channels", footage.channels},
                {"bits_per_channel", footage.bits_per_channel},
                {"has_alpha", footage.has_alpha},
                {"alpha_premultiplied", footage.alpha_premultiplied},
                {"duration", json_time(footage.duration)},
                {"sequence", json_sequence(footage.sequence)},
                {"interpretation_set", footage.interpretation_set},
                {"interpretation", json_interpretation(footage.interpretation)},
                {"in_spec", json_id(footage.in_spec)}};
}

/// [time, scale, components...]: a file has many keys, and names would take most of the document.
Json json_key(const Keyframe& key, StreamShape shape) {
    Json numbers = Json::array({key.time.value, key.time.scale});
    const Json value = json_components(key.value, shape);
    if (value.is_object()) {
        for (const Json& component : value) {
            numbers.push_back(component);
        }
    } else {
        numbers.push_back(value);
    }
    return numbers;
}

Json json_stream(const Stream& stream) {
    Json keyframes = Json::array();
    for (const Keyframe& key : stream.keyframes) {
        keyframes.push_back(json_key(key, stream.shape));
    }
    return Json{{"kind", stream.kind},
                {"name", stream_label(stream.kind)},
                {"shape", label(stream.shape)},
                {"value_set", stream.value_set},
                {"value", json_components(stream.value, stream.shape)},
                {"keyframes", keyframes}};
}

Json json_layer(const Layer& layer) {
    Json streams = Json::array();
    for (const auto& [kind, stream] : layer.streams) {
        streams.push_back(json_stream(stream));
    }
    return Json{{"id", layer.id},
                {"kind", label(layer.kind)},
                {"name", json_text(layer.name)},
                {"source_item", json_id(layer.source_item)},
                {"transfer", json_transfer_mode(layer.transfer)},
                {"timing_set", layer.timing_set},
                {"time_mode", layer.time_mode == kTimeModeLayer ? "layer" : "composition"},
                {"in_point", json_time(layer.in_point)},
                {"duration", json_time(layer.duration)},
                {"offset", json_time(layer.offset)},
                {"flags", layer.flags},
                {"is_3d", layer.is_3d()},
                {"looks_at_point_of_interest", layer.looks_at_point_of_interest()},
                {"light_type", json_light_type(layer.light_type)},
                {"center",
                 layer.center ? Json{{"x", json_number(layer.center->x)}, {"y", json_number(layer.center->y)}}
                              : Json()},
                {"streams", streams}};
}

Json json_composition(const Project& project, const Composition& composition) {
    Json layers = Json::array();
    for (const Id layer : composition.layers) {
        layers.push_back(json_layer(project.layer(layer)));
    }
    return Json{{"id", composition.id},
                {"item", composition.item},
                {"name", json_text(project.item(composition.item).name)},
                {"width", composition.width},
                {"height", composition.height},
                {"pixel_aspect", json_ratio(composition.pixel_aspect)},
                {"duration", json_time(composition.duration)},
                {"frame_rate", json_ratio(composition.frame_rate)},
                {"layers", layers}};
}

Json json_in_spec(const InSpec& in_spec) {
    return Json{{"id", in_spec.id},
                {"path", json_text(in_spec.path)},
                {"module", json_code(in_spec.module_signature)},
                {"options", json_id(in_spec.options)},
                {"depth", in_spec.depth},
                {"duration", json_time(in_spec.duration)},
                {"duration_from_module", in_spec.duration_from_module},
                {"width", in_spec.width},
                {"height", in_spec.height},
                {"dimensions_from_module", in_spec.dimensions_from_module},
                {"size_bytes", in_spec.size_bytes},
                {"native_fps", in_spec.native_fps},
                {"alpha_label", in_spec.alpha_label ? json_alpha_label(*in_spec.alpha_label) : Json()},
                {"type_text", json_text(in_spec.type_text)},
                {"sub_type_text", json_text(in_spec.sub_type_text)},
                {"disposed", in_spec.disposed}};
}

template <class List, class ToJson>
Json json_list(const List& list, const ToJson& to_json) {
    Json all = Json::array();
    for (const auto& entry : list) {
        all.push_back(to_json(entry));
    }
    return all;
}

Json json_finding(const diagnostic::Diagnostic& finding) {
    return Json{{"breach", finding.code.name()},
                {"call", finding.at.line ? Json(*finding.at.line) : Json()},
                {"where", finding.within.front()},
                {"text", json_text(finding.reason)}};
}

}  // namespace

Json project_to_json(const Project& project) {
    Json document = Json::object();
    document["schema"] = kProjectSchema;
    document["items"] = json_list(project.items, json_item);
    document["footage"] = json_list(project.footage, json_footage);
    document["compositions"] = json_list(project.compositions, [&project](const Composition& composition) {
        return json_composition(project, composition);
    });
    document["in_specs"] = Json::array();
    for (const InSpec& in_spec : project.in_specs) {
        if (in_spec.copy_of == 0) {
            document["in_specs"].push_back(json_in_spec(in_spec));
        }
    }
    document["undo_steps"] = json_list(project.undo_steps, [](const UndoStep& step) {
        return Json{{"name", json_text(step.name)}, {"changes", step.changes}, {"closed", step.closed}};
    });
    document["preferences"] = json_list(project.preferences, [](const auto& preference) {
        return Json{{"section", json_text(preference.first.first)},
                    {"key", json_text(preference.first.second)},
                    {"value", json_bytes(preference.second)}};
    });
    document["messages"] = json_list(project.messages, [](const Message& message) {
        return Json{{"text", json_text(message.text)}, {"code", message.code ? Json(*message.code) : Json()}};
    });
    return document;
}

Json conformance_to_json(const ConformanceReport& report) {
    Json document = Json::object();
    document["clean"] = report.clean();
    document["problems"] = json_list(report.violations(), json_finding);
    document["notes"] = json_list(report.notes(), json_finding);
    document["dropped"] = report.dropped();
    return document;
}

}  // namespace embedded
