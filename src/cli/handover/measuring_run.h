#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/project/host_setup.h"
#include "cli/report/diagnostic_text.h"
#include "cli/scene/scene_reading.h"
#include "cli/terminal/terminal.h"
#include "handover/measuring.h"

namespace cli {

/// A scene made into questions to After Effects.
struct MeasuringScript {
    std::string file;  ///< the scene, as the user named it
    ExitCode code = ExitCode::fine;
    std::vector<Diagnostic> diagnostics;  ///< why the scene was refused
    std::vector<std::string> problems;    ///< why it did not arrive whole, one sentence each
    std::optional<std::string> script;    ///< nothing if the scene was refused or did not arrive whole
    handover::Measuring plan;
};

/// Imports the scene, corrects it, and writes the script of `vxr proof --for-after-effects`.
[[nodiscard]] MeasuringScript measuring_script(const SceneReading& reading, const FoundBundle& bundle);

/// What After Effects is asked about the scene.
[[nodiscard]] handover::Measuring measuring_plan_of(const SceneReading& reading);

/// For people: what to do with the script, which is `path`.
[[nodiscard]] std::string measuring_text(const MeasuringScript& made, const std::string& path,
                                         const Paint& paint);

}  // namespace cli
