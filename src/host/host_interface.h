#pragma once

// The part of After Effects' binary interface that the plug-in uses: 64-bit records, and the suite versions
// of classic hosts (narrow paths, interface 9.x to 12.x). current_interface.h declares what current hosts
// have instead.
//
// The declarations are our own. The assertions beside each record and table check every offset: the host
// is compiled elsewhere, so a misplaced member causes no compile error but a crash in an artist's project.
// Slots that the plug-in never calls are reserved pointers, which give every table its full length.
//
// All functions are plain C functions with the platform's default calling convention. They return an `A_Err`,
// 0 for success, unless a declaration says otherwise.

#include <cstddef>
#include <cstdint>

// VXR_HOST_LAYOUT(CONDITION): an assertion about the layout of hosts, which all have 64 bits. The viewer for
// browsers has 32, and no host loads it: the plug-in and the embedded host in it are one program and share
// whatever layout there is.
#if defined(__EMSCRIPTEN__)
#define VXR_HOST_LAYOUT(...) static_assert(sizeof(void*) == 4 || (__VA_ARGS__))
#else
#define VXR_HOST_LAYOUT(...) static_assert(__VA_ARGS__)
VXR_HOST_LAYOUT(sizeof(void*) == 8, "the layouts below are those of 64-bit hosts");
#endif

// ---------------------------------------------------------------------------------------------------------------
// Scalars. The widths are the same on every platform: the host's records never contain a C `long`.

using A_long = std::int32_t;
using A_u_long = std::uint32_t;
using A_short = std::int16_t;
using A_Boolean = std::uint8_t;
using A_u_char = std::uint8_t;
using A_char = char;
using A_FpLong = double;
using A_Err = std::int32_t;
using A_Fixed = std::int32_t;  ///< 16.16 fixed point

using AEGP_PluginID = std::int32_t;
using AEGP_LayerStream = std::int32_t;
using AEGP_LightType = std::int32_t;
using AEGP_LayerFlags = std::int32_t;
using AEGP_MemFlag = std::int32_t;
using AEGP_MemSize = std::uint32_t;
using AEGP_TrackMatte = std::int32_t;
using AEGP_TransferFlags = std::int32_t;
using AEGP_AlphaFlags = std::uint32_t;
using AEGP_LTimeMode = std::int16_t;
using AEGP_InterpretationStyle = std::uint8_t;
using PF_TransferMode = std::int32_t;
using FIEL_Type = std::uint32_t;
using FIEL_Order = std::uint32_t;
using AEIO_AlphaFlags = std::uint32_t;
using AEIO_AlphaType = std::uint8_t;
using AEIO_DrawingFlags = std::int32_t;
using AE_FIM_ImportFlavorRef = std::int32_t;
using AE_FIM_ImportFlags = std::int32_t;
using AE_FIM_SpecialAction = std::int32_t;

// ---------------------------------------------------------------------------------------------------------------
// Handles and refcons. Opaque to the plug-in; distinct pointer types let the compiler tell them apart.

using AEGP_ProjectH = struct AEGP_Project*;
using AEGP_ItemH = struct AEGP_Item*;
using AEGP_CompH = struct AEGP_Comp*;
using AEGP_FootageH = struct AEGP_Footage*;
using AEGP_LayerH = struct AEGP_Layer*;
using AEGP_StreamRefH = struct AEGP_StreamRef*;
using AEGP_AddKeyframesInfoH = struct AEGP_AddKeyframesInfo*;
using AEGP_MemHandle = struct AEGP_Mem*;
using AEGP_PersistentBlobH = struct AEGP_PersistentBlob*;
using AEIO_InSpecH = struct AEIO_SeqSpec**;
using AEIO_OutSpecH = struct AEIO_OutSpec**;
using AEIO_Handle = AEGP_MemHandle;  ///< a memory handle, as the input-module block names it

struct AEGP_FootageLayerKey;  ///< selects a layer of a layered file; the plug-in always passes null

using AEGP_GlobalRefcon = void*;
using AEGP_DeathRefcon = void*;
using AEGP_IORefcon = void*;
using AE_FIM_Refcon = void*;
using AE_FIM_ImportOptions = void*;

// ---------------------------------------------------------------------------------------------------------------
// Values

inline constexpr A_Err kHostErrorNone = 0;
inline constexpr A_Err kHostErrorGeneric = 1;
inline constexpr A_Err kHostErrorStructure = 2;
inline constexpr A_Err kHostErrorParameter = 3;
inline constexpr A_Err kHostErrorAllocation = 4;
inline constexpr A_Err kHostErrorMissingSuite = 13;
/// An input-module callback returns this to request the host's default handling.
inline constexpr A_Err kHostUseDefaultCallback = 9992;

inline constexpr AEGP_LayerStream kLayerStreamAnchorPoint = 0;  ///< a camera's or light's point of interest
inline constexpr AEGP_LayerStream kLayerStreamPosition = 1;
inline constexpr AEGP_LayerStream kLayerStreamScale = 2;
inline constexpr AEGP_LayerStream kLayerStreamZRotation = 3;
inline constexpr AEGP_LayerStream kLayerStreamOpacity = 4;
inline constexpr AEGP_LayerStream kLayerStreamXRotation = 8;
inline constexpr AEGP_LayerStream kLayerStreamYRotation = 9;
inline constexpr AEGP_LayerStream kLayerStreamOrientation = 10;
inline constexpr AEGP_LayerStream kLayerStreamZoom = 11;
inline constexpr AEGP_LayerStream kLayerStreamIntensity = 16;
inline constexpr AEGP_LayerStream kLayerStreamColor = 17;
inline constexpr AEGP_LayerStream kLayerStreamConeAngle = 18;
inline constexpr AEGP_LayerStream kLayerStreamCastsShadows = 28;

inline constexpr AEGP_LTimeMode kTimeModeLayer = 0;
inline constexpr AEGP_LTimeMode kTimeModeComp = 1;

inline constexpr AEGP_LightType kLightTypeParallel = 0;
inline constexpr AEGP_LightType kLightTypeSpot = 1;
inline constexpr AEGP_LightType kLightTypePoint = 2;
inline constexpr AEGP_LightType kLightTypeAmbient = 3;

inline constexpr PF_TransferMode kTransferModeNormal = 2;  ///< in front
inline constexpr PF_TransferMode kTransferModeAdd = 4;
inline constexpr PF_TransferMode kTransferModeMultiply = 5;

inline constexpr AEGP_LayerFlags kLayerFlag3D = 0x800;
/// The layer, a camera or a light, turns towards its point of interest.
inline constexpr AEGP_LayerFlags kLayerFlagLookAtPointOfInterest = 0x2000;
inline constexpr AEGP_MemFlag kMemFlagClear = 1;

inline constexpr AEGP_AlphaFlags kAlphaFlagPremultiplied = 1;
inline constexpr AEGP_AlphaFlags kAlphaFlagInverted = 2;
inline constexpr AEGP_AlphaFlags kAlphaFlagIgnore = 4;

inline constexpr FIEL_Type kFieldTypeWholeFrames = 0;
inline constexpr FIEL_Type kFieldTypeInterlaced = 1;
inline constexpr FIEL_Order kFieldOrderUpperFirst = 0;
inline constexpr FIEL_Order kFieldOrderLowerFirst = 1;

/// The host guesses how to interpret footage and shows no dialog.
inline constexpr AEGP_InterpretationStyle kInterpretationGuessWithoutDialog = 0;

inline constexpr AE_FIM_ImportFlags kImportFlagComposition = 2;
inline constexpr AE_FIM_SpecialAction kSpecialActionNone = -1;
inline constexpr AE_FIM_ImportFlavorRef kInvalidImportFlavor = INT32_MIN;  ///< 0x80000000

inline constexpr A_long kModuleFlagInput = 1 << 0;
inline constexpr A_long kModuleFlagOutput = 1 << 1;
inline constexpr A_long kModuleFlagFile = 1 << 2;
inline constexpr A_long kModuleFlagStill = 1 << 3;
inline constexpr A_long kModuleFlagNoTime = 1 << 6;
inline constexpr A_long kModuleFlagNoOptions = 1 << 16;
inline constexpr A_long kModuleFlagNoUserInterface = 1 << 25;

inline constexpr A_long kSupportedDepth32WithAlpha = 1 << 7;

/// The size of the caller's buffer for a path that a classic host writes: 259 bytes and a terminator.
inline constexpr std::size_t kClassicPathBytes = 260;

inline constexpr AEIO_AlphaType kAlphaTypeStraight = 0;
inline constexpr AEIO_AlphaType kAlphaTypePremultiplied = 1;
inline constexpr AEIO_AlphaType kAlphaTypeIgnore = 2;
inline constexpr AEIO_AlphaType kAlphaTypeNone = 3;

/// A four-character code with the first character in the most significant byte, as the host expects it.
constexpr A_long four_char_code(const char (&text)[5]) {
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i) {
        code = (code << 8) | static_cast<unsigned char>(text[i]);
    }
    return static_cast<A_long>(code);
}

// ---------------------------------------------------------------------------------------------------------------
// Records. Natural alignment with packing 8, except where another packing is given.

#pragma pack(push, 8)

/// A time: `value` / `scale` seconds.
struct A_Time {
    A_long value;
    A_u_long scale;
};
VXR_HOST_LAYOUT(sizeof(A_Time) == 8 && offsetof(A_Time, scale) == 4);

struct A_Ratio {
    A_long num;
    A_u_long den;
};
VXR_HOST_LAYOUT(sizeof(A_Ratio) == 8 && offsetof(A_Ratio, den) == 4);

/// Passed by value to the creators of cameras and lights.
struct A_FloatPoint {
    A_FpLong x;
    A_FpLong y;
};
VXR_HOST_LAYOUT(sizeof(A_FloatPoint) == 16 && offsetof(A_FloatPoint, y) == 8);

struct A_LRect {
    A_long left;
    A_long top;
    A_long right;
    A_long bottom;
};
VXR_HOST_LAYOUT(sizeof(A_LRect) == 16 && offsetof(A_LRect, bottom) == 12);

struct A_LPoint {
    A_long x;
    A_long y;
};
VXR_HOST_LAYOUT(sizeof(A_LPoint) == 8);

struct AEGP_ColorVal {
    A_FpLong alpha;
    A_FpLong red;
    A_FpLong green;
    A_FpLong blue;
};
VXR_HOST_LAYOUT(sizeof(AEGP_ColorVal) == 32 && offsetof(AEGP_ColorVal, red) == 8 &&
                offsetof(AEGP_ColorVal, green) == 16 && offsetof(AEGP_ColorVal, blue) == 24);

struct AEGP_FourDVal {
    A_FpLong values[4];
};

struct AEGP_ThreeDVal {
    A_FpLong x;
    A_FpLong y;
    A_FpLong z;
};

struct AEGP_TwoDVal {
    A_FpLong x;
    A_FpLong y;
};

/// The value of a stream; the stream determines which member is used.
union AEGP_StreamVal {
    AEGP_FourDVal four_d;
    AEGP_ThreeDVal three_d;
    AEGP_TwoDVal two_d;
    A_FpLong one_d;
    AEGP_ColorVal color;
    void* pointer;
    A_long id;
};
VXR_HOST_LAYOUT(sizeof(AEGP_StreamVal) == 32);

struct AEGP_StreamValue {
    AEGP_StreamRefH stream;
    AEGP_StreamVal value;
};
VXR_HOST_LAYOUT(sizeof(AEGP_StreamValue) == 40 && offsetof(AEGP_StreamValue, value) == 8);

struct AEGP_LayerTransferMode {
    PF_TransferMode mode;
    AEGP_TransferFlags flags;
    AEGP_TrackMatte track_matte;
};
VXR_HOST_LAYOUT(sizeof(AEGP_LayerTransferMode) == 12 && offsetof(AEGP_LayerTransferMode, flags) == 4 &&
                offsetof(AEGP_LayerTransferMode, track_matte) == 8);

struct AEGP_FileSequenceImportOptions {
    A_Boolean all_in_folder;
    A_Boolean force_alphabetical;
    A_long start_frame;  ///< -1: the first frame of the sequence
    A_long end_frame;    ///< -1: the last frame of the sequence
};
VXR_HOST_LAYOUT(sizeof(AEGP_FileSequenceImportOptions) == 12 &&
                offsetof(AEGP_FileSequenceImportOptions, force_alphabetical) == 1 &&
                offsetof(AEGP_FileSequenceImportOptions, start_frame) == 4 &&
                offsetof(AEGP_FileSequenceImportOptions, end_frame) == 8);

#pragma pack(push, 2)

/// Interlacing of footage: whole frames or fields, and which field comes first.
struct FIEL_Label {
    A_u_long signature;
    A_short version;
    FIEL_Type type;
    FIEL_Order order;
    A_u_long reserved;
};
VXR_HOST_LAYOUT(sizeof(FIEL_Label) == 18 && offsetof(FIEL_Label, version) == 4 &&
                offsetof(FIEL_Label, type) == 6 && offsetof(FIEL_Label, order) == 10 &&
                offsetof(FIEL_Label, reserved) == 14);

/// The alpha channel of an input module's image.
struct AEIO_AlphaLabel {
    A_short version;
    AEIO_AlphaFlags flags;
    A_u_char red;
    A_u_char green;
    A_u_char blue;
    AEIO_AlphaType alpha_type;
};
VXR_HOST_LAYOUT(sizeof(AEIO_AlphaLabel) == 10 && offsetof(AEIO_AlphaLabel, flags) == 2 &&
                offsetof(AEIO_AlphaLabel, red) == 6 && offsetof(AEIO_AlphaLabel, green) == 7 &&
                offsetof(AEIO_AlphaLabel, blue) == 8 && offsetof(AEIO_AlphaLabel, alpha_type) == 9);

#pragma pack(pop)

/// The alpha channel of a footage item; the colour is that of the matte.
struct AEGP_AlphaLabel {
    AEGP_AlphaFlags flags;
    A_u_char red;
    A_u_char green;
    A_u_char blue;
};
VXR_HOST_LAYOUT(sizeof(AEGP_AlphaLabel) == 8 && offsetof(AEGP_AlphaLabel, red) == 4 &&
                offsetof(AEGP_AlphaLabel, green) == 5 && offsetof(AEGP_AlphaLabel, blue) == 6);

struct AEGP_LoopBehavior {
    A_long loops;
    A_long reserved;
};

/// How a footage item is interpreted: fields, alpha, loops, pixel aspect, frame rate.
struct AEGP_FootageInterp {
    FIEL_Label interlace;
    AEGP_AlphaLabel alpha;
    A_long pulldown_phase;
    AEGP_LoopBehavior loop;
    A_Ratio pixel_aspect;
    A_FpLong native_fps;
    A_FpLong conform_fps;
    A_long depth;
    A_Boolean motion;
};
VXR_HOST_LAYOUT(sizeof(AEGP_FootageInterp) == 72 && offsetof(AEGP_FootageInterp, alpha) == 20 &&
                offsetof(AEGP_FootageInterp, pulldown_phase) == 28 &&
                offsetof(AEGP_FootageInterp, loop) == 32 &&
                offsetof(AEGP_FootageInterp, pixel_aspect) == 40 &&
                offsetof(AEGP_FootageInterp, native_fps) == 48 &&
                offsetof(AEGP_FootageInterp, conform_fps) == 56 &&
                offsetof(AEGP_FootageInterp, depth) == 64 && offsetof(AEGP_FootageInterp, motion) == 68);

struct PFILE_FileKind {
    A_long type;
    A_long creator;
};
VXR_HOST_LAYOUT(sizeof(PFILE_FileKind) == 8 && offsetof(PFILE_FileKind, creator) == 4);

/// A file extension. Its four bytes spell ".txl".
struct AEIO_FileExt {
    A_char pad;
    A_char extension[3];
};
VXR_HOST_LAYOUT(sizeof(AEIO_FileExt) == 4 && offsetof(AEIO_FileExt, extension) == 1);

union AEIO_FileKind {
    PFILE_FileKind mac;
    AEIO_FileExt ext;
    A_long id;
};
VXR_HOST_LAYOUT(sizeof(AEIO_FileKind) == 8);

struct AEIO_AuxExt {
    A_char extension[4];
    A_long type;
    A_long creator;
};
VXR_HOST_LAYOUT(sizeof(AEIO_AuxExt) == 12 && offsetof(AEIO_AuxExt, type) == 4);

inline constexpr int kMaxFileKinds = 16;

/// An input module's description of itself.
struct AEIO_ModuleInfo {
    A_long signature;
    A_char name[32];
    A_long flags;
    A_long flags2;
    A_long max_width;
    A_long max_height;
    A_short num_filetypes;
    A_short num_extensions;
    A_short num_clips;
    A_short pad;
    PFILE_FileKind create_kind;
    AEIO_FileExt create_ext;
    AEIO_FileKind read_kinds[kMaxFileKinds];
    A_short num_aux_extensions;
    AEIO_AuxExt aux_extensions[kMaxFileKinds];
};
VXR_HOST_LAYOUT(sizeof(AEIO_ModuleInfo) == 396 && offsetof(AEIO_ModuleInfo, name) == 4 &&
                offsetof(AEIO_ModuleInfo, flags) == 36 && offsetof(AEIO_ModuleInfo, flags2) == 40 &&
                offsetof(AEIO_ModuleInfo, max_width) == 44 && offsetof(AEIO_ModuleInfo, max_height) == 48 &&
                offsetof(AEIO_ModuleInfo, num_filetypes) == 52 &&
                offsetof(AEIO_ModuleInfo, num_extensions) == 54 &&
                offsetof(AEIO_ModuleInfo, num_clips) == 56 && offsetof(AEIO_ModuleInfo, pad) == 58 &&
                offsetof(AEIO_ModuleInfo, create_kind) == 60 && offsetof(AEIO_ModuleInfo, create_ext) == 68 &&
                offsetof(AEIO_ModuleInfo, read_kinds) == 72 &&
                offsetof(AEIO_ModuleInfo, num_aux_extensions) == 200 &&
                offsetof(AEIO_ModuleInfo, aux_extensions) == 204);

/// Descriptive texts of footage or of an output file.
struct AEIO_Verbiage {
    A_char name[32];
    A_char type[32];
    A_char sub_type[128];
};
VXR_HOST_LAYOUT(sizeof(AEIO_Verbiage) == 192 && offsetof(AEIO_Verbiage, type) == 32 &&
                offsetof(AEIO_Verbiage, sub_type) == 64);

struct AEIO_InterruptFuncs {
    void* functions[3];
};

/// The host's request for a frame.
struct AEIO_DrawSparseFramePB {
    A_short quality;
    A_Ratio scale_x;
    A_Ratio scale_y;
    A_Time time;
    A_Time duration;
    A_LRect required_region;
    AEIO_InterruptFuncs interrupt;
};
VXR_HOST_LAYOUT(sizeof(AEIO_DrawSparseFramePB) == 80 && offsetof(AEIO_DrawSparseFramePB, scale_x) == 4 &&
                offsetof(AEIO_DrawSparseFramePB, scale_y) == 12 &&
                offsetof(AEIO_DrawSparseFramePB, time) == 20 &&
                offsetof(AEIO_DrawSparseFramePB, duration) == 28 &&
                offsetof(AEIO_DrawSparseFramePB, required_region) == 36 &&
                offsetof(AEIO_DrawSparseFramePB, interrupt) == 56);

struct PF_Pixel {
    A_u_char alpha;
    A_u_char red;
    A_u_char green;
    A_u_char blue;
};
VXR_HOST_LAYOUT(sizeof(PF_Pixel) == 4 && offsetof(PF_Pixel, blue) == 3);

/// The host's 8-bit frame. Each row starts `row_bytes` after the one above it.
struct PF_LayerDef {
    void* reserved_0;
    void* reserved_1;
    A_long flags;
    PF_Pixel* data;
    A_long row_bytes;
    A_long width;
    A_long height;
    A_LRect extent;
    void* platform_ref;
    void* reserved_2;
    void* reserved_3;
    A_Ratio pixel_aspect;
    void* reserved_4;
    A_long origin_x;
    A_long origin_y;
    A_long reserved_5;
    A_long reserved_6;
};
VXR_HOST_LAYOUT(sizeof(PF_LayerDef) == 120 && offsetof(PF_LayerDef, flags) == 16 &&
                offsetof(PF_LayerDef, data) == 24 && offsetof(PF_LayerDef, row_bytes) == 32 &&
                offsetof(PF_LayerDef, width) == 36 && offsetof(PF_LayerDef, height) == 40 &&
                offsetof(PF_LayerDef, extent) == 44 && offsetof(PF_LayerDef, platform_ref) == 64 &&
                offsetof(PF_LayerDef, reserved_2) == 72 && offsetof(PF_LayerDef, reserved_3) == 80 &&
                offsetof(PF_LayerDef, pixel_aspect) == 88 && offsetof(PF_LayerDef, reserved_4) == 96 &&
                offsetof(PF_LayerDef, origin_x) == 104 && offsetof(PF_LayerDef, origin_y) == 108 &&
                offsetof(PF_LayerDef, reserved_5) == 112 && offsetof(PF_LayerDef, reserved_6) == 116);
using PF_EffectWorld = PF_LayerDef;

extern "C" {

// ---------------------------------------------------------------------------------------------------------------
// The basic suite, which gives access to every other suite.

struct SPBasicSuite {
    A_Err (*AcquireSuite)(const char* name, A_long version, const void** suite);
    A_Err (*ReleaseSuite)(const char* name, A_long version);
    A_Err (*IsEqual)(const char* token1, const char* token2);
    A_Err (*AllocateBlock)(std::size_t size, void** block);
    A_Err (*FreeBlock)(void* block);
    A_Err (*ReallocateBlock)(void* block, std::size_t size, void** new_block);
    A_Err (*Undefined)();
};
VXR_HOST_LAYOUT(sizeof(SPBasicSuite) == 56 && offsetof(SPBasicSuite, ReleaseSuite) == 8);

/// The first argument of every input-module callback.
struct AEIO_BasicData {
    void (*msg_func)(A_Err code, const A_char* text);
    const SPBasicSuite* basic_suite;
    AEGP_PluginID plugin_id;
    AEGP_IORefcon refcon;
};
VXR_HOST_LAYOUT(sizeof(AEIO_BasicData) == 32 && offsetof(AEIO_BasicData, basic_suite) == 8 &&
                offsetof(AEIO_BasicData, plugin_id) == 16 && offsetof(AEIO_BasicData, refcon) == 24);
using AEIO_InData = AEIO_BasicData;

// ---------------------------------------------------------------------------------------------------------------
// Entry point and callbacks

/// The entry point of a classic plug-in. Ours uses neither the two paths nor the refcon.
using AEGP_PluginInitFunc = A_Err (*)(SPBasicSuite* basic, A_long major_version, A_long minor_version,
                                      const A_char* file_path, const A_char* resource_path,
                                      AEGP_PluginID plugin_id, AEGP_GlobalRefcon* refcon);

using AEGP_DeathHook = A_Err (*)(AEGP_GlobalRefcon global_refcon, AEGP_DeathRefcon refcon);

using AE_FIM_ImportFileCB = A_Err (*)(const A_char* path, AE_FIM_ImportOptions options,
                                      AE_FIM_SpecialAction action, AEGP_ItemH folder, AE_FIM_Refcon refcon);
using AE_FIM_VerifyFileCB = A_Err (*)(const A_char* path, AE_FIM_Refcon refcon, A_Boolean* importable);

struct AE_FIM_ImportCallbacks {
    AE_FIM_Refcon refcon;
    AE_FIM_ImportFileCB import_cb;
    AE_FIM_VerifyFileCB verify_cb;
};
VXR_HOST_LAYOUT(sizeof(AE_FIM_ImportCallbacks) == 24 && offsetof(AE_FIM_ImportCallbacks, import_cb) == 8 &&
                offsetof(AE_FIM_ImportCallbacks, verify_cb) == 16);

// ---------------------------------------------------------------------------------------------------------------
// The function block of an input module. Every function takes the basic data first.

struct AEIO_FunctionBlock2 {
    A_Err (*AEIO_InitInSpecFromFile)(AEIO_BasicData*, const A_char* path, AEIO_InSpecH);
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
    A_Err (*AEIO_SetOutputFile)(AEIO_BasicData*, AEIO_OutSpecH, const A_char* path);
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
    A_Err (*AEIO_GetNthAuxFileSpec)(AEIO_BasicData*, AEIO_InSpecH, A_long frame, A_long n, A_char* path);
    A_Err (*AEIO_CloseSourceFiles)(AEIO_BasicData*, AEIO_InSpecH);
    A_Err (*AEIO_CountUserData)(AEIO_BasicData*, AEIO_InSpecH, A_u_long type, A_u_long max_size,
                                A_u_long* num);
    A_Err (*AEIO_SetUserData)(AEIO_BasicData*, AEIO_OutSpecH, A_u_long type, A_u_long index,
                              AEIO_Handle data);
    A_Err (*AEIO_GetUserData)(AEIO_BasicData*, AEIO_InSpecH, A_u_long type, A_u_long index, A_u_long max_size,
                              AEIO_Handle* data);
    A_Err (*AEIO_AddMarker)(AEIO_BasicData*, AEIO_OutSpecH, A_long frame, A_short type, void* data,
                            AEIO_InterruptFuncs*);
    A_Err (*AEIO_VerifyFileImportable)(AEIO_BasicData*, A_long signature, const A_char* path,
                                       A_Boolean* importable);
    A_Err (*AEIO_UserAudioOptionsDialog)(AEIO_BasicData*, AEIO_OutSpecH, A_Boolean* user_interacted);
};

}  // extern "C"

/// The byte offset of slot `n` in a table of function pointers.
constexpr std::size_t slot(std::size_t n) {
    return n * sizeof(void*);
}

inline constexpr std::size_t kFunctionBlockFields = 46;
VXR_HOST_LAYOUT(sizeof(AEIO_FunctionBlock2) == slot(kFunctionBlockFields));
#define VXR_FIELD_IS_AT(n, field) VXR_HOST_LAYOUT(offsetof(AEIO_FunctionBlock2, field) == slot(n))
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
#undef VXR_FIELD_IS_AT

// ---------------------------------------------------------------------------------------------------------------
// Suites. The plug-in never calls the functions in reserved slots; the name of such a member has the number
// of its first slot.

using ReservedSlot = void (*)();

extern "C" {

struct AEGP_RegisterSuite4 {
    ReservedSlot reserved_0[2];
    A_Err (*AEGP_RegisterDeathHook)(AEGP_PluginID, AEGP_DeathHook, AEGP_DeathRefcon);
    ReservedSlot reserved_3[4];
    A_Err (*AEGP_RegisterIO)(AEGP_PluginID, AEGP_IORefcon, const AEIO_ModuleInfo*,
                             const AEIO_FunctionBlock2*);
    ReservedSlot reserved_8[4];
};
VXR_HOST_LAYOUT(sizeof(AEGP_RegisterSuite4) == slot(12) &&
                offsetof(AEGP_RegisterSuite4, AEGP_RegisterDeathHook) == slot(2) &&
                offsetof(AEGP_RegisterSuite4, AEGP_RegisterIO) == slot(7));

struct AEGP_FileImportManagerSuite2 {
    A_Err (*AEGP_RegisterImportFlavor)(const A_char* name, AE_FIM_ImportFlavorRef* flavor);
    A_Err (*AEGP_RegisterImportFlavorFileTypes)(AE_FIM_ImportFlavorRef, A_long num_kinds,
                                                const AEIO_FileKind* kinds, A_long num_exts,
                                                const AEIO_FileKind* exts);
    A_Err (*AEGP_RegisterImportFlavorImportCallbacks)(AE_FIM_ImportFlavorRef, AE_FIM_ImportFlags,
                                                      const AE_FIM_ImportCallbacks*);
    ReservedSlot reserved_3[1];
};
VXR_HOST_LAYOUT(sizeof(AEGP_FileImportManagerSuite2) == slot(4) &&
                offsetof(AEGP_FileImportManagerSuite2, AEGP_RegisterImportFlavor) == slot(0) &&
                offsetof(AEGP_FileImportManagerSuite2, AEGP_RegisterImportFlavorFileTypes) == slot(1) &&
                offsetof(AEGP_FileImportManagerSuite2, AEGP_RegisterImportFlavorImportCallbacks) == slot(2));

struct AEGP_UtilitySuite7 {
    A_Err (*AEGP_ReportInfo)(AEGP_PluginID, const A_char* text);
    ReservedSlot reserved_1[4];
    A_Err (*AEGP_StartUndoGroup)(const A_char* name);
    A_Err (*AEGP_EndUndoGroup)();
    ReservedSlot reserved_7[18];
};
VXR_HOST_LAYOUT(sizeof(AEGP_UtilitySuite7) == slot(25) &&
                offsetof(AEGP_UtilitySuite7, AEGP_ReportInfo) == slot(0) &&
                offsetof(AEGP_UtilitySuite7, AEGP_StartUndoGroup) == slot(5) &&
                offsetof(AEGP_UtilitySuite7, AEGP_EndUndoGroup) == slot(6));

struct AEGP_PersistentDataSuite1 {
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
    ReservedSlot reserved_13[4];
};
VXR_HOST_LAYOUT(sizeof(AEGP_PersistentDataSuite1) == slot(17) &&
                offsetof(AEGP_PersistentDataSuite1, AEGP_GetApplicationBlob) == slot(0) &&
                offsetof(AEGP_PersistentDataSuite1, AEGP_DoesKeyExist) == slot(3) &&
                offsetof(AEGP_PersistentDataSuite1, AEGP_GetData) == slot(7) &&
                offsetof(AEGP_PersistentDataSuite1, AEGP_SetData) == slot(12));

struct AEGP_ProjSuite5 {
    ReservedSlot reserved_0[1];
    A_Err (*AEGP_GetProjectByIndex)(A_long index, AEGP_ProjectH*);
    ReservedSlot reserved_2[2];
    A_Err (*AEGP_GetProjectRootFolder)(AEGP_ProjectH, AEGP_ItemH*);
    ReservedSlot reserved_5[9];
};
VXR_HOST_LAYOUT(sizeof(AEGP_ProjSuite5) == slot(14) &&
                offsetof(AEGP_ProjSuite5, AEGP_GetProjectByIndex) == slot(1) &&
                offsetof(AEGP_ProjSuite5, AEGP_GetProjectRootFolder) == slot(4));

struct AEGP_ItemSuite10 {
    ReservedSlot reserved_0[19];
    A_Err (*AEGP_CreateNewFolder)(const A_char* name, AEGP_ItemH parent, AEGP_ItemH* folder);
    ReservedSlot reserved_20[6];
};
VXR_HOST_LAYOUT(sizeof(AEGP_ItemSuite10) == slot(26) &&
                offsetof(AEGP_ItemSuite10, AEGP_CreateNewFolder) == slot(19));

struct AEGP_FootageSuite7 {
    ReservedSlot reserved_0[5];
    A_Err (*AEGP_NewFootage)(AEGP_PluginID, const A_char* path, const AEGP_FootageLayerKey*,
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
VXR_HOST_LAYOUT(sizeof(AEGP_FootageSuite7) == slot(21) &&
                offsetof(AEGP_FootageSuite7, AEGP_NewFootage) == slot(5) &&
                offsetof(AEGP_FootageSuite7, AEGP_AddFootageToProject) == slot(6) &&
                offsetof(AEGP_FootageSuite7, AEGP_GetFootageInterpretation) == slot(10) &&
                offsetof(AEGP_FootageSuite7, AEGP_SetFootageInterpretation) == slot(11) &&
                offsetof(AEGP_FootageSuite7, AEGP_NewPlaceholderFootage) == slot(13));

struct AEGP_CompSuite9 {
    A_Err (*AEGP_GetCompFromItem)(AEGP_ItemH, AEGP_CompH*);
    A_Err (*AEGP_GetItemFromComp)(AEGP_CompH, AEGP_ItemH*);
    ReservedSlot reserved_2[12];
    A_Err (*AEGP_CreateCameraInComp)(const A_char* name, A_FloatPoint center, AEGP_CompH, AEGP_LayerH*);
    A_Err (*AEGP_CreateLightInComp)(const A_char* name, A_FloatPoint center, AEGP_CompH, AEGP_LayerH*);
    A_Err (*AEGP_CreateComp)(AEGP_ItemH parent_folder, const A_char* name, A_long width, A_long height,
                             const A_Ratio* pixel_aspect, const A_Time* duration, const A_Ratio* frame_rate,
                             AEGP_CompH*);
    ReservedSlot reserved_17[5];
    A_Err (*AEGP_CreateNullInComp)(const A_char* name, AEGP_CompH, const A_Time* duration, AEGP_LayerH*);
    ReservedSlot reserved_23[5];
};
VXR_HOST_LAYOUT(sizeof(AEGP_CompSuite9) == slot(28) &&
                offsetof(AEGP_CompSuite9, AEGP_GetCompFromItem) == slot(0) &&
                offsetof(AEGP_CompSuite9, AEGP_GetItemFromComp) == slot(1) &&
                offsetof(AEGP_CompSuite9, AEGP_CreateCameraInComp) == slot(14) &&
                offsetof(AEGP_CompSuite9, AEGP_CreateLightInComp) == slot(15) &&
                offsetof(AEGP_CompSuite9, AEGP_CreateComp) == slot(16) &&
                offsetof(AEGP_CompSuite9, AEGP_CreateNullInComp) == slot(22));

struct AEGP_LayerSuite11 {
    ReservedSlot reserved_0[11];
    A_Err (*AEGP_SetLayerFlag)(AEGP_LayerH, AEGP_LayerFlags, A_Boolean value);
    ReservedSlot reserved_12[5];
    A_Err (*AEGP_SetLayerInPointAndDuration)(AEGP_LayerH, AEGP_LTimeMode, const A_Time* in_point,
                                             const A_Time* duration);
    ReservedSlot reserved_18[1];
    A_Err (*AEGP_SetLayerOffset)(AEGP_LayerH, const A_Time* offset);
    ReservedSlot reserved_20[2];
    A_Err (*AEGP_GetLayerTransferMode)(AEGP_LayerH, AEGP_LayerTransferMode*);
    A_Err (*AEGP_SetLayerTransferMode)(AEGP_LayerH, const AEGP_LayerTransferMode*);
    A_Err (*AEGP_IsAddLayerValid)(AEGP_ItemH, AEGP_CompH, A_Boolean* valid);
    A_Err (*AEGP_AddLayer)(AEGP_ItemH, AEGP_CompH, AEGP_LayerH*);
    ReservedSlot reserved_26[20];
};
VXR_HOST_LAYOUT(sizeof(AEGP_LayerSuite11) == slot(46) &&
                offsetof(AEGP_LayerSuite11, AEGP_SetLayerFlag) == slot(11) &&
                offsetof(AEGP_LayerSuite11, AEGP_SetLayerInPointAndDuration) == slot(17) &&
                offsetof(AEGP_LayerSuite11, AEGP_SetLayerOffset) == slot(19) &&
                offsetof(AEGP_LayerSuite11, AEGP_GetLayerTransferMode) == slot(22) &&
                offsetof(AEGP_LayerSuite11, AEGP_SetLayerTransferMode) == slot(23) &&
                offsetof(AEGP_LayerSuite11, AEGP_IsAddLayerValid) == slot(24) &&
                offsetof(AEGP_LayerSuite11, AEGP_AddLayer) == slot(25));

struct AEGP_StreamSuite7 {
    ReservedSlot reserved_0[3];
    A_Err (*AEGP_GetNewLayerStream)(AEGP_PluginID, AEGP_LayerH, AEGP_LayerStream, AEGP_StreamRefH*);
    ReservedSlot reserved_4[3];
    A_Err (*AEGP_DisposeStream)(AEGP_StreamRefH);
    ReservedSlot reserved_8[7];
    A_Err (*AEGP_SetStreamValue)(AEGP_PluginID, AEGP_StreamRefH, AEGP_StreamValue*);
    ReservedSlot reserved_16[6];
};
VXR_HOST_LAYOUT(sizeof(AEGP_StreamSuite7) == slot(22) &&
                offsetof(AEGP_StreamSuite7, AEGP_GetNewLayerStream) == slot(3) &&
                offsetof(AEGP_StreamSuite7, AEGP_DisposeStream) == slot(7) &&
                offsetof(AEGP_StreamSuite7, AEGP_SetStreamValue) == slot(15));

struct AEGP_KeyframeSuite3 {
    ReservedSlot reserved_0[16];
    A_Err (*AEGP_StartAddKeyframes)(AEGP_StreamRefH, AEGP_AddKeyframesInfoH*);
    A_Err (*AEGP_AddKeyframes)(AEGP_AddKeyframesInfoH, AEGP_LTimeMode, const A_Time*, A_long* key_index);
    A_Err (*AEGP_SetAddKeyframe)(AEGP_AddKeyframesInfoH, A_long key_index, const AEGP_StreamValue*);
    A_Err (*AEGP_EndAddKeyframes)(A_Boolean add, AEGP_AddKeyframesInfoH);
};
VXR_HOST_LAYOUT(sizeof(AEGP_KeyframeSuite3) == slot(20) &&
                offsetof(AEGP_KeyframeSuite3, AEGP_StartAddKeyframes) == slot(16) &&
                offsetof(AEGP_KeyframeSuite3, AEGP_AddKeyframes) == slot(17) &&
                offsetof(AEGP_KeyframeSuite3, AEGP_SetAddKeyframe) == slot(18) &&
                offsetof(AEGP_KeyframeSuite3, AEGP_EndAddKeyframes) == slot(19));

struct AEGP_LightSuite2 {
    ReservedSlot reserved_0[1];
    A_Err (*AEGP_SetLightType)(AEGP_LayerH, AEGP_LightType);
};
VXR_HOST_LAYOUT(sizeof(AEGP_LightSuite2) == slot(2) &&
                offsetof(AEGP_LightSuite2, AEGP_SetLightType) == slot(1));

struct AEGP_MemorySuite1 {
    A_Err (*AEGP_NewMemHandle)(AEGP_PluginID, const A_char* what, AEGP_MemSize, AEGP_MemFlag,
                               AEGP_MemHandle*);
    A_Err (*AEGP_FreeMemHandle)(AEGP_MemHandle);
    A_Err (*AEGP_LockMemHandle)(AEGP_MemHandle, void** address);
    A_Err (*AEGP_UnlockMemHandle)(AEGP_MemHandle);
    ReservedSlot reserved_4[4];
};
VXR_HOST_LAYOUT(sizeof(AEGP_MemorySuite1) == slot(8) &&
                offsetof(AEGP_MemorySuite1, AEGP_NewMemHandle) == slot(0) &&
                offsetof(AEGP_MemorySuite1, AEGP_FreeMemHandle) == slot(1) &&
                offsetof(AEGP_MemorySuite1, AEGP_LockMemHandle) == slot(2) &&
                offsetof(AEGP_MemorySuite1, AEGP_UnlockMemHandle) == slot(3));

struct AEGP_IOInSuite1 {
    A_Err (*AEGP_GetInSpecOptionsHandle)(AEIO_InSpecH, void** options);
    A_Err (*AEGP_SetInSpecOptionsHandle)(AEIO_InSpecH, void* options, void** old_options);
    /// Writes to a buffer of kClassicPathBytes.
    A_Err (*AEGP_GetInSpecFilePath)(AEIO_InSpecH, A_char* path);
    ReservedSlot reserved_3[1];
    A_Err (*AEGP_SetInSpecNativeFPS)(AEIO_InSpecH, A_Fixed fps);
    ReservedSlot reserved_5[1];
    A_Err (*AEGP_SetInSpecDepth)(AEIO_InSpecH, A_short depth);
    A_Err (*AEGP_GetInSpecSize)(AEIO_InSpecH, A_long* size_bytes);
    A_Err (*AEGP_SetInSpecSize)(AEIO_InSpecH, A_long size_bytes);
    ReservedSlot reserved_9[3];
    A_Err (*AEGP_SetInSpecAlphaLabel)(AEIO_InSpecH, const AEIO_AlphaLabel*);
    ReservedSlot reserved_13[1];
    A_Err (*AEGP_SetInSpecDuration)(AEIO_InSpecH, const A_Time*);
    ReservedSlot reserved_15[1];
    A_Err (*AEGP_SetInSpecDimensions)(AEIO_InSpecH, A_long width, A_long height);
    ReservedSlot reserved_17[12];
};
VXR_HOST_LAYOUT(sizeof(AEGP_IOInSuite1) == slot(29) &&
                offsetof(AEGP_IOInSuite1, AEGP_GetInSpecOptionsHandle) == slot(0) &&
                offsetof(AEGP_IOInSuite1, AEGP_SetInSpecOptionsHandle) == slot(1) &&
                offsetof(AEGP_IOInSuite1, AEGP_GetInSpecFilePath) == slot(2) &&
                offsetof(AEGP_IOInSuite1, AEGP_SetInSpecNativeFPS) == slot(4) &&
                offsetof(AEGP_IOInSuite1, AEGP_SetInSpecDepth) == slot(6) &&
                offsetof(AEGP_IOInSuite1, AEGP_GetInSpecSize) == slot(7) &&
                offsetof(AEGP_IOInSuite1, AEGP_SetInSpecSize) == slot(8) &&
                offsetof(AEGP_IOInSuite1, AEGP_SetInSpecAlphaLabel) == slot(12) &&
                offsetof(AEGP_IOInSuite1, AEGP_SetInSpecDuration) == slot(14) &&
                offsetof(AEGP_IOInSuite1, AEGP_SetInSpecDimensions) == slot(16));

struct AEGP_IOOutSuite1 {
    ReservedSlot reserved_0[2];
    /// Writes to a buffer of kClassicPathBytes.
    A_Err (*AEGP_GetOutSpecFilePath)(AEIO_OutSpecH, A_char* path);
    ReservedSlot reserved_3[26];
};
VXR_HOST_LAYOUT(sizeof(AEGP_IOOutSuite1) == slot(29) &&
                offsetof(AEGP_IOOutSuite1, AEGP_GetOutSpecFilePath) == slot(2));

/// The host's mathematics and string functions. They return values, not errors.
struct PF_ANSISuite1 {
    ReservedSlot reserved_0[3];
    A_FpLong (*cos)(A_FpLong);
    ReservedSlot reserved_4[8];
    A_FpLong (*sin)(A_FpLong);
    ReservedSlot reserved_13[3];
    A_char* (*strcpy)(A_char* destination, const A_char* source);
    ReservedSlot reserved_17[2];
};
VXR_HOST_LAYOUT(sizeof(PF_ANSISuite1) == slot(19) && offsetof(PF_ANSISuite1, cos) == slot(3) &&
                offsetof(PF_ANSISuite1, sin) == slot(12) && offsetof(PF_ANSISuite1, strcpy) == slot(16));

/// The plug-in tests only whether it exists.
struct PF_AEAdvAppSuite1 {
    ReservedSlot reserved_0[10];
};
VXR_HOST_LAYOUT(sizeof(PF_AEAdvAppSuite1) == slot(10));

}  // extern "C"

#pragma pack(pop)
