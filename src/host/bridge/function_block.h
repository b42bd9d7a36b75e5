#pragma once

#include "host/bridge/registrations.h"
#include "host/today_interface.h"

namespace bridge {

/// The classic function blocks of the plug-in's input modules.
inline Registrations<AEIO_FunctionBlock2> input_modules;

/// Today's block over the classic one at this place. Each function gives the plug-in's the host's basic data
/// with the bridge's basic suite, and keeps exceptions in; a field that is null stays null. Paths are
/// translated. The three fields that the classic block does not have ask for the host's default.
AEIO_FunctionBlock4 function_block_at(std::size_t place);

}  // namespace bridge
