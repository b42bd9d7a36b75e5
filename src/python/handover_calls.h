#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/footage/finding_options.h"
#include "python/scene_calls.h"

// What the module's functions do that write a scene for other places or compare it with them, without
// anything of Python. Where a request is wrong they throw std::invalid_argument and do nothing: an unknown
// name, or an output that is a file that is read.

namespace python {

struct RelinkRequest {
    std::string path;
    cli::FindingChoices choices;
    std::string output;  ///< empty: only look
};

/// Returns an entry of the document of `vxr relink --json`.
[[nodiscard]] std::string relink_scene(const RelinkRequest& request);

struct ExportRequest {
    std::string path;
    cli::FindingChoices choices;
    std::string bundle;  ///< empty: the one beside the program
    std::string format;  ///< as --to takes it
    std::string output;  ///< empty: only say what would differ
    bool packaged = false;
    bool corrected = true;
    std::vector<std::string> without;  ///< names of corrections
    std::optional<double> rate_fps;
    double scale_m = 0.01;
    bool undo_safe = false;
};

/// Returns an entry of the document of `vxr export --json`. Waits while another thread imports.
[[nodiscard]] std::string export_scene(const ExportRequest& request, const Watch& watch);

struct ProofRequest {
    std::string path;
    std::string bundle;
    int grid_points = 27;
    std::vector<double> listed_frames;
};

/// Returns the document of `vxr proof --json`. Waits while another thread imports.
[[nodiscard]] std::string prove_scene(const ProofRequest& request, const Watch& watch);

}  // namespace python
