// "AEGP Persistent Data Suite" 1, "AEGP Proj Suite" 5 and "AEGP Footage Suite" 7.

#include "host/bridge/classic_suites.h"
#include "host/bridge/held_suites.h"
#include "host/bridge/path_translation.h"

namespace bridge {
namespace {

A_Err new_footage(AEGP_PluginID plugin_id, const A_char* path, const AEGP_FootageLayerKey* layer_key,
                  const AEGP_FileSequenceImportOptions* sequence, AEGP_InterpretationStyle style,
                  void* reserved, AEGP_FootageH* footage) {
    const auto* suite = today<AEGP_FootageSuite11>();
    if (suite == nullptr)
        return kHostErrorMissingSuite;
    std::u16string wide;
    const A_Err err = wide_path(path, &wide);
    return err != kHostErrorNone ? err
                                 : suite->AEGP_NewFootage(plugin_id, wide.c_str(), layer_key, sequence, style,
                                                          reserved, footage);
}

}  // namespace

const AEGP_PersistentDataSuite1* persistent_data_suite() {
    static constexpr AEGP_PersistentDataSuite1 kTable = [] {
        using Today = AEGP_PersistentDataSuite3;
        AEGP_PersistentDataSuite1 suite = {};
        suite.AEGP_GetApplicationBlob = Forward<&Today::AEGP_GetApplicationBlob>::call;
        suite.AEGP_DoesKeyExist = Forward<&Today::AEGP_DoesKeyExist>::call;
        suite.AEGP_GetData = Forward<&Today::AEGP_GetData>::call;
        suite.AEGP_SetData = Forward<&Today::AEGP_SetData>::call;
        return suite;
    }();
    return &kTable;
}

const AEGP_ProjSuite5* proj_suite() {
    static constexpr AEGP_ProjSuite5 kTable = [] {
        using Today = AEGP_ProjSuite8;
        AEGP_ProjSuite5 suite = {};
        suite.AEGP_GetProjectByIndex = Forward<&Today::AEGP_GetProjectByIndex>::call;
        suite.AEGP_GetProjectRootFolder = Forward<&Today::AEGP_GetProjectRootFolder>::call;
        return suite;
    }();
    return &kTable;
}

const AEGP_FootageSuite7* footage_suite() {
    static constexpr AEGP_FootageSuite7 kTable = [] {
        using Today = AEGP_FootageSuite11;
        AEGP_FootageSuite7 suite = {};
        suite.AEGP_NewFootage = new_footage;
        suite.AEGP_AddFootageToProject = Forward<&Today::AEGP_AddFootageToProject>::call;
        suite.AEGP_GetFootageInterpretation = Forward<&Today::AEGP_GetFootageInterpretation>::call;
        suite.AEGP_SetFootageInterpretation = Forward<&Today::AEGP_SetFootageInterpretation>::call;
        suite.AEGP_NewPlaceholderFootage = Forward<&Today::AEGP_NewPlaceholderFootage>::call;
        return suite;
    }();
    return &kTable;
}

}  // namespace bridge
