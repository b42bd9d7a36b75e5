#pragma once

#include <cstddef>

#include "host/host_interface.h"

class AEGP_SuiteHandler;

/// The streams of a layer that are in use. Disposes of them in the order of fetching, at the latest in the
/// destructor.
class LayerStreams {
  public:
    LayerStreams(AEGP_SuiteHandler& suites, AEGP_LayerH layer);
    ~LayerStreams() { Dispose(); }
    LayerStreams(const LayerStreams&) = delete;
    LayerStreams& operator=(const LayerStreams&) = delete;

    /// The most streams in use at once: those of a null.
    static constexpr std::size_t kMaxStreams = 4;

    /// Fetches one more stream of the layer. Returns the host's error code; `*stream` stays null when the
    /// layer has no such stream.
    A_Err Fetch(AEGP_LayerStream which, AEGP_StreamRefH* stream);

    /// Disposes of every stream, even if disposing of one fails. Returns the first error.
    A_Err Dispose();

  private:
    const AEGP_StreamSuite7* suite_;
    AEGP_LayerH layer_;
    AEGP_StreamRefH streams_[kMaxStreams] = {};
    std::size_t count_ = 0;
};

/// Values of one-dimensional and three-dimensional streams. Unused members are 0.
AEGP_StreamVal one_d_value(A_FpLong number);
AEGP_StreamVal three_d_value(A_FpLong x, A_FpLong y, A_FpLong z);

/// Sets the constant value of `stream`. Returns the host's error code.
A_Err set_stream_value(AEGP_SuiteHandler& suites, AEGP_StreamRefH stream, const AEGP_StreamVal& value);

/// Keyframes being added to one stream, which the caller owns. There is no destructor: additions that are not
/// ended are dropped by the host.
class StreamTrack {
  public:
    /// Begins adding keyframes to `stream`. Returns the host's error code, as do all operations below.
    A_Err Start(AEGP_SuiteHandler& suites, AEGP_StreamRefH stream);

    /// Adds a key at `time`, in layer time, with the host's defaults; the next SetKey sets its value.
    A_Err AddKey(const A_Time& time);
    A_Err SetKey(const AEGP_StreamVal& value);

    /// Makes the host accept the keys.
    A_Err End();

  private:
    const AEGP_KeyframeSuite3* suite_ = nullptr;
    AEGP_StreamRefH stream_ = nullptr;
    AEGP_AddKeyframesInfoH info_ = nullptr;
    A_long key_index_ = 0;
};
