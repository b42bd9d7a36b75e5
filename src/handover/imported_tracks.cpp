#include "handover/imported_tracks.h"

#include <algorithm>
#include <cmath>

namespace handover {
namespace {

struct StreamRow {
    AEGP_LayerStream kind;
    Property property;
};

// In the order in which the importer fetches them.
constexpr StreamRow kStreams[] = {
    {kLayerStreamPosition, Property::position},    {kLayerStreamAnchorPoint, Property::anchor},
    {kLayerStreamScale, Property::scale},          {kLayerStreamOrientation, Property::orientation},
    {kLayerStreamXRotation, Property::rotate_x},   {kLayerStreamYRotation, Property::rotate_y},
    {kLayerStreamZRotation, Property::rotate_z},   {kLayerStreamZoom, Property::zoom},
    {kLayerStreamColor, Property::color},          {kLayerStreamIntensity, Property::intensity},
    {kLayerStreamConeAngle, Property::cone_angle}, {kLayerStreamCastsShadows, Property::casts_shadows},
};

struct Value {
    std::array<double, 3> numbers{};
    std::size_t count = 1;
};

Value value_of(const embedded::StreamComponents& value, const embedded::Stream& stream, Property property) {
    switch (stream.shape) {
        case embedded::StreamShape::color:
            return {{value[1], value[2], value[3]}, 3};
        case embedded::StreamShape::two_d:
            // The third number of a scale is 100 in a layer without depth, and 0 of anything else.
            return {{value[0], value[1], property == Property::scale ? 100.0 : 0.0}, 3};
        case embedded::StreamShape::three_d:
            return {{value[0], value[1], value[2]}, 3};
        case embedded::StreamShape::one_d:
            break;
    }
    return {{value[0]}, 1};
}

bool can_be_set(const Value& value, Property property) {
    if (property == Property::zoom && std::isinf(value.numbers[0])) {
        return true;
    }
    return std::all_of(value.numbers.begin(), value.numbers.end(),
                       [](double number) { return std::isfinite(number); });
}

void append(std::vector<double>& values, const Value& value) {
    const auto* const begin = value.numbers.data();
    values.insert(values.end(), begin, begin + value.count);
}

Track track_of(const embedded::Stream& stream, Property property, double rate_fps) {
    Track track;
    track.property = property;
    if (stream.keyframes.empty()) {
        const Value value = value_of(stream.value, stream, property);
        if (stream.value_set && can_be_set(value, property)) {
            append(track.values, value);
        }
        return track;
    }
    track.frames.reserve(stream.keyframes.size());
    track.values.reserve(stream.keyframes.size() * component_count(property));
    for (const embedded::Keyframe& key : stream.keyframes) {
        const Value value = value_of(key.value, stream, property);
        if (can_be_set(value, property)) {
            track.frames.push_back(frames_of(key.time, rate_fps));
            append(track.values, value);
        }
    }
    return track;
}

}  // namespace

double frames_of(const A_Time& time, double rate_fps) {
    return time.scale == 0 ? 0 : time.value * rate_fps / static_cast<double>(time.scale);
}

std::vector<Track> imported_tracks(const embedded::Layer& layer, double rate_fps) {
    std::vector<Track> tracks;
    for (const StreamRow& row : kStreams) {
        const auto stream = layer.streams.find(row.kind);
        if (stream == layer.streams.end()) {
            continue;
        }
        Track track = track_of(stream->second, row.property, rate_fps);
        if (!track.values.empty()) {
            tracks.push_back(std::move(track));
        }
    }
    return tracks;
}

}  // namespace handover
