#pragma once

#include "host/host_interface.h"

class ReadObserver;

extern "C" {

/// The host's import callback: imports the composition file `path` into the project as one undo step; the
/// other arguments are not used. Returns 0, also for a file that breaks the grammar, which is silently
/// ignored; 3 when the file cannot be opened or is empty; or the host's error code of the call that failed,
/// which is also shown. A suite that the host does not offer leaves as the handler's exception, everything
/// borrowed being given back.
A_Err ImportFile(const A_char* path, AE_FIM_ImportOptions options, AE_FIM_SpecialAction userRequest,
                 AEGP_ItemH item, AE_FIM_Refcon refcon);
}

/// ImportFile, with `observer` being told about the reading; null, as in the plug-in, for nobody.
A_Err import_composition_file(const A_char* path, ReadObserver* observer);
