#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "cli/exit_codes.h"
#include "cli/report/diagnostic_text.h"
#include "cli/scene/scene_facts.h"

namespace cli {

/// The settings of a composition file as they were kept.
struct SceneNumbers {
    std::int64_t width_px = 0;
    std::int64_t height_px = 0;
    std::int64_t from = 0;
    std::int64_t to = 0;
    std::int64_t range = 0;
    std::int64_t fps = 0;
    float aspect = 1;
    bool local = false;

    /// How long layers and placeholders are, in frames.
    [[nodiscard]] std::int64_t length() const { return to - from + 1; }
};

/// What became of reading a composition file as the plug-in does.
struct SceneReading {
    std::string file;                 ///< as the user named it
    std::string full_path;            ///< as the plug-in gets it
    std::optional<Diagnostic> error;  ///< why the plug-in takes nothing from the file
    ExitCode code = ExitCode::fine;   ///< what the error means for the program
    SceneFacts facts;                 ///< up to the error
    SceneNumbers numbers;
};

/// Reads the file the way a host and the plug-in do: first nine bytes, then everything with the plug-in's own
/// readers. Never waits on a pipe or a device.
SceneReading read_scene(const std::string& file);

}  // namespace cli
