#pragma once

#include <string>

#include "cli/scene/scene_reading.h"
#include "embedded/project.h"

namespace cli {

/// What is wrong with the layer that a camera, light or null of the scene has become: one clause that follows
/// the object's name, of the first difference; empty when the layer is as the scene says. Compares times and
/// values of all keys, the values of lights, and where cameras, spot and parallel lights look. The values are
/// worked out here from the description of the language, not with the importer's code; they may differ by
/// rounding.
std::string object_difference(const embedded::Layer& layer, const SceneBlock& object,
                              const tagProjectSettings& settings);

}  // namespace cli
