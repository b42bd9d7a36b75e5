#pragma once

#include <string>

#include "cli/handover/proof_run.h"

namespace cli {

/// The proof as an SVG picture, one frame below the other for each camera: rings where the scene's camera
/// puts test points at the frame at which targets are farthest off, and a line from each to where a target
/// puts it. Lines are drawn longer than they are by a factor that the picture states. Texts are selectable,
/// and the colours are told apart by those who do not see all colours.
[[nodiscard]] std::string proof_picture(const ProofRun& run);

}  // namespace cli
