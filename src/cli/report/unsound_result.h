#pragma once

#include <optional>
#include <string>

#include "cli/report/diagnostic.h"

namespace cli {

/// What a reader's result has wrong with it, as an error about the file it came from: a defect of this
/// program, whatever the file holds. Nothing for a sound result.
std::optional<Diagnostic> unsound_result(const std::string& file,
                                         const std::optional<std::string>& complaint);

}  // namespace cli
