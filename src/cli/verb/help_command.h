#pragma once

#include "cli/command.h"

namespace cli {

/// `vxr help [VERB...]` and `vxr help --man`.
Verb help_verb();

/// `vxr completion bash`.
Verb completion_verb();

}  // namespace cli
