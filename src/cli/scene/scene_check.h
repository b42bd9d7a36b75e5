#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/footage/footage_survey.h"
#include "cli/report/diagnostic_text.h"
#include "cli/scene/scene_reading.h"
#include "cli/scene/warning_list.h"

namespace cli {

/// Everything in a composition file whose result may differ from what its author expects, in the order of the
/// file. For a refused file, only what precedes the error. Opens the footage files; what the plug-in does not
/// find is looked for with the survey's finder, if it has one. Scenes of one run share a survey.
std::vector<Diagnostic> scene_warnings(const SceneReading& reading, FootageSurvey& survey);
/// The same for a scene by itself.
std::vector<Diagnostic> scene_warnings(const SceneReading& reading);

/// The footage that is in neither of its places, in the order of the file.
std::vector<diagnostic::MissingFootage> missing_footage(const SceneReading& reading);

// The parts of scene_warnings(). Each adds to the list.

/// Changed numbers, aspect and range, skipped words, text after the end.
void check_settings(const SceneReading& reading, WarningList& warnings);
/// Sizes, rates and lengths that After Effects does not hold.
void check_host_range(const SceneReading& reading, WarningList& warnings);
/// Names that are cut, read in another encoding, or equal in the host.
void check_names(const SceneReading& reading, WarningList& warnings);
/// Kinds of lights and shadows; cone angles.
void check_lights(const SceneReading& reading, WarningList& warnings);
/// Keyframes of cameras, lights and nulls.
void check_keys(const SceneReading& reading, WarningList& warnings);
/// Cameras in a composition whose pixels are not square.
void check_pixel_aspect(const SceneReading& reading, WarningList& warnings);
/// Footage files and sequences.
void check_footage(const SceneReading& reading, FootageSurvey& survey, WarningList& warnings);

/// A name as the host truncates it: its first 31 bytes.
std::string truncated_name(std::string_view name);

}  // namespace cli
