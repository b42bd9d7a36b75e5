#include "composition/build/layer_streams.h"

#include "composition/build/host_values.h"
#include "host/plugin_globals.h"
#include "host/suite_handler.h"

LayerStreams::LayerStreams(AEGP_SuiteHandler& suites, AEGP_LayerH layer)
    : suite_(suites.StreamSuite7()), layer_(layer) {}

A_Err LayerStreams::Fetch(AEGP_LayerStream which, AEGP_StreamRefH* stream) {
    *stream = nullptr;
    if (count_ == kMaxStreams) {
        return kHostErrorGeneric;
    }
    AEGP_StreamRefH fetched = nullptr;
    const A_Err err = suite_->AEGP_GetNewLayerStream(g_PluginID, layer_, which, &fetched);
    if (err != kHostErrorNone || fetched == nullptr) {
        return err;
    }
    streams_[count_++] = fetched;
    *stream = fetched;
    return kHostErrorNone;
}

A_Err LayerStreams::Dispose() {
    A_Err first_error = kHostErrorNone;
    for (std::size_t i = 0; i < count_; ++i) {
        const A_Err err = suite_->AEGP_DisposeStream(streams_[i]);
        if (first_error == kHostErrorNone) {
            first_error = err;
        }
    }
    count_ = 0;
    return first_error;
}

AEGP_StreamVal one_d_value(A_FpLong number) {
    AEGP_StreamVal value{};
    value.one_d = number;
    return value;
}

AEGP_StreamVal three_d_value(A_FpLong x, A_FpLong y, A_FpLong z) {
    AEGP_StreamVal value{};
    value.three_d = {x, y, z};
    return value;
}

A_Err set_stream_value(AEGP_SuiteHandler& suites, AEGP_StreamRefH stream, const AEGP_StreamVal& value) {
    AEGP_StreamValue set = {stream, value};
    return suites.StreamSuite7()->AEGP_SetStreamValue(g_PluginID, stream, &set);
}

A_Err StreamTrack::Start(AEGP_SuiteHandler& suites, AEGP_StreamRefH stream) {
    suite_ = suites.KeyframeSuite3();
    stream_ = stream;
    return require_handle(suite_->AEGP_StartAddKeyframes(stream, &info_), info_);
}

A_Err StreamTrack::AddKey(const A_Time& time) {
    return suite_->AEGP_AddKeyframes(info_, kTimeModeLayer, &time, &key_index_);
}

A_Err StreamTrack::SetKey(const AEGP_StreamVal& value) {
    const AEGP_StreamValue key = {stream_, value};
    return suite_->AEGP_SetAddKeyframe(info_, key_index_, &key);
}

A_Err StreamTrack::End() {
    constexpr A_Boolean kAdd = 1;
    return suite_->AEGP_EndAddKeyframes(kAdd, info_);
}
