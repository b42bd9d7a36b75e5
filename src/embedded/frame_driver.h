#pragma once

// Having a registered input module draw, as a host does.

#include "embedded/host.h"
#include "embedded/session.h"

namespace embedded {

/// Has the module draw into a frame with guard bytes around its rows; reports what it wrote there.
DrawResult draw_frame(Session& session, Id in_spec, const FrameShape& shape);

}  // namespace embedded
