#pragma once

#include "cli/command.h"

namespace cli {

/// `vxr limits`
Verb limits_verb();

}  // namespace cli
