#pragma once

#include "host/host_interface.h"

extern "C" {

/// The host's quick test before it offers `path` for import: `*importable` becomes true exactly when the file
/// begins with the nine bytes "VORTAN XR". Whatever is no regular file, or cannot be read, is not importable;
/// nothing ever waits on a pipe. Returns 0, or 1 when the file could not be closed.
A_Err VerifyFileImportable(const A_char* path, AE_FIM_Refcon refcon, A_Boolean* importable);
}
