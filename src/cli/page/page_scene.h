#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/handover/proof_run.h"
#include "cli/page/page_pictures.h"
#include "cli/report/diagnostic_text.h"
#include "cli/scene/scene_reading.h"
#include "handover/handover.h"

namespace cli {

/// Everything that a report says about one scene.
struct PageScene {
    std::string file;  ///< as the user named it
    ExitCode code = ExitCode::fine;
    std::vector<Diagnostic> diagnostics;                   ///< what `vxr check` says
    std::vector<std::string> problems;                     ///< why it did not arrive whole, one sentence each
    std::optional<handover::Handover> imported;            ///< the project as the plug-in builds it
    std::vector<handover::AppliedCorrection> corrections;  ///< what `vxr export` would correct
    std::vector<handover::Loss> losses;                    ///< where other programs differ all the same
    std::optional<ProofRun> proof;
    PagePictures pictures;

    /// How often the check found something of this severity.
    [[nodiscard]] std::int64_t count_of(Severity severity) const;
    /// Footage files that are not there.
    [[nodiscard]] std::int64_t missing_footage() const;
};

/// Imports the scene, proves it, and draws at most `most_pictures` frames on `threads` threads. `code` and
/// `diagnostics` are what a check of it found. One call at a time: a bundle can be loaded into one host only.
[[nodiscard]] PageScene page_scene(const SceneReading& reading, ExitCode code,
                                   std::vector<Diagnostic> diagnostics, const FoundBundle& bundle,
                                   std::size_t most_pictures, std::size_t threads);

}  // namespace cli
