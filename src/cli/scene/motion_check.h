#pragma once

#include "cli/scene/key_track.h"
#include "cli/scene/scene_facts.h"
#include "cli/scene/warning_list.h"
#include "composition/model/project_settings.h"

// What becomes of the motion between keys: the parts of check_keys() that look at an object's keys as a host
// keeps them. Each takes time in proportion to the number of keys.

namespace cli {

/// Positions and points of interest, which hosts join by curves.
void check_path(const SceneBlock& object, const KeyTrack& keys, const tagProjectSettings& settings,
                WarningList& warnings);

/// Turns, rolls and views that a point of interest cannot carry.
void check_aim(const SceneBlock& object, const KeyTrack& keys, WarningList& warnings);

}  // namespace cli
