#pragma once

// Where and when a camera is compared.

#include <cstdint>
#include <string>
#include <vector>

#include "handover/proof/truth.h"

namespace proof {

enum class MomentKind { key, frame, between_frames };

struct Moment {
    double frame = 0;
    MomentKind kind = MomentKind::key;
};

/// Keys within `from`..`to`, both ends, and between neighbouring keys the frames next to them, those at a
/// seventh, a quarter, a third, a half and so on of the way, and the same moments without rounding to frames.
/// Of more than `most_keys` keys and ways evenly spaced ones; `keys_taken` is how many keys are among the
/// moments. Ascending.
[[nodiscard]] std::vector<Moment> moments_of(const TruthObject& object, std::int64_t from, std::int64_t to,
                                             std::size_t most_keys, std::int64_t& keys_taken);

/// The points of one moment, in an order that is the same at every moment: a grid around the aim, the corners
/// of the frame at three depths, the nulls.
[[nodiscard]] std::vector<Point> test_points(const TruthCamera& camera, double frame, int grid_points,
                                             const std::vector<const TruthObject*>& nulls);

/// Whether a point is compared: one that is far outside the frame, by two of its widths or heights, is not.
[[nodiscard]] bool is_compared(const Landing& landing, double width_px, double height_px);

/// What the point at an index of test_points() is called.
[[nodiscard]] std::string point_label(std::size_t index, int grid_points,
                                      const std::vector<const TruthObject*>& nulls);

}  // namespace proof
