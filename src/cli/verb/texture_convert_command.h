#pragma once

#include "cli/command.h"

namespace cli {

/// `vxr texture convert IN... -o OUT|--to EXT [--out-dir DIR]`
Verb texture_convert_verb();

}  // namespace cli
