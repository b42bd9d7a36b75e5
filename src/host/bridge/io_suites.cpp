// "AEGP IO In Suite" 1 and "AEGP IO Out Suite" 1.

#include <algorithm>
#include <limits>

#include "host/bridge/basic_suite.h"
#include "host/bridge/path_translation.h"
#include "host/bridge/underlying_host.h"

namespace bridge {
namespace {

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
    const A_Err err = suite->AEGP_GetInSpecSize(spec, &size);
    if (err == kHostErrorNone) {
        *size_bytes = static_cast<A_long>(std::min<AEIO_FileSize>(size, std::numeric_limits<A_long>::max()));
    }
    return err;
}

A_Err set_in_spec_size(AEIO_InSpecH spec, A_long size_bytes) {
    const auto* suite = current_suite<AEGP_IOInSuite5>();
    if (suite == nullptr) {
        return kHostErrorMissingSuite;
    }
    // As an unsigned 64-bit number it would be larger than any file.
    if (size_bytes < 0) {
        return kHostErrorParameter;
    }
    return suite->AEGP_SetInSpecSize(spec, static_cast<AEIO_FileSize>(size_bytes));
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
        using Current = AEGP_IOInSuite5;
        AEGP_IOInSuite1 suite = {};
        suite.AEGP_GetInSpecOptionsHandle = Forward<&Current::AEGP_GetInSpecOptionsHandle>::call;
        suite.AEGP_SetInSpecOptionsHandle = Forward<&Current::AEGP_SetInSpecOptionsHandle>::call;
        suite.AEGP_GetInSpecFilePath = get_in_spec_file_path;
        suite.AEGP_SetInSpecNativeFPS = Forward<&Current::AEGP_SetInSpecNativeFPS>::call;
        suite.AEGP_SetInSpecDepth = Forward<&Current::AEGP_SetInSpecDepth>::call;
        suite.AEGP_GetInSpecSize = get_in_spec_size;
        suite.AEGP_SetInSpecSize = set_in_spec_size;
        suite.AEGP_SetInSpecAlphaLabel = Forward<&Current::AEGP_SetInSpecAlphaLabel>::call;
        suite.AEGP_SetInSpecDuration = Forward<&Current::AEGP_SetInSpecDuration>::call;
        suite.AEGP_SetInSpecDimensions = Forward<&Current::AEGP_SetInSpecDimensions>::call;
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
