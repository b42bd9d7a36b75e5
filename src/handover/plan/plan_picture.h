#pragma once

#include <string>

#include "handover/handover.h"

namespace plan {

/// The scene's cameras, lights and nulls as a picture in SVG: from above and from the side with the ways of
/// everything that moves, its keys, and what cameras see at a few frames, their cuts among them; then curves
/// of each camera, and the intensity of the lights. Between FROM and TO of the shot.
///
/// Texts are selectable, on white. Colours are those of text/svg.h, and nothing is told by colour alone. The
/// same handover gives the same bytes. What a picture cannot show, as keys closer together than pixels, is
/// left out, and the picture says so.
[[nodiscard]] std::string plan_picture(const handover::Handover& handover, double cut_angle_degrees);

}  // namespace plan
