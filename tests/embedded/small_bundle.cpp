// A minimal bundle for the tests of loading. It registers one importer, under another name from its entry for
// current hosts.

#include "host/current_interface.h"
#include "host/host_interface.h"

namespace {

A_Err verify(const A_char*, AE_FIM_Refcon, A_Boolean* importable) {
    *importable = 1;
    return kHostErrorNone;
}

A_Err import(const A_char*, AE_FIM_ImportOptions, AE_FIM_SpecialAction, AEGP_ItemH, AE_FIM_Refcon) {
    return kHostErrorNone;
}

A_Err verify_today(const A_UTF16Char*, AE_FIM_Refcon, A_Boolean* importable) {
    *importable = 1;
    return kHostErrorNone;
}

A_Err import_today(const A_UTF16Char*, AE_FIM_ImportOptions, AE_FIM_SpecialAction, AEGP_ItemH,
                   AE_FIM_Refcon) {
    return kHostErrorNone;
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) A_Err Main_VORTANXR_AE(SPBasicSuite* basic, A_long, A_long,
                                                              const A_char*, const A_char*, AEGP_PluginID,
                                                              AEGP_GlobalRefcon*) {
    constexpr char kName[] = "AEGP File Import Manager Suite";
    const void* table = nullptr;
    if (const A_Err error = basic->AcquireSuite(kName, 2, &table); error != kHostErrorNone) {
        throw 516L;
    }
    const auto* suite = static_cast<const AEGP_FileImportManagerSuite2*>(table);
    AE_FIM_ImportFlavorRef flavor = kInvalidImportFlavor;
    A_Err error = suite->AEGP_RegisterImportFlavor("small", &flavor);
    if (error == kHostErrorNone) {
        AE_FIM_ImportCallbacks callbacks{nullptr, import, verify};
        error = suite->AEGP_RegisterImportFlavorImportCallbacks(flavor, kImportFlagComposition, &callbacks);
    }
    basic->ReleaseSuite(kName, 2);
    return error;
}

__attribute__((visibility("default"))) A_Err EntryPointFunc(SPBasicSuite* basic, A_long, A_long,
                                                            AEGP_PluginID, AEGP_GlobalRefcon*) {
    constexpr char kName[] = "AEGP File Import Manager Suite";
    const void* table = nullptr;
    if (const A_Err error = basic->AcquireSuite(kName, 3, &table); error != kHostErrorNone) {
        return error;
    }
    const auto* suite = static_cast<const AEGP_FileImportManagerSuite3*>(table);
    AE_FIM_ImportFlavorRef flavor = kInvalidImportFlavor;
    A_Err error = suite->AEGP_RegisterImportFlavor("small today", &flavor);
    if (error == kHostErrorNone) {
        AE_FIM_ImportCallbacks3 callbacks{nullptr, import_today, verify_today};
        error = suite->AEGP_RegisterImportFlavorImportCallbacks(flavor, kImportFlagComposition, &callbacks);
    }
    basic->ReleaseSuite(kName, 3);
    return error;
}

__attribute__((visibility("default"))) A_Err failing_entry(SPBasicSuite* basic, A_long major, A_long minor,
                                                           const A_char* path, const A_char* resources,
                                                           AEGP_PluginID plugin_id,
                                                           AEGP_GlobalRefcon* refcon) {
    const A_Err error = Main_VORTANXR_AE(basic, major, minor, path, resources, plugin_id, refcon);
    return error == kHostErrorNone ? kHostErrorStructure : error;
}
}
