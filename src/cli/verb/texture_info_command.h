#pragma once

#include "cli/command.h"

namespace cli {

/// `vxr texture info FILE...`
Verb texture_info_verb();

}  // namespace cli
