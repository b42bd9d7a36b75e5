// "AEGP Persistent Data Suite" 1, "AEGP Proj Suite" 5 and "AEGP Footage Suite" 7.

#include "host/bridge/basic_suite.h"
#include "host/bridge/name_translation.h"
#include "host/bridge/path_translation.h"
#include "host/bridge/underlying_host.h"

namespace bridge {
namespace {

A_Err new_footage(AEGP_PluginID plugin_id, const A_char* path, const AEGP_FootageLayerKey* layer_key,
                  const AEGP_FileSequenceImportOptions* sequence, AEGP_InterpretationStyle style,
                  void* reserved, AEGP_FootageH* footage) {
    const auto* suite = current_suite<AEGP_FootageSuite11>();
    if (suite == nullptr) {
        return kHostErrorMissingSuite;
    }
    std::u16string wide;
    const A_Err err = wide_path(path, &wide);
    return err != kHostErrorNone ? err : answer_of([&] {
        return suite->AEGP_NewFootage(plugin_id, wide.c_str(), layer_key, sequence, style, reserved, footage);
    });
}

A_Err new_placeholder(AEGP_PluginID plugin_id, const A_char* name, A_long width, A_long height,
                      const A_Time* duration, AEGP_FootageH* footage) {
    const A_Err err = Forward<&AEGP_FootageSuite11::AEGP_NewPlaceholderFootage>::call(
        plugin_id, name, width, height, duration, footage);
    if (err == kHostErrorNone) {
        note_placeholder(footage, name);
    }
    return err;
}

A_Err add_footage(AEGP_FootageH footage, AEGP_ItemH folder, AEGP_ItemH* item) {
    const A_Err err = Forward<&AEGP_FootageSuite11::AEGP_AddFootageToProject>::call(footage, folder, item);
    if (err == kHostErrorNone) {
        name_placeholder(footage, item);
    }
    return err;
}

}  // namespace

const AEGP_PersistentDataSuite1* persistent_data_suite() {
    static constexpr AEGP_PersistentDataSuite1 kTable = [] {
        using Current = AEGP_PersistentDataSuite3;
        AEGP_PersistentDataSuite1 suite = {};
        suite.AEGP_GetApplicationBlob = Forward<&Current::AEGP_GetApplicationBlob>::call;
        suite.AEGP_DoesKeyExist = Forward<&Current::AEGP_DoesKeyExist>::call;
        suite.AEGP_GetData = Forward<&Current::AEGP_GetData>::call;
        suite.AEGP_SetData = Forward<&Current::AEGP_SetData>::call;
        return suite;
    }();
    return &kTable;
}

const AEGP_ProjSuite5* proj_suite() {
    static constexpr AEGP_ProjSuite5 kTable = [] {
        using Current = AEGP_ProjSuite8;
        AEGP_ProjSuite5 suite = {};
        suite.AEGP_GetProjectByIndex = Forward<&Current::AEGP_GetProjectByIndex>::call;
        suite.AEGP_GetProjectRootFolder = Forward<&Current::AEGP_GetProjectRootFolder>::call;
        return suite;
    }();
    return &kTable;
}

const AEGP_FootageSuite7* footage_suite() {
    static constexpr AEGP_FootageSuite7 kTable = [] {
        using Current = AEGP_FootageSuite11;
        AEGP_FootageSuite7 suite = {};
        suite.AEGP_NewFootage = new_footage;
        suite.AEGP_AddFootageToProject = add_footage;
        suite.AEGP_GetFootageInterpretation = Forward<&Current::AEGP_GetFootageInterpretation>::call;
        suite.AEGP_SetFootageInterpretation = Forward<&Current::AEGP_SetFootageInterpretation>::call;
        suite.AEGP_NewPlaceholderFootage = new_placeholder;
        return suite;
    }();
    return &kTable;
}

}  // namespace bridge
