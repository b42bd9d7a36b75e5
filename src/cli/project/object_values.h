#pragma once

#include <string>

#include "cli/scene/scene_reading.h"
#include "embedded/project.h"

namespace cli {

/// Compares a camera, light or null of the scene with the layer that it has become. Returns the first
/// difference, as a clause to follow the object's name; empty if there is no difference. Compares times and
/// values of all keys, the values of lights, and where cameras, spot and parallel lights look. Deliberately
/// works the values out from the description of the language and calls none of the importer's code, whose
/// mistakes it must find; values may differ by rounding.
std::string object_difference(const embedded::Layer& layer, const SceneBlock& object,
                              const tagProjectSettings& settings);

}  // namespace cli
