#pragma once

#include <string>

#include "cli/handover/handover_format.h"
#include "cli/project/host_setup.h"
#include "cli/scene/scene_reading.h"

namespace cli {

/// Writes a new ZIP archive with one folder that can be opened anywhere: the script, the scene, the footage
/// that the handover uses, and what `vxr check` and `vxr proof` say about the scene. The script and the
/// plug-in find footage beside themselves. Files of one name from several folders get folders of their own,
/// where only the script finds them. The archive is complete or absent. Throws std::runtime_error with the
/// reason when it cannot be written; an archive that exists is never replaced.
void write_script_package(const SceneReading& reading, const handover::Handover& handover,
                          const FoundBundle& bundle, const HandoverFormatOptions& options,
                          const std::string& path);

}  // namespace cli
