#include <cstddef>
#include <iterator>

#include "composition/build/host_values.h"
#include "composition/build/layer_calls.h"
#include "composition/build/layer_streams.h"
#include "composition/model/scene_object.h"
#include "host/plugin_globals.h"
#include "host/suite_handler.h"

namespace {

// In the order of fetching, starting, adding keys, ending and disposing.
constexpr std::size_t kPosition = 0;
constexpr std::size_t kOrientation = 1;      // camera or light
constexpr std::size_t kPointOfInterest = 2;  // camera or light: the host's anchor point
constexpr std::size_t kYRotation = 1;        // null
constexpr std::size_t kXRotation = 2;        // null
constexpr std::size_t kZRotation = 3;        // null
constexpr AEGP_LayerStream kViewStreams[] = {kLayerStreamPosition, kLayerStreamOrientation,
                                             kLayerStreamAnchorPoint};
constexpr AEGP_LayerStream kNullStreams[] = {kLayerStreamPosition, kLayerStreamYRotation,
                                             kLayerStreamXRotation, kLayerStreamZRotation};

/// The transform streams of one object, each with a track of keys.
class TransformTracks {
  public:
    TransformTracks(AEGP_SuiteHandler& suites, AEGP_LayerH layer, bool is_null)
        : suites_(suites),
          streams_(suites, layer),
          which_(is_null ? kNullStreams : kViewStreams),
          count_(is_null ? std::size(kNullStreams) : std::size(kViewStreams)),
          is_null_(is_null) {}

    /// Fetches every stream. `*complete` is false when the layer lacks any of them.
    A_Err Fetch(bool* complete);
    A_Err Start();
    A_Err AddKey(const tagKeyFrame& key, const A_Time& time);
    A_Err End();
    A_Err Dispose() { return streams_.Dispose(); }

  private:
    A_Err SetViewKey(const tagKeyFrame& key);
    A_Err SetNullKey(const tagKeyFrame& key);

    AEGP_SuiteHandler& suites_;
    LayerStreams streams_;
    const AEGP_LayerStream* which_;
    std::size_t count_;
    bool is_null_;
    AEGP_StreamRefH handles_[LayerStreams::kMaxStreams] = {};
    StreamTrack tracks_[LayerStreams::kMaxStreams];
};

A_Err TransformTracks::Fetch(bool* complete) {
    *complete = true;
    for (std::size_t i = 0; i < count_; ++i) {
        const A_Err err = streams_.Fetch(which_[i], &handles_[i]);
        *complete = err == kHostErrorNone && handles_[i] != nullptr;
        if (!*complete) {
            return err;
        }
    }
    return kHostErrorNone;
}

A_Err TransformTracks::Start() {
    A_Err err = kHostErrorNone;
    for (std::size_t i = 0; i < count_ && err == kHostErrorNone; ++i) {
        err = tracks_[i].Start(suites_, handles_[i]);
    }
    return err;
}

A_Err TransformTracks::AddKey(const tagKeyFrame& key, const A_Time& time) {
    A_Err err = kHostErrorNone;
    for (std::size_t i = 0; i < count_ && err == kHostErrorNone; ++i) {
        err = tracks_[i].AddKey(time);
    }
    if (err != kHostErrorNone) {
        return err;
    }
    return is_null_ ? SetNullKey(key) : SetViewKey(key);
}

A_Err TransformTracks::End() {
    A_Err err = kHostErrorNone;
    for (std::size_t i = 0; i < count_ && err == kHostErrorNone; ++i) {
        err = tracks_[i].End();
    }
    return err;
}

// The host's Y axis points down. The additions of 0.0 and subtractions from 0.0 are deliberate: they turn
// -0.0 into +0.0.
AEGP_StreamVal position_value(const tagKeyFrame& key) {
    const double x = double{key.position[0]} + 0.0;
    const double y = 0.0 - double{key.position[1]};
    const double z = double{key.position[2]};
    return three_d_value(x, y, z);
}

/// The point at the target distance along the view direction, in the host's axes. Sines and cosines come from
/// the host, one call per use in the formulas and in their order.
AEGP_StreamVal point_of_interest_value(AEGP_SuiteHandler& suites, const tagKeyFrame& key) {
    const PF_ANSISuite1* ansi = suites.ANSISuite1();
    const double h = radians_from_degrees(double{key.rotation[0]});
    const double p = radians_from_degrees(double{key.rotation[1]});
    const double d = double{key.targetDistance};

    double cos_p = ansi->cos(p);
    const double sin_h = ansi->sin(h);
    const double x = (-cos_p * sin_h) * d + (double{key.position[0]} + 0.0);

    const double sin_p = ansi->sin(p);
    const double y = 0.0 - (sin_p * d + double{key.position[1]});

    cos_p = ansi->cos(p);
    const double cos_h = ansi->cos(h);
    const double z = (cos_p * cos_h) * d + double{key.position[2]};
    return three_d_value(x, y, z);
}

/// A camera or light: the point of interest alone carries heading and pitch; bank becomes the Z orientation.
A_Err TransformTracks::SetViewKey(const tagKeyFrame& key) {
    const AEGP_StreamVal position = position_value(key);
    const AEGP_StreamVal point_of_interest = point_of_interest_value(suites_, key);
    const AEGP_StreamVal orientation = three_d_value(0.0, 0.0, double{key.rotation[2]});

    A_Err err = tracks_[kPosition].SetKey(position);
    if (err == kHostErrorNone) {
        err = tracks_[kPointOfInterest].SetKey(point_of_interest);
    }
    if (err == kHostErrorNone) {
        err = tracks_[kOrientation].SetKey(orientation);
    }
    return err;
}

/// A null: three angles in degrees. A Y rotation of 0 is deliberately sent as -0.0, the negation of what was
/// written.
A_Err TransformTracks::SetNullKey(const tagKeyFrame& key) {
    A_Err err = tracks_[kPosition].SetKey(position_value(key));
    if (err == kHostErrorNone) {
        err = tracks_[kXRotation].SetKey(one_d_value(double{key.rotation[0]}));
    }
    if (err == kHostErrorNone) {
        err = tracks_[kYRotation].SetKey(one_d_value(-double{key.rotation[1]}));
    }
    if (err == kHostErrorNone) {
        err = tracks_[kZRotation].SetKey(one_d_value(double{key.rotation[2]}));
    }
    return err;
}

}  // namespace

int CSceneObject::Add(AEGP_SuiteHandler* suites, AEGP_CompH /*comp*/, A_long /*width*/, A_long /*height*/,
                      A_long fps, A_long from, A_long to, int setTimes, int local) {
    if (setTimes != 0 && set_layer_timing(*suites, layerH, fps, from, to, local) != kHostErrorNone) {
        return 0;
    }

    TransformTracks tracks(*suites, layerH, isNull != 0);
    bool complete = false;
    if (tracks.Fetch(&complete) != kHostErrorNone) {
        return 0;
    }
    if (!complete) {
        return 1;  // deliberately not a failure: the layer stays, without keys
    }
    // From here on a failure deliberately disposes of the streams without ending the additions: ending them
    // would make the host accept an incomplete track.
    if (tracks.Start() != kHostErrorNone) {
        return 0;
    }
    for (A_long i = 0; i < keyCount; ++i) {
        if (tracks.AddKey(*keys[i], key_time(keys[i]->frame, from, fps)) != kHostErrorNone) {
            return 0;
        }
    }
    if (tracks.End() != kHostErrorNone) {
        return 0;
    }
    return tracks.Dispose() == kHostErrorNone ? 1 : 0;
}

int CNull::Add(AEGP_SuiteHandler* suites, AEGP_CompH comp, A_long width, A_long height, A_long fps,
               A_long from, A_long to, int setTimes, int local) {
    layerH = nullptr;
    const A_Err err = suites->CompSuite9()->AEGP_CreateNullInComp(name != nullptr ? name : g_pCh_Unknown_null,
                                                                  comp, nullptr, &layerH);
    if (err != kHostErrorNone || layerH == nullptr) {
        return 0;
    }
    // Deliberately ignores the result: a 2D null still carries what it can.
    suites->LayerSuite11()->AEGP_SetLayerFlag(layerH, kLayerFlag3D, 1);
    return CSceneObject::Add(suites, comp, width, height, fps, from, to, setTimes, local) != 0 ? 1 : 0;
}
