#pragma once

#include "host/host_interface.h"

/// The callbacks of the texture input module: clears the record and fills every one of its fields. Returns 0.
A_Err TexalonConstructFunctionBlock(AEIO_FunctionBlock2* functions);
