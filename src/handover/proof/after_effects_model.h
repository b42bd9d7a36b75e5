#pragma once

// Where After Effects puts points, from a handover's compositions, layers and tracks. Nothing here has been
// measured in After Effects: it is what its documentation and its users say, written down so that it can be
// refuted. This pair of files shares no function with the truth or with another model.
//
// Space. Coordinates of a composition begin at its top left corner: x to the right, y down, z away, in its
// pixels. A layer's matrix, for column vectors, is
//     T(position) . LookAt(point of interest) . Orientation . RX . RY . RZ . Scale . T(-anchor)
// where LookAt turns z to the point of interest and keeps x level; it belongs to cameras and lights with a
// point of interest and is undefined straight up and down. Orientation is Rx . Ry . Rz of its three angles.
// Positive turns lead from y to z, from z to x and from x to y. A camera has no scale and no anchor: it looks
// along its z from its position. A point at (X, Y, Z) in its space lands at the middle of the composition
// plus zoom (X, Y) / Z.
//
// Pixels that are not square. Whether After Effects stretches the space of such a composition is open, so
// there are two models. Without stretching, a unit of space is a pixel in x and in y. With stretching, a unit
// is the height of a pixel: all x of positions and points of interest are multiplied by the aspect, and what
// is seen is divided by it.
//
// Layers without three dimensions: a composition laid into another one of other pixels keeps its shape, so
// its x is multiplied by the quotient of the two aspects; then scale and rotation about the anchor apply.
// Position and anchor are the middles of the two compositions unless they are set.
//
// Time. The scene's FROM is at frame 0 of the root composition, or with LOCAL at FROM. From key to key a
// number goes straight. By the host's default (Interpolation::host) positions and points of interest go along
// cubic curves at constant speed; the handles at a key are a sixth of the way from the key before to the key
// after, which is the key itself at either end. Linear keys go straight. An orientation takes the short way
// about one axis; by the default each of its angles goes along such a curve. Before the first and after the
// last key nothing moves.

#include <memory>
#include <optional>
#include <string>

#include "handover/handover.h"
#include "handover/proof/landing.h"

namespace proof {

/// What may be otherwise in After Effects, or is changed to see what it does.
struct AfterEffectsRules {
    bool stretches_space = false;  ///< of compositions whose pixels are not square
    bool curves = true;            ///< false: every key is linear
    bool exact_aspect =
        false;  ///< true: the scene's aspect wherever a composition has other than square pixels
    bool bank_clockwise = true;  ///< false: a camera with a point of interest banks the other way
};

/// One camera of the handover, as if it were the only one. Refers to the handover, which outlives it.
struct AfterEffectsCamera {
    std::unique_ptr<Projector> projector;  ///< null if nothing can be projected
    std::string problem;                   ///< why `projector` is null, one sentence
};

/// The camera made from objects[object].
[[nodiscard]] AfterEffectsCamera after_effects_camera(const handover::Handover& handover, std::size_t object,
                                                      const AfterEffectsRules& rules);

/// Where the layer made from objects[object] is, in the scene's axes. Nothing if there is no such layer.
[[nodiscard]] std::optional<Point> after_effects_position(const handover::Handover& handover,
                                                          std::size_t object, double frame,
                                                          const AfterEffectsRules& rules);

}  // namespace proof
