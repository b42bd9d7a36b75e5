#pragma once

#include <string>
#include <vector>

#include "cli/report/diagnostic.h"

namespace cli {

/// Looks the line of the diagnostic's place up in the text file `path`, as far as it is short enough to show.
/// Leaves the diagnostic as it is when the file cannot be read any more.
void add_source_line(Diagnostic& diagnostic, const std::string& path);

}  // namespace cli
