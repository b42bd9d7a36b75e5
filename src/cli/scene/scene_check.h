#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/report/diagnostic_text.h"
#include "cli/report/warning_list.h"
#include "cli/scene/scene_reading.h"

namespace cli {

/// Everything about a composition file that will come out otherwise than its author may think, in the order
/// of the file. Of a refused file, what was read before the error. Looks at the footage files.
std::vector<Diagnostic> scene_warnings(const SceneReading& reading);

// The parts of it, each adding to the list.

/// Settings, names, words that are passed over, text behind the end.
void check_settings(const SceneReading& reading, WarningList& warnings);
/// Kinds of lights and shadows, cone angles.
void check_lights(const SceneReading& reading, WarningList& warnings);
/// Keyframes of cameras, lights and nulls.
void check_keys(const SceneReading& reading, WarningList& warnings);
/// Footage files and sequences.
void check_footage(const SceneReading& reading, WarningList& warnings);

/// A name as the host truncates it: its first 31 bytes.
std::string truncated_name(std::string_view name);

}  // namespace cli
