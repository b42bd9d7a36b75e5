#pragma once

// How glTF moves things: turns by quaternions the short way, everything else in straight lines, by numbers of
// single precision.

#include <vector>

#include "handover/scene3d/motion.h"
#include "handover/scene3d/scene3d_options.h"
#include "handover/scene3d/scene3d_values.h"

namespace handover {

/// The angle of view from bottom to top, in radians.
[[nodiscard]] double vertical_angle(const PictureFrame& frame, double view_angle);

/// The motion of every object, in their order, with as many keys as glTF needs to follow it.
[[nodiscard]] std::vector<Motion> gltf_motions(const Handover& handover, const Scene3dOptions& options);

[[nodiscard]] bool view_angle_changes(const Motion& motion);

/// What a proof allows.
inline constexpr double kVisibleRounding_px = 5 * kClose_px;

/// What rounding does to a camera's picture, at most.
struct Rounding {
    double px = 0;
    double frame = 0;
};
/// Of a camera's poses: at half the distance of the point of interest, in the corner of the picture.
[[nodiscard]] Rounding rounding_of(const Handover& handover, const std::vector<TimedPose>& poses);

}  // namespace handover
