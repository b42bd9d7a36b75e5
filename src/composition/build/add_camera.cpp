#include "composition/build/host_values.h"
#include "composition/build/layer_streams.h"
#include "composition/model/scene_object.h"
#include "host/plugin_globals.h"
#include "host/suite_handler.h"
#include "system/trigonometry.h"

namespace {

/// The host's zoom is the distance, in pixels, at which the composition's width fills the view. A field of
/// view of 0 degrees deliberately becomes an infinite zoom: nothing guards against it.
AEGP_StreamVal zoom_value(const tagKeyFrame& key, A_long width) {
    const double half_view = radians_from_degrees(double{key.fov}) * 0.5;
    return one_d_value((width * 0.5) / os::tangent(half_view));
}

A_Err add_zoom_keys(StreamTrack& track, const CCamera& camera, A_long width, A_long fps, A_long from) {
    A_Err err = kHostErrorNone;
    for (A_long i = 0; i < camera.keyCount && err == kHostErrorNone; ++i) {
        const tagKeyFrame& key = *camera.keys[i];
        err = track.AddKey(key_time(key.frame, from, fps));
        if (err == kHostErrorNone) {
            err = track.SetKey(zoom_value(key, width));
        }
    }
    return err;
}

int add_zoom(AEGP_SuiteHandler& suites, const CCamera& camera, A_long width, A_long fps, A_long from) {
    LayerStreams streams(suites, camera.layerH);
    AEGP_StreamRefH zoom = nullptr;
    if (streams.Fetch(kLayerStreamZoom, &zoom) != kHostErrorNone || zoom == nullptr) {
        return 0;
    }
    // Deliberately sets a value that the keys then replace: the call is part of the expected order of calls.
    // Without keys there is no zoom to set, and the call is left out.
    if (camera.keyCount > 0 &&
        set_stream_value(suites, zoom, zoom_value(*camera.keys[0], width)) != kHostErrorNone) {
        return 0;
    }
    StreamTrack track;
    if (track.Start(suites, zoom) != kHostErrorNone) {
        return 0;
    }
    // Deliberately ignores the result: a failing key ends the track early, and the keys added so far are
    // kept.
    add_zoom_keys(track, camera, width, fps, from);
    const A_Err ended = track.End();
    const A_Err disposed = streams.Dispose();
    return ended == kHostErrorNone && disposed == kHostErrorNone ? 1 : 0;
}

}  // namespace

int CCamera::Add(AEGP_SuiteHandler* suites, AEGP_CompH comp, A_long width, A_long height, A_long fps,
                 A_long from, A_long to, int setTimes, int local) {
    layerH = nullptr;
    const A_Err err = suites->CompSuite9()->AEGP_CreateCameraInComp(
        name != nullptr ? name : g_pCh_Unknown_camera, center_point(width, height), comp, &layerH);
    if (err != kHostErrorNone || layerH == nullptr) {
        return 0;
    }
    if (CSceneObject::Add(suites, comp, width, height, fps, from, to, setTimes, local) == 0) {
        return 0;
    }
    return add_zoom(*suites, *this, width, fps, from);
}
