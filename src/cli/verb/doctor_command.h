#pragma once

#include "cli/command.h"

namespace cli {

/// `vxr doctor`
Verb doctor_verb();

}  // namespace cli
