#pragma once

#include <vector>

#include "handover/build_handover.h"
#include "handover/scene_walk.h"
#include "handover/stable_id.h"

namespace handover {

/// The cameras, lights and nulls as the scene means them, in the order of the file, with their ids. Names are
/// left to the project, which has them decoded. Keys with a number that is not finite are left out, and named
/// in `losses`.
[[nodiscard]] std::vector<SceneObject> scene_objects(const SceneSource& scene, const SceneWalk& walk,
                                                     StableIds& ids, std::vector<Loss>& losses);

}  // namespace handover
