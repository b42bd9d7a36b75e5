#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/project/host_setup.h"
#include "cli/report/diagnostic_text.h"
#include "cli/scene/scene_reading.h"
#include "handover/build_handover.h"

namespace cli {

/// A scene described for another program, or why there is no description.
struct HandedOver {
    std::string file;                            ///< as the user named it
    ExitCode code = ExitCode::fine;              ///< footage_missing where placeholders stand in
    std::vector<Diagnostic> diagnostics;         ///< why the scene was refused
    std::vector<std::string> problems;           ///< why it did not arrive whole, one sentence each
    std::optional<handover::Handover> handover;  ///< nothing if the scene was refused or did not arrive whole
};

/// A scene described in both versions, to compare them, or why it is not.
struct HandedOverBoth {
    ExitCode code = ExitCode::fine;              ///< footage_missing where placeholders stand in
    std::vector<Diagnostic> diagnostics;         ///< why the scene was refused
    std::vector<std::string> problems;           ///< why it did not arrive whole, one sentence each
    std::optional<handover::Handover> imported;  ///< nothing if the scene did not arrive whole
    std::optional<handover::Handover>
        corrected;  ///< nothing without `imported`, or if it cannot be corrected
};

/// The scene of `reading` for those who describe it. `reading` outlives it.
[[nodiscard]] handover::SceneSource source_of(const SceneReading& reading);

/// Imports the scene into an embedded host of the current generation and describes the project.
[[nodiscard]] HandedOver hand_over(const SceneReading& reading, const FoundBundle& bundle,
                                   handover::Version version, const handover::HandoverOptions& options);

/// The same in both versions, from one import.
[[nodiscard]] HandedOverBoth hand_over_both(const SceneReading& reading, const FoundBundle& bundle,
                                            const handover::HandoverOptions& options);

}  // namespace cli
