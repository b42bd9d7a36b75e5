// "AEGP Item Suite" 10, "AEGP Comp Suite" 9 and "AEGP Light Suite" 2: items and layers with names in UTF-16,
// and cameras and lights that turn towards their points of interest. The scene's heading and pitch travel
// only in the point of interest, and a current host ignores it until the layer's flag is set.

#include "host/bridge/basic_suite.h"
#include "host/bridge/guarded_call.h"
#include "host/bridge/name_translation.h"
#include "host/bridge/reports.h"
#include "host/bridge/underlying_host.h"

namespace bridge {
namespace {

void look_at_point_of_interest(AEGP_LayerH layer) {
    const HostSuite<AEGP_LayerSuite11> layers("AEGP Layer Suite", 11);
    const auto set_flag = [&] {
        return layers.get()->AEGP_SetLayerFlag(layer, kLayerFlagLookAtPointOfInterest, 1);
    };
    if (layers.get() == nullptr || answer_of(set_flag) != kHostErrorNone) {
        report_not_aimed();
    }
}

/// Creates something with a name, which is the host's first argument.
template <auto Function>
struct Create;

template <typename Suite, typename... Arguments,
          A_Err (*Suite::*Function)(const A_UTF16Char* name, Arguments...)>
struct Create<Function> {
    static A_Err call(const A_char* name, Arguments... arguments) {
        return with_wide_name(
            name, [=](const A_UTF16Char* wide) { return Forward<Function>::call(wide, arguments...); });
    }
};

A_Err create_comp(AEGP_ItemH parent_folder, const A_char* name, A_long width, A_long height,
                  const A_Ratio* pixel_aspect, const A_Time* duration, const A_Ratio* frame_rate,
                  AEGP_CompH* comp) {
    return with_wide_name(name, [=](const A_UTF16Char* wide) {
        return Forward<&AEGP_CompSuite15::AEGP_CreateComp>::call(parent_folder, wide, width, height,
                                                                 pixel_aspect, duration, frame_rate, comp);
    });
}

using CreateCamera = A_Err (*)(const A_char* name, A_FloatPoint center, AEGP_CompH comp, AEGP_LayerH* layer);

/// Creates a camera through `Function` and aims it.
template <CreateCamera Function>
A_Err create_aimed_camera(const A_char* name, A_FloatPoint center, AEGP_CompH comp, AEGP_LayerH* layer) {
    const A_Err err = Function(name, center, comp, layer);
    if (err == kHostErrorNone && layer != nullptr && *layer != nullptr) {
        look_at_point_of_interest(*layer);
    }
    return err;
}

A_Err set_light_type(AEGP_LayerH layer, AEGP_LightType type) {
    const A_Err err = Forward<&AEGP_LightSuite2::AEGP_SetLightType>::call(layer, type);
    // Point and ambient lights shine in every direction.
    if (err == kHostErrorNone && (type == kLightTypeSpot || type == kLightTypeParallel)) {
        look_at_point_of_interest(layer);
    }
    return err;
}

}  // namespace

const AEGP_ItemSuite10* item_suite() {
    static constexpr AEGP_ItemSuite10 kTable = [] {
        AEGP_ItemSuite10 suite = {};
        suite.AEGP_CreateNewFolder = Create<&AEGP_ItemSuite13::AEGP_CreateNewFolder>::call;
        return suite;
    }();
    return &kTable;
}

const AEGP_CompSuite9* comp_suite() {
    static constexpr AEGP_CompSuite9 kTable = [] {
        using Current = AEGP_CompSuite15;
        AEGP_CompSuite9 suite = {};
        suite.AEGP_GetCompFromItem = Forward<&Current::AEGP_GetCompFromItem>::call;
        suite.AEGP_GetItemFromComp = Forward<&Current::AEGP_GetItemFromComp>::call;
        suite.AEGP_CreateCameraInComp = create_aimed_camera<Create<&Current::AEGP_CreateCameraInComp>::call>;
        suite.AEGP_CreateLightInComp = Create<&Current::AEGP_CreateLightInComp>::call;
        suite.AEGP_CreateComp = create_comp;
        suite.AEGP_CreateNullInComp = Create<&Current::AEGP_CreateNullInComp>::call;
        return suite;
    }();
    return &kTable;
}

const AEGP_CompSuite9* narrow_comp_suite() {
    static constexpr AEGP_CompSuite9 kTable = [] {
        using Current = AEGP_CompSuite9;
        AEGP_CompSuite9 suite = {};
        suite.AEGP_GetCompFromItem = Forward<&Current::AEGP_GetCompFromItem>::call;
        suite.AEGP_GetItemFromComp = Forward<&Current::AEGP_GetItemFromComp>::call;
        suite.AEGP_CreateCameraInComp = create_aimed_camera<Forward<&Current::AEGP_CreateCameraInComp>::call>;
        suite.AEGP_CreateLightInComp = Forward<&Current::AEGP_CreateLightInComp>::call;
        suite.AEGP_CreateComp = Forward<&Current::AEGP_CreateComp>::call;
        suite.AEGP_CreateNullInComp = Forward<&Current::AEGP_CreateNullInComp>::call;
        return suite;
    }();
    return &kTable;
}

const AEGP_LightSuite2* light_suite() {
    static constexpr AEGP_LightSuite2 kTable = [] {
        AEGP_LightSuite2 suite = {};
        suite.AEGP_SetLightType = set_light_type;
        return suite;
    }();
    return &kTable;
}

}  // namespace bridge
