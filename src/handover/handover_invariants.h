#pragma once

#include <optional>
#include <string>

#include "handover/handover.h"

namespace handover {

/// Checks what holds for every handover, whatever the scene: indices lead somewhere, ids differ, texts are
/// UTF-8, tracks have ascending frames and as many values, numbers are finite. Returns the first violation,
/// which is a defect of the builder, or nothing. Takes time in proportion to the size of the handover.
[[nodiscard]] std::optional<std::string> validate_handover(const Handover& handover);

}  // namespace handover
