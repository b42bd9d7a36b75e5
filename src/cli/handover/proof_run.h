#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/handover/handover_run.h"
#include "cli/project/host_setup.h"
#include "cli/report/diagnostic_text.h"
#include "cli/scene/scene_reading.h"
#include "cli/terminal/terminal.h"
#include "handover/measuring.h"
#include "handover/proof/comparison.h"
#include "handover/proof/measured_comparison.h"

namespace cli {

/// What After Effects was asked, and what it said.
struct Measurement {
    std::string file;  ///< the table, as the user named it
    handover::Measuring plan;
    proof::MeasuredTable table;
};

/// A scene compared with what arrives elsewhere.
struct ProofRun {
    std::string file;                               ///< as the user named it
    ExitCode code = ExitCode::fine;                 ///< different if a target that is judged misses the goal
    std::vector<Diagnostic> diagnostics;            ///< why the scene was refused
    std::vector<std::string> problems;              ///< why it did not arrive whole, one sentence each
    std::optional<proof::ProofResult> result;       ///< nothing if there was nothing to compare
    std::optional<proof::MeasuredResult> measured;  ///< if there is a table
    std::int32_t width_px = 0;
    std::int32_t height_px = 0;
};

/// Imports the scene, corrects it, writes it as glTF and USD in memory, and compares all of it.
/// `measurement`, if it is not null, belongs to this scene, and is judged.
[[nodiscard]] ProofRun prove(const SceneReading& reading, const FoundBundle& bundle,
                             const proof::ProofOptions& options, const Measurement* measurement = nullptr);

/// The same of a scene that has been handed over with the cut angle of `options`.
[[nodiscard]] ProofRun prove(const SceneReading& reading, const HandedOverBoth& versions,
                             const proof::ProofOptions& options, const Measurement* measurement = nullptr);

/// Smaller distances are shown as 0: they mean nothing to a person.
inline constexpr double kShown_px = 1e-6;
/// A distance for people; `lost` says that a point is nowhere.
[[nodiscard]] std::string distance_text(double px, const char* lost);

/// For people, the verdict first.
[[nodiscard]] std::string proof_text(const ProofRun& run, const Paint& paint);

/// The document of `vxr proof --json`, docs/schema/proof.json.
[[nodiscard]] nlohmann::ordered_json proof_document(const ProofRun& run);

}  // namespace cli
