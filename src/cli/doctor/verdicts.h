#pragma once

#include <vector>

#include "cli/doctor/diagnosis.h"

namespace cli::doctor {

/// The container of the programs of this system, as ImageFacts::container: what can be loaded here.
const char* own_container();

/// One for each kind of host, from everything else that is in the diagnosis.
std::vector<Verdict> verdicts_of(const Diagnosis& diagnosis);

}  // namespace cli::doctor
