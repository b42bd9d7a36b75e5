#pragma once

#include "host/host_interface.h"

class ReadObserver;

extern "C" {

/// The host's import callback: imports the composition file `path` into the project as one undo step; the
/// other arguments are not used. Returns 0, also for a file with a grammar error, which is silently ignored;
/// 3 when the file cannot be opened or is empty; or the host's error code of the call that failed, which is
/// also shown. If the host lacks a suite, the suite handler's exception passes through; everything acquired
/// is released.
A_Err ImportFile(const A_char* path, AE_FIM_ImportOptions options, AE_FIM_SpecialAction userRequest,
                 AEGP_ItemH item, AE_FIM_Refcon refcon);
}

/// ImportFile with an observer of the reading; null, as in the plug-in, for none.
A_Err import_composition_file(const A_char* path, ReadObserver* observer);
