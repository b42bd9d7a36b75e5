#pragma once

#include "cli/command.h"

namespace cli {

/// `vxr texture check FILE...`
Verb texture_check_verb();

}  // namespace cli
