#pragma once

#include <functional>
#include <string>

#include "cli/doctor/diagnosis.h"
#include "embedded/host_options.h"

namespace cli::doctor {

/// Loads a file in the embedded host of a generation; `trial.h` has the one that is used.
using TryIt = std::function<Trial(const std::string& binary, embedded::HostGeneration generation)>;

/// Looks at a bundle, a file or a Macintosh folder, as each kind of host does, and tries it where it can be
/// loaded.
Diagnosis examine(const std::string& bundle, const TryIt& try_it);

}  // namespace cli::doctor
