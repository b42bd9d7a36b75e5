#pragma once

#include <cstdint>

#include "handover/plan/page.h"
#include "handover/plan/plan_scene.h"

namespace plan {

/// What does not fit on the maps.
struct MapGaps {
    std::int64_t unnamed = 0;  ///< labels without room
    std::int64_t outside = 0;  ///< objects that are so far away that an arrow at the edge shows the way
};

/// Draws the scene from above, with x to the right and z up the page, and from the side, with z to the right
/// and y up. Both have one scale, and may be measured by their grids. Rows that both leave empty are cut off
/// at the bottom of the areas, which are changed to what is used.
[[nodiscard]] MapGaps draw_maps(Page& page, const handover::Handover& handover, const Scene& scene,
                                Area& above, Area& side);

}  // namespace plan
