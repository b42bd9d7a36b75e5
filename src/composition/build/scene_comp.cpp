#include "composition/build/scene_comp.h"

#include "composition/build/host_values.h"
#include "composition/build/layer_calls.h"
#include "composition/build/layer_streams.h"
#include "composition/model/project_settings.h"
#include "host/plugin_globals.h"
#include "host/suite_handler.h"

namespace {

/// The cameras' composition has square pixels, so its layer is scaled by the root's pixel aspect.
A_Err stretch_layer(AEGP_SuiteHandler& suites, AEGP_LayerH layer, float aspect) {
    LayerStreams streams(suites, layer);
    AEGP_StreamRefH stream = nullptr;
    const A_Err err = streams.Fetch(kLayerStreamScale, &stream);
    // A layer without a scale stream stays as it is.
    if (err != kHostErrorNone || stream == nullptr) {
        return err;
    }
    AEGP_StreamVal scale{};
    scale.two_d = {100.0, static_cast<A_FpLong>(aspect) * 100.0};
    // Disposal errors are deliberately ignored: the scale is already set.
    return set_stream_value(suites, stream, scale);
}

A_Err create_scene_comp(AEGP_SuiteHandler& suites, const tagProjectSettings& settings, AEGP_CompH* comp) {
    const AEGP_CompSuite9* comps = suites.CompSuite9();
    const A_Ratio pixel_aspect = pixel_aspect_ratio(settings.aspect);
    const A_Time duration = frames_time(settings.range, settings.fps);
    const A_Ratio frame_rate = frame_rate_ratio(settings.fps);
    A_Err err = comps->AEGP_CreateComp(settings.firstFolder, "Camera+Light", settings.width, settings.height,
                                       &pixel_aspect, &duration, &frame_rate, comp);
    err = require_handle(err, *comp);
    if (err != kHostErrorNone) {
        return err;
    }

    AEGP_ItemH comp_item = nullptr;
    err = comps->AEGP_GetItemFromComp(*comp, &comp_item);
    err = require_handle(err, comp_item);
    if (err != kHostErrorNone) {
        return err;
    }

    AEGP_CompH root = nullptr;
    err = comps->AEGP_GetCompFromItem(settings.firstCompItem, &root);
    err = require_handle(err, root);
    if (err != kHostErrorNone) {
        return err;
    }

    AEGP_LayerH layer = nullptr;
    err = add_item_as_layer(suites, comp_item, root, &layer);
    if (err != kHostErrorNone) {
        return err;
    }
    return stretch_layer(suites, layer, settings.aspect);
}

}  // namespace

A_Err add_scene_objects(AEGP_SuiteHandler& suites, tagProjectSettings& settings) {
    if (settings.objects.First() == nullptr) {
        return kHostErrorNone;
    }
    AEGP_CompH comp = settings.composition.compH;
    if (settings.aspect != 1.0F && settings.firstFolder != nullptr && settings.firstCompItem != nullptr) {
        comp = nullptr;
        const A_Err err = create_scene_comp(suites, settings, &comp);
        if (err != kHostErrorNone) {
            return err;
        }
    }
    // Deliberate: a scene that consists of frame 0 is a still, and its objects keep the length that the host
    // gives them.
    const int set_times = settings.from != 0 || settings.to != 0 ? 1 : 0;
    for (CSceneObject* object = settings.objects.First(); object != nullptr;
         object = settings.objects.Next(object)) {
        if (object->Add(&suites, comp, settings.width, settings.height, settings.fps, settings.from,
                        settings.to, set_times, settings.local) == 0) {
            break;
        }
    }
    return kHostErrorNone;
}
