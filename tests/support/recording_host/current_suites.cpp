#include <type_traits>

#include "support/recording_host/argument_text.h"
#include "support/recording_host/suite_tables.h"

namespace {

// Most pointers are written as addresses, because the tests pass addresses that lead nowhere.
template <typename Value>
const auto& unread(const Value& value) {
    return value;
}
template <typename Pointee>
auto unread(Pointee* pointer) {
    using Plain = std::remove_const_t<Pointee>;
    if constexpr (std::is_same_v<Plain, A_char> || std::is_same_v<Plain, A_UTF16Char> ||
                  std::is_same_v<Plain, AEGP_FileSequenceImportOptions>) {
        return pointer;
    } else {
        return static_cast<const void*>(pointer);
    }
}

// A function that does nothing but record its call.
#define VXR_RECORDED(function) \
    [](auto... arguments) -> A_Err { return host().call(function, list(unread(arguments)...)); }

const AEGP_RegisterSuite6 kRegisterSuite = [] {
    AEGP_RegisterSuite6 suite{};
    suite.AEGP_RegisterDeathHook = [](AEGP_PluginID id, AEGP_DeathHook hook, AEGP_DeathRefcon refcon) {
        const A_Err err = host().call("RegisterDeathHook", list(id, A_Boolean{hook != nullptr}, refcon));
        if (err == kHostErrorNone) {
            host().death_hooks.emplace_back(hook, refcon);
        }
        return err;
    };
    suite.AEGP_RegisterIO = [](AEGP_PluginID id, AEGP_IORefcon refcon, const AEIO_ModuleInfo* info,
                               const AEIO_FunctionBlock4* functions) {
        const A_Err err = host().call("RegisterIO", list(id, refcon, info == nullptr ? nullptr : +info->name,
                                                         A_Boolean{functions != nullptr}));
        if (err == kHostErrorNone && functions != nullptr) {
            host().modules.emplace_back(refcon, *functions);
        }
        return err;
    };
    return suite;
}();

const AEGP_FileImportManagerSuite3 kFileImportManagerSuite = [] {
    AEGP_FileImportManagerSuite3 suite{};
    suite.AEGP_RegisterImportFlavor = [](const A_char* name, AE_FIM_ImportFlavorRef* flavor) {
        const A_Err err = host().call("RegisterImportFlavor", list(name, *flavor));
        if (err == kHostErrorNone) {
            *flavor = host().flavor;
        }
        return err;
    };
    suite.AEGP_RegisterImportFlavorFileTypes = VXR_RECORDED("RegisterImportFlavorFileTypes");
    suite.AEGP_RegisterImportFlavorImportCallbacks = [](AE_FIM_ImportFlavorRef flavor,
                                                        AE_FIM_ImportFlags flags,
                                                        const AE_FIM_ImportCallbacks3* callbacks) {
        const A_Err err =
            host().call("RegisterImportFlavorImportCallbacks",
                        list(flavor, flags) +
                            (callbacks == nullptr
                                 ? ", null"
                                 : ", {" +
                                       list(callbacks->refcon, A_Boolean{callbacks->import_cb != nullptr},
                                            A_Boolean{callbacks->verify_cb != nullptr}) +
                                       "}"));
        if (err == kHostErrorNone && callbacks != nullptr) {
            host().importers.push_back(*callbacks);
        }
        return err;
    };
    return suite;
}();

const AEGP_PersistentDataSuite3 kPersistentDataSuite = [] {
    AEGP_PersistentDataSuite3 suite{};
    suite.AEGP_GetApplicationBlob = VXR_RECORDED("GetApplicationBlob");
    suite.AEGP_DoesKeyExist = VXR_RECORDED("DoesKeyExist");
    suite.AEGP_GetData = VXR_RECORDED("GetData");
    suite.AEGP_SetData = VXR_RECORDED("SetData");
    return suite;
}();

const AEGP_ProjSuite8 kProjSuite = [] {
    AEGP_ProjSuite8 suite{};
    suite.AEGP_GetProjectByIndex = VXR_RECORDED("GetProjectByIndex");
    suite.AEGP_GetProjectRootFolder = VXR_RECORDED("GetProjectRootFolder");
    return suite;
}();

const AEGP_FootageSuite11 kFootageSuite = [] {
    AEGP_FootageSuite11 suite{};
    suite.AEGP_NewFootage = VXR_RECORDED("NewFootage");
    suite.AEGP_AddFootageToProject = VXR_RECORDED("AddFootageToProject");
    suite.AEGP_GetFootageInterpretation = VXR_RECORDED("GetFootageInterpretation");
    suite.AEGP_SetFootageInterpretation = VXR_RECORDED("SetFootageInterpretation");
    suite.AEGP_NewPlaceholderFootage = VXR_RECORDED("NewPlaceholderFootage");
    return suite;
}();

const AEGP_IOInSuite5 kIOInSuite = [] {
    AEGP_IOInSuite5 suite{};
    suite.AEGP_GetInSpecOptionsHandle = VXR_RECORDED("GetInSpecOptionsHandle");
    suite.AEGP_SetInSpecOptionsHandle = VXR_RECORDED("SetInSpecOptionsHandle");
    suite.AEGP_GetInSpecFilePath = [](AEIO_InSpecH spec, AEGP_MemHandle* path) {
        return host().call("GetInSpecFilePath", list(unread(spec)), host().in_path, path);
    };
    suite.AEGP_SetInSpecNativeFPS = VXR_RECORDED("SetInSpecNativeFPS");
    suite.AEGP_SetInSpecDepth = VXR_RECORDED("SetInSpecDepth");
    suite.AEGP_GetInSpecSize = [](AEIO_InSpecH spec, AEIO_FileSize* size_bytes) {
        *size_bytes = host().in_size;
        return host().call("GetInSpecSize", list(unread(spec)));
    };
    suite.AEGP_SetInSpecSize = VXR_RECORDED("SetInSpecSize");
    suite.AEGP_SetInSpecAlphaLabel = VXR_RECORDED("SetInSpecAlphaLabel");
    suite.AEGP_SetInSpecDuration = VXR_RECORDED("SetInSpecDuration");
    suite.AEGP_SetInSpecDimensions = VXR_RECORDED("SetInSpecDimensions");
    return suite;
}();

const AEGP_IOOutSuite7 kIOOutSuite = [] {
    AEGP_IOOutSuite7 suite{};
    suite.AEGP_GetOutSpecFilePath = [](AEIO_OutSpecH spec, AEGP_MemHandle* path, A_Boolean* reserved) {
        *reserved = 1;
        return host().call("GetOutSpecFilePath", list(unread(spec)), host().out_path, path);
    };
    return suite;
}();

const AEGP_ItemSuite13 kItemSuite = [] {
    AEGP_ItemSuite13 suite{};
    suite.AEGP_SetItemName = VXR_RECORDED("SetItemName");
    suite.AEGP_CreateNewFolder = VXR_RECORDED("CreateNewFolder");
    return suite;
}();

// The comp suite of either version. A new layer is a handle, whose address must be valid.
template <typename Suite>
Suite comp_suite() {
    Suite suite{};
    suite.AEGP_GetCompFromItem = VXR_RECORDED("GetCompFromItem");
    suite.AEGP_GetItemFromComp = VXR_RECORDED("GetItemFromComp");
    suite.AEGP_CreateCameraInComp = [](auto* name, A_FloatPoint center, AEGP_CompH comp, AEGP_LayerH* layer) {
        return host().call("CreateCameraInComp", list(name, center, unread(comp)), layer, "camera");
    };
    suite.AEGP_CreateLightInComp = [](auto* name, A_FloatPoint center, AEGP_CompH comp, AEGP_LayerH* layer) {
        return host().call("CreateLightInComp", list(name, center, unread(comp)), layer, "light");
    };
    suite.AEGP_CreateComp = VXR_RECORDED("CreateComp");
    suite.AEGP_CreateNullInComp = VXR_RECORDED("CreateNullInComp");
    return suite;
}
const auto kCompSuite = comp_suite<AEGP_CompSuite15>();
const auto kNarrowCompSuite = comp_suite<AEGP_CompSuite9>();

const AEGP_LayerSuite11 kLayerSuite = [] {
    AEGP_LayerSuite11 suite{};
    suite.AEGP_SetLayerFlag = [](AEGP_LayerH layer, AEGP_LayerFlags flag, A_Boolean value) {
        return host().call("SetLayerFlag", list(layer, flag, value));
    };
    return suite;
}();

const AEGP_LightSuite2 kLightSuite = [] {
    AEGP_LightSuite2 suite{};
    suite.AEGP_SetLightType = [](AEGP_LayerH layer, AEGP_LightType type) {
        return host().call("SetLightType", list(layer, type));
    };
    return suite;
}();

#undef VXR_RECORDED

}  // namespace

const std::vector<OfferedSuite>& current_suites() {
    static const std::vector<OfferedSuite> kSuites = {
        {"AEGP Register Suite", 6, &kRegisterSuite},
        {"AEGP File Import Manager Suite", 3, &kFileImportManagerSuite},
        {"AEGP Persistent Data Suite", 3, &kPersistentDataSuite},
        {"AEGP Proj Suite", 8, &kProjSuite},
        {"AEGP Footage Suite", 11, &kFootageSuite},
        {"AEGP IO In Suite", 5, &kIOInSuite},
        {"AEGP IO Out Suite", 7, &kIOOutSuite},
    };
    return kSuites;
}

const std::vector<OfferedSuite>& named_suites() {
    static const std::vector<OfferedSuite> kSuites = {
        {"AEGP Item Suite", 13, &kItemSuite},      {"AEGP Comp Suite", 15, &kCompSuite},
        {"AEGP Comp Suite", 9, &kNarrowCompSuite}, {"AEGP Layer Suite", 11, &kLayerSuite},
        {"AEGP Light Suite", 2, &kLightSuite},
    };
    return kSuites;
}
