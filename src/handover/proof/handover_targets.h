#pragma once

#include <vector>

#include "handover/handover.h"
#include "handover/proof/comparison.h"

namespace proof {

/// A handover as After Effects shows it by the written model: one target, or two if a composition's pixels
/// are not square, with and without stretched space. The corrected version is judged. `handover` outlives the
/// result.
[[nodiscard]] std::vector<ProofTarget> after_effects_targets(const handover::Handover& handover);

}  // namespace proof
