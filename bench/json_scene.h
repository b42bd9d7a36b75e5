#pragma once

#include <string>
#include <vector>

#include "composition/model/project_settings.h"
#include "composition_text.h"

// The peer of reading: the same scene as JSON, read by RapidJSON's SAX parser into the same records.

/// The scene of composition_text() as JSON without blanks, every number written with the same characters.
/// Only scenes of one composition without layers.
[[nodiscard]] std::string json_scene_text(const SceneShape& shape);

/// Reads the file at `path` into `settings`, with numbers at full precision. `buffer` takes the whole file;
/// it is the caller's so that its pages stay warm. False when it is no such scene.
[[nodiscard]] bool read_json_scene(const std::string& path, std::vector<char>& buffer,
                                   tagProjectSettings& settings);
