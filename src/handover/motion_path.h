#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "handover/handover.h"

namespace handover {

using Vector = std::array<double, 3>;

/// How an object stands at a moment. The scene's axes; degrees.
struct Pose {
    Vector position{};
    double heading = 0;
    double pitch = 0;
    double bank = 0;
    double view_angle = 0;
    double target_distance = 0;
};

struct PathKey {
    std::int64_t frame = 0;  ///< on the scene's timeline
    Pose pose;
    bool holds = false;   ///< a cut follows: the pose stays until the next key
    bool turned = false;  ///< an angle differs from the written one by whole turns
};

/// The motion of an object as ObjectKey says, with angles that may be joined by straight lines.
class MotionPath {
  public:
    /// With `turns`, angles take the short way from one frame to the next, and larger turns of the view or of
    /// the bank than `cut_angle_degrees` there are cuts; else all angles are as they are written.
    MotionPath(const SceneObject& object, bool turns, double cut_angle_degrees);

    [[nodiscard]] const std::vector<PathKey>& keys() const { return keys_; }

  private:
    std::vector<PathKey> keys_;
};

/// The pose between two others: every number changes in proportion.
[[nodiscard]] Pose pose_between(const Pose& a, const Pose& b, double part);

/// Where the object looks: a vector of length 1.
[[nodiscard]] Vector view_of(const Pose& pose);

[[nodiscard]] double radians_of(double degrees);

}  // namespace handover
