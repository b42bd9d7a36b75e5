#pragma once

// Every suite that this host offers and every function that it implements, each listed once.

#include <array>
#include <cstddef>

#include "embedded/host_options.h"
#include "host/host_interface.h"

namespace embedded {

// SUITE(id, name, version in classic hosts, version in current ones). The first two cannot be acquired: the
// bundle is given them directly. Their functions are counted and logged like the others, with version 0. A
// host offers the version of its generation, and does not offer a suite where that is 0. Current hosts offer
// two suites in two versions: the classic one, whose names are narrow, and one with names in UTF-16.
#define VXR_HOST_SUITES(SUITE)                                    \
    SUITE(basic, "SPBasicSuite", 0, 0)                            \
    SUITE(basic_data, "AEIO_BasicData", 0, 0)                     \
    SUITE(registration, "AEGP Register Suite", 4, 6)              \
    SUITE(import_manager, "AEGP File Import Manager Suite", 2, 3) \
    SUITE(utility, "AEGP Utility Suite", 7, 7)                    \
    SUITE(persistent_data, "AEGP Persistent Data Suite", 1, 3)    \
    SUITE(project, "AEGP Proj Suite", 5, 8)                       \
    SUITE(item, "AEGP Item Suite", 10, 10)                        \
    SUITE(footage, "AEGP Footage Suite", 7, 11)                   \
    SUITE(comp, "AEGP Comp Suite", 9, 9)                          \
    SUITE(layer, "AEGP Layer Suite", 11, 11)                      \
    SUITE(stream, "AEGP Stream Suite", 7, 7)                      \
    SUITE(keyframe, "AEGP Keyframe Suite", 3, 3)                  \
    SUITE(light, "AEGP Light Suite", 2, 2)                        \
    SUITE(memory, "AEGP Memory Suite", 1, 1)                      \
    SUITE(io_in, "AEGP IO In Suite", 1, 5)                        \
    SUITE(io_out, "AEGP IO Out Suite", 1, 7)                      \
    SUITE(ansi, "PF ANSI Suite", 1, 1)                            \
    SUITE(adv_app, "PF AE Adv App Suite", 1, 1)                   \
    SUITE(unicode_item, "AEGP Item Suite", 0, 13)                 \
    SUITE(unicode_comp, "AEGP Comp Suite", 0, 15)

// FUNCTION(suite id, name, whether it returns an error code and so can fail). A function that two versions of
// a suite share is listed with the first, and calls of both are counted together.
#define VXR_HOST_FUNCTIONS(FUNCTION)                                         \
    FUNCTION(basic, AcquireSuite, true)                                      \
    FUNCTION(basic, ReleaseSuite, true)                                      \
    FUNCTION(basic_data, msg_func, false)                                    \
    FUNCTION(registration, AEGP_RegisterDeathHook, true)                     \
    FUNCTION(registration, AEGP_RegisterIO, true)                            \
    FUNCTION(import_manager, AEGP_RegisterImportFlavor, true)                \
    FUNCTION(import_manager, AEGP_RegisterImportFlavorFileTypes, true)       \
    FUNCTION(import_manager, AEGP_RegisterImportFlavorImportCallbacks, true) \
    FUNCTION(utility, AEGP_ReportInfo, true)                                 \
    FUNCTION(utility, AEGP_StartUndoGroup, true)                             \
    FUNCTION(utility, AEGP_EndUndoGroup, true)                               \
    FUNCTION(persistent_data, AEGP_GetApplicationBlob, true)                 \
    FUNCTION(persistent_data, AEGP_DoesKeyExist, true)                       \
    FUNCTION(persistent_data, AEGP_GetData, true)                            \
    FUNCTION(persistent_data, AEGP_SetData, true)                            \
    FUNCTION(project, AEGP_GetProjectByIndex, true)                          \
    FUNCTION(project, AEGP_GetProjectRootFolder, true)                       \
    FUNCTION(item, AEGP_CreateNewFolder, true)                               \
    FUNCTION(footage, AEGP_NewFootage, true)                                 \
    FUNCTION(footage, AEGP_AddFootageToProject, true)                        \
    FUNCTION(footage, AEGP_GetFootageInterpretation, true)                   \
    FUNCTION(footage, AEGP_SetFootageInterpretation, true)                   \
    FUNCTION(footage, AEGP_NewPlaceholderFootage, true)                      \
    FUNCTION(comp, AEGP_GetCompFromItem, true)                               \
    FUNCTION(comp, AEGP_GetItemFromComp, true)                               \
    FUNCTION(comp, AEGP_CreateCameraInComp, true)                            \
    FUNCTION(comp, AEGP_CreateLightInComp, true)                             \
    FUNCTION(comp, AEGP_CreateComp, true)                                    \
    FUNCTION(comp, AEGP_CreateNullInComp, true)                              \
    FUNCTION(layer, AEGP_SetLayerFlag, true)                                 \
    FUNCTION(layer, AEGP_SetLayerInPointAndDuration, true)                   \
    FUNCTION(layer, AEGP_SetLayerOffset, true)                               \
    FUNCTION(layer, AEGP_GetLayerTransferMode, true)                         \
    FUNCTION(layer, AEGP_SetLayerTransferMode, true)                         \
    FUNCTION(layer, AEGP_IsAddLayerValid, true)                              \
    FUNCTION(layer, AEGP_AddLayer, true)                                     \
    FUNCTION(stream, AEGP_GetNewLayerStream, true)                           \
    FUNCTION(stream, AEGP_DisposeStream, true)                               \
    FUNCTION(stream, AEGP_SetStreamValue, true)                              \
    FUNCTION(keyframe, AEGP_StartAddKeyframes, true)                         \
    FUNCTION(keyframe, AEGP_AddKeyframes, true)                              \
    FUNCTION(keyframe, AEGP_SetAddKeyframe, true)                            \
    FUNCTION(keyframe, AEGP_EndAddKeyframes, true)                           \
    FUNCTION(light, AEGP_SetLightType, true)                                 \
    FUNCTION(memory, AEGP_NewMemHandle, true)                                \
    FUNCTION(memory, AEGP_FreeMemHandle, true)                               \
    FUNCTION(memory, AEGP_LockMemHandle, true)                               \
    FUNCTION(memory, AEGP_UnlockMemHandle, true)                             \
    FUNCTION(io_in, AEGP_GetInSpecOptionsHandle, true)                       \
    FUNCTION(io_in, AEGP_SetInSpecOptionsHandle, true)                       \
    FUNCTION(io_in, AEGP_SetInSpecNativeFPS, true)                           \
    FUNCTION(io_in, AEGP_SetInSpecDepth, true)                               \
    FUNCTION(io_in, AEGP_SetInSpecSize, true)                                \
    FUNCTION(io_in, AEGP_SetInSpecAlphaLabel, true)                          \
    FUNCTION(io_in, AEGP_SetInSpecDuration, true)                            \
    FUNCTION(io_in, AEGP_GetInSpecFilePath, true)                            \
    FUNCTION(io_in, AEGP_GetInSpecSize, true)                                \
    FUNCTION(io_in, AEGP_SetInSpecDimensions, true)                          \
    FUNCTION(io_out, AEGP_GetOutSpecFilePath, true)                          \
    FUNCTION(ansi, cos, false)                                               \
    FUNCTION(ansi, sin, false)                                               \
    FUNCTION(ansi, strcpy, false)                                            \
    FUNCTION(unicode_item, AEGP_SetItemName, true)

enum class SuiteId : std::size_t {
#define VXR_SUITE_ID(id, name, classic, today) id,
    VXR_HOST_SUITES(VXR_SUITE_ID)
#undef VXR_SUITE_ID
        count
};
inline constexpr std::size_t kSuiteCount = static_cast<std::size_t>(SuiteId::count);

struct SuiteInfo {
    const char* name;
    A_long classic_version;
    A_long today_version;
    [[nodiscard]] constexpr A_long version(HostGeneration generation) const {
        return generation == HostGeneration::classic ? classic_version : today_version;
    }
};

inline constexpr std::array<SuiteInfo, kSuiteCount> kSuites{{
#define VXR_SUITE_INFO(id, name, classic, today) {name, classic, today},
    VXR_HOST_SUITES(VXR_SUITE_INFO)
#undef VXR_SUITE_INFO
}};

constexpr const SuiteInfo& suite_info(SuiteId suite) {
    return kSuites[static_cast<std::size_t>(suite)];
}

enum class Fn : std::size_t {
#define VXR_FUNCTION_ID(suite, name, can_fail) name,
    VXR_HOST_FUNCTIONS(VXR_FUNCTION_ID)
#undef VXR_FUNCTION_ID
        count
};
inline constexpr std::size_t kFunctionCount = static_cast<std::size_t>(Fn::count);

struct FunctionInfo {
    SuiteId suite;
    const char* name;
    bool can_fail;
};

inline constexpr std::array<FunctionInfo, kFunctionCount> kFunctions{{
#define VXR_FUNCTION_INFO(suite, name, can_fail) {SuiteId::suite, #name, can_fail},
    VXR_HOST_FUNCTIONS(VXR_FUNCTION_INFO)
#undef VXR_FUNCTION_INFO
}};

constexpr const FunctionInfo& function_info(Fn function) {
    return kFunctions[static_cast<std::size_t>(function)];
}

}  // namespace embedded
