#pragma once

#include "handover/build_handover.h"
#include "handover/scene_walk.h"
#include "handover/stable_id.h"

namespace handover {

/// Adds items, footage and compositions with their layers, as they are in the project. `handover.objects` are
/// there already, and get the names of their layers. Throws std::runtime_error if the project does not come
/// from the walked scene.
void add_project(const SceneSource& scene, const SceneWalk& walk, const embedded::Project& project,
                 StableIds& ids, Handover& handover);

}  // namespace handover
