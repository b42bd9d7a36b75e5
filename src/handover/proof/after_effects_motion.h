#pragma once

// The values of a layer's tracks over time in the written model of After Effects (after_effects_model.h).

#include <array>
#include <cmath>

#include "handover/handover.h"

namespace proof {

using LayerValue = std::array<double, 3>;

/// Rows by columns.
using TurnMatrix = std::array<std::array<double, 3>, 3>;

[[nodiscard]] TurnMatrix product(const TurnMatrix& a, const TurnMatrix& b);

/// A turn about one axis, 0 for x; positive leads from the next axis to the one after it.
[[nodiscard]] TurnMatrix turn_about(std::size_t axis, double degrees);

/// The track of a property; null if it is not set.
[[nodiscard]] const handover::Track* track_of(const handover::Layer& layer, handover::Property property);

/// The value of a track that is no orientation at a frame of layer time. `fallback` if there is no track.
/// Only the first number counts of properties with one. `curves` is as in AfterEffectsRules.
[[nodiscard]] LayerValue value_at(const handover::Track* track, double frame, const LayerValue& fallback,
                                  bool curves);

/// The turn of an orientation; none if there is no track.
[[nodiscard]] TurnMatrix orientation_at(const handover::Track* track, double frame, bool curves);

}  // namespace proof
