#include "composition/build/host_values.h"
#include "composition/build/layer_streams.h"
#include "composition/model/scene_object.h"
#include "host/plugin_globals.h"
#include "host/suite_handler.h"

namespace {

/// The host has no tube and area lights, and its parallel lights have no cone.
AEGP_LightType host_light_type(A_long light_type) {
    switch (light_type) {
        case kLightSpot:
            return kLightTypeSpot;
        case kLightParallel:
        case kLightParallelSpot:
            return kLightTypeParallel;
        default:
            return kLightTypePoint;
    }
}

enum class Step { done, failed, no_stream };

/// Fetches a stream of the light, sets its value unless `value` is null, and disposes of it.
Step set_light_stream(AEGP_SuiteHandler& suites, AEGP_LayerH layer, AEGP_LayerStream which,
                      const AEGP_StreamVal* value) {
    LayerStreams streams(suites, layer);
    AEGP_StreamRefH stream = nullptr;
    if (streams.Fetch(which, &stream) != kHostErrorNone) {
        return Step::failed;
    }
    if (stream == nullptr) {
        return Step::no_stream;
    }
    if (value != nullptr && set_stream_value(suites, stream, *value) != kHostErrorNone) {
        return Step::failed;
    }
    return streams.Dispose() == kHostErrorNone ? Step::done : Step::failed;
}

AEGP_StreamVal color_value(const float (&color)[3]) {
    AEGP_StreamVal value{};
    value.color = {1.0, double{color[0]}, double{color[1]}, double{color[2]}};
    return value;
}

Step set_light_streams(AEGP_SuiteHandler& suites, const CLight& light) {
    const AEGP_StreamVal color = color_value(light.color);
    // Percent, multiplied in single precision and then widened.
    const float percent = light.intensity * 100.0F;
    const AEGP_StreamVal intensity = one_d_value(double{percent});
    // Deliberately says only whether there is a shadow: the host has a single kind, which SOFT, HARD and AREA
    // become.
    const AEGP_StreamVal casts_shadows = one_d_value(light.shadowType != kShadowNone ? 1.0 : 0.0);

    const struct {
        const AEGP_StreamVal* value;
        AEGP_LayerStream which;
        bool present;
    } steps[] = {
        {&color, kLayerStreamColor, true},
        {&intensity, kLayerStreamIntensity, true},
        {&casts_shadows, kLayerStreamCastsShadows, true},
        // Deliberately fetched and disposed of without setting a value: a spot keeps the host's cone,
        // whatever ANGLE says.
        {nullptr, kLayerStreamConeAngle, light.lightType == kLightSpot},
    };
    for (const auto& step : steps) {
        if (!step.present) {
            continue;
        }
        const Step result = set_light_stream(suites, light.layerH, step.which, step.value);
        if (result != Step::done) {
            return result;
        }
    }
    return Step::done;
}

}  // namespace

int CLight::Add(AEGP_SuiteHandler* suites, AEGP_CompH comp, A_long width, A_long height, A_long fps,
                A_long from, A_long to, int setTimes, int local) {
    layerH = nullptr;
    const A_Err err = suites->CompSuite9()->AEGP_CreateLightInComp(
        name != nullptr ? name : g_pCh_Unknown_light, center_point(width, height), comp, &layerH);
    if (err != kHostErrorNone || layerH == nullptr) {
        return 0;
    }
    if (CSceneObject::Add(suites, comp, width, height, fps, from, to, setTimes, local) == 0) {
        return 0;
    }
    // Deliberately ignores the result: a light of the host's default type is better than none.
    suites->LightSuite2()->AEGP_SetLightType(layerH, host_light_type(lightType));
    // A stream that the light lacks ends the steps without an error.
    return set_light_streams(*suites, *this) == Step::failed ? 0 : 1;
}
