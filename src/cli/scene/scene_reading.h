#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/report/diagnostic_text.h"
#include "cli/scene/scene_facts.h"
#include "cli/terminal/standard_input.h"
#include "composition/model/project_settings.h"
#include "system/file_identity.h"

namespace cli {

/// The result of reading a composition file the way the plug-in does.
struct SceneReading {
    std::string file;                 ///< as the user named it; "-" for the standard input
    std::string full_path;            ///< as the plug-in gets it
    os::FileVersion version;          ///< of the file, before it was read
    std::optional<Diagnostic> error;  ///< why the plug-in imports nothing from the file
    ExitCode code = ExitCode::fine;   ///< the exit code for the error
    /// The model, read up to the error. Never null.
    std::unique_ptr<tagProjectSettings> settings = std::make_unique<tagProjectSettings>();
    SceneFacts facts;                        ///< points into the settings
    std::optional<StandardInputFile> input;  ///< what `full_path` names, if that is the standard input
};

/// The length of layers and placeholders, in frames.
std::int64_t layer_length(const tagProjectSettings& settings);

/// Is told now and then how far reading has come. What it throws ends the reading and passes on to the
/// caller.
using ReadingWatch = std::function<void(std::int64_t read_bytes, std::uint64_t file_bytes)>;

/// Reads the file the way a host and the plug-in do: the first nine bytes, then everything with the plug-in's
/// own readers. Never waits for a pipe or a device, except for the standard input when `file` names it.
/// `watch` may be empty.
SceneReading read_scene(const std::string& file, const ReadingWatch& watch = {});

/// Every file that the scene uses as footage, whether or not it exists: of a sequence all files with a number
/// where its own has one.
std::vector<std::string> footage_files(const SceneReading& reading);

}  // namespace cli
