// "AEGP Stream Suite" 7 and "AEGP Keyframe Suite" 3: the properties of layers and their keys.

#include "embedded/layer_model.h"
#include "embedded/suites/host_call.h"
#include "embedded/suites/suite_tables.h"

namespace embedded {
namespace {

constexpr char kStreamGone[] = "stream does not exist on the layer any more";

/// The stream behind a handle.
Stream& stream_behind(Session& session, Id stream_ref) {
    const Session::StreamRef& ref = session.stream_refs[Project::index(stream_ref)];
    Stream* stream = fetch_stream(session, session.layer(ref.layer), ref.kind);
    if (stream == nullptr) {
        session.refuse(RuleViolation::bad_argument, kStreamGone);
    }
    return *stream;
}

/// The shape of that stream's values.
StreamShape shape_behind(Session& session, Id stream_ref) {
    const Session::StreamRef& ref = session.stream_refs[Project::index(stream_ref)];
    const auto shape = stream_shape(session.layer(ref.layer), ref.kind);
    if (!shape) {
        session.refuse(RuleViolation::bad_argument, kStreamGone);
    }
    return *shape;
}

/// A value must name the stream that it is set on.
void check_value(Session& session, const AEGP_StreamValue* value, Id stream_ref) {
    session.require(value, "value");
    session.require_true(session.id(value->stream, "value.stream") == stream_ref, "value.stream",
                         "is another stream");
}

A_Err get_layer_stream(AEGP_PluginID plugin_id, AEGP_LayerH layer, AEGP_LayerStream which,
                       AEGP_StreamRefH* stream) {
    return host_call(
        Fn::AEGP_GetNewLayerStream,
        [&](CallValues& args) {
            args.integer("plugin_id", plugin_id);
            args.handle("layer", layer);
            args.integer("which_stream", which);
        },
        [&](Session& session) -> A_Err {
            session.require_plugin(plugin_id);
            const Id owner = session.id(layer, "layer");
            session.require(stream, "stream");
            session.require_true(fetch_stream(session, session.layer(owner), which) != nullptr,
                                 "which_stream", "does not exist on this layer");
            session.stream_refs.push_back({owner, which});
            *stream = session.handles.make<AEGP_StreamRefH>();
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("stream", *stream); });
}

A_Err dispose_stream(AEGP_StreamRefH stream) {
    return host_call(
        Fn::AEGP_DisposeStream, [&](CallValues& args) { args.handle("stream", stream); },
        [&](Session& session) -> A_Err {
            session.handles.kill(HandleKind::stream, session.id(stream, "stream"));
            return kHostErrorNone;
        });
}

A_Err set_stream_value(AEGP_PluginID plugin_id, AEGP_StreamRefH stream, AEGP_StreamValue* value) {
    return host_call(
        Fn::AEGP_SetStreamValue,
        [&](CallValues& args) {
            args.integer("plugin_id", plugin_id);
            args.handle("stream", stream);
            args.stream_value("value", value);
        },
        [&](Session& session) -> A_Err {
            session.require_plugin(plugin_id);
            const Id ref = session.id(stream, "stream");
            check_value(session, value, ref);
            Stream& set = stream_behind(session, ref);
            session.require_true(set.keyframes.empty(), "stream", "has keys, which decide its value");
            set.value = components_of(value->value, set.shape);
            set.value_set = true;
            session.changed();
            return kHostErrorNone;
        });
}

A_Err start_additions(AEGP_StreamRefH stream, AEGP_AddKeyframesInfoH* additions) {
    return host_call(
        Fn::AEGP_StartAddKeyframes, [&](CallValues& args) { args.handle("stream", stream); },
        [&](Session& session) -> A_Err {
            const Id ref = session.id(stream, "stream");
            session.require(additions, "additions") = session.handles.make<AEGP_AddKeyframesInfoH>();
            session.additions.push_back({ref, {}});
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("additions", *additions); });
}

/// A key's time in layer time. Composition time is later by the layer's offset.
A_Time layer_time(Session& session, const Session::Additions& additions, AEGP_LTimeMode time_mode,
                  const A_Time& time) {
    session.require_true(time_mode == kTimeModeLayer || time_mode == kTimeModeComp, "time_mode",
                         "is neither layer nor composition time");
    if (time_mode == kTimeModeLayer) {
        return time;
    }
    const Session::StreamRef& ref = session.stream_refs[Project::index(additions.stream_ref)];
    const auto converted = subtract_times(time, session.layer(ref.layer).offset);
    session.require_true(converted.has_value(), "time", "is out of range as layer time");
    return *converted;
}

A_Err add_key(AEGP_AddKeyframesInfoH handle, AEGP_LTimeMode time_mode, const A_Time* time,
              A_long* key_index) {
    return host_call(
        Fn::AEGP_AddKeyframes,
        [&](CallValues& args) {
            args.handle("additions", handle);
            args.integer("time_mode", time_mode);
            args.time("time", time);
        },
        [&](Session& session) -> A_Err {
            Session::Additions& additions =
                session.additions[Project::index(session.id(handle, "additions"))];
            session.require_time(time, "time");
            session.require(key_index, "key_index");
            additions.keys.push_back({layer_time(session, additions, time_mode, *time), std::nullopt});
            *key_index = static_cast<A_long>(additions.keys.size()) - 1;
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.integer("key_index", *key_index); });
}

A_Err set_key(AEGP_AddKeyframesInfoH handle, A_long key_index, const AEGP_StreamValue* value) {
    return host_call(
        Fn::AEGP_SetAddKeyframe,
        [&](CallValues& args) {
            args.handle("additions", handle);
            args.integer("key_index", key_index);
            args.stream_value("value", value);
        },
        [&](Session& session) -> A_Err {
            Session::Additions& additions =
                session.additions[Project::index(session.id(handle, "additions"))];
            session.require_true(
                key_index >= 0 && static_cast<std::size_t>(key_index) < additions.keys.size(), "key_index",
                "is not a key of these additions");
            check_value(session, value, additions.stream_ref);
            additions.keys[static_cast<std::size_t>(key_index)].value =
                components_of(value->value, shape_behind(session, additions.stream_ref));
            return kHostErrorNone;
        });
}

A_Err end_additions(A_Boolean add, AEGP_AddKeyframesInfoH handle) {
    return host_call(
        Fn::AEGP_EndAddKeyframes,
        [&](CallValues& args) {
            args.flag("add", add);
            args.handle("additions", handle);
        },
        [&](Session& session) -> A_Err {
            const Id id = session.id(handle, "additions");
            Session::Additions& additions = session.additions[Project::index(id)];
            session.handles.kill(HandleKind::additions, id);
            const std::vector<Session::Additions::Key> keys = std::move(additions.keys);
            additions.keys.clear();
            if (add == 0 || keys.empty()) {
                return kHostErrorNone;
            }
            session.require_true(session.handles.alive(HandleKind::stream, additions.stream_ref), "additions",
                                 "belongs to a stream that was disposed of");
            insert_keyframes(stream_behind(session, additions.stream_ref), keys);
            session.changed();
            return kHostErrorNone;
        });
}

}  // namespace

const AEGP_StreamSuite7* stream_suite() {
    static const AEGP_StreamSuite7 table = [] {
        auto suite = reserved_table<AEGP_StreamSuite7, SuiteId::stream>();
        suite.AEGP_GetNewLayerStream = get_layer_stream;
        suite.AEGP_DisposeStream = dispose_stream;
        suite.AEGP_SetStreamValue = set_stream_value;
        return suite;
    }();
    return &table;
}

const AEGP_KeyframeSuite3* keyframe_suite() {
    static const AEGP_KeyframeSuite3 table = [] {
        auto suite = reserved_table<AEGP_KeyframeSuite3, SuiteId::keyframe>();
        suite.AEGP_StartAddKeyframes = start_additions;
        suite.AEGP_AddKeyframes = add_key;
        suite.AEGP_SetAddKeyframe = set_key;
        suite.AEGP_EndAddKeyframes = end_additions;
        return suite;
    }();
    return &table;
}

}  // namespace embedded
