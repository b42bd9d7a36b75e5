#include "entry/plugin_entry.h"

#include <cstdio>
#include <cstring>

#include "composition/build/import_file.h"
#include "host/plugin_globals.h"
#include "host/suite_handler.h"
#include "system/open_regular_file.h"
#include "texture/input_module/registration.h"

namespace {

// Composition files, by macOS file type (of any creator) and by extension.
constexpr PFILE_FileKind kCompositionFileType = {four_char_code("AEC_"), -1};
constexpr AEIO_FileExt kCompositionExtension = {'.', {'a', 'e', 'c'}};

A_Err register_importer(AEGP_SuiteHandler& suites) {
    const AEGP_FileImportManagerSuite2* imports = suites.FileImportManagerSuite2();
    AE_FIM_ImportFlavorRef flavor = kInvalidImportFlavor;
    A_Err err = imports->AEGP_RegisterImportFlavor(g_pCh_VortanXR_composition, &flavor);
    if (err != kHostErrorNone) {
        return err;
    }

    AEIO_FileKind type{};
    type.mac = kCompositionFileType;
    AEIO_FileKind extension{};
    extension.ext = kCompositionExtension;
    err = imports->AEGP_RegisterImportFlavorFileTypes(flavor, 1, &type, 1, &extension);
    // A host may accept the registration without yielding a flavor that callbacks can be registered for.
    if (err != kHostErrorNone || flavor == kInvalidImportFlavor) {
        return err;
    }

    AE_FIM_ImportCallbacks callbacks{};
    callbacks.import_cb = ImportFile;
    callbacks.verify_cb = VerifyFileImportable;
    return imports->AEGP_RegisterImportFlavorImportCallbacks(flavor, kImportFlagComposition, &callbacks);
}

A_Err register_texture_footage(AEGP_SuiteHandler& suites, AEGP_PluginID plugin_id) {
    AEIO_ModuleInfo info{};
    A_Err err = TexalonConstructModuleInfo(&info);
    if (err != kHostErrorNone) {
        return err;
    }
    AEIO_FunctionBlock2 functions{};
    err = TexalonConstructFunctionBlock(&functions);
    if (err != kHostErrorNone) {
        return err;
    }
    return suites.RegisterSuite4()->AEGP_RegisterIO(plugin_id, nullptr, &info, &functions);
}

}  // namespace

A_Err Main_VORTANXR_AE(SPBasicSuite* basic, A_long majorVersion, A_long minorVersion,
                       const A_char* /*filePath*/, const A_char* /*resourcePath*/, AEGP_PluginID pluginId,
                       AEGP_GlobalRefcon* /*refcon*/) {
    version55 = majorVersion > 9 || (majorVersion == 9 && minorVersion >= 32);
    g_pBasicSuite = basic;
    g_PluginID = pluginId;

    AEGP_SuiteHandler suites(basic);
    A_Err err = suites.RegisterSuite4()->AEGP_RegisterDeathHook(pluginId, DeathHook, nullptr);
    if (err != kHostErrorNone) {
        suites.UtilitySuite7()->AEGP_ReportInfo(pluginId, g_pCh_Error_Register_plugin);
        return err;
    }

    AEGP_SuiteHandler import_suites(basic);
    err = register_importer(import_suites);
    if (err == kHostErrorNone) {
        err = register_texture_footage(suites, pluginId);
    }
    if (err != kHostErrorNone) {
        suites.UtilitySuite7()->AEGP_ReportInfo(pluginId, g_pCh_Error_register_file_type);
    }
    return err;
}

A_Err DeathHook(AEGP_GlobalRefcon /*globalRefcon*/, AEGP_DeathRefcon /*refcon*/) {
    return kHostErrorNone;
}

A_Err VerifyFileImportable(const A_char* path, AE_FIM_Refcon /*refcon*/, A_Boolean* importable) {
    constexpr char kSignature[] = "VORTAN XR";
    constexpr std::size_t kSignatureBytes = sizeof kSignature - 1;
    *importable = 0;
    std::FILE* file = path != nullptr ? os::open_regular_file(path) : nullptr;
    if (file == nullptr) {
        return kHostErrorNone;
    }
    // Cleared, so that a shorter file is compared with NULs. The two bytes read beyond the signature do not
    // count.
    char head[kSignatureBytes + 2] = {};
    const std::size_t read = std::fread(head, 1, sizeof head, file);
    *importable = read >= kSignatureBytes && std::memcmp(head, kSignature, kSignatureBytes) == 0 ? 1 : 0;
    return std::fclose(file) == 0 ? kHostErrorNone : kHostErrorGeneric;
}
