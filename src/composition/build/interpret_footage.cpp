#include <cstring>

#include "composition/build/host_values.h"
#include "composition/model/composition.h"
#include "composition/model/project_settings.h"
#include "host/plugin_globals.h"
#include "host/suite_handler.h"
#include "texture/file/base_file.h"
#include "texture/file/byte_order.h"

namespace {

// Whether the path ends in ".rla" or ".rpf", in any mix of cases. Compared by hand, because the C library's
// comparison depends on the locale that the host has set.
bool has_matte_count(const char* path) {
    const std::size_t length = std::strlen(path);
    if (length < 4) {
        return false;
    }
    char extension[5] = {};
    for (std::size_t i = 0; i < 4; ++i) {
        const char c = path[length - 4 + i];
        extension[i] = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return std::strcmp(extension, ".rla") == 0 || std::strcmp(extension, ".rpf") == 0;
}

/// Whether `path` is an image of the RLA family whose header says that it has no matte channels. Deliberately
/// overrides the entry's alpha word, since such an image has no alpha. False for a file that does not open or
/// is too short.
bool has_no_mattes(const char* path) {
    if (!has_matte_count(path)) {
        return false;
    }
    BaseFile file;
    if (file.Open(Filename(path), 1, 0) == 0) {
        return false;
    }
    // Both windows (four 16-bit values each), frame, storage type and channel count.
    constexpr std::int32_t kBytesBeforeMatteCount = 22;
    unsigned char skipped[kBytesBeforeMatteCount];
    file.ReadBytes(skipped, kBytesBeforeMatteCount, 0);
    std::int16_t stored = 0;
    if (file.ReadBytes(&stored, sizeof stored, 0) != sizeof stored) {
        return false;
    }
    WMotor(&stored, 1);
    return stored == 0;
}

void set_alpha(AEGP_AlphaLabel& alpha, A_long alpha_mode, const char* path) {
    alpha.flags &= ~kAlphaFlagPremultiplied;
    if (has_no_mattes(path)) {
        alpha.flags |= kAlphaFlagIgnore;
    } else if (alpha_mode == kAlphaPremultiplied) {
        alpha.flags |= kAlphaFlagPremultiplied;
    }
}

void set_fields(FIEL_Label& interlace, A_long fields) {
    interlace.type = fields == kFieldsNone ? kFieldTypeWholeFrames : kFieldTypeInterlaced;
    interlace.order =
        fields == kFieldsNone || fields == kFieldsEven ? kFieldOrderUpperFirst : kFieldOrderLowerFirst;
}

A_Err edit_interpretation(AEGP_SuiteHandler& suites, const CFileItem& file, AEGP_ItemH item,
                          const tagProjectSettings& settings, const char* path) {
    constexpr A_Boolean kNotTheProxy = 0;
    // Value-initialised, which clears the padding as well.
    AEGP_FootageInterp interpretation = AEGP_FootageInterp();
    const A_Err err =
        suites.FootageSuite7()->AEGP_GetFootageInterpretation(item, kNotTheProxy, &interpretation);
    if (err != kHostErrorNone) {
        return err;
    }

    set_alpha(interpretation.alpha, file.alphaMode, path);
    if (file.isSequence == 1) {
        interpretation.conform_fps = settings.fps;
        interpretation.motion = 1;
    }
    set_fields(interpretation.interlace, settings.fields);
    interpretation.pixel_aspect = pixel_aspect_ratio(settings.aspect);
    return suites.FootageSuite7()->AEGP_SetFootageInterpretation(item, kNotTheProxy, &interpretation);
}

}  // namespace

A_Err CFileItem::InterpretFootage(AEGP_SuiteHandler* suites, AEGP_FootageH /*footage*/, AEGP_ItemH item,
                                  tagProjectSettings* settings, char* path_of_footage) {
    const A_Err err = edit_interpretation(*suites, *this, item, *settings,
                                          path_of_footage != nullptr ? path_of_footage : "");
    if (err != kHostErrorNone) {
        suites->UtilitySuite7()->AEGP_ReportInfo(g_PluginID, g_pCh_Error_interpret_footage);
    }
    return err;
}
