#include "composition/build/stream_track.h"

#include "composition/build/host_values.h"
#include "host/suite_handler.h"

A_Err StreamTrack::Start(AEGP_SuiteHandler& suites, AEGP_StreamRefH stream) {
    suite_ = suites.KeyframeSuite3();
    stream_ = stream;
    return error_unless_yielded(suite_->AEGP_StartAddKeyframes(stream, &info_), info_);
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
