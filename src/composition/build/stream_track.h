#pragma once

#include "host/host_interface.h"

class AEGP_SuiteHandler;

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
