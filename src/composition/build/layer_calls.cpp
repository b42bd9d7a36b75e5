#include "composition/build/layer_calls.h"

#include "composition/build/host_values.h"
#include "composition/model/composition.h"
#include "host/suite_handler.h"

A_Err add_item_as_layer(AEGP_SuiteHandler& suites, AEGP_ItemH item, AEGP_CompH comp, AEGP_LayerH* layer) {
    // Deliberately checks only the error, not the answer: adding the layer gives the same answer, with a
    // reason.
    A_Boolean valid = 0;
    const A_Err err = suites.LayerSuite11()->AEGP_IsAddLayerValid(item, comp, &valid);
    if (err != kHostErrorNone) {
        return err;
    }
    *layer = nullptr;
    return require_handle(suites.LayerSuite11()->AEGP_AddLayer(item, comp, layer), *layer);
}

A_Err set_layer_blend_mode(AEGP_SuiteHandler& suites, AEGP_LayerH layer, A_long blend_mode) {
    // Read first, so that flags and track matte are set back unchanged.
    AEGP_LayerTransferMode mode{};
    const A_Err err = suites.LayerSuite11()->AEGP_GetLayerTransferMode(layer, &mode);
    if (err != kHostErrorNone) {
        return err;
    }
    if (blend_mode == kBlendNormal) {
        mode.mode = kTransferModeNormal;
    } else if (blend_mode == kBlendAdd) {
        mode.mode = kTransferModeAdd;
    } else if (blend_mode == kBlendMultiply) {
        mode.mode = kTransferModeMultiply;
    }
    return suites.LayerSuite11()->AEGP_SetLayerTransferMode(layer, &mode);
}

A_Err set_layer_timing(AEGP_SuiteHandler& suites, AEGP_LayerH layer, A_long fps, A_long from, A_long to,
                       A_long local) {
    const A_Time start = layer_start(from, fps, local);
    const A_Err err = suites.LayerSuite11()->AEGP_SetLayerOffset(layer, &start);
    if (err != kHostErrorNone) {
        return err;
    }
    const A_Time in_point = frames_time(0, fps);
    const A_Time duration = range_duration(from, to, fps);
    return suites.LayerSuite11()->AEGP_SetLayerInPointAndDuration(layer, kTimeModeLayer, &in_point,
                                                                  &duration);
}
