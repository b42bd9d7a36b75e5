#pragma once

// How an object of the scene moves, for programs that have other curves between keys than the scene.

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "handover/handover.h"
#include "handover/motion_path.h"

namespace handover {

/// A pose at a moment of the scene's timeline. Angles are continuous from pose to pose: they may lie outside
/// one turn.
struct TimedPose : Pose {
    double frame = 0;
    bool before_cut = false;  ///< the last moment before `frame`, at which the object is elsewhere
};

/// The pose `part` of the way from `a` to `b`, as the scene means it.
[[nodiscard]] TimedPose between(const TimedPose& a, const TimedPose& b, double part);

/// Whether a program that goes from one pose to the next by its own curve stays close enough to the scene.
using IsClose = std::function<bool(const TimedPose& a, const TimedPose& b)>;

struct Motion {
    std::vector<TimedPose>
        poses;                 ///< ascending; two with one frame, the first of them `before_cut`, at each cut
    std::size_t left_out = 0;  ///< keys with numbers that are not finite
    std::int64_t too_fast = 0;        ///< parts of the way that no number of keys makes close enough
    std::int64_t first_too_fast = 0;  ///< the frame before the first of them
};

/// The keys of `object` with as many poses between them as `is_close` asks for: at whole frames, and between
/// two frames at its halves, down to a 32nd. Linear in time and memory in the number of poses, which is
/// bounded.
[[nodiscard]] Motion motion_of(const SceneObject& object, double cut_angle_degrees, const IsClose& is_close);

/// The part of a motion from `frame` on, which begins exactly there.
[[nodiscard]] Motion from_frame(Motion motion, double frame);

/// Numbers of a pose that a program interpolates together; those beyond the count are 0.
using PoseNumbers = std::function<std::array<double, 3>(const TimedPose& pose)>;

/// Which of the poses a program needs that draws straight lines between them: the others are missed by less
/// than the precision of a float in each of the numbers. Always the first, the last, and both sides of a cut.
/// Ascending.
[[nodiscard]] std::vector<std::size_t> needed_poses(const std::vector<TimedPose>& poses,
                                                    const PoseNumbers& numbers_of);

}  // namespace handover
