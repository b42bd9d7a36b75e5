#pragma once

#include "host/entry_points.h"

extern "C" {

/// Called when the host quits; does nothing.
A_Err DeathHook(AEGP_GlobalRefcon globalRefcon, AEGP_DeathRefcon refcon);

/// The host's quick test before it offers `path` for import: `*importable` becomes 1 if the file begins with
/// the nine bytes "VORTAN XR", and 0 otherwise, also for a path that is not a readable regular file. Never
/// waits for a pipe. Returns 0, or 1 when the file cannot be closed.
A_Err VerifyFileImportable(const A_char* path, AE_FIM_Refcon refcon, A_Boolean* importable);
}
