#include "texture/input_module/registration.h"

#include <cstring>

#include "texture/input_module/frame_reading.h"
#include "texture/input_module/input_callbacks.h"
#include "texture/input_module/output_callbacks.h"

namespace {

constexpr A_long kTextureType = four_char_code("TXL ");
constexpr A_long kTextureCreator = four_char_code("VXR1");
constexpr A_long kAnyCreator = -1;
constexpr AEIO_FileExt kTextureExtension = {'.', {'t', 'x', 'l'}};

// Announced to the host and deliberately enforced nowhere: textures of any size are read.
constexpr A_long kMaxWidth_px = 320;
constexpr A_long kMaxHeight_px = 240;

}  // namespace

A_Err TexalonConstructModuleInfo(AEIO_ModuleInfo* info) {
    info->signature = kTextureType;
    static_assert(sizeof(kModuleName) <= sizeof(info->name));
    std::memcpy(info->name, kModuleName, sizeof(kModuleName));
    info->flags = kModuleFlagInput | kModuleFlagFile | kModuleFlagStill | kModuleFlagNoTime |
                  kModuleFlagNoOptions | kModuleFlagNoUserInterface;
    info->max_width = kMaxWidth_px;
    info->max_height = kMaxHeight_px;

    info->num_filetypes = 1;
    info->num_extensions = 1;
    info->num_clips = 0;
    info->create_kind.type = kTextureType;
    info->create_kind.creator = kTextureCreator;
    info->create_ext = kTextureExtension;

    // One file type, then one extension. Deliberately, because the whole record is fixed, a third entry
    // beyond these counts repeats the extension, followed by a zero.
    info->read_kinds[0].mac = {kTextureType, kAnyCreator};
    info->read_kinds[1].ext = info->create_ext;
    info->read_kinds[2].ext = kTextureExtension;
    const A_char terminator = 0;
    std::memcpy(&info->read_kinds[2].mac.creator, &terminator, sizeof(terminator));
    info->num_aux_extensions = 0;
    return kHostErrorNone;
}

A_Err TexalonConstructFunctionBlock(AEIO_FunctionBlock2* functions) {
    *functions = {};
    functions->AEIO_InitInSpecFromFile = InitInSpecFromFile;
    functions->AEIO_InitInSpecInteractive = My_InitInSpecInteractive;
    functions->AEIO_DisposeInSpec = My_DisposeInSpec;
    functions->AEIO_FlattenOptions = My_FlattenOptions;
    functions->AEIO_InflateOptions = My_InflateOptions;
    functions->AEIO_SynchInSpec = My_SynchInSpec;
    functions->AEIO_GetActiveExtent = My_GetActiveExtent;
    functions->AEIO_GetInSpecInfo = My_GetInSpecInfo;
    functions->AEIO_DrawSparseFrame = My_DrawSparseFrame;
    functions->AEIO_GetDimensions = My_GetDimensions;
    functions->AEIO_GetDuration = My_GetDuration;
    functions->AEIO_GetTime = My_GetTime;
    functions->AEIO_GetSound = My_GetSound;
    functions->AEIO_InqNextFrameTime = My_InqNextFrameTime;
    functions->AEIO_InitOutputSpec = My_InitOutputSpec;
    functions->AEIO_GetFlatOutputOptions = My_GetFlatOutputOptions;
    functions->AEIO_DisposeOutputOptions = My_DisposeOutputOptions;
    functions->AEIO_UserOptionsDialog = My_UserOptionsDialog;
    functions->AEIO_GetOutputInfo = My_GetOutputInfo;
    functions->AEIO_OutputInfoChanged = My_OutputInfoChanged;
    functions->AEIO_SetOutputFile = My_SetOutputFile;
    functions->AEIO_StartAdding = My_StartAdding;
    functions->AEIO_AddFrame = My_AddFrame;
    functions->AEIO_EndAdding = My_EndAdding;
    functions->AEIO_OutputFrame = My_OutputFrame;
    functions->AEIO_WriteLabels = My_WriteLabels;
    functions->AEIO_GetSizes = My_GetSizes;
    functions->AEIO_Flush = My_Flush;
    functions->AEIO_AddSoundChunk = My_AddSoundChunk;
    functions->AEIO_Idle = My_Idle;
    functions->AEIO_GetDepths = My_GetDepths;
    functions->AEIO_GetOutputSuffix = My_GetOutputSuffix;
    functions->AEIO_SeqOptionsDlg = My_SeqOptionsDlg;
    functions->AEIO_GetNumAuxChannels = My_GetNumAuxChannels;
    functions->AEIO_GetAuxChannelDesc = My_GetAuxChannelDesc;
    functions->AEIO_DrawAuxChannel = My_DrawAuxChannel;
    functions->AEIO_FreeAuxChannel = My_FreeAuxChannel;
    functions->AEIO_NumAuxFiles = My_NumAuxFiles;
    functions->AEIO_GetNthAuxFileSpec = My_GetNthAuxFileSpec;
    functions->AEIO_CloseSourceFiles = My_CloseSourceFiles;
    functions->AEIO_CountUserData = My_CountUserData;
    functions->AEIO_SetUserData = My_SetUserData;
    functions->AEIO_GetUserData = My_GetUserData;
    functions->AEIO_AddMarker = My_AddMarker;
    functions->AEIO_VerifyFileImportable = My_VerifyFileImportable;
    functions->AEIO_UserAudioOptionsDialog = My_UserAudioOptionsDialog;
    return kHostErrorNone;
}
