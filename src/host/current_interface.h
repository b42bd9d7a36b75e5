#pragma once

// Current hosts: 64-bit After Effects, interface 13.0 and later. Most of their suites are those of
// host_interface.h. This header declares the differences in the same way: the declarations are our own, and
// assertions check every offset.
//
// Paths of current hosts are zero-terminated UTF-16 with the platform's separators (hosts on macOS are
// assumed to pass POSIX paths). Names are narrow in the suites of host_interface.h, without a documented
// encoding and cut at 31 bytes; the last two suites below take them as zero-terminated UTF-16. These hosts
// offer the classic versions of those two, and lack the classic versions of the others.

#include <cstddef>
#include <cstdint>

#include "host/host_interface.h"

/// A UTF-16 code unit.
using A_UTF16Char = char16_t;
VXR_HOST_LAYOUT(sizeof(A_UTF16Char) == 2);

/// A size in bytes.
using AEIO_FileSize = std::uint64_t;

#pragma pack(push, 8)

extern "C" {

// ---------------------------------------------------------------------------------------------------------------
// Entry point and callbacks

/// The entry point that current hosts call: the classic one without the two paths.
using AEGP_PluginInitFuncCurrent = A_Err (*)(SPBasicSuite* basic, A_long major_version, A_long minor_version,
                                             AEGP_PluginID plugin_id, AEGP_GlobalRefcon* refcon);

using AE_FIM_ImportFileCB3 = A_Err (*)(const A_UTF16Char* path, AE_FIM_ImportOptions options,
                                       AE_FIM_SpecialAction action, AEGP_ItemH folder, AE_FIM_Refcon refcon);
using AE_FIM_VerifyFileCB3 = A_Err (*)(const A_UTF16Char* path, AE_FIM_Refcon refcon, A_Boolean* importable);

struct AE_FIM_ImportCallbacks3 {
    AE_FIM_Refcon refcon;
    AE_FIM_ImportFileCB3 import_cb;
    AE_FIM_VerifyFileCB3 verify_cb;
};
VXR_HOST_LAYOUT(sizeof(AE_FIM_ImportCallbacks3) == 24 && offsetof(AE_FIM_ImportCallbacks3, import_cb) == 8 &&
                offsetof(AE_FIM_ImportCallbacks3, verify_cb) == 16);

// ---------------------------------------------------------------------------------------------------------------
// The function block of an input module: the classic fields, four of them with other path types, and three
// more. Every function takes the basic data first. AEIO_GetNthAuxFileSpec gives the host a memory handle with
// a zero-terminated UTF-16 path, which the host frees.

struct AEIO_FunctionBlock4 {
    A_Err (*AEIO_InitInSpecFromFile)(AEIO_BasicData*, const A_UTF16Char* path, AEIO_InSpecH);
    A_Err (*AEIO_InitInSpecInteractive)(AEIO_BasicData*, AEIO_InSpecH);
    A_Err (*AEIO_DisposeInSpec)(AEIO_BasicData*, AEIO_InSpecH);
    A_Err (*AEIO_FlattenOptions)(AEIO_BasicData*, AEIO_InSpecH, AEIO_Handle* flat_options);
    A_Err (*AEIO_InflateOptions)(AEIO_BasicData*, AEIO_InSpecH, AEIO_Handle flat_options);
    A_Err (*AEIO_SynchInSpec)(AEIO_BasicData*, AEIO_InSpecH, A_Boolean* changed);
    A_Err (*AEIO_GetActiveExtent)(AEIO_BasicData*, AEIO_InSpecH, const A_Time*, A_LRect* extent);
    A_Err (*AEIO_GetInSpecInfo)(AEIO_BasicData*, AEIO_InSpecH, AEIO_Verbiage*);
    A_Err (*AEIO_DrawSparseFrame)(AEIO_BasicData*, AEIO_InSpecH, const AEIO_DrawSparseFramePB* request,
                                  PF_LayerDef* world, AEIO_DrawingFlags* flags);
    A_Err (*AEIO_GetDimensions)(AEIO_BasicData*, AEIO_InSpecH, const A_Ratio* scale, A_long* width,
                                A_long* height);
    A_Err (*AEIO_GetDuration)(AEIO_BasicData*, AEIO_InSpecH, A_Time*);
    A_Err (*AEIO_GetTime)(AEIO_BasicData*, AEIO_InSpecH, A_Time*);
    A_Err (*AEIO_GetSound)(AEIO_BasicData*, AEIO_InSpecH, A_short quality, const AEIO_InterruptFuncs*,
                           const A_Time* start, const A_Time* duration, A_u_long start_sample,
                           A_u_long samples, void* data);
    A_Err (*AEIO_InqNextFrameTime)(AEIO_BasicData*, AEIO_InSpecH, const A_Time*, A_short direction,
                                   A_Boolean* found, A_Time* next);
    A_Err (*AEIO_InitOutputSpec)(AEIO_BasicData*, AEIO_OutSpecH, A_Boolean* user_interacted);
    A_Err (*AEIO_GetFlatOutputOptions)(AEIO_BasicData*, AEIO_OutSpecH, AEIO_Handle* options);
    A_Err (*AEIO_DisposeOutputOptions)(AEIO_BasicData*, void* options);
    A_Err (*AEIO_UserOptionsDialog)(AEIO_BasicData*, AEIO_OutSpecH, const PF_LayerDef* sample,
                                    A_Boolean* user_interacted);
    A_Err (*AEIO_GetOutputInfo)(AEIO_BasicData*, AEIO_OutSpecH, AEIO_Verbiage*);
    A_Err (*AEIO_OutputInfoChanged)(AEIO_BasicData*, AEIO_OutSpecH);
    A_Err (*AEIO_SetOutputFile)(AEIO_BasicData*, AEIO_OutSpecH, const A_UTF16Char* path);
    A_Err (*AEIO_StartAdding)(AEIO_BasicData*, AEIO_OutSpecH, A_long flags);
    A_Err (*AEIO_AddFrame)(AEIO_BasicData*, AEIO_OutSpecH, A_long index, A_long frames, const PF_LayerDef*,
                           const A_LPoint* origin, A_Boolean was_compressed, AEIO_InterruptFuncs*);
    A_Err (*AEIO_EndAdding)(AEIO_BasicData*, AEIO_OutSpecH, A_long flags);
    A_Err (*AEIO_OutputFrame)(AEIO_BasicData*, AEIO_OutSpecH, const PF_LayerDef*);
    A_Err (*AEIO_WriteLabels)(AEIO_BasicData*, AEIO_OutSpecH, A_u_long* written);
    A_Err (*AEIO_GetSizes)(AEIO_BasicData*, AEIO_OutSpecH, std::uint64_t* free_space,
                           std::uint64_t* file_size);
    A_Err (*AEIO_Flush)(AEIO_BasicData*, AEIO_OutSpecH);
    A_Err (*AEIO_AddSoundChunk)(AEIO_BasicData*, AEIO_OutSpecH, const A_Time* start, A_u_long samples,
                                const void* data);
    A_Err (*AEIO_Idle)(AEIO_BasicData*, A_long signature, A_long* sleep);
    A_Err (*AEIO_GetDepths)(AEIO_BasicData*, AEIO_OutSpecH, A_long* which);
    A_Err (*AEIO_GetOutputSuffix)(AEIO_BasicData*, AEIO_OutSpecH, A_char* suffix);
    A_Err (*AEIO_SeqOptionsDlg)(AEIO_BasicData*, AEIO_InSpecH, A_Boolean* user_interacted);
    A_Err (*AEIO_GetNumAuxChannels)(AEIO_BasicData*, AEIO_InSpecH, A_long* num);
    A_Err (*AEIO_GetAuxChannelDesc)(AEIO_BasicData*, AEIO_InSpecH, A_long index, void* description);
    A_Err (*AEIO_DrawAuxChannel)(AEIO_BasicData*, AEIO_InSpecH, A_long index, const void* request,
                                 void* chunk);
    A_Err (*AEIO_FreeAuxChannel)(AEIO_BasicData*, AEIO_InSpecH, void* chunk);
    A_Err (*AEIO_NumAuxFiles)(AEIO_BasicData*, AEIO_InSpecH, A_long* num);
    A_Err (*AEIO_GetNthAuxFileSpec)(AEIO_BasicData*, AEIO_InSpecH, A_long frame, A_long n,
                                    AEGP_MemHandle* path);
    A_Err (*AEIO_CloseSourceFiles)(AEIO_BasicData*, AEIO_InSpecH);
    A_Err (*AEIO_CountUserData)(AEIO_BasicData*, AEIO_InSpecH, A_u_long type, A_u_long max_size,
                                A_u_long* num);
    A_Err (*AEIO_SetUserData)(AEIO_BasicData*, AEIO_OutSpecH, A_u_long type, A_u_long index,
                              AEIO_Handle data);
    A_Err (*AEIO_GetUserData)(AEIO_BasicData*, AEIO_InSpecH, A_u_long type, A_u_long index, A_u_long max_size,
                              AEIO_Handle* data);
    A_Err (*AEIO_AddMarker)(AEIO_BasicData*, AEIO_OutSpecH, A_long frame, A_short type, void* data,
                            AEIO_InterruptFuncs*);
    A_Err (*AEIO_VerifyFileImportable)(AEIO_BasicData*, A_long signature, const A_UTF16Char* path,
                                       A_Boolean* importable);
    A_Err (*AEIO_UserAudioOptionsDialog)(AEIO_BasicData*, AEIO_OutSpecH, A_Boolean* user_interacted);
    A_Err (*AEIO_AddMarker2)(AEIO_BasicData*, AEIO_OutSpecH, A_long frame, const void* marker,
                             AEIO_InterruptFuncs*);
    A_Err (*AEIO_AddMarker3)(AEIO_BasicData*, AEIO_OutSpecH, A_long frame, const void* marker, A_u_long flags,
                             AEIO_InterruptFuncs*);
    A_Err (*AEIO_GetMimeType)(AEIO_BasicData*, AEIO_OutSpecH, A_long size, A_char* mime_type);
};

}  // extern "C"

inline constexpr std::size_t kFunctionBlock4Fields = 49;
VXR_HOST_LAYOUT(sizeof(AEIO_FunctionBlock4) == slot(kFunctionBlock4Fields));
#define VXR_FIELD_IS_AT(n, field) VXR_HOST_LAYOUT(offsetof(AEIO_FunctionBlock4, field) == slot(n))
VXR_FIELD_IS_AT(0, AEIO_InitInSpecFromFile);
VXR_FIELD_IS_AT(1, AEIO_InitInSpecInteractive);
VXR_FIELD_IS_AT(2, AEIO_DisposeInSpec);
VXR_FIELD_IS_AT(3, AEIO_FlattenOptions);
VXR_FIELD_IS_AT(4, AEIO_InflateOptions);
VXR_FIELD_IS_AT(5, AEIO_SynchInSpec);
VXR_FIELD_IS_AT(6, AEIO_GetActiveExtent);
VXR_FIELD_IS_AT(7, AEIO_GetInSpecInfo);
VXR_FIELD_IS_AT(8, AEIO_DrawSparseFrame);
VXR_FIELD_IS_AT(9, AEIO_GetDimensions);
VXR_FIELD_IS_AT(10, AEIO_GetDuration);
VXR_FIELD_IS_AT(11, AEIO_GetTime);
VXR_FIELD_IS_AT(12, AEIO_GetSound);
VXR_FIELD_IS_AT(13, AEIO_InqNextFrameTime);
VXR_FIELD_IS_AT(14, AEIO_InitOutputSpec);
VXR_FIELD_IS_AT(15, AEIO_GetFlatOutputOptions);
VXR_FIELD_IS_AT(16, AEIO_DisposeOutputOptions);
VXR_FIELD_IS_AT(17, AEIO_UserOptionsDialog);
VXR_FIELD_IS_AT(18, AEIO_GetOutputInfo);
VXR_FIELD_IS_AT(19, AEIO_OutputInfoChanged);
VXR_FIELD_IS_AT(20, AEIO_SetOutputFile);
VXR_FIELD_IS_AT(21, AEIO_StartAdding);
VXR_FIELD_IS_AT(22, AEIO_AddFrame);
VXR_FIELD_IS_AT(23, AEIO_EndAdding);
VXR_FIELD_IS_AT(24, AEIO_OutputFrame);
VXR_FIELD_IS_AT(25, AEIO_WriteLabels);
VXR_FIELD_IS_AT(26, AEIO_GetSizes);
VXR_FIELD_IS_AT(27, AEIO_Flush);
VXR_FIELD_IS_AT(28, AEIO_AddSoundChunk);
VXR_FIELD_IS_AT(29, AEIO_Idle);
VXR_FIELD_IS_AT(30, AEIO_GetDepths);
VXR_FIELD_IS_AT(31, AEIO_GetOutputSuffix);
VXR_FIELD_IS_AT(32, AEIO_SeqOptionsDlg);
VXR_FIELD_IS_AT(33, AEIO_GetNumAuxChannels);
VXR_FIELD_IS_AT(34, AEIO_GetAuxChannelDesc);
VXR_FIELD_IS_AT(35, AEIO_DrawAuxChannel);
VXR_FIELD_IS_AT(36, AEIO_FreeAuxChannel);
VXR_FIELD_IS_AT(37, AEIO_NumAuxFiles);
VXR_FIELD_IS_AT(38, AEIO_GetNthAuxFileSpec);
VXR_FIELD_IS_AT(39, AEIO_CloseSourceFiles);
VXR_FIELD_IS_AT(40, AEIO_CountUserData);
VXR_FIELD_IS_AT(41, AEIO_SetUserData);
VXR_FIELD_IS_AT(42, AEIO_GetUserData);
VXR_FIELD_IS_AT(43, AEIO_AddMarker);
VXR_FIELD_IS_AT(44, AEIO_VerifyFileImportable);
VXR_FIELD_IS_AT(45, AEIO_UserAudioOptionsDialog);
VXR_FIELD_IS_AT(46, AEIO_AddMarker2);
VXR_FIELD_IS_AT(47, AEIO_AddMarker3);
VXR_FIELD_IS_AT(48, AEIO_GetMimeType);
#undef VXR_FIELD_IS_AT

// ---------------------------------------------------------------------------------------------------------------
// Suites with the names of classic ones and newer versions

extern "C" {

/// "AEGP Register Suite" 6
struct AEGP_RegisterSuite6 {
    ReservedSlot reserved_0[2];
    A_Err (*AEGP_RegisterDeathHook)(AEGP_PluginID, AEGP_DeathHook, AEGP_DeathRefcon);
    ReservedSlot reserved_3[4];
    A_Err (*AEGP_RegisterIO)(AEGP_PluginID, AEGP_IORefcon, const AEIO_ModuleInfo*,
                             const AEIO_FunctionBlock4*);
    ReservedSlot reserved_8[4];
};
VXR_HOST_LAYOUT(sizeof(AEGP_RegisterSuite6) == slot(12) &&
                offsetof(AEGP_RegisterSuite6, AEGP_RegisterDeathHook) == slot(2) &&
                offsetof(AEGP_RegisterSuite6, AEGP_RegisterIO) == slot(7));

/// "AEGP File Import Manager Suite" 3
struct AEGP_FileImportManagerSuite3 {
    A_Err (*AEGP_RegisterImportFlavor)(const A_char* name, AE_FIM_ImportFlavorRef* flavor);
    A_Err (*AEGP_RegisterImportFlavorFileTypes)(AE_FIM_ImportFlavorRef, A_long num_kinds,
                                                const AEIO_FileKind* kinds, A_long num_exts,
                                                const AEIO_FileKind* exts);
    A_Err (*AEGP_RegisterImportFlavorImportCallbacks)(AE_FIM_ImportFlavorRef, AE_FIM_ImportFlags,
                                                      const AE_FIM_ImportCallbacks3*);
    ReservedSlot reserved_3[1];
};
VXR_HOST_LAYOUT(sizeof(AEGP_FileImportManagerSuite3) == slot(4) &&
                offsetof(AEGP_FileImportManagerSuite3, AEGP_RegisterImportFlavor) == slot(0) &&
                offsetof(AEGP_FileImportManagerSuite3, AEGP_RegisterImportFlavorFileTypes) == slot(1) &&
                offsetof(AEGP_FileImportManagerSuite3, AEGP_RegisterImportFlavorImportCallbacks) == slot(2));

/// "AEGP Persistent Data Suite" 3
struct AEGP_PersistentDataSuite3 {
    A_Err (*AEGP_GetApplicationBlob)(AEGP_PersistentBlobH*);
    ReservedSlot reserved_1[2];
    A_Err (*AEGP_DoesKeyExist)(AEGP_PersistentBlobH, const A_char* section, const A_char* key,
                               A_Boolean* exists);
    ReservedSlot reserved_4[3];
    A_Err (*AEGP_GetData)(AEGP_PersistentBlobH, const A_char* section, const A_char* key, A_u_long size,
                          const void* default_data, void* data);
    ReservedSlot reserved_8[4];
    A_Err (*AEGP_SetData)(AEGP_PersistentBlobH, const A_char* section, const A_char* key, A_u_long size,
                          const void* data);
    ReservedSlot reserved_13[5];
};
VXR_HOST_LAYOUT(sizeof(AEGP_PersistentDataSuite3) == slot(18) &&
                offsetof(AEGP_PersistentDataSuite3, AEGP_GetApplicationBlob) == slot(0) &&
                offsetof(AEGP_PersistentDataSuite3, AEGP_DoesKeyExist) == slot(3) &&
                offsetof(AEGP_PersistentDataSuite3, AEGP_GetData) == slot(7) &&
                offsetof(AEGP_PersistentDataSuite3, AEGP_SetData) == slot(12));

/// "AEGP Proj Suite" 8
struct AEGP_ProjSuite8 {
    ReservedSlot reserved_0[1];
    A_Err (*AEGP_GetProjectByIndex)(A_long index, AEGP_ProjectH*);
    ReservedSlot reserved_2[2];
    A_Err (*AEGP_GetProjectRootFolder)(AEGP_ProjectH, AEGP_ItemH*);
    ReservedSlot reserved_5[9];
};
VXR_HOST_LAYOUT(sizeof(AEGP_ProjSuite8) == slot(14) &&
                offsetof(AEGP_ProjSuite8, AEGP_GetProjectByIndex) == slot(1) &&
                offsetof(AEGP_ProjSuite8, AEGP_GetProjectRootFolder) == slot(4));

/// "AEGP Footage Suite" 11
struct AEGP_FootageSuite11 {
    ReservedSlot reserved_0[5];
    A_Err (*AEGP_NewFootage)(AEGP_PluginID, const A_UTF16Char* path, const AEGP_FootageLayerKey*,
                             const AEGP_FileSequenceImportOptions*, AEGP_InterpretationStyle, void* reserved,
                             AEGP_FootageH*);
    A_Err (*AEGP_AddFootageToProject)(AEGP_FootageH, AEGP_ItemH folder, AEGP_ItemH* item);
    ReservedSlot reserved_7[3];
    A_Err (*AEGP_GetFootageInterpretation)(AEGP_ItemH, A_Boolean proxy, AEGP_FootageInterp*);
    A_Err (*AEGP_SetFootageInterpretation)(AEGP_ItemH, A_Boolean proxy, const AEGP_FootageInterp*);
    ReservedSlot reserved_12[1];
    A_Err (*AEGP_NewPlaceholderFootage)(AEGP_PluginID, const A_char* name, A_long width, A_long height,
                                        const A_Time* duration, AEGP_FootageH*);
    ReservedSlot reserved_14[7];
};
VXR_HOST_LAYOUT(sizeof(AEGP_FootageSuite11) == slot(21) &&
                offsetof(AEGP_FootageSuite11, AEGP_NewFootage) == slot(5) &&
                offsetof(AEGP_FootageSuite11, AEGP_AddFootageToProject) == slot(6) &&
                offsetof(AEGP_FootageSuite11, AEGP_GetFootageInterpretation) == slot(10) &&
                offsetof(AEGP_FootageSuite11, AEGP_SetFootageInterpretation) == slot(11) &&
                offsetof(AEGP_FootageSuite11, AEGP_NewPlaceholderFootage) == slot(13));

/// "AEGP IO In Suite" 5
struct AEGP_IOInSuite5 {
    A_Err (*AEGP_GetInSpecOptionsHandle)(AEIO_InSpecH, void** options);
    A_Err (*AEGP_SetInSpecOptionsHandle)(AEIO_InSpecH, void* options, void** old_options);
    /// Yields a zero-terminated UTF-16 path in a memory handle that the caller frees.
    A_Err (*AEGP_GetInSpecFilePath)(AEIO_InSpecH, AEGP_MemHandle* path);
    ReservedSlot reserved_3[1];
    A_Err (*AEGP_SetInSpecNativeFPS)(AEIO_InSpecH, A_Fixed fps);
    ReservedSlot reserved_5[1];
    A_Err (*AEGP_SetInSpecDepth)(AEIO_InSpecH, A_short depth);
    A_Err (*AEGP_GetInSpecSize)(AEIO_InSpecH, AEIO_FileSize* size_bytes);
    A_Err (*AEGP_SetInSpecSize)(AEIO_InSpecH, AEIO_FileSize size_bytes);
    ReservedSlot reserved_9[3];
    A_Err (*AEGP_SetInSpecAlphaLabel)(AEIO_InSpecH, const AEIO_AlphaLabel*);
    ReservedSlot reserved_13[1];
    A_Err (*AEGP_SetInSpecDuration)(AEIO_InSpecH, const A_Time*);
    ReservedSlot reserved_15[1];
    A_Err (*AEGP_SetInSpecDimensions)(AEIO_InSpecH, A_long width, A_long height);
    ReservedSlot reserved_17[14];
};
VXR_HOST_LAYOUT(sizeof(AEGP_IOInSuite5) == slot(31) &&
                offsetof(AEGP_IOInSuite5, AEGP_GetInSpecOptionsHandle) == slot(0) &&
                offsetof(AEGP_IOInSuite5, AEGP_SetInSpecOptionsHandle) == slot(1) &&
                offsetof(AEGP_IOInSuite5, AEGP_GetInSpecFilePath) == slot(2) &&
                offsetof(AEGP_IOInSuite5, AEGP_SetInSpecNativeFPS) == slot(4) &&
                offsetof(AEGP_IOInSuite5, AEGP_SetInSpecDepth) == slot(6) &&
                offsetof(AEGP_IOInSuite5, AEGP_GetInSpecSize) == slot(7) &&
                offsetof(AEGP_IOInSuite5, AEGP_SetInSpecSize) == slot(8) &&
                offsetof(AEGP_IOInSuite5, AEGP_SetInSpecAlphaLabel) == slot(12) &&
                offsetof(AEGP_IOInSuite5, AEGP_SetInSpecDuration) == slot(14) &&
                offsetof(AEGP_IOInSuite5, AEGP_SetInSpecDimensions) == slot(16));

/// "AEGP IO Out Suite" 7
struct AEGP_IOOutSuite7 {
    ReservedSlot reserved_0[2];
    /// Yields a zero-terminated UTF-16 path in a memory handle that the caller frees. The plug-in ignores
    /// what the host writes to `*reserved`; the pointer must not be null.
    A_Err (*AEGP_GetOutSpecFilePath)(AEIO_OutSpecH, AEGP_MemHandle* path, A_Boolean* reserved);
    ReservedSlot reserved_3[29];
};
VXR_HOST_LAYOUT(sizeof(AEGP_IOOutSuite7) == slot(32) &&
                offsetof(AEGP_IOOutSuite7, AEGP_GetOutSpecFilePath) == slot(2));

/// "AEGP Item Suite" 13
struct AEGP_ItemSuite13 {
    ReservedSlot reserved_0[8];
    A_Err (*AEGP_SetItemName)(AEGP_ItemH, const A_UTF16Char* name);
    ReservedSlot reserved_9[10];
    /// A null parent is the root folder.
    A_Err (*AEGP_CreateNewFolder)(const A_UTF16Char* name, AEGP_ItemH parent, AEGP_ItemH* folder);
    ReservedSlot reserved_20[7];
};
VXR_HOST_LAYOUT(sizeof(AEGP_ItemSuite13) == slot(27) &&
                offsetof(AEGP_ItemSuite13, AEGP_SetItemName) == slot(8) &&
                offsetof(AEGP_ItemSuite13, AEGP_CreateNewFolder) == slot(19));

/// "AEGP Comp Suite" 15. That slot 0 is the classic function is assumed, as slot 1 is.
struct AEGP_CompSuite15 {
    A_Err (*AEGP_GetCompFromItem)(AEGP_ItemH, AEGP_CompH*);
    A_Err (*AEGP_GetItemFromComp)(AEGP_CompH, AEGP_ItemH*);
    ReservedSlot reserved_2[15];
    A_Err (*AEGP_CreateCameraInComp)(const A_UTF16Char* name, A_FloatPoint center, AEGP_CompH, AEGP_LayerH*);
    A_Err (*AEGP_CreateLightInComp)(const A_UTF16Char* name, A_FloatPoint center, AEGP_CompH, AEGP_LayerH*);
    /// A null parent is the root folder.
    A_Err (*AEGP_CreateComp)(AEGP_ItemH parent_folder, const A_UTF16Char* name, A_long width, A_long height,
                             const A_Ratio* pixel_aspect, const A_Time* duration, const A_Ratio* frame_rate,
                             AEGP_CompH*);
    ReservedSlot reserved_20[5];
    /// A null duration is the host's preference for the length of stills.
    A_Err (*AEGP_CreateNullInComp)(const A_UTF16Char* name, AEGP_CompH, const A_Time* duration, AEGP_LayerH*);
    ReservedSlot reserved_26[8];
};
VXR_HOST_LAYOUT(sizeof(AEGP_CompSuite15) == slot(34) &&
                offsetof(AEGP_CompSuite15, AEGP_GetCompFromItem) == slot(0) &&
                offsetof(AEGP_CompSuite15, AEGP_GetItemFromComp) == slot(1) &&
                offsetof(AEGP_CompSuite15, AEGP_CreateCameraInComp) == slot(17) &&
                offsetof(AEGP_CompSuite15, AEGP_CreateLightInComp) == slot(18) &&
                offsetof(AEGP_CompSuite15, AEGP_CreateComp) == slot(19) &&
                offsetof(AEGP_CompSuite15, AEGP_CreateNullInComp) == slot(25));

}  // extern "C"

#pragma pack(pop)
