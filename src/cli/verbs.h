#pragma once

// The one table of what the program can do. A new verb is a file pair of its own that declares
// `Verb some_verb();`, and a line in verbs.cpp.

#include <vector>

#include "cli/command.h"

namespace cli {

/// Every verb, in the order of the help.
const std::vector<Verb>& verbs();

/// A row for every first word that several verbs share.
const std::vector<VerbGroup>& verb_groups();

}  // namespace cli
