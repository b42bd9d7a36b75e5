#include "texture/input_module/frame_reading.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>

#include "host/plugin_globals.h"
#include "host/suite_handler.h"
#include "texture/input_module/draw_picture.h"
#include "texture/txl/example_txl_image.h"
#include "texture/txl/txl_image_filter.h"

namespace {

constexpr A_long kDepthWithoutAlpha = 24;
constexpr A_long kDepthWithAlpha = 32;
constexpr A_u_long kTimeScale = 30;
constexpr A_Fixed kNativeFramesPerSecond = 30 << 16;
constexpr std::int64_t kBytesPerPixel = 6;

// Gets the address of the record in a handle by locking the handle and unlocking it at once. The address is
// deliberately used without the lock afterwards: the record lives as long as the in-spec, and the host does
// not move it.
A_Err look_up_record(AEGP_SuiteHandler& suites, AEGP_MemHandle handle, void** record) {
    A_Err err = suites.MemorySuite1()->AEGP_LockMemHandle(handle, record);
    if (err == kHostErrorNone) {
        err = suites.MemorySuite1()->AEGP_UnlockMemHandle(handle);
    }
    if (err == kHostErrorNone && *record == nullptr) {
        err = kHostErrorGeneric;
    }
    return err;
}

// Constructs the record in a new handle. The memory is cleared, but the record's picture has a constructor,
// which must run.
A_Err make_record(AEGP_SuiteHandler& suites, AEGP_MemHandle* handle, tagTexalonHeader** record) {
    A_Err err = suites.MemorySuite1()->AEGP_NewMemHandle(g_PluginID, "optionsH", sizeof(tagTexalonHeader),
                                                         kMemFlagClear, handle);
    if (err == kHostErrorNone && *handle == nullptr) {
        err = kHostErrorGeneric;
    }
    void* address = nullptr;
    if (err == kHostErrorNone) {
        err = look_up_record(suites, *handle, &address);
    }
    if (err == kHostErrorNone) {
        *record = new (address) tagTexalonHeader;
    }
    return err;
}

// Frees the picture of the record, then the handle. The picture is emptied rather than destroyed: if the host
// fails to free the handle and uses it again, the handle still holds a record, with nothing to draw.
A_Err free_record(AEGP_SuiteHandler& suites, AEGP_MemHandle handle) {
    void* record = nullptr;
    if (suites.MemorySuite1()->AEGP_LockMemHandle(handle, &record) == kHostErrorNone) {
        if (record != nullptr) {
            static_cast<tagTexalonHeader*>(record)->bitmap.Destroy();
        }
        suites.MemorySuite1()->AEGP_UnlockMemHandle(handle);
    }
    return suites.MemorySuite1()->AEGP_FreeMemHandle(handle);
}

// Frees the picture of a record that was never attached and so is never disposed of, also when a missing
// suite throws.
class UnattachedPicture {
  public:
    explicit UnattachedPicture(BaseBitmap* picture) : picture_(picture) {}
    UnattachedPicture(const UnattachedPicture&) = delete;
    UnattachedPicture& operator=(const UnattachedPicture&) = delete;
    ~UnattachedPicture() {
        if (picture_ != nullptr) {
            picture_->Destroy();
        }
    }
    void release() { picture_ = nullptr; }

  private:
    BaseBitmap* picture_;
};

// A record that was attached before is this module's as well, so it is freed like a disposed one.
A_Err attach_record(AEGP_SuiteHandler& suites, AEIO_InSpecH spec, AEGP_MemHandle handle,
                    UnattachedPicture* picture) {
    void* old_handle = nullptr;
    const A_Err err = suites.IOInSuite1()->AEGP_SetInSpecOptionsHandle(spec, handle, &old_handle);
    if (err != kHostErrorNone) {
        return err;
    }
    picture->release();
    return old_handle == nullptr ? kHostErrorNone
                                 : free_record(suites, static_cast<AEGP_MemHandle>(old_handle));
}

A_long clamped_size_bytes(const tagTexalonHeader& header) {
    // A picture has at most 2^30 pixels: the size fits 64 bits easily, but not always 32.
    const std::int64_t size_bytes = std::int64_t{header.width} * header.height * kBytesPerPixel;
    return static_cast<A_long>(std::min<std::int64_t>(size_bytes, std::numeric_limits<A_long>::max()));
}

A_Err set_alpha_label(const AEGP_IOInSuite1& in_suite, AEIO_InSpecH spec) {
    AEIO_AlphaLabel label = {};
    label.version = 0x0101;
    label.flags = 1;
    label.alpha_type = kAlphaTypePremultiplied;
    return in_suite.AEGP_SetInSpecAlphaLabel(spec, &label);
}

A_Err describe_footage(const AEGP_IOInSuite1& in_suite, AEIO_InSpecH spec, const tagTexalonHeader& header) {
    A_Err err = in_suite.AEGP_SetInSpecDepth(spec, static_cast<A_short>(header.depth));
    if (err == kHostErrorNone) {
        const A_Time still = {0, kTimeScale};
        err = in_suite.AEGP_SetInSpecDuration(spec, &still);
    }
    if (err == kHostErrorNone) {
        err = in_suite.AEGP_SetInSpecDimensions(spec, header.width, header.height);
    }
    if (err == kHostErrorNone) {
        err = in_suite.AEGP_SetInSpecSize(spec, clamped_size_bytes(header));
    }
    if (err == kHostErrorNone) {
        err = in_suite.AEGP_SetInSpecNativeFPS(spec, kNativeFramesPerSecond);
    }
    if (err == kHostErrorNone && version55 && header.depth == kDepthWithAlpha) {
        err = set_alpha_label(in_suite, spec);
    }
    return err;
}

A_Err read_into_in_spec(AEGP_SuiteHandler& suites, AEIO_BasicData* basic, const A_char* path,
                        AEIO_InSpecH spec) {
    AEGP_MemHandle handle = nullptr;
    tagTexalonHeader* header = nullptr;
    A_Err err = make_record(suites, &handle, &header);
    if (err != kHostErrorNone) {
        return err;
    }
    UnattachedPicture picture(&header->bitmap);
    err = ReadFileHeader(basic, header, path);
    if (err == kHostErrorNone) {
        err = attach_record(suites, spec, handle, &picture);
    }
    if (err == kHostErrorNone) {
        err = describe_footage(*suites.IOInSuite1(), spec, *header);
    }
    return err;
}

A_Err draw_in_spec(AEGP_SuiteHandler& suites, AEIO_InSpecH spec, const PF_LayerDef* world) {
    void* handle = nullptr;
    A_Err err = suites.IOInSuite1()->AEGP_GetInSpecOptionsHandle(spec, &handle);
    if (err != kHostErrorNone || handle == nullptr) {
        return err;
    }
    void* record = nullptr;
    err = look_up_record(suites, static_cast<AEGP_MemHandle>(handle), &record);
    if (err != kHostErrorNone) {
        return err;
    }
    if (world == nullptr || world->data == nullptr) {
        return kHostErrorParameter;
    }
    draw_picture(static_cast<const tagTexalonHeader*>(record)->bitmap, *world);
    return kHostErrorNone;
}

// The path as the record holds it.
using TruncatedPath = std::array<A_char, sizeof(tagTexalonHeader::path)>;

TruncatedPath truncated_path(const A_char* path) {
    TruncatedPath kept = {};
    for (std::size_t i = 0; i + 1 < kept.size() && path[i] != 0; ++i) {
        kept[i] = path[i];
    }
    return kept;
}

}  // namespace

A_Err ReadFileHeader(AEIO_BasicData* basic, tagTexalonHeader* header, const A_char* path) {
    AEGP_SuiteHandler suites(basic->basic_suite);
    // The host's string copy takes no length, so the text is truncated to fit first.
    const TruncatedPath truncated = truncated_path(path);
    suites.ANSISuite1()->strcpy(header->path, truncated.data());

    TXLImageFilter filter;
    ExampleTXLImage image(&header->bitmap);
    if (!filter.LoadImage(path, &image)) {
        // Deliberately shown with its "%d" unreplaced: this kind of file has no lines.
        suites.UtilitySuite7()->AEGP_ReportInfo(g_PluginID, g_pCh_Error_loading_file);
        return kHostErrorParameter;
    }
    header->width = image.GetBw();
    header->height = image.GetBh();
    header->depth = image.GetAlphaCount() < 1 ? kDepthWithoutAlpha : kDepthWithAlpha;
    return kHostErrorNone;
}

A_Err InitInSpecFromFile(AEIO_BasicData* basic, const A_char* path, AEIO_InSpecH spec) {
    AEGP_SuiteHandler suites(basic->basic_suite);
    const A_Err err = read_into_in_spec(suites, basic, path, spec);
    if (err != kHostErrorNone) {
        suites.UtilitySuite7()->AEGP_ReportInfo(g_PluginID, g_pCh_Error_loading_file);
    }
    return err;
}

A_Err My_DrawSparseFrame(AEIO_BasicData* basic, AEIO_InSpecH spec, const AEIO_DrawSparseFramePB* /*request*/,
                         PF_LayerDef* world, AEIO_DrawingFlags* /*flags*/) {
    AEGP_SuiteHandler suites(basic->basic_suite);
    const A_Err err = draw_in_spec(suites, spec, world);
    if (err != kHostErrorNone) {
        suites.UtilitySuite7()->AEGP_ReportInfo(g_PluginID, g_pCh_Error_Drawing_frame);
    }
    return err;
}

A_Err My_DisposeInSpec(AEIO_BasicData* basic, AEIO_InSpecH spec) {
    AEGP_SuiteHandler suites(basic->basic_suite);
    void* handle = nullptr;
    const A_Err err = suites.IOInSuite1()->AEGP_GetInSpecOptionsHandle(spec, &handle);
    if (err != kHostErrorNone || handle == nullptr) {
        return err;
    }
    return free_record(suites, static_cast<AEGP_MemHandle>(handle));
}
