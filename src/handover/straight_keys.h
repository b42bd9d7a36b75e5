#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "handover/motion_path.h"

namespace handover {

/// Keys of a property that follows a path without being straight between its keys: as many more as it takes
/// for straight lines between them.
struct StraightKeys {
    std::vector<double> frames;  ///< on the scene's timeline, ascending
    std::vector<double> values;
    std::vector<std::size_t> holds;
    std::int64_t added = 0;     ///< keys that the path does not have
    std::int64_t too_fast = 0;  ///< stretches in which even keys between frames miss the path
    bool exhausted = false;     ///< there would be more keys than are added
};

/// A property that depends on the pose.
struct PosedProperty {
    /// Appends the values at a pose.
    std::function<void(const Pose& pose, std::vector<double>& values)> append;
    /// By how many pixels the straight line from `a` to `b` misses the path, whose poses change in proportion
    /// between the two; not a number counts as a miss.
    std::function<double(const Pose& a, const Pose& b)> miss_px;
    /// Keys between frames lie at most this close: at eighths of a frame. A power of two.
    std::int64_t parts = 8;
};

/// Lays keys along the path: its own, and between them where lines miss it by more than a hundredth of a
/// pixel at whole frames, or by so much between frames that it would show. At most `most_added` keys are
/// added.
[[nodiscard]] StraightKeys straight_keys(const MotionPath& path, const PosedProperty& property,
                                         std::int64_t most_added);

}  // namespace handover
