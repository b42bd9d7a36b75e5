#pragma once

// Having a registered input module draw, as a host does.

#include "embedded/host.h"
#include "embedded/session.h"

namespace embedded {

/// Has the module draw into a frame with guard bytes around its rows and reports writes to them. If the
/// module reports success, a current host also reports pixels that were written outside the required region,
/// a frame in which nothing was drawn, and drawing flags that were not set.
///
/// A host that draws from copies (HostOptions::draws_from_copies) flattens the options, makes a copy of the
/// in-spec without them, and on another thread inflates the copy, draws from it, and disposes of it.
DrawResult draw_frame(Session& session, Id in_spec, const FrameShape& shape);

}  // namespace embedded
