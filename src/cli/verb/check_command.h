#pragma once

#include "cli/command.h"

namespace cli {

/// `vxr check FILE...`: what the plug-in will never say about a composition file.
Verb check_verb();

}  // namespace cli
