#pragma once

#include <string>

#include "cli/terminal/terminal.h"
#include "embedded/conformance.h"
#include "embedded/project.h"

namespace cli {

/// The project as a tree of folders, compositions with their layers, and footage, one line each. Times are
/// frames on the composition's own timeline.
std::string project_tree(const embedded::Project& project, const Paint& paint);

/// The messages of the bundle to the user, and the host's findings about the bundle; empty when there are
/// neither.
std::string host_report(const embedded::Project& project, const embedded::ConformanceReport& report,
                        const Paint& paint);

/// "4 compositions, 9 footage items (1 missing), 1 camera, 2 lights, 1 null"
std::string project_summary(const embedded::Project& project);

}  // namespace cli
