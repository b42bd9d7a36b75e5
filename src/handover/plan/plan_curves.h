#pragma once

#include <cstddef>

#include "handover/plan/page.h"
#include "handover/plan/plan_scene.h"

namespace plan {

/// Draws a camera's position, aim, angles, distance of the aim and angle of view over time, each on a scale
/// of its own, from `top` down. Returns where it ends.
[[nodiscard]] double draw_camera_curves(Page& page, const handover::Handover& handover, const Scene& scene,
                                        std::size_t camera, const Area& columns);

/// Draws the intensity of every light that has keys over time, on one scale. Returns where it ends.
[[nodiscard]] double draw_light_curves(Page& page, const handover::Handover& handover, const Scene& scene,
                                       const Area& columns);

/// The most lights that are drawn, in the order of the file.
inline constexpr std::size_t kMostLightCurves = 24;

}  // namespace plan
