#pragma once

#include <string>

#include "cli/scene/scene_facts.h"
#include "composition/model/project_settings.h"

namespace cli {

/// What differs in After Effects because a number is not kept as it was written: one sentence without a full
/// stop, about the first such number of the block. Empty where the number is refused anyway.
std::string change_effect(const SceneChange& change, const tagProjectSettings& settings);

}  // namespace cli
