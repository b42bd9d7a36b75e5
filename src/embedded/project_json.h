#pragma once

// A project, and what was found about the bundle's discipline, as JSON. The order of keys and of entries is
// fixed; docs/project-json.md describes the document.

#include "embedded/discipline.h"
#include "embedded/json_values.h"
#include "embedded/project.h"

namespace embedded {

/// The version of the document below.
inline constexpr int kProjectSchema = 1;

Json project_to_json(const Project& project);

/// {"clean":..,"problems":[..],"notes":[..],"dropped":..}
Json discipline_to_json(const DisciplineReport& report);

}  // namespace embedded
