#pragma once

#include "handover/plan/map_view.h"
#include "handover/plan/page.h"

namespace plan {

/// Draws a light at a spot of a map: a disc of its colour, with rays if it shines in all directions.
void draw_lamp(Page& page, const Spot& at, const handover::SceneObject& light);

/// Draws the way of parallel light, as far as it lies in the plane of the map.
void draw_arrow(Page& page, const MapView& view, const Spot& at, const handover::Pose& pose);

/// Draws the beginning of a spot light's cone.
void draw_cone(Page& page, const MapView& view, const handover::SceneObject& light,
               const handover::Pose& pose);

}  // namespace plan
