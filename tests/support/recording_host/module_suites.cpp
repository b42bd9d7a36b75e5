#include <cstring>
#include <utility>

#include "support/recording_host/argument_text.h"
#include "support/recording_host/suite_tables.h"
#include "system/trigonometry.h"

namespace {

// ---- AEGP Memory Suite, AEGP Utility Suite

const AEGP_MemorySuite1 kMemory = {
    [](AEGP_PluginID id, const A_char* what, AEGP_MemSize size, AEGP_MemFlag flags, AEGP_MemHandle* handle) {
        return host().new_handle(list(id, what, size, flags), what, size, flags, handle);
    },
    [](AEGP_MemHandle handle) { return host().free_handle(handle); },
    [](AEGP_MemHandle handle, void** address) { return host().lock_handle(handle, address); },
    [](AEGP_MemHandle handle) { return host().unlock_handle(handle); },
    {}};

A_Err report_info(AEGP_PluginID id, const A_char* message) {
    host().report(id, message);
    return host().service_call("ReportInfo", list(id, message));
}

A_Err start_undo_group(const A_char* name) {
    const A_Err err = host().service_call("StartUndoGroup", list(name));
    if (err == kHostErrorNone) {
        host().remember_open("undo group");
    }
    return err;
}

A_Err end_undo_group() {
    host().remember_closed("undo group");
    return host().service_call("EndUndoGroup", "");
}

const AEGP_UtilitySuite7 kUtility = {report_info, {}, start_undo_group, end_undo_group, {}};

// ---- AEGP IO In Suite, AEGP IO Out Suite

const AEGP_IOInSuite1 kIOIn = [] {
    AEGP_IOInSuite1 suite = {};
    suite.AEGP_GetInSpecOptionsHandle = [](AEIO_InSpecH spec, void** options) {
        const A_Err err = host().call("GetInSpecOptionsHandle", "");
        if (err == kHostErrorNone) {
            *options = (*spec)->options;
        }
        return err;
    };
    suite.AEGP_SetInSpecOptionsHandle = [](AEIO_InSpecH spec, void* options, void** old_options) {
        const A_Err err = host().call("SetInSpecOptionsHandle", "");
        if (err == kHostErrorNone) {
            *old_options = std::exchange((*spec)->options, options);
        }
        return err;
    };
    suite.AEGP_SetInSpecNativeFPS = [](AEIO_InSpecH spec, A_Fixed fps) {
        const A_Err err = host().call("SetInSpecNativeFPS", list(fps));
        if (err == kHostErrorNone) {
            (*spec)->fps = fps;
        }
        return err;
    };
    suite.AEGP_SetInSpecDepth = [](AEIO_InSpecH spec, A_short depth) {
        const A_Err err = host().call("SetInSpecDepth", list(depth));
        if (err == kHostErrorNone) {
            (*spec)->depth = depth;
        }
        return err;
    };
    suite.AEGP_SetInSpecSize = [](AEIO_InSpecH spec, A_long size_bytes) {
        const A_Err err = host().call("SetInSpecSize", list(size_bytes));
        if (err == kHostErrorNone) {
            (*spec)->size_bytes = size_bytes;
        }
        return err;
    };
    suite.AEGP_SetInSpecAlphaLabel = [](AEIO_InSpecH spec, const AEIO_AlphaLabel* label) {
        const A_Err err = host().call("SetInSpecAlphaLabel", "");
        if (err == kHostErrorNone) {
            (*spec)->alpha_label = *label;
        }
        return err;
    };
    suite.AEGP_SetInSpecDuration = [](AEIO_InSpecH spec, const A_Time* duration) {
        const A_Err err = host().call("SetInSpecDuration", list(duration));
        if (err == kHostErrorNone) {
            (*spec)->duration = *duration;
        }
        return err;
    };
    suite.AEGP_SetInSpecDimensions = [](AEIO_InSpecH spec, A_long width, A_long height) {
        const A_Err err = host().call("SetInSpecDimensions", list(width, height));
        if (err == kHostErrorNone) {
            (*spec)->dimensions = {width, height};
        }
        return err;
    };
    return suite;
}();

const AEGP_IOOutSuite1 kIOOut = [] {
    AEGP_IOOutSuite1 suite = {};
    suite.AEGP_GetOutSpecFilePath = [](AEIO_OutSpecH spec, A_char* path) {
        const A_Err err = host().call("GetOutSpecFilePath", "");
        if (err == kHostErrorNone) {
            std::memcpy(path, (*spec)->path.data(), (*spec)->path.size());
        }
        return err;
    };
    return suite;
}();

// ---- PF ANSI Suite

const PF_ANSISuite1 kAnsi = {{},
                             [](A_FpLong x) -> A_FpLong {
                                 host().note("cos(" + text(x) + ")");
                                 return os::cosine(x);
                             },
                             {},
                             [](A_FpLong x) -> A_FpLong {
                                 host().note("sin(" + text(x) + ")");
                                 return os::sine(x);
                             },
                             {},
                             [](A_char* destination, const A_char* source) -> A_char* {
                                 host().note("strcpy(" + text(source) + ")");
                                 return std::strcpy(destination, source);
                             },
                             {}};

}  // namespace

const std::vector<OfferedSuite>& common_suites() {
    static const std::vector<OfferedSuite> kSuites = {
        {"AEGP Memory Suite", 1, &kMemory},
        {"AEGP Utility Suite", 7, &kUtility},
    };
    return kSuites;
}

const std::vector<OfferedSuite>& classic_module_suites() {
    static const std::vector<OfferedSuite> kSuites = {
        {"AEGP IO In Suite", 1, &kIOIn},
        {"AEGP IO Out Suite", 1, &kIOOut},
        {"PF ANSI Suite", 1, &kAnsi},
    };
    return kSuites;
}
