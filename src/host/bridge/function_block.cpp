#include "host/bridge/registrations.h"

#include <array>
#include <bit>
#include <utility>
#include <vector>

#include "host/bridge/basic_suite.h"
#include "host/bridge/drawing.h"
#include "host/bridge/given_argument.h"
#include "host/bridge/guarded_call.h"
#include "host/bridge/path_translation.h"

namespace bridge {
namespace {

// A module is not told how much room there is for a path that it writes. It may return one that the host gave
// it.
constexpr std::size_t kModulePathBytes = kLongestPathBytes + 1;

void show_no_message(A_Err /*code*/, const A_char* /*text*/) {}

// The result of `call(data, context)`, where `data` is the host's with the bridge's basic suite. Not a
// template, because each field at each place has a caller.
A_Err call_with_bridge(const AEIO_BasicData* data, A_Err (*call)(AEIO_BasicData*, const void*),
                       const void* context) {
    if (data == nullptr) {
        return kHostErrorParameter;
    }
    AEIO_BasicData bridged = *data;
    bridged.basic_suite = basic_suite();
    if (bridged.msg_func == nullptr) {
        bridged.msg_func = show_no_message;
    }
    return guarded([&bridged, call, context] { return call(&bridged, context); });
}

template <typename Call>
A_Err with_bridge(const AEIO_BasicData* data, const Call& call) {
    return call_with_bridge(
        data,
        [](AEIO_BasicData* bridged, const void* context) {
            return (*static_cast<const Call*>(context))(bridged);
        },
        &call);
}

template <typename Call>
A_Err with_narrow_path(const AEIO_BasicData* data, const A_UTF16Char* path, const Call& call) {
    return with_bridge(data, [path, &call](AEIO_BasicData* bridged) {
        std::string narrow;
        const A_Err err = narrow_path(path, &narrow);
        return err != kHostErrorNone ? err : call(bridged, narrow.c_str());
    });
}

// The functions of two places differ in the place alone. So each field has one function that takes the place,
// and the host gets a function of a few instructions (AtPlace) that passes it. Inlined into each of those, as
// the compiler would do, the function would double the size of the code.

// A field that is the same in both blocks.
template <auto Field>
struct SameField;

template <typename... Arguments, A_Err (*AEIO_FunctionBlock2::*Field)(AEIO_BasicData*, Arguments...)>
struct SameField<Field> {
    [[gnu::noinline]] static A_Err call(std::size_t place, AEIO_BasicData* data, Arguments... arguments) {
        return with_bridge(data, [&](AEIO_BasicData* bridged) {
            return (input_modules[place].*Field)(bridged, GivenArgument<Arguments>(arguments).get()...);
        });
    }
};

A_Err init_in_spec_from_file(std::size_t place, AEIO_BasicData* data, const A_UTF16Char* path,
                             AEIO_InSpecH spec) {
    return with_narrow_path(data, path, [=](AEIO_BasicData* bridged, const A_char* narrow) {
        return open_in_spec(place, bridged, narrow, spec);
    });
}

A_Err dispose_of_in_spec(std::size_t place, AEIO_BasicData* data, AEIO_InSpecH spec) {
    return with_bridge(data, [=](AEIO_BasicData* bridged) { return dispose_in_spec(place, bridged, spec); });
}

A_Err draw_sparse_frame(std::size_t place, AEIO_BasicData* data, AEIO_InSpecH spec,
                        const AEIO_DrawSparseFramePB* request, PF_LayerDef* world, AEIO_DrawingFlags* flags) {
    return with_bridge(data, [=](AEIO_BasicData* bridged) {
        return draw_frame(place, bridged, spec, request, world,
                          GivenArgument<AEIO_DrawingFlags*>(flags).get());
    });
}

A_Err set_output_file(std::size_t place, AEIO_BasicData* data, AEIO_OutSpecH spec, const A_UTF16Char* path) {
    return with_narrow_path(data, path, [=](AEIO_BasicData* bridged, const A_char* narrow) {
        return input_modules[place].AEIO_SetOutputFile(bridged, spec, narrow);
    });
}

A_Err get_nth_aux_file_spec(std::size_t place, AEIO_BasicData* data, AEIO_InSpecH spec, A_long frame,
                            A_long n, AEGP_MemHandle* path) {
    return with_bridge(data, [=](AEIO_BasicData* bridged) {
        std::vector<A_char> narrow(kModulePathBytes);
        const A_Err err = input_modules[place].AEIO_GetNthAuxFileSpec(bridged, spec, frame, n, narrow.data());
        if (err != kHostErrorNone) {
            return err;
        }
        narrow.back() = 0;
        return make_path_handle(narrow.data(), path);
    });
}

A_Err verify_file_importable(std::size_t place, AEIO_BasicData* data, A_long signature,
                             const A_UTF16Char* path, A_Boolean* importable) {
    // A file whose path cannot be converted is not importable; otherwise the module answers.
    const GivenArgument<A_Boolean*> answer(importable);
    return with_narrow_path(data, path, [&](AEIO_BasicData* bridged, const A_char* narrow) {
        return input_modules[place].AEIO_VerifyFileImportable(bridged, signature, narrow, answer.get());
    });
}

template <std::size_t Place, auto Function>
struct AtPlace;

template <std::size_t Place, typename... Arguments, A_Err (*Function)(std::size_t, Arguments...)>
struct AtPlace<Place, Function> {
    static A_Err call(Arguments... arguments) { return Function(Place, arguments...); }
};

A_Err add_marker_2(AEIO_BasicData* /*data*/, AEIO_OutSpecH /*spec*/, A_long /*frame*/, const void* /*marker*/,
                   AEIO_InterruptFuncs* /*interrupt*/) {
    return kHostUseDefaultCallback;
}

A_Err add_marker_3(AEIO_BasicData* /*data*/, AEIO_OutSpecH /*spec*/, A_long /*frame*/, const void* /*marker*/,
                   A_u_long /*flags*/, AEIO_InterruptFuncs* /*interrupt*/) {
    return kHostUseDefaultCallback;
}

A_Err get_mime_type(AEIO_BasicData* /*data*/, AEIO_OutSpecH /*spec*/, A_long size, A_char* mime_type) {
    if (mime_type != nullptr && size > 0) {
        *mime_type = 0;
    }
    return kHostUseDefaultCallback;
}

// The block with every field filled.
template <std::size_t Place>
constexpr AEIO_FunctionBlock4 kFullBlock = {
    .AEIO_InitInSpecFromFile = AtPlace<Place, init_in_spec_from_file>::call,
    .AEIO_InitInSpecInteractive =
        AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_InitInSpecInteractive>::call>::call,
    .AEIO_DisposeInSpec = AtPlace<Place, dispose_of_in_spec>::call,
    .AEIO_FlattenOptions = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_FlattenOptions>::call>::call,
    .AEIO_InflateOptions = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_InflateOptions>::call>::call,
    .AEIO_SynchInSpec = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_SynchInSpec>::call>::call,
    .AEIO_GetActiveExtent =
        AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_GetActiveExtent>::call>::call,
    .AEIO_GetInSpecInfo = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_GetInSpecInfo>::call>::call,
    .AEIO_DrawSparseFrame = AtPlace<Place, draw_sparse_frame>::call,
    .AEIO_GetDimensions = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_GetDimensions>::call>::call,
    .AEIO_GetDuration = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_GetDuration>::call>::call,
    .AEIO_GetTime = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_GetTime>::call>::call,
    .AEIO_GetSound = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_GetSound>::call>::call,
    .AEIO_InqNextFrameTime =
        AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_InqNextFrameTime>::call>::call,
    .AEIO_InitOutputSpec = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_InitOutputSpec>::call>::call,
    .AEIO_GetFlatOutputOptions =
        AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_GetFlatOutputOptions>::call>::call,
    .AEIO_DisposeOutputOptions =
        AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_DisposeOutputOptions>::call>::call,
    .AEIO_UserOptionsDialog =
        AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_UserOptionsDialog>::call>::call,
    .AEIO_GetOutputInfo = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_GetOutputInfo>::call>::call,
    .AEIO_OutputInfoChanged =
        AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_OutputInfoChanged>::call>::call,
    .AEIO_SetOutputFile = AtPlace<Place, set_output_file>::call,
    .AEIO_StartAdding = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_StartAdding>::call>::call,
    .AEIO_AddFrame = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_AddFrame>::call>::call,
    .AEIO_EndAdding = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_EndAdding>::call>::call,
    .AEIO_OutputFrame = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_OutputFrame>::call>::call,
    .AEIO_WriteLabels = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_WriteLabels>::call>::call,
    .AEIO_GetSizes = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_GetSizes>::call>::call,
    .AEIO_Flush = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_Flush>::call>::call,
    .AEIO_AddSoundChunk = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_AddSoundChunk>::call>::call,
    .AEIO_Idle = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_Idle>::call>::call,
    .AEIO_GetDepths = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_GetDepths>::call>::call,
    .AEIO_GetOutputSuffix =
        AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_GetOutputSuffix>::call>::call,
    .AEIO_SeqOptionsDlg = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_SeqOptionsDlg>::call>::call,
    .AEIO_GetNumAuxChannels =
        AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_GetNumAuxChannels>::call>::call,
    .AEIO_GetAuxChannelDesc =
        AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_GetAuxChannelDesc>::call>::call,
    .AEIO_DrawAuxChannel = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_DrawAuxChannel>::call>::call,
    .AEIO_FreeAuxChannel = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_FreeAuxChannel>::call>::call,
    .AEIO_NumAuxFiles = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_NumAuxFiles>::call>::call,
    .AEIO_GetNthAuxFileSpec = AtPlace<Place, get_nth_aux_file_spec>::call,
    .AEIO_CloseSourceFiles =
        AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_CloseSourceFiles>::call>::call,
    .AEIO_CountUserData = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_CountUserData>::call>::call,
    .AEIO_SetUserData = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_SetUserData>::call>::call,
    .AEIO_GetUserData = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_GetUserData>::call>::call,
    .AEIO_AddMarker = AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_AddMarker>::call>::call,
    .AEIO_VerifyFileImportable = AtPlace<Place, verify_file_importable>::call,
    .AEIO_UserAudioOptionsDialog =
        AtPlace<Place, &SameField<&AEIO_FunctionBlock2::AEIO_UserAudioOptionsDialog>::call>::call,
    .AEIO_AddMarker2 = add_marker_2,
    .AEIO_AddMarker3 = add_marker_3,
    .AEIO_GetMimeType = get_mime_type,
};

template <std::size_t... Place>
constexpr std::array<AEIO_FunctionBlock4, kPlaces> full_blocks(std::index_sequence<Place...> /*places*/) {
    return {kFullBlock<Place>...};
}

}  // namespace

AEIO_FunctionBlock4 function_block_at(std::size_t place) {
    static constexpr auto kFullBlocks = full_blocks(std::make_index_sequence<kPlaces>());
    using ClassicFields = std::array<ReservedSlot, kFunctionBlockFields>;
    using CurrentFields = std::array<ReservedSlot, kFunctionBlock4Fields>;
    const auto classic = std::bit_cast<ClassicFields>(input_modules[place]);
    auto current = std::bit_cast<CurrentFields>(kFullBlocks[place]);
    // A field has the same number in both blocks.
    for (std::size_t field = 0; field < classic.size(); ++field) {
        if (classic[field] == nullptr) {
            current[field] = nullptr;
        }
    }
    return std::bit_cast<AEIO_FunctionBlock4>(current);
}

}  // namespace bridge
