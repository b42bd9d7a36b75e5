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

/// Nearer to the vertical than this, a camera is not aimed. A position of 10,000 that is kept in single
/// precision is off by up to 0.0005; one degree from the vertical, that much of a point of interest 1,000
/// away turns the picture by 0.0005 / (1000 * sin 1), which is 0.03 pixels at the corner of 1920 x 1080.
inline constexpr double kVertical_degrees = 1;

/// Whether a point of interest holds a camera's view at every moment: the camera is never within
/// kVertical_degrees of straight up or down, nor upside down, and the point is before it and not lost in the
/// rounding of its position.
[[nodiscard]] bool can_be_aimed(const MotionPath& path);

/// The pose between two others: every number changes in proportion.
[[nodiscard]] Pose pose_between(const Pose& a, const Pose& b, double part);

/// Where the object looks: a vector of length 1.
[[nodiscard]] Vector view_of(const Pose& pose);

[[nodiscard]] double radians_of(double degrees);

}  // namespace handover
