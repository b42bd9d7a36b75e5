#pragma once

#include <cstddef>

#include "host/host_interface.h"

class AEGP_SuiteHandler;

/// The streams of a layer that are being worked on. Each that was fetched is given back to the host in the
/// order of fetching, at the latest when the object goes, on whatever path.
class LayerStreams {
  public:
    LayerStreams(AEGP_SuiteHandler& suites, AEGP_LayerH layer);
    ~LayerStreams() { Dispose(); }
    LayerStreams(const LayerStreams&) = delete;
    LayerStreams& operator=(const LayerStreams&) = delete;

    /// No layer is worked on with more streams at once: a null's.
    static constexpr std::size_t kMaxStreams = 4;

    /// Fetches one more stream of the layer. Returns the host's error code; `*stream` stays null when the
    /// layer has no such stream.
    A_Err Fetch(AEGP_LayerStream which, AEGP_StreamRefH* stream);

    /// Disposes of every stream, also when the disposal of one fails. Returns the first error.
    A_Err Dispose();

  private:
    const AEGP_StreamSuite7* suite_;
    AEGP_LayerH layer_;
    AEGP_StreamRefH streams_[kMaxStreams] = {};
    std::size_t count_ = 0;
};

/// Values of streams of one and of three dimensions. What a stream does not use is 0.
AEGP_StreamVal one_d_value(A_FpLong number);
AEGP_StreamVal three_d_value(A_FpLong x, A_FpLong y, A_FpLong z);

/// Sets the constant value of `stream`. Returns the host's error code.
A_Err set_stream_value(AEGP_SuiteHandler& suites, AEGP_StreamRefH stream, const AEGP_StreamVal& value);

/// Keyframes being added to one stream. The stream stays its owner's; nothing is given back here, so
/// additions that were not ended are dropped by the host.
class StreamTrack {
  public:
    /// Begins adding keyframes to `stream`. Like every operation below it returns the host's error code.
    A_Err Start(AEGP_SuiteHandler& suites, AEGP_StreamRefH stream);

    /// Adds a key at `time`, in layer time, with the host's defaults for everything; the next SetKey gives
    /// its value.
    A_Err AddKey(const A_Time& time);
    A_Err SetKey(const AEGP_StreamVal& value);

    /// Has the host take the keys over.
    A_Err End();

  private:
    const AEGP_KeyframeSuite3* suite_ = nullptr;
    AEGP_StreamRefH stream_ = nullptr;
    AEGP_AddKeyframesInfoH info_ = nullptr;
    A_long key_index_ = 0;
};
