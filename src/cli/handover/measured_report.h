#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <variant>

#include "cli/exit_codes.h"
#include "cli/handover/proof_run.h"
#include "cli/scene/scene_reading.h"
#include "cli/terminal/terminal.h"

namespace cli {

/// Why a table cannot be judged.
struct TableProblem {
    ExitCode code = ExitCode::refused;
    std::string text;  ///< one sentence: the table, the line, the reason
};

/// The table at `path`, if it was measured with a script of this scene.
[[nodiscard]] std::variant<Measurement, TableProblem> read_measurement(const std::string& path,
                                                                       const SceneReading& reading);

/// For people, the verdict first. `run` has a measured result of `measurement`.
[[nodiscard]] std::string measured_text(const ProofRun& run, const Measurement& measurement,
                                        const Paint& paint);

/// The member "measured" of the document of `vxr proof --json`.
[[nodiscard]] nlohmann::ordered_json measured_json(const ProofRun& run, const Measurement& measurement);

}  // namespace cli
