#pragma once

#include "cli/command.h"

namespace cli {

/// `vxr modules`
Verb modules_verb();

}  // namespace cli
