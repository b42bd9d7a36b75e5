#include "texture/input_module/output_callbacks.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <new>
#include <string_view>

#include "host/plugin_globals.h"
#include "host/suite_handler.h"
#include "texture/input_module/registration.h"

namespace {

// Writes the text, truncated to fit the field, and its terminator; the rest of the field stays unchanged.
template <std::size_t N>
void set_text(A_char (&field)[N], std::string_view text) {
    const std::string_view kept = text.substr(0, N - 1);
    *std::copy(kept.begin(), kept.end(), field) = 0;
}

std::string_view name_in_path(std::string_view path) {
    const std::size_t backslash = path.rfind('\\');
    return backslash == std::string_view::npos ? "???" : path.substr(backslash + 1);
}

}  // namespace

A_Err My_GetOutputInfo(AEIO_BasicData* basic, AEIO_OutSpecH spec, AEIO_Verbiage* verbiage) {
    std::array<A_char, kClassicPathBytes> path = {};
    AEGP_SuiteHandler suites(basic->basic_suite);
    const A_Err err = suites.IOOutSuite1()->AEGP_GetOutSpecFilePath(spec, path.data());
    if (err != kHostErrorNone) {
        suites.UtilitySuite7()->AEGP_ReportInfo(g_PluginID, g_pCh_Unable_get_file_data);
        return err;
    }
    path.back() = 0;
    set_text(verbiage->name, name_in_path(path.data()));
    set_text(verbiage->type, kModuleName);
    set_text(verbiage->sub_type, kModuleName);
    return kHostErrorNone;
}

A_Err My_UserOptionsDialog(AEIO_BasicData* basic, AEIO_OutSpecH /*spec*/, const PF_LayerDef* /*sample*/,
                           A_Boolean* /*user_interacted*/) {
    basic->msg_func(1, "Use the message func hanging off the AEIO_BasicData!");
    return kHostErrorNone;
}

A_Err My_GetDepths(AEIO_BasicData* /*basic*/, AEIO_OutSpecH /*spec*/, A_long* which) {
    *which = kSupportedDepth32WithAlpha;
    return kHostErrorNone;
}

A_Err My_DisposeOutputOptions(AEIO_BasicData* /*basic*/, void* options) {
    ::operator delete(options);
    return kHostErrorNone;
}

A_Err My_InitOutputSpec(AEIO_BasicData*, AEIO_OutSpecH, A_Boolean*) {
    return kHostUseDefaultCallback;
}

A_Err My_GetFlatOutputOptions(AEIO_BasicData*, AEIO_OutSpecH, AEIO_Handle*) {
    return kHostUseDefaultCallback;
}

A_Err My_OutputInfoChanged(AEIO_BasicData*, AEIO_OutSpecH) {
    return kHostUseDefaultCallback;
}

A_Err My_SetOutputFile(AEIO_BasicData*, AEIO_OutSpecH, const A_char*) {
    return kHostUseDefaultCallback;
}

A_Err My_WriteLabels(AEIO_BasicData*, AEIO_OutSpecH, A_u_long*) {
    return kHostUseDefaultCallback;
}

A_Err My_GetSizes(AEIO_BasicData*, AEIO_OutSpecH, std::uint64_t*, std::uint64_t*) {
    return kHostUseDefaultCallback;
}

A_Err My_GetOutputSuffix(AEIO_BasicData*, AEIO_OutSpecH, A_char*) {
    return kHostUseDefaultCallback;
}

A_Err My_UserAudioOptionsDialog(AEIO_BasicData*, AEIO_OutSpecH, A_Boolean*) {
    return kHostUseDefaultCallback;
}

A_Err My_StartAdding(AEIO_BasicData*, AEIO_OutSpecH, A_long) {
    return kHostErrorNone;
}

A_Err My_AddFrame(AEIO_BasicData*, AEIO_OutSpecH, A_long, A_long, const PF_LayerDef*, const A_LPoint*,
                  A_Boolean, AEIO_InterruptFuncs*) {
    return kHostErrorNone;
}

A_Err My_EndAdding(AEIO_BasicData*, AEIO_OutSpecH, A_long) {
    return kHostErrorNone;
}

A_Err My_OutputFrame(AEIO_BasicData*, AEIO_OutSpecH, const PF_LayerDef*) {
    return kHostErrorNone;
}

A_Err My_Flush(AEIO_BasicData*, AEIO_OutSpecH) {
    return kHostErrorNone;
}

A_Err My_AddSoundChunk(AEIO_BasicData*, AEIO_OutSpecH, const A_Time*, A_u_long, const void*) {
    return kHostErrorNone;
}

A_Err My_SetUserData(AEIO_BasicData*, AEIO_OutSpecH, A_u_long, A_u_long, AEIO_Handle) {
    return kHostErrorNone;
}

A_Err My_AddMarker(AEIO_BasicData*, AEIO_OutSpecH, A_long, A_short, void*, AEIO_InterruptFuncs*) {
    return kHostErrorNone;
}
