#include "texture/input_module/module_info.h"

#include <cstring>

namespace {

constexpr A_long kTextureType = four_char_code("TXL ");
constexpr A_long kTextureCreator = four_char_code("VXR1");
constexpr A_long kAnyCreator = -1;
constexpr AEIO_FileExt kTextureExtension = {'.', {'t', 'x', 'l'}};

// Announced, and deliberately enforced nowhere: textures of any size are read.
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

    // One file type, then one extension. The third entry is deliberately filled beyond the counts: the
    // extension again, with a zero behind it.
    info->read_kinds[0].mac = {kTextureType, kAnyCreator};
    info->read_kinds[1].ext = info->create_ext;
    info->read_kinds[2].ext = kTextureExtension;
    const A_char terminator = 0;
    std::memcpy(&info->read_kinds[2].mac.creator, &terminator, sizeof(terminator));
    info->num_aux_extensions = 0;
    return kHostErrorNone;
}
