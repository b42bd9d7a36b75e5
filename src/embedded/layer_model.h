#pragma once

// Layers and their streams: what a host knows about them before the bundle says anything.

#include <optional>
#include <string>

#include "embedded/json_values.h"
#include "embedded/session.h"

namespace embedded {

/// Puts a new layer on top of a composition, with the host's own timing. `source_item` is 0 for cameras,
/// lights and nulls.
Layer& add_layer(Session& session, Id composition, LayerKind kind, std::string name, Id source_item);

/// True when the item can become a layer of the composition: footage, or a composition that does not contain
/// it.
bool can_add_layer(const Project& project, Id item, Id composition);

/// How long an item lasts: a still as long as the composition that it is put into.
A_Time natural_duration(const Project& project, Id item, Id composition);

/// Which members of the stream's value count on this layer; nothing when the layer has no such stream.
std::optional<StreamShape> stream_shape(const Layer& layer, AEGP_LayerStream kind);

/// The stream of a layer, made with the host's starting value when it is fetched for the first time. Nothing
/// when the layer has no such stream.
Stream* fetch_stream(Session& session, Layer& layer, AEGP_LayerStream kind);

/// Puts keys into a stream: sorted by time, and one that falls on the time of an older one replaces it. Keys
/// without a value take the stream's.
void insert_keyframes(Stream& stream, const std::vector<Session::Additions::Key>& keys);

/// The members that count; the others, which the bundle need not have filled, are not read and stay 0.
StreamComponents components_of(const AEGP_StreamVal& value, StreamShape shape);
/// A number, {"x","y"}, {"x","y","z"} or {"alpha","red","green","blue"}.
Json json_components(const StreamComponents& components, StreamShape shape);

/// -1, 0 or 1; exact.
int compare_times(const A_Time& left, const A_Time& right);
/// left - right; nothing when it does not fit a time.
std::optional<A_Time> subtract_times(const A_Time& left, const A_Time& right);

}  // namespace embedded
