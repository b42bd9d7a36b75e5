#pragma once

#include "cli/command.h"

namespace cli {

/// `vxr import FILE`: a composition file as a project, through the plug-in.
Verb import_verb();

}  // namespace cli
