#pragma once

#include <vector>

#include "handover/handover.h"
#include "handover/scene3d/scene3d_options.h"

namespace handover {

// USD as text: right-handed, y up, the scene's own units and frames; cameras and lights look along -z. A
// position (x, y, z) of the scene is (x, y, -z) there.

/// Writes one file.
void write_usda(const Handover& handover, const Scene3dOptions& options, const Sink& out);

/// What such a file does not say as the scene does.
[[nodiscard]] std::vector<Loss> usda_losses(const Handover& handover, const Scene3dOptions& options);

}  // namespace handover
