#pragma once

#include <string>
#include <vector>

#include "composition/model/project_settings.h"
#include "scenes.h"

// The peer of reading: the same scene as JSON, read by RapidJSON's SAX parser into the same records.

/// The scene of composition_text() as JSON without blanks, with every number spelled the same. Supports
/// scenes of one composition without layers.
[[nodiscard]] std::string json_scene_text(const SceneShape& shape);

/// Reads the file at `path` into `settings`, with numbers at full precision. `buffer` must be larger than the
/// file; the caller keeps it so that its pages stay warm. False when the file is not such a scene.
[[nodiscard]] bool read_json_scene(const std::string& path, std::vector<char>& buffer,
                                   tagProjectSettings& settings);
