#pragma once

#include "host/host_interface.h"

/// The module's name, as the host lists it and as files and footage are described to the user.
inline constexpr A_char kModuleName[] = "Texalon 3D";

/// Describes the texture input module to the host: signature, name, flags, and the file type and extension
/// that it reads. Sets only what the module has something to say about; the rest of the record, the second
/// flags word among it, stays as the host gave it. Returns 0.
A_Err TexalonConstructModuleInfo(AEIO_ModuleInfo* info);
