#include "composition/build/footage_item.h"
#include "composition/build/host_values.h"
#include "composition/build/layer_calls.h"
#include "composition/model/composition.h"
#include "composition/model/project_settings.h"
#include "host/plugin_globals.h"
#include "host/suite_handler.h"

// Compositions are built recursively, up to limits::kCompositionNesting levels deep. Everything a level does
// besides the recursion is in functions that are never inlined, so that their locals (816 bytes for the
// handler of the failure report alone) are off the stack before the next level begins.
#if defined(__GNUC__)
#define VXR_OWN_FRAME __attribute__((noinline))
#else
#define VXR_OWN_FRAME __declspec(noinline)
#endif

namespace {

VXR_OWN_FRAME A_Err add_to_parent(AEGP_SuiteHandler& suites, const CComposition& composition,
                                  AEGP_ItemH comp_item) {
    AEGP_LayerH layer = nullptr;
    const A_Err err = add_item_as_layer(suites, comp_item, composition.parent->compH, &layer);
    if (err != kHostErrorNone) {
        return err;
    }
    return set_layer_blend_mode(suites, layer, composition.blendMode);
}

/// Creates the folder, the host's composition in it, and its layer in the parent.
VXR_OWN_FRAME A_Err create_folder_and_comp(AEGP_SuiteHandler& suites, CComposition& composition,
                                           tagProjectSettings& settings, AEGP_ItemH* folder) {
    A_Err err =
        suites.ItemSuite10()->AEGP_CreateNewFolder(composition.name, composition.parentFolder, folder);
    err = require_handle(err, *folder);
    if (err != kHostErrorNone) {
        return err;
    }

    const A_Ratio pixel_aspect = pixel_aspect_ratio(settings.aspect);
    const A_Ratio frame_rate = frame_rate_ratio(settings.fps);
    const A_Time duration = frames_time(settings.range, settings.fps);
    err = suites.CompSuite9()->AEGP_CreateComp(*folder, composition.name, settings.width, settings.height,
                                               &pixel_aspect, &duration, &frame_rate, &composition.compH);
    err = require_handle(err, composition.compH);
    if (err != kHostErrorNone) {
        return err;
    }

    AEGP_ItemH comp_item = nullptr;
    err = suites.CompSuite9()->AEGP_GetItemFromComp(composition.compH, &comp_item);
    err = require_handle(err, comp_item);
    if (err != kHostErrorNone) {
        return err;
    }

    if (settings.firstFolder == nullptr && settings.firstCompItem == nullptr) {
        settings.firstFolder = *folder;
        settings.firstCompItem = comp_item;
    }
    return composition.parent != nullptr ? add_to_parent(suites, composition, comp_item) : kHostErrorNone;
}

VXR_OWN_FRAME A_Err create_footage_layer(AEGP_SuiteHandler& suites, CFileItem& file, AEGP_CompH comp,
                                         AEGP_ItemH folder, tagProjectSettings& settings) {
    FootageItem made;
    A_Err err = add_footage_item(suites, file, settings, kLayerPlaceholderNameBytes, folder, &made);
    if (err != kHostErrorNone) {
        return err;
    }
    AEGP_LayerH layer = nullptr;
    err = add_item_as_layer(suites, made.item, comp, &layer);
    if (err != kHostErrorNone) {
        return err;
    }
    err = set_layer_blend_mode(suites, layer, file.blendMode);
    if (err != kHostErrorNone) {
        return err;
    }
    err = file.InterpretFootage(&suites, made.footage, made.item, &settings, file.path);
    if (err != kHostErrorNone) {
        return err;
    }
    return set_layer_timing(suites, layer, settings.fps, settings.from, settings.to, settings.local);
}

/// Deliberately uses a handler of its own and is called by every level that the failure passes: the message
/// appears once for each composition that could not be finished.
VXR_OWN_FRAME void report_failure() {
    AEGP_SuiteHandler suites(g_pBasicSuite);
    suites.UtilitySuite7()->AEGP_ReportInfo(g_PluginID, g_pCh_Error_create_composition);
}

}  // namespace

int CComposition::CreateComposition(AEGP_SuiteHandler* suites, AEGP_ItemH parent_folder,
                                    tagProjectSettings* settings) {
    parentFolder = parent_folder;
    AEGP_ItemH folder = nullptr;
    A_Err err = create_folder_and_comp(*suites, *this, *settings, &folder);
    for (CCompoChild* child = children.First(); err == kHostErrorNone && child != nullptr;
         child = children.Next(child)) {
        err = child->type == kChildComposition
                  ? child->item.composition->CreateComposition(suites, folder, settings)
                  : create_footage_layer(*suites, *child->item.file, compH, folder, *settings);
    }
    if (err != kHostErrorNone) {
        report_failure();
    }
    return err;
}
