#pragma once

#include "host/host_interface.h"

// What the texture input module hands to the host when it is registered.

/// The module's name. The host lists the module under it and describes files and footage with it.
inline constexpr A_char kModuleName[] = "Texalon 3D";

/// Describes the module to the host: signature, name, flags, and the file type and extension that it reads.
/// Leaves every other field as the host gave it, the second flags word among them. Returns 0.
A_Err TexalonConstructModuleInfo(AEIO_ModuleInfo* info);

/// Clears the record, then sets every one of its callbacks. Returns 0.
A_Err TexalonConstructFunctionBlock(AEIO_FunctionBlock2* functions);
