#pragma once

#include "handover/plan/page.h"

namespace plan {

/// The signs of the maps and what they mean, in one line that begins at `begin`.
void draw_legend(Page& page, const Spot& begin);

}  // namespace plan
