#pragma once

#include <vector>

#include "handover/handover.h"
#include "handover/scene3d/scene3d_options.h"

namespace handover {

// glTF 2.0: right-handed, y up, metres, seconds from the scene's first frame; cameras and lights look along
// -z. A position (x, y, z) of the scene is (x, y, -z) there. docs/handover.md has what is kept, changed and
// lost.

/// Writes one file: JSON with its data in it. Throws CannotWrite if the data is longer than the format can
/// say.
void write_gltf(const Handover& handover, const Scene3dOptions& options, const Sink& out);
/// The same in the binary form.
void write_glb(const Handover& handover, const Scene3dOptions& options, const Sink& out);

/// What such a file does not say as the scene does.
[[nodiscard]] std::vector<Loss> gltf_losses(const Handover& handover, const Scene3dOptions& options);

}  // namespace handover
