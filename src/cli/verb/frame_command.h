#pragma once

#include "cli/command.h"

namespace cli {

/// `vxr frame FILE -o IMAGE`
Verb frame_verb();

}  // namespace cli
