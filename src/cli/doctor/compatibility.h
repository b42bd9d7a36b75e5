#pragma once

#include <vector>

#include "cli/doctor/diagnosis.h"

namespace cli::doctor {

/// The container of this system's programs, as BinaryFacts::container: what can be loaded here.
[[nodiscard]] const char* own_container();

/// One answer for each kind of host, from everything else in the diagnosis.
[[nodiscard]] std::vector<Compatibility> compatibility_of(const Diagnosis& diagnosis);

}  // namespace cli::doctor
