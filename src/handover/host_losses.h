#pragma once

#include "handover/build_handover.h"

namespace handover {

/// Names every place where After Effects will differ from the scene although the script does all it can, in
/// the order in which the project is made. The handover is complete but for these losses.
void add_host_losses(const SceneSource& scene, Handover& handover);

}  // namespace handover
