#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "handover/handover.h"
#include "handover/proof/comparison.h"

namespace proof {

/// A .glb file that was written from the handover, read back: one target, and another one for readers without
/// KHR_animation_pointer if the file needs it; that one is not judged. Throws std::runtime_error if the file
/// is not sound. `handover` outlives the result, `bytes` need not.
[[nodiscard]] std::vector<ProofTarget> gltf_targets(const handover::Handover& handover,
                                                    std::string_view bytes);

/// A .usda file that was written from the handover, in the same way.
[[nodiscard]] std::vector<ProofTarget> usda_targets(const handover::Handover& handover,
                                                    std::string_view text);

}  // namespace proof
