// Every argument that the host checks, one row each: what is wrong with it, what the call answers, what is
// reported.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "embedded/bundle_side.h"

namespace {

using embedded::RuleViolation;

struct Case {
    const char* name;
    RuleViolation violation;
    std::function<A_Err(BundleSide&)> call;
};

template <class H>
H foreign() {
    static double not_a_handle[2] = {};
    return reinterpret_cast<H>(not_a_handle);
}

AEGP_StreamValue one_d(AEGP_StreamRefH stream, double value) {
    AEGP_StreamValue record{};
    record.stream = stream;
    record.value.one_d = value;
    return record;
}

AEGP_FootageInterp interpretation(BundleSide& b, AEGP_ItemH item) {
    AEGP_FootageInterp record{};
    b.footage_suite->AEGP_GetFootageInterpretation(item, 0, &record);
    return record;
}

/// Sets an interpretation of which `change` breaks one member.
template <class Change>
A_Err set_changed(BundleSide& b, const Change& change) {
    const AEGP_ItemH item = b.placeholder_item();
    AEGP_FootageInterp record = interpretation(b, item);
    change(record);
    return b.footage_suite->AEGP_SetFootageInterpretation(item, 0, &record);
}

A_Err new_footage(BundleSide& b, const AEGP_FileSequenceImportOptions& options) {
    AEGP_FootageH made = nullptr;
    return b.footage_suite->AEGP_NewFootage(b.host.plugin_id(), "a1.png", nullptr, &options, 0, nullptr,
                                            &made);
}

A_Err create_comp(BundleSide& b, A_long width, A_long height, A_Ratio aspect, A_Time duration, A_Ratio rate) {
    AEGP_CompH made = nullptr;
    return b.comp_suite->AEGP_CreateComp(b.root(), "c", width, height, &aspect, &duration, &rate, &made);
}

A_Err register_module(BundleSide& b, const AEIO_ModuleInfo& info) {
    AEIO_FunctionBlock2 functions;
    std::memset(static_cast<void*>(&functions), 1, sizeof functions);
    return b.register_suite->AEGP_RegisterIO(b.host.plugin_id(), nullptr, &info, &functions);
}

AEGP_AddKeyframesInfoH key_additions(BundleSide& b) {
    const AEGP_AddKeyframesInfoH info = b.additions(b.stream(b.camera(b.comp()), kLayerStreamZoom));
    const A_Time zero{0, 25};
    A_long index = 0;
    b.keyframe_suite->AEGP_AddKeyframes(info, kTimeModeLayer, &zero, &index);
    return info;
}

const Case kCases[] = {
    // basic suite
    {"acquire without a name", RuleViolation::bad_argument,
     [](BundleSide& b) {
         const void* table = nullptr;
         return b.host.basic_suite()->AcquireSuite(nullptr, 1, &table);
     }},
    {"acquire without a place for the suite", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.host.basic_suite()->AcquireSuite("AEGP Proj Suite", 5, nullptr); }},
    {"release without a name", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.host.basic_suite()->ReleaseSuite(nullptr, 1); }},
    {"release of a suite that nobody acquired", RuleViolation::suite_not_acquired,
     [](BundleSide& b) { return b.host.basic_suite()->ReleaseSuite("PF AE Adv App Suite", 1); }},
    {"release of a suite that does not exist", RuleViolation::suite_not_acquired,
     [](BundleSide& b) { return b.host.basic_suite()->ReleaseSuite("No Suite", 1); }},

    // registration
    {"death hook null", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.register_suite->AEGP_RegisterDeathHook(b.host.plugin_id(), nullptr, nullptr);
     }},
    {"death hook of another plug-in", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.register_suite->AEGP_RegisterDeathHook(
             b.host.plugin_id() + 1, [](AEGP_GlobalRefcon, AEGP_DeathRefcon) -> A_Err { return 0; }, nullptr);
     }},
    {"module without its description", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEIO_FunctionBlock2 functions{};
         return b.register_suite->AEGP_RegisterIO(b.host.plugin_id(), nullptr, nullptr, &functions);
     }},
    {"module without functions", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEIO_ModuleInfo info{};
         return b.register_suite->AEGP_RegisterIO(b.host.plugin_id(), nullptr, &info, nullptr);
     }},
    {"module with a null function", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEIO_ModuleInfo info{};
         AEIO_FunctionBlock2 functions{};
         return b.register_suite->AEGP_RegisterIO(b.host.plugin_id(), nullptr, &info, &functions);
     }},
    {"module with a name that does not end", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEIO_ModuleInfo info{};
         std::memset(info.name, 'x', sizeof info.name);
         return register_module(b, info);
     }},
    {"module with more kinds than the table holds", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEIO_ModuleInfo info{};
         info.num_filetypes = 9;
         info.num_extensions = 8;
         return register_module(b, info);
     }},
    {"module with a negative count", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEIO_ModuleInfo info{};
         info.num_extensions = -1;
         return register_module(b, info);
     }},
    {"importer without a name", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AE_FIM_ImportFlavorRef flavor = 0;
         return b.import_suite->AEGP_RegisterImportFlavor(nullptr, &flavor);
     }},
    {"importer without a place for its number", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.import_suite->AEGP_RegisterImportFlavor("x", nullptr); }},
    {"file types of an unknown importer", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.import_suite->AEGP_RegisterImportFlavorFileTypes(kInvalidImportFlavor, 0, nullptr, 0, nullptr);
     }},
    {"file types announced and not given", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AE_FIM_ImportFlavorRef flavor = 0;
         b.import_suite->AEGP_RegisterImportFlavor("x", &flavor);
         return b.import_suite->AEGP_RegisterImportFlavorFileTypes(flavor, 1, nullptr, 0, nullptr);
     }},
    {"a negative number of extensions", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AE_FIM_ImportFlavorRef flavor = 0;
         b.import_suite->AEGP_RegisterImportFlavor("x", &flavor);
         return b.import_suite->AEGP_RegisterImportFlavorFileTypes(flavor, 0, nullptr, -1, nullptr);
     }},
    {"callbacks null", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AE_FIM_ImportFlavorRef flavor = 0;
         b.import_suite->AEGP_RegisterImportFlavor("x", &flavor);
         return b.import_suite->AEGP_RegisterImportFlavorImportCallbacks(flavor, 2, nullptr);
     }},
    {"callbacks without the import callback", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AE_FIM_ImportFlavorRef flavor = 0;
         b.import_suite->AEGP_RegisterImportFlavor("x", &flavor);
         const AE_FIM_ImportCallbacks callbacks{};
         return b.import_suite->AEGP_RegisterImportFlavorImportCallbacks(flavor, 2, &callbacks);
     }},

    // utility
    {"message without a text", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.utility_suite->AEGP_ReportInfo(b.host.plugin_id(), nullptr); }},
    {"message of another plug-in", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.utility_suite->AEGP_ReportInfo(99, "text"); }},
    {"undo group without a name", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.utility_suite->AEGP_StartUndoGroup(nullptr); }},
    {"undo group closed without being open", RuleViolation::undo_group_unbalanced,
     [](BundleSide& b) { return b.utility_suite->AEGP_EndUndoGroup(); }},

    // preferences
    {"blob without a place", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.data_suite->AEGP_GetApplicationBlob(nullptr); }},
    {"key in no blob", RuleViolation::bad_argument,
     [](BundleSide& b) {
         A_Boolean exists = 0;
         return b.data_suite->AEGP_DoesKeyExist(nullptr, "s", "k", &exists);
     }},
    {"key in a foreign blob", RuleViolation::foreign_handle,
     [](BundleSide& b) {
         A_Boolean exists = 0;
         return b.data_suite->AEGP_DoesKeyExist(foreign<AEGP_PersistentBlobH>(), "s", "k", &exists);
     }},
    {"key without a section", RuleViolation::bad_argument,
     [](BundleSide& b) {
         A_Boolean exists = 0;
         return b.data_suite->AEGP_DoesKeyExist(b.blob(), nullptr, "k", &exists);
     }},
    {"key without a name", RuleViolation::bad_argument,
     [](BundleSide& b) {
         A_Boolean exists = 0;
         return b.data_suite->AEGP_DoesKeyExist(b.blob(), "s", nullptr, &exists);
     }},
    {"key without a place for the answer", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.data_suite->AEGP_DoesKeyExist(b.blob(), "s", "k", nullptr); }},
    {"preference of no size", RuleViolation::bad_argument,
     [](BundleSide& b) {
         char value = 0;
         return b.data_suite->AEGP_GetData(b.blob(), "s", "k", 0, nullptr, &value);
     }},
    {"preference of another size than stored", RuleViolation::bad_argument,
     [](BundleSide& b) {
         char value[2] = {};
         b.data_suite->AEGP_SetData(b.blob(), "s", "k", 1, value);
         return b.data_suite->AEGP_GetData(b.blob(), "s", "k", 2, nullptr, value);
     }},
    {"preference without a place", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.data_suite->AEGP_GetData(b.blob(), "s", "k", 1, nullptr, nullptr); }},
    {"preference set to nothing", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.data_suite->AEGP_SetData(b.blob(), "s", "k", 1, nullptr); }},

    // project and items
    {"a second project", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_ProjectH project = nullptr;
         return b.project_suite->AEGP_GetProjectByIndex(1, &project);
     }},
    {"project without a place", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.project_suite->AEGP_GetProjectByIndex(0, nullptr); }},
    {"root folder of no project", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_ItemH root = nullptr;
         return b.project_suite->AEGP_GetProjectRootFolder(nullptr, &root);
     }},
    {"root folder without a place", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_ProjectH project = nullptr;
         b.project_suite->AEGP_GetProjectByIndex(0, &project);
         return b.project_suite->AEGP_GetProjectRootFolder(project, nullptr);
     }},
    {"folder without a name", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_ItemH made = nullptr;
         return b.item_suite->AEGP_CreateNewFolder(nullptr, b.root(), &made);
     }},
    {"folder in nothing", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_ItemH made = nullptr;
         return b.item_suite->AEGP_CreateNewFolder("f", nullptr, &made);
     }},
    {"folder in a foreign folder", RuleViolation::foreign_handle,
     [](BundleSide& b) {
         AEGP_ItemH made = nullptr;
         return b.item_suite->AEGP_CreateNewFolder("f", foreign<AEGP_ItemH>(), &made);
     }},
    {"folder in a composition's handle", RuleViolation::foreign_handle,
     [](BundleSide& b) {
         AEGP_ItemH made = nullptr;
         return b.item_suite->AEGP_CreateNewFolder("f", reinterpret_cast<AEGP_ItemH>(b.comp()), &made);
     }},
    {"folder in a composition's item", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_ItemH made = nullptr;
         return b.item_suite->AEGP_CreateNewFolder("f", b.item_of(b.comp()), &made);
     }},
    {"folder without a place", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.item_suite->AEGP_CreateNewFolder("f", b.root(), nullptr); }},

    // footage
    {"footage without a path", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageH made = nullptr;
         return b.footage_suite->AEGP_NewFootage(b.host.plugin_id(), nullptr, nullptr, nullptr, 0, nullptr, &made);
     }},
    {"footage with a layer key", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageH made = nullptr;
         return b.footage_suite->AEGP_NewFootage(b.host.plugin_id(), "a.png", foreign<AEGP_FootageLayerKey*>(),
                                                 nullptr, 0, nullptr, &made);
     }},
    {"footage with a dialog", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageH made = nullptr;
         return b.footage_suite->AEGP_NewFootage(b.host.plugin_id(), "a.png", nullptr, nullptr, 1, nullptr, &made);
     }},
    {"footage with something reserved", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageH made = nullptr;
         return b.footage_suite->AEGP_NewFootage(b.host.plugin_id(), "a.png", nullptr, nullptr, 0, &b, &made);
     }},
    {"footage without a place", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.footage_suite->AEGP_NewFootage(b.host.plugin_id(), "a.png", nullptr, nullptr, 0, nullptr, nullptr);
     }},
    {"sequence that starts below -1", RuleViolation::bad_argument,
     [](BundleSide& b) { return new_footage(b, {1, 0, -2, -1}); }},
    {"sequence that ends below -1", RuleViolation::bad_argument,
     [](BundleSide& b) { return new_footage(b, {1, 0, -1, -2}); }},
    {"sequence that ends before it starts", RuleViolation::bad_argument,
     [](BundleSide& b) { return new_footage(b, {1, 0, 5, 4}); }},
    {"placeholder without a name", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageH made = nullptr;
         return b.footage_suite->AEGP_NewPlaceholderFootage(b.host.plugin_id(), nullptr, 1, 1, &b.four_seconds, &made);
     }},
    {"placeholder of no width", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageH made = nullptr;
         return b.footage_suite->AEGP_NewPlaceholderFootage(b.host.plugin_id(), "p", 0, 1, &b.four_seconds, &made);
     }},
    {"placeholder of no height", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageH made = nullptr;
         return b.footage_suite->AEGP_NewPlaceholderFootage(b.host.plugin_id(), "p", 1, -1, &b.four_seconds, &made);
     }},
    {"placeholder without a duration", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageH made = nullptr;
         return b.footage_suite->AEGP_NewPlaceholderFootage(b.host.plugin_id(), "p", 1, 1, nullptr, &made);
     }},
    {"placeholder with a duration on no scale", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageH made = nullptr;
         return b.footage_suite->AEGP_NewPlaceholderFootage(b.host.plugin_id(), "p", 1, 1, &b.no_scale, &made);
     }},
    {"no footage added", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_ItemH item = nullptr;
         return b.footage_suite->AEGP_AddFootageToProject(nullptr, b.root(), &item);
     }},
    {"footage added twice", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_ItemH item = nullptr;
         const AEGP_FootageH footage = b.placeholder();
         b.footage_suite->AEGP_AddFootageToProject(footage, b.root(), &item);
         return b.footage_suite->AEGP_AddFootageToProject(footage, b.root(), &item);
     }},
    {"footage added to footage", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_ItemH item = nullptr;
         return b.footage_suite->AEGP_AddFootageToProject(b.placeholder(), b.placeholder_item(), &item);
     }},
    {"interpretation of a folder", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageInterp record{};
         return b.footage_suite->AEGP_GetFootageInterpretation(b.root(), 0, &record);
     }},
    {"interpretation of a proxy", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_FootageInterp record{};
         return b.footage_suite->AEGP_GetFootageInterpretation(b.placeholder_item(), 1, &record);
     }},
    {"interpretation without a place", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.footage_suite->AEGP_GetFootageInterpretation(b.placeholder_item(), 0, nullptr);
     }},
    {"interpretation set to nothing", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.footage_suite->AEGP_SetFootageInterpretation(b.placeholder_item(), 0, nullptr);
     }},
    {"interpretation with unknown fields", RuleViolation::bad_argument,
     [](BundleSide& b) { return set_changed(b, [](auto& record) { record.interlace.type = 2; }); }},
    {"interpretation with an unknown field order", RuleViolation::bad_argument,
     [](BundleSide& b) { return set_changed(b, [](auto& record) { record.interlace.order = 2; }); }},
    {"interpretation with unknown alpha flags", RuleViolation::bad_argument,
     [](BundleSide& b) { return set_changed(b, [](auto& record) { record.alpha.flags = 8; }); }},
    {"interpretation with a pixel aspect of 0", RuleViolation::bad_argument,
     [](BundleSide& b) { return set_changed(b, [](auto& record) { record.pixel_aspect.num = 0; }); }},
    {"interpretation with a pixel aspect over 0", RuleViolation::bad_argument,
     [](BundleSide& b) { return set_changed(b, [](auto& record) { record.pixel_aspect.den = 0; }); }},
    {"interpretation with a negative frame rate", RuleViolation::bad_argument,
     [](BundleSide& b) { return set_changed(b, [](auto& record) { record.conform_fps = -1.0; }); }},
    {"interpretation with a frame rate that is no number", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return set_changed(b, [](auto& record) { record.conform_fps = std::nan(""); });
     }},

    // compositions
    {"composition of no width", RuleViolation::bad_argument,
     [](BundleSide& b) { return create_comp(b, 0, 1, {1, 1}, {1, 1}, {1, 1}); }},
    {"composition of no height", RuleViolation::bad_argument,
     [](BundleSide& b) { return create_comp(b, 1, 0, {1, 1}, {1, 1}, {1, 1}); }},
    {"composition with a pixel aspect of 0", RuleViolation::bad_argument,
     [](BundleSide& b) { return create_comp(b, 1, 1, {0, 1}, {1, 1}, {1, 1}); }},
    {"composition with a pixel aspect over 0", RuleViolation::bad_argument,
     [](BundleSide& b) { return create_comp(b, 1, 1, {1, 0}, {1, 1}, {1, 1}); }},
    {"composition with a duration on no scale", RuleViolation::bad_argument,
     [](BundleSide& b) { return create_comp(b, 1, 1, {1, 1}, {1, 0}, {1, 1}); }},
    {"composition with a frame rate of 0", RuleViolation::bad_argument,
     [](BundleSide& b) { return create_comp(b, 1, 1, {1, 1}, {1, 1}, {0, 1}); }},
    {"composition of a folder's item", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_CompH comp = nullptr;
         return b.comp_suite->AEGP_GetCompFromItem(b.root(), &comp);
     }},
    {"item of no composition", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_ItemH item = nullptr;
         return b.comp_suite->AEGP_GetItemFromComp(nullptr, &item);
     }},
    {"camera at infinity", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_LayerH layer = nullptr;
         const double infinity = std::numeric_limits<double>::infinity();
         return b.comp_suite->AEGP_CreateCameraInComp("c", {infinity, 0.0}, b.comp(), &layer);
     }},
    {"camera without a name", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_LayerH layer = nullptr;
         return b.comp_suite->AEGP_CreateCameraInComp(nullptr, {0.0, 0.0}, b.comp(), &layer);
     }},
    {"light without a place", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.comp_suite->AEGP_CreateLightInComp("l", {0.0, 0.0}, b.comp(), nullptr); }},
    {"null with a duration on no scale", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_LayerH layer = nullptr;
         return b.comp_suite->AEGP_CreateNullInComp("n", b.comp(), &b.no_scale, &layer);
     }},

    // layers
    {"no flag at all", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.layer_suite->AEGP_SetLayerFlag(b.camera(b.comp()), 0, 1); }},
    {"two flags at once", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.layer_suite->AEGP_SetLayerFlag(b.camera(b.comp()), 3, 1); }},
    {"in-point in an unknown time", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.layer_suite->AEGP_SetLayerInPointAndDuration(b.camera(b.comp()), 2, &b.four_seconds,
                                                               &b.four_seconds);
     }},
    {"in-point on no scale", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.layer_suite->AEGP_SetLayerInPointAndDuration(b.camera(b.comp()), 0, &b.no_scale,
                                                               &b.four_seconds);
     }},
    {"layer duration null", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.layer_suite->AEGP_SetLayerInPointAndDuration(b.camera(b.comp()), 0, &b.four_seconds, nullptr);
     }},
    {"offset on no scale", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.layer_suite->AEGP_SetLayerOffset(b.camera(b.comp()), &b.no_scale); }},
    {"transfer mode without a place", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.layer_suite->AEGP_GetLayerTransferMode(b.camera(b.comp()), nullptr); }},
    {"transfer mode below 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         const AEGP_LayerTransferMode mode{-1, 0, 0};
         return b.layer_suite->AEGP_SetLayerTransferMode(b.camera(b.comp()), &mode);
     }},
    {"a folder as a layer", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_LayerH layer = nullptr;
         return b.layer_suite->AEGP_AddLayer(b.root(), b.comp(), &layer);
     }},
    {"a composition as a layer of itself", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_LayerH layer = nullptr;
         const AEGP_CompH comp = b.comp();
         return b.layer_suite->AEGP_AddLayer(b.item_of(comp), comp, &layer);
     }},
    {"type of a light that is a camera", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.light_suite->AEGP_SetLightType(b.camera(b.comp()), kLightTypeSpot); }},
    {"light type beyond ambient", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.light_suite->AEGP_SetLightType(b.light(b.comp()), kLightTypeAmbient + 1); }},

    // streams and keys
    {"zoom of a light", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_StreamRefH stream = nullptr;
         return b.stream_suite->AEGP_GetNewLayerStream(b.host.plugin_id(), b.light(b.comp()), kLayerStreamZoom, &stream);
     }},
    {"stream of another plug-in", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_StreamRefH stream = nullptr;
         return b.stream_suite->AEGP_GetNewLayerStream(0, b.light(b.comp()), kLayerStreamPosition, &stream);
     }},
    {"stream disposed of twice", RuleViolation::dead_handle,
     [](BundleSide& b) {
         const AEGP_StreamRefH stream = b.stream(b.camera(b.comp()), kLayerStreamZoom);
         b.stream_suite->AEGP_DisposeStream(stream);
         return b.stream_suite->AEGP_DisposeStream(stream);
     }},
    {"value null", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.stream_suite->AEGP_SetStreamValue(b.host.plugin_id(), b.stream(b.camera(b.comp()), kLayerStreamZoom), nullptr);
     }},
    {"value without its stream", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_StreamValue value = one_d(nullptr, 1.0);
         return b.stream_suite->AEGP_SetStreamValue(b.host.plugin_id(), b.stream(b.camera(b.comp()), kLayerStreamZoom), &value);
     }},
    {"value for another stream", RuleViolation::bad_argument,
     [](BundleSide& b) {
         const AEGP_LayerH camera = b.camera(b.comp());
         AEGP_StreamValue value = one_d(b.stream(camera, kLayerStreamPosition), 1.0);
         return b.stream_suite->AEGP_SetStreamValue(b.host.plugin_id(), b.stream(camera, kLayerStreamZoom), &value);
     }},
    {"value of a stream that has keys", RuleViolation::bad_argument,
     [](BundleSide& b) {
         const AEGP_StreamRefH stream = b.stream(b.camera(b.comp()), kLayerStreamZoom);
         const AEGP_AddKeyframesInfoH info = b.additions(stream);
         A_long index = 0;
         b.keyframe_suite->AEGP_AddKeyframes(info, kTimeModeLayer, &b.four_seconds, &index);
         b.keyframe_suite->AEGP_EndAddKeyframes(1, info);
         AEGP_StreamValue value = one_d(stream, 1.0);
         return b.stream_suite->AEGP_SetStreamValue(b.host.plugin_id(), stream, &value);
     }},
    {"additions to a dead stream", RuleViolation::dead_handle,
     [](BundleSide& b) {
         const AEGP_StreamRefH stream = b.stream(b.camera(b.comp()), kLayerStreamZoom);
         b.stream_suite->AEGP_DisposeStream(stream);
         AEGP_AddKeyframesInfoH info = nullptr;
         return b.keyframe_suite->AEGP_StartAddKeyframes(stream, &info);
     }},
    {"key on no scale", RuleViolation::bad_argument,
     [](BundleSide& b) {
         A_long index = 0;
         return b.keyframe_suite->AEGP_AddKeyframes(key_additions(b), kTimeModeLayer, &b.no_scale, &index);
     }},
    {"key in an unknown time", RuleViolation::bad_argument,
     [](BundleSide& b) {
         A_long index = 0;
         return b.keyframe_suite->AEGP_AddKeyframes(key_additions(b), 7, &b.four_seconds, &index);
     }},
    {"key without a place for its index", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.keyframe_suite->AEGP_AddKeyframes(key_additions(b), kTimeModeLayer, &b.four_seconds, nullptr);
     }},
    {"value of a key that was not added", RuleViolation::bad_argument,
     [](BundleSide& b) {
         const AEGP_StreamRefH stream = b.stream(b.camera(b.comp()), kLayerStreamZoom);
         const AEGP_StreamValue value = one_d(stream, 1.0);
         return b.keyframe_suite->AEGP_SetAddKeyframe(b.additions(stream), 0, &value);
     }},
    {"value of a key with a negative index", RuleViolation::bad_argument,
     [](BundleSide& b) {
         const AEGP_StreamValue value = one_d(nullptr, 1.0);
         return b.keyframe_suite->AEGP_SetAddKeyframe(key_additions(b), -1, &value);
     }},
    {"value of a key without its stream", RuleViolation::bad_argument,
     [](BundleSide& b) {
         const AEGP_StreamValue value = one_d(nullptr, 1.0);
         return b.keyframe_suite->AEGP_SetAddKeyframe(key_additions(b), 0, &value);
     }},
    {"additions ended twice", RuleViolation::dead_handle,
     [](BundleSide& b) {
         const AEGP_AddKeyframesInfoH info = key_additions(b);
         b.keyframe_suite->AEGP_EndAddKeyframes(1, info);
         return b.keyframe_suite->AEGP_EndAddKeyframes(1, info);
     }},
    {"additions ended after their stream was disposed of", RuleViolation::bad_argument,
     [](BundleSide& b) {
         const AEGP_StreamRefH stream = b.stream(b.camera(b.comp()), kLayerStreamZoom);
         const AEGP_AddKeyframesInfoH info = b.additions(stream);
         A_long index = 0;
         b.keyframe_suite->AEGP_AddKeyframes(info, kTimeModeLayer, &b.four_seconds, &index);
         b.stream_suite->AEGP_DisposeStream(stream);
         return b.keyframe_suite->AEGP_EndAddKeyframes(1, info);
     }},

    // memory
    {"memory without a name", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_MemHandle made = nullptr;
         return b.memory_suite->AEGP_NewMemHandle(b.host.plugin_id(), nullptr, 1, 0, &made);
     }},
    {"memory of no size", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_MemHandle made = nullptr;
         return b.memory_suite->AEGP_NewMemHandle(b.host.plugin_id(), "m", 0, 0, &made);
     }},
    {"memory with unknown flags", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_MemHandle made = nullptr;
         return b.memory_suite->AEGP_NewMemHandle(b.host.plugin_id(), "m", 1, 6, &made);
     }},
    {"memory without a place", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.memory_suite->AEGP_NewMemHandle(b.host.plugin_id(), "m", 1, 0, nullptr); }},
    {"memory locked without a place", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.memory_suite->AEGP_LockMemHandle(b.memory(), nullptr); }},
    {"foreign memory freed", RuleViolation::foreign_handle,
     [](BundleSide& b) { return b.memory_suite->AEGP_FreeMemHandle(foreign<AEGP_MemHandle>()); }},

    // in-specs and out-specs
    {"options of no in-spec", RuleViolation::bad_argument,
     [](BundleSide& b) {
         void* options = nullptr;
         return b.io_in_suite->AEGP_GetInSpecOptionsHandle(nullptr, &options);
     }},
    {"options without a place", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.io_in_suite->AEGP_GetInSpecOptionsHandle(b.host.in_spec_handle(b.host.new_in_spec("x")), nullptr);
     }},
    {"options without a place for the old ones", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.io_in_suite->AEGP_SetInSpecOptionsHandle(b.host.in_spec_handle(b.host.new_in_spec("x")), nullptr,
                                                           nullptr);
     }},
    {"options that are no memory handle", RuleViolation::foreign_handle,
     [](BundleSide& b) {
         void* old = nullptr;
         return b.io_in_suite->AEGP_SetInSpecOptionsHandle(b.host.in_spec_handle(b.host.new_in_spec("x")), &b, &old);
     }},
    {"options that belong to another in-spec", RuleViolation::bad_argument,
     [](BundleSide& b) {
         void* old = nullptr;
         const AEGP_MemHandle memory = b.memory();
         b.io_in_suite->AEGP_SetInSpecOptionsHandle(b.host.in_spec_handle(b.host.new_in_spec("x")), memory, &old);
         return b.io_in_suite->AEGP_SetInSpecOptionsHandle(b.host.in_spec_handle(b.host.new_in_spec("y")), memory,
                                                           &old);
     }},
    {"rate of 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.io_in_suite->AEGP_SetInSpecNativeFPS(b.host.in_spec_handle(b.host.new_in_spec("x")), 0);
     }},
    {"depth of 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.io_in_suite->AEGP_SetInSpecDepth(b.host.in_spec_handle(b.host.new_in_spec("x")), 0);
     }},
    {"size below 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.io_in_suite->AEGP_SetInSpecSize(b.host.in_spec_handle(b.host.new_in_spec("x")), -1);
     }},
    {"alpha label null", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.io_in_suite->AEGP_SetInSpecAlphaLabel(b.host.in_spec_handle(b.host.new_in_spec("x")), nullptr);
     }},
    {"alpha label of an unknown type", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEIO_AlphaLabel label{};
         label.alpha_type = 4;
         return b.io_in_suite->AEGP_SetInSpecAlphaLabel(b.host.in_spec_handle(b.host.new_in_spec("x")), &label);
     }},
    {"in-spec duration on no scale", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.io_in_suite->AEGP_SetInSpecDuration(b.host.in_spec_handle(b.host.new_in_spec("x")), &b.no_scale);
     }},
    {"in-spec of no width", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.io_in_suite->AEGP_SetInSpecDimensions(b.host.in_spec_handle(b.host.new_in_spec("x")), 0, 1);
     }},
    {"in-spec that was disposed of", RuleViolation::dead_handle,
     [](BundleSide& b) {
         const embedded::Id in_spec = b.host.new_in_spec("x");
         b.host.dispose(in_spec);
         return b.io_in_suite->AEGP_SetInSpecDepth(b.host.in_spec_handle(in_spec), 24);
     }},
    {"output path of a foreign output", RuleViolation::foreign_handle,
     [](BundleSide& b) {
         char path[260] = {};
         return b.io_out_suite->AEGP_GetOutSpecFilePath(foreign<AEIO_OutSpecH>(), path);
     }},
    {"output path without a place", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.io_out_suite->AEGP_GetOutSpecFilePath(b.host.new_out_spec("x"), nullptr); }},
};

TEST(ArgumentChecks, RefuseAndReportEveryBadArgument) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        BundleSide bundle;
        bundle.utility_suite->AEGP_StartUndoGroup("test");
        if (c.violation == RuleViolation::undo_group_unbalanced) {
            bundle.utility_suite->AEGP_EndUndoGroup();
        }
        const A_Err result = c.call(bundle);
        EXPECT_NE(result, kHostErrorNone);
        ASSERT_EQ(bundle.host.conformance().violations().size(), 1U) << bundle.host.conformance().to_text();
        EXPECT_EQ(bundle.host.conformance().violations().front().code, c.violation)
            << bundle.host.conformance().to_text();
        EXPECT_TRUE(bundle.host.conformance().violations().front().at.line.has_value());
    }
}

TEST(ArgumentChecks, LeaveTheProjectAloneWhenTheyRefuse) {
    BundleSide bundle;
    AEGP_CompH comp = nullptr;
    EXPECT_EQ(create_comp(bundle, 0, 10, {1, 1}, {1, 1}, {1, 1}), kHostErrorParameter);
    EXPECT_EQ(bundle.comp_suite->AEGP_CreateComp(bundle.root(), nullptr, 1, 1, &bundle.square,
                                                 &bundle.four_seconds, &bundle.rate, &comp),
              kHostErrorParameter);
    EXPECT_EQ(comp, nullptr);
    EXPECT_EQ(bundle.host.project().items.size(), 1U);
    EXPECT_TRUE(bundle.host.project().compositions.empty());
}

TEST(Names, AreCutAfter31BytesAndNoted) {
    const std::string fits(31, 'f');
    const std::string too_long(32, 'l');
    struct {
        const char* name;
        std::function<std::string(BundleSide&, const char*)> make;  // the name that the host keeps
    } const kinds[] = {
        {"folder",
         [](BundleSide& b, const char* name) {
             b.folder(name);
             return b.host.project().items.back().name;
         }},
        {"composition",
         [](BundleSide& b, const char* name) {
             b.comp(name);
             return b.host.project().items.back().name;
         }},
        {"placeholder",
         [](BundleSide& b, const char* name) {
             b.placeholder(name);
             return b.host.project().footage.back().name;
         }},
        {"camera",
         [](BundleSide& b, const char* name) {
             AEGP_LayerH layer = nullptr;
             b.comp_suite->AEGP_CreateCameraInComp(name, {0.0, 0.0}, b.comp(), &layer);
             return b.host.project().layers.back().name;
         }},
        {"light",
         [](BundleSide& b, const char* name) {
             AEGP_LayerH layer = nullptr;
             b.comp_suite->AEGP_CreateLightInComp(name, {0.0, 0.0}, b.comp(), &layer);
             return b.host.project().layers.back().name;
         }},
        {"null",
         [](BundleSide& b, const char* name) {
             AEGP_LayerH layer = nullptr;
             b.comp_suite->AEGP_CreateNullInComp(name, b.comp(), nullptr, &layer);
             return b.host.project().layers.back().name;
         }},
    };
    for (const auto& kind : kinds) {
        SCOPED_TRACE(kind.name);
        BundleSide bundle;
        bundle.utility_suite->AEGP_StartUndoGroup("test");
        EXPECT_EQ(kind.make(bundle, fits.c_str()), fits);
        EXPECT_EQ(bundle.count(RuleViolation::name_cut), 0U);
        EXPECT_EQ(kind.make(bundle, too_long.c_str()), too_long.substr(0, 31));
        EXPECT_EQ(bundle.count(RuleViolation::name_cut), 1U);
        EXPECT_TRUE(bundle.host.conformance().clean()) << "a cut name is a note, not a problem";
    }
}

TEST(ReservedSlots, FailAndAreReportedWithTheirPlace) {
    BundleSide bundle;
    const auto call = [](ReservedSlot slot) { return reinterpret_cast<A_Err (*)()>(slot)(); };
    EXPECT_EQ(call(bundle.comp_suite->reserved_2[0]), kHostErrorGeneric);
    EXPECT_EQ(call(bundle.layer_suite->reserved_26[19]), kHostErrorGeneric);
    const auto* app = bundle.acquire<PF_AEAdvAppSuite1>("PF AE Adv App Suite", 1);
    EXPECT_EQ(call(app->reserved_0[9]), kHostErrorGeneric);
    const auto& violations = bundle.host.conformance().violations();
    ASSERT_EQ(violations.size(), 3U);
    EXPECT_EQ(violations[0].code, RuleViolation::reserved_slot);
    EXPECT_NE(violations[0].reason.find("slot 2 of AEGP Comp Suite 9"), std::string::npos)
        << violations[0].reason;
    EXPECT_NE(violations[1].reason.find("slot 45 of AEGP Layer Suite 11"), std::string::npos)
        << violations[1].reason;
    EXPECT_NE(violations[2].reason.find("slot 9 of PF AE Adv App Suite 1"), std::string::npos)
        << violations[2].reason;
}

}  // namespace
