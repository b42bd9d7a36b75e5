#pragma once

// Layers and their streams, with the host's own starting values.

#include <optional>
#include <string>

#include "embedded/json_values.h"
#include "embedded/session.h"

namespace embedded {

/// Puts a new layer on top of a composition, with the host's own timing. `source_item` is 0 for cameras,
/// lights and nulls. A camera of a classic host turns towards its point of interest, as the importer expects;
/// in a current host every new layer looks straight ahead.
Layer& add_layer(Session& session, Id composition, LayerKind kind, GivenName name, Id source_item);

/// Sets the type of a light. In a classic host, spot and parallel lights turn towards their points of
/// interest and others do not; in a current host the flag stays as it is.
void set_light_type(const Session& session, Layer& light, AEGP_LightType type);

/// True for footage, and for a composition that does not contain `composition`, at any depth, and is not it.
bool can_add_layer(const Project& project, Id item, Id composition);

/// The duration of stills, and of nulls made without a duration, in this composition.
A_Time still_duration(const Session& session, Id composition);

/// The duration of a layer made from an item.
A_Time natural_duration(const Session& session, Id item, Id composition);

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
