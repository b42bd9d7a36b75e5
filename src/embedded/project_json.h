#pragma once

// A project and a conformance report as JSON. The order of keys and of entries is
// fixed; docs/project-json.md describes both.

#include "embedded/conformance.h"
#include "embedded/json_values.h"
#include "embedded/project.h"

namespace embedded {

/// The version of the document below.
inline constexpr int kProjectSchema = 2;

Json project_to_json(const Project& project);

/// {"clean":..,"problems":[..],"notes":[..],"dropped":..}
Json conformance_to_json(const ConformanceReport& report);

}  // namespace embedded
