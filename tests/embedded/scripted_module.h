#pragma once

// An input module whose every answer a test sets, registered with a host of its own.

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstring>
#include <string>
#include <vector>

#include "embedded/bundle_side.h"

namespace scripted {

/// What the module does; a test changes one thing.
struct Script {
    A_Boolean importable = 1;
    A_Err verify = kHostErrorNone;
    A_Err init = kHostErrorNone;
    A_Err info = kHostErrorNone;
    A_Err dimensions = kHostUseDefaultCallback;
    A_Err duration = kHostUseDefaultCallback;
    A_Err draw = kHostErrorNone;
    bool attach_options = true;
    bool leak = false;
    bool free_on_dispose = true;
    bool set_size = true;
    bool throw_in_init = false;
    int overdraw_bytes = 0;
};
inline Script script;
inline std::vector<std::string> called;
inline BundleSide* side = nullptr;

inline A_Err verify(AEIO_BasicData*, A_long signature, const A_char*, A_Boolean* importable) {
    called.emplace_back(signature == four_char_code("TEST") ? "verify" : "verify with a wrong signature");
    *importable = script.importable;
    return script.verify;
}

inline A_Err init(AEIO_BasicData* basic, const A_char*, AEIO_InSpecH in) {
    called.emplace_back("init");
    if (script.throw_in_init) {
        throw 516L;
    }
    if (basic->plugin_id != side->host.plugin_id() || basic->basic_suite != side->host.basic_suite()) {
        return kHostErrorStructure;
    }
    if (script.leak) {
        side->memory(24);
    }
    if (script.attach_options) {
        void* old = nullptr;
        side->io_in_suite->AEGP_SetInSpecOptionsHandle(in, side->memory(24), &old);
    }
    side->io_in_suite->AEGP_SetInSpecDepth(in, 32);
    const A_Time still{0, 30};
    side->io_in_suite->AEGP_SetInSpecDuration(in, &still);
    if (script.set_size) {
        side->io_in_suite->AEGP_SetInSpecDimensions(in, 8, 4);
    }
    side->io_in_suite->AEGP_SetInSpecSize(in, 192);
    side->io_in_suite->AEGP_SetInSpecNativeFPS(in, 30 << 16);
    AEIO_AlphaLabel label{};
    label.version = 0x0101;
    label.flags = 1;
    label.alpha_type = kAlphaTypePremultiplied;
    side->io_in_suite->AEGP_SetInSpecAlphaLabel(in, &label);
    return script.init;
}

inline A_Err info(AEIO_BasicData*, AEIO_InSpecH, AEIO_Verbiage* verbiage) {
    called.emplace_back("info");
    std::strcpy(verbiage->type, "type");
    std::memset(verbiage->sub_type, 's', sizeof verbiage->sub_type);  // not terminated
    return script.info;
}

inline A_Err dimensions(AEIO_BasicData*, AEIO_InSpecH, const A_Ratio*, A_long* width, A_long* height) {
    called.emplace_back("dimensions");
    if (script.dimensions == kHostErrorNone) {
        *width = 99;
        *height = 77;
    }
    return script.dimensions;
}

inline A_Err duration(AEIO_BasicData*, AEIO_InSpecH, A_Time* time) {
    called.emplace_back("duration");
    if (script.duration == kHostErrorNone) {
        *time = {50, 25};
    }
    return script.duration;
}

inline A_Err draw(AEIO_BasicData*, AEIO_InSpecH, const AEIO_DrawSparseFramePB* request, PF_LayerDef* world,
                  AEIO_DrawingFlags*) {
    called.emplace_back("draw " + std::to_string(request->required_region.right) + "x" +
                        std::to_string(request->required_region.bottom) + " at " +
                        std::to_string(world->origin_x) + "," + std::to_string(world->origin_y));
    for (A_long y = 0; y < world->height; ++y) {
        auto* row = reinterpret_cast<std::uint8_t*>(world->data) + std::ptrdiff_t{world->row_bytes} * y;
        for (A_long x = 0; x < world->width * 4 + script.overdraw_bytes; ++x) {
            row[x] = static_cast<std::uint8_t>(16 * y + x);
        }
    }
    return script.draw;
}

inline A_Err dispose(AEIO_BasicData*, AEIO_InSpecH in) {
    called.emplace_back("dispose");
    void* options = nullptr;
    side->io_in_suite->AEGP_GetInSpecOptionsHandle(in, &options);
    if (options == nullptr || !script.free_on_dispose) {
        return kHostErrorNone;
    }
    return side->memory_suite->AEGP_FreeMemHandle(static_cast<AEGP_MemHandle>(options));
}

inline A_Err not_asked_for() {
    called.emplace_back("something else");
    return kHostErrorGeneric;
}

inline void register_module(BundleSide& bundle) {
    std::array<void (*)(), kFunctionBlockFields> slots;
    slots.fill(reinterpret_cast<void (*)()>(&not_asked_for));
    auto functions = std::bit_cast<AEIO_FunctionBlock2>(slots);
    functions.AEIO_VerifyFileImportable = verify;
    functions.AEIO_InitInSpecFromFile = init;
    functions.AEIO_GetInSpecInfo = info;
    functions.AEIO_GetDimensions = dimensions;
    functions.AEIO_GetDuration = duration;
    functions.AEIO_DrawSparseFrame = draw;
    functions.AEIO_DisposeInSpec = dispose;
    AEIO_ModuleInfo record{};
    record.signature = four_char_code("TEST");
    std::strcpy(record.name, "Test module");
    record.flags = kModuleFlagInput | kModuleFlagFile | kModuleFlagStill | (1 << 5);
    record.num_filetypes = 1;
    record.num_extensions = 2;
    record.read_kinds[0].mac = {four_char_code("TEST"), -1};
    record.read_kinds[1].ext = {'.', {'t', 's', 't'}};
    record.read_kinds[2].ext = {'.', {'T', 'S', 'T'}};
    ASSERT_EQ(bundle.register_suite->AEGP_RegisterIO(bundle.host.plugin_id(), nullptr, &record, &functions),
              kHostErrorNone);
}

}  // namespace scripted

class InputModule : public ::testing::Test {
  protected:
    InputModule() {
        scripted::script = {};
        scripted::side = &bundle;
        scripted::register_module(bundle);
        scripted::called.clear();
    }
    embedded::Id open() {
        const embedded::OpenResult opened = bundle.host.open_with_module("/a/b.TST");
        EXPECT_EQ(opened.error, "");
        return opened.in_spec;
    }
    BundleSide bundle;
};
