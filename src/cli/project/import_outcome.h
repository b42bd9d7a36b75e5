#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/scene/scene_reading.h"
#include "embedded/host.h"
#include "embedded/project.h"

namespace cli {

/// What the file holds and the project lacks, one sentence each; empty when everything arrived. The import's
/// result does not show it: it is 0 even when the host refuses an object and the import ends there.
/// `objects_wanted` is false for hosts that get no cameras, lights and nulls.
std::vector<std::string> missing_in_project(const SceneReading& reading, const embedded::Project& project,
                                            bool objects_wanted);

/// What the import changed in the host and did not put back, one sentence each: the preference for unlabelled
/// alpha, which was `preference` before, and the undo group.
std::vector<std::string> left_changed(const embedded::Host& host,
                                      const std::optional<std::uint8_t>& preference);

/// Whether a host of this interface version gets cameras, lights and nulls: from 9.32 on.
bool gets_scene_objects(A_long major, A_long minor);

}  // namespace cli
