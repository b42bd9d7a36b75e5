// "AEGP IO In Suite" 1 and "AEGP IO Out Suite" 1.

#include <algorithm>
#include <limits>

#include "host/bridge/basic_suite.h"
#include "host/bridge/path_translation.h"
#include "host/bridge/spec_use.h"
#include "host/bridge/underlying_host.h"

namespace bridge {
namespace {

using InSuite = AEGP_IOInSuite5;

// In-specs that a callback works on answer for themselves; the host answers for all others.

A_Err get_in_spec_options_handle(AEIO_InSpecH spec, void** options) {
    SpecUse* const use = SpecUse::of(spec);
    return use != nullptr ? use->get_options(options)
                          : Forward<&InSuite::AEGP_GetInSpecOptionsHandle>::call(spec, options);
}

A_Err set_in_spec_options_handle(AEIO_InSpecH spec, void* options, void** old_options) {
    SpecUse* const use = SpecUse::of(spec);
    return use != nullptr ? use->set_options(options, old_options)
                          : Forward<&InSuite::AEGP_SetInSpecOptionsHandle>::call(spec, options, old_options);
}

A_Err set_in_spec_dimensions(AEIO_InSpecH spec, A_long width_px, A_long height_px) {
    SpecUse* const use = SpecUse::of(spec);
    return use != nullptr ? use->set_dimensions(width_px, height_px)
                          : Forward<&InSuite::AEGP_SetInSpecDimensions>::call(spec, width_px, height_px);
}

bool host_knows(AEIO_InSpecH spec) {
    const SpecUse* const use = SpecUse::of(spec);
    return use == nullptr || use->is_the_hosts();
}

// A function that tells the host something about an in-spec, if the host knows the in-spec.
template <auto Function>
struct Tell;

template <typename Value, A_Err (*InSuite::*Function)(AEIO_InSpecH, Value)>
struct Tell<Function> {
    static A_Err call(AEIO_InSpecH spec, Value value) {
        return host_knows(spec) ? Forward<Function>::call(spec, value) : kHostErrorNone;
    }
};

A_Err get_in_spec_file_path(AEIO_InSpecH spec, A_char* path) {
    const auto* suite = current_suite<AEGP_IOInSuite5>();
    if (suite == nullptr) {
        return kHostErrorMissingSuite;
    }
    return copy_host_path([=](AEGP_MemHandle* handle) { return suite->AEGP_GetInSpecFilePath(spec, handle); },
                          path);
}

A_Err get_in_spec_size(AEIO_InSpecH spec, A_long* size_bytes) {
    const auto* suite = current_suite<AEGP_IOInSuite5>();
    if (suite == nullptr) {
        return kHostErrorMissingSuite;
    }
    if (size_bytes == nullptr) {
        return kHostErrorParameter;
    }
    AEIO_FileSize size = 0;
    const A_Err err = answer_of([&] { return suite->AEGP_GetInSpecSize(spec, &size); });
    if (err == kHostErrorNone) {
        *size_bytes = static_cast<A_long>(std::min<AEIO_FileSize>(size, std::numeric_limits<A_long>::max()));
    }
    return err;
}

A_Err set_in_spec_size(AEIO_InSpecH spec, A_long size_bytes) {
    // As an unsigned 64-bit number it would be larger than any file.
    if (size_bytes < 0) {
        return kHostErrorParameter;
    }
    return Tell<&InSuite::AEGP_SetInSpecSize>::call(spec, static_cast<AEIO_FileSize>(size_bytes));
}

A_Err get_out_spec_file_path(AEIO_OutSpecH spec, A_char* path) {
    const auto* suite = current_suite<AEGP_IOOutSuite7>();
    if (suite == nullptr) {
        return kHostErrorMissingSuite;
    }
    return copy_host_path(
        [=](AEGP_MemHandle* handle) {
            A_Boolean reserved = 0;
            return suite->AEGP_GetOutSpecFilePath(spec, handle, &reserved);
        },
        path);
}

}  // namespace

const AEGP_IOInSuite1* io_in_suite() {
    static constexpr AEGP_IOInSuite1 kTable = [] {
        AEGP_IOInSuite1 suite = {};
        suite.AEGP_GetInSpecOptionsHandle = get_in_spec_options_handle;
        suite.AEGP_SetInSpecOptionsHandle = set_in_spec_options_handle;
        suite.AEGP_GetInSpecFilePath = get_in_spec_file_path;
        suite.AEGP_SetInSpecNativeFPS = Tell<&InSuite::AEGP_SetInSpecNativeFPS>::call;
        suite.AEGP_SetInSpecDepth = Tell<&InSuite::AEGP_SetInSpecDepth>::call;
        suite.AEGP_GetInSpecSize = get_in_spec_size;
        suite.AEGP_SetInSpecSize = set_in_spec_size;
        suite.AEGP_SetInSpecAlphaLabel = Tell<&InSuite::AEGP_SetInSpecAlphaLabel>::call;
        suite.AEGP_SetInSpecDuration = Tell<&InSuite::AEGP_SetInSpecDuration>::call;
        suite.AEGP_SetInSpecDimensions = set_in_spec_dimensions;
        return suite;
    }();
    return &kTable;
}

const AEGP_IOOutSuite1* io_out_suite() {
    static constexpr AEGP_IOOutSuite1 kTable = [] {
        AEGP_IOOutSuite1 suite = {};
        suite.AEGP_GetOutSpecFilePath = get_out_spec_file_path;
        return suite;
    }();
    return &kTable;
}

}  // namespace bridge
