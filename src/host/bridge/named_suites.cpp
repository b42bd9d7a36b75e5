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

A_Err create_folder(const A_char* name, AEGP_ItemH parent, AEGP_ItemH* folder) {
    const auto* suite = current_suite<AEGP_ItemSuite13>();
    if (suite == nullptr) {
        return kHostErrorMissingSuite;
    }
    return with_wide_name(
        name, [=](const A_UTF16Char* wide) { return suite->AEGP_CreateNewFolder(wide, parent, folder); });
}

A_Err create_comp(AEGP_ItemH parent_folder, const A_char* name, A_long width, A_long height,
                  const A_Ratio* pixel_aspect, const A_Time* duration, const A_Ratio* frame_rate,
                  AEGP_CompH* comp) {
    const auto* suite = current_suite<AEGP_CompSuite15>();
    if (suite == nullptr) {
        return kHostErrorMissingSuite;
    }
    return with_wide_name(name, [=](const A_UTF16Char* wide) {
        return suite->AEGP_CreateComp(parent_folder, wide, width, height, pixel_aspect, duration, frame_rate,
                                      comp);
    });
}

// Aims a camera that the host has just made.
A_Err aimed(A_Err err, const AEGP_LayerH* layer) {
    if (err == kHostErrorNone && layer != nullptr && *layer != nullptr) {
        look_at_point_of_interest(*layer);
    }
    return err;
}

A_Err create_camera(const A_char* name, A_FloatPoint center, AEGP_CompH comp, AEGP_LayerH* layer) {
    const auto* suite = current_suite<AEGP_CompSuite15>();
    if (suite == nullptr) {
        return kHostErrorMissingSuite;
    }
    return with_wide_name(name, [=](const A_UTF16Char* wide) {
        return aimed(answer_of([=] { return suite->AEGP_CreateCameraInComp(wide, center, comp, layer); }),
                     layer);
    });
}

A_Err create_narrow_camera(const A_char* name, A_FloatPoint center, AEGP_CompH comp, AEGP_LayerH* layer) {
    const auto* suite = current_suite<AEGP_CompSuite9>();
    return suite == nullptr
               ? kHostErrorMissingSuite
               : aimed(answer_of([=] { return suite->AEGP_CreateCameraInComp(name, center, comp, layer); }),
                       layer);
}

A_Err create_light(const A_char* name, A_FloatPoint center, AEGP_CompH comp, AEGP_LayerH* layer) {
    const auto* suite = current_suite<AEGP_CompSuite15>();
    if (suite == nullptr) {
        return kHostErrorMissingSuite;
    }
    return with_wide_name(name, [=](const A_UTF16Char* wide) {
        return suite->AEGP_CreateLightInComp(wide, center, comp, layer);
    });
}

A_Err create_null(const A_char* name, AEGP_CompH comp, const A_Time* duration, AEGP_LayerH* layer) {
    const auto* suite = current_suite<AEGP_CompSuite15>();
    if (suite == nullptr) {
        return kHostErrorMissingSuite;
    }
    return with_wide_name(name, [=](const A_UTF16Char* wide) {
        return suite->AEGP_CreateNullInComp(wide, comp, duration, layer);
    });
}

A_Err set_light_type(AEGP_LayerH layer, AEGP_LightType type) {
    const auto* suite = current_suite<AEGP_LightSuite2>();
    if (suite == nullptr) {
        return kHostErrorMissingSuite;
    }
    const A_Err err = answer_of([=] { return suite->AEGP_SetLightType(layer, type); });
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
        suite.AEGP_CreateNewFolder = create_folder;
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
        suite.AEGP_CreateCameraInComp = create_camera;
        suite.AEGP_CreateLightInComp = create_light;
        suite.AEGP_CreateComp = create_comp;
        suite.AEGP_CreateNullInComp = create_null;
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
        suite.AEGP_CreateCameraInComp = create_narrow_camera;
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
