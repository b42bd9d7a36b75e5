#pragma once

// Layers and their streams, with the host's own starting values.

#include <optional>
#include <string>

#include "embedded/json_values.h"
#include "embedded/session.h"

namespace embedded {

/// Puts a new layer on top of a composition, with the host's own timing. `source_item` is 0 for cameras,
/// lights and nulls.
Layer& add_layer(Session& session, Id composition, LayerKind kind, std::string name, Id source_item);

/// True for footage, and for a composition that does not contain `composition`, at any depth, and is not it.
bool can_add_layer(const Project& project, Id item, Id composition);

/// The duration of a layer made from an item; a still lasts as long as the composition that it is added to.
A_Time natural_duration(const Project& project, Id item, Id composition);

/// Which members of the stream's value this layer uses; nothing when the layer has no such stream.
std::optional<StreamShape> stream_shape(const Layer& layer, AEGP_LayerStream kind);

/// The stream of a layer; the first call creates it with the host's starting value. Null when the layer has
/// no such stream.
Stream* fetch_stream(Session& session, Layer& layer, AEGP_LayerStream kind);

/// Inserts keys into a stream by time. A key at the time of an older one replaces it; a key without a value
/// takes the stream's.
void insert_keyframes(Stream& stream, const std::vector<Session::Additions::Key>& keys);

/// The members that the shape uses; the others are not read, since the bundle need not set them, and stay 0.
StreamComponents components_of(const AEGP_StreamVal& value, StreamShape shape);
/// A number, {"x","y"}, {"x","y","z"} or {"alpha","red","green","blue"}.
Json json_components(const StreamComponents& components, StreamShape shape);

/// -1, 0 or 1; exact.
int compare_times(const A_Time& left, const A_Time& right);
/// left - right; nothing when it does not fit a time.
std::optional<A_Time> subtract_times(const A_Time& left, const A_Time& right);

}  // namespace embedded
