#pragma once

#include <chrono>
#include <string>

#include "cli/doctor/diagnosis.h"
#include "embedded/host_options.h"

namespace cli::doctor {

/// Loads the bundle in the embedded host as a host of that generation does, in this process, and unloads it.
/// What it does wrong meets this process.
Trial try_here(const std::string& bundle, embedded::HostGeneration generation);

/// The same in a process of its own, which is this program with `--load`. A process that crashes or does not
/// end within `longest` is a result, too. Throws std::runtime_error when it cannot be started.
Trial try_apart(const std::string& bundle, embedded::HostGeneration generation, std::chrono::seconds longest);

}  // namespace cli::doctor
