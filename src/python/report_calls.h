#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/footage/finding_options.h"
#include "python/scene_calls.h"

// What the module's function about reports does, without anything of Python.

namespace python {

struct ReportRequest {
    std::vector<std::string> paths;
    cli::FindingChoices choices;
    std::string bundle;  ///< empty: the one beside the program
    std::string output;
    std::size_t pictures = 12;  ///< at most so many frames of each scene; with many scenes fewer
    int threads = 1;            ///< 0: one for each processor
};

/// Writes one page about the scenes. Returns {"scenes":[{"file","exit_code","verdict","missing_footage",
/// "diagnostics"}]} in their order. Calls `watch` before each scene and waits while another thread imports.
/// Throws std::invalid_argument for an output that is a file that is read; std::runtime_error if it cannot be
/// written.
[[nodiscard]] std::string write_report(const ReportRequest& request, const Watch& watch);

}  // namespace python
