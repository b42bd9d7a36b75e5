#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "cli/handover/handover_format.h"
#include "cli/handover/handover_run.h"
#include "cli/terminal/terminal.h"
#include "handover/correction.h"

namespace cli {

/// How scenes are exported.
struct ExportSettings {
    const HandoverFormat* format = nullptr;
    HandoverFormatOptions format_options;
    handover::Version version = handover::Version::corrected;
    handover::HandoverOptions handover_options;
    bool write = true;      ///< false: only say what would differ
    bool packaged = false;  ///< the output is an archive with the script and its footage
};

/// A scene and what became of it.
struct ExportedScene {
    HandedOver result;   ///< without the handover, which is large
    std::string output;  ///< where it is written; empty if it is not
    bool written = false;
    std::vector<Diagnostic> losses;
    std::vector<handover::AppliedCorrection> corrections;
};

/// Exports one scene to `output`, and makes its folder. What goes wrong is in the result.
[[nodiscard]] ExportedScene export_scene(const SceneReading& reading, const FoundBundle& bundle,
                                         const ExportSettings& settings, const std::string& output);

/// For people: one line, and every correction and loss if `listed`.
void show_exported(const ExportedScene& scene, bool listed, Terminal& terminal);

/// The scene's entry in the document of `vxr export --json`, docs/schema/export.json.
[[nodiscard]] nlohmann::ordered_json exported_json(const ExportedScene& scene);

}  // namespace cli
