#include "handover/motion_path.h"

#include <algorithm>
#include <cmath>

namespace handover {
namespace {

constexpr double kWholeTurn_degrees = 360;
constexpr double kHalfTurn_degrees = 180;

// As much nearer than the camera is to the origin, a point of interest is lost in its rounding.
constexpr double kLeastDistance = 1e-6;

double dot(const Vector& a, const Vector& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

// Whether every pitch between the two is farther than the bound from the vertical, and not upside down.
bool stays_upright(double from, double to) {
    constexpr double kMost_degrees = kHalfTurn_degrees / 2 - kVertical_degrees;
    const double turns = kWholeTurn_degrees * std::round(from / kWholeTurn_degrees);
    return std::abs(from - turns) < kMost_degrees && std::abs(to - turns) < kMost_degrees;
}

// Whole turns to add to an angle.
class Turns {
  public:
    // The angle with the turns of the one before it.
    [[nodiscard]] double as_written(double angle) const { return angle + turns_ * kWholeTurn_degrees; }

    // The angle that is nearest to `before`; half a turn stays as it is written.
    double nearest(double before, double angle) {
        const double turn = as_written(angle) - before;
        if (std::abs(turn) > kHalfTurn_degrees) {
            turns_ -= std::round(turn / kWholeTurn_degrees);
        }
        return as_written(angle);
    }

    [[nodiscard]] bool any() const { return turns_ != 0; }

  private:
    double turns_ = 0;
};

Pose written_pose(const ObjectKey& key) {
    return {key.position, key.heading, key.pitch, key.bank, key.view_angle, key.target_distance};
}

}  // namespace

double radians_of(double degrees) {
    constexpr double kPi = 3.141592653589793;
    return degrees * kPi / kHalfTurn_degrees;
}

Vector view_of(const Pose& pose) {
    const double heading = radians_of(pose.heading);
    const double pitch = radians_of(pose.pitch);
    const double level = std::cos(pitch);
    return {-level * std::sin(heading), std::sin(pitch), level * std::cos(heading)};
}

Pose pose_between(const Pose& a, const Pose& b, double part) {
    const auto mixed = [part](double from, double to) { return from + (to - from) * part; };
    Pose pose;
    for (std::size_t i = 0; i < pose.position.size(); ++i) {
        pose.position[i] = mixed(a.position[i], b.position[i]);
    }
    pose.heading = mixed(a.heading, b.heading);
    pose.pitch = mixed(a.pitch, b.pitch);
    pose.bank = mixed(a.bank, b.bank);
    pose.view_angle = mixed(a.view_angle, b.view_angle);
    pose.target_distance = mixed(a.target_distance, b.target_distance);
    return pose;
}

MotionPath::MotionPath(const SceneObject& object, bool turns, double cut_angle_degrees) {
    keys_.reserve(object.keys.size());
    const double cut_degrees = std::clamp(cut_angle_degrees, 0.0, kHalfTurn_degrees);
    const double cut_cosine = std::cos(radians_of(cut_degrees));
    Turns heading;
    Turns pitch;
    Turns bank;
    Vector view_before{};
    for (const ObjectKey& key : object.keys) {
        PathKey made{key.frame, written_pose(key)};
        if (turns) {
            const Vector view = view_of(made.pose);
            if (!keys_.empty() && key.frame - keys_.back().frame == 1) {
                PathKey& before = keys_.back();
                const Pose written = made.pose;
                made.pose.heading = heading.nearest(before.pose.heading, written.heading);
                made.pose.pitch = pitch.nearest(before.pose.pitch, written.pitch);
                made.pose.bank = bank.nearest(before.pose.bank, written.bank);
                before.holds = dot(view_before, view) < cut_cosine ||
                               std::abs(made.pose.bank - before.pose.bank) > cut_degrees;
            } else {
                made.pose.heading = heading.as_written(made.pose.heading);
                made.pose.pitch = pitch.as_written(made.pose.pitch);
                made.pose.bank = bank.as_written(made.pose.bank);
            }
            made.turned = heading.any() || pitch.any() || bank.any();
            view_before = view;
        }
        keys_.push_back(made);
    }
}

bool can_be_aimed(const MotionPath& path) {
    const std::vector<PathKey>& keys = path.keys();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const Pose& pose = keys[i].pose;
        const bool is_joined = i > 0 && !keys[i - 1].holds;
        const Vector& at = pose.position;
        if (!stays_upright(is_joined ? keys[i - 1].pose.pitch : pose.pitch, pose.pitch) ||
            !(pose.target_distance > kLeastDistance * std::hypot(at[0], at[1], at[2]))) {
            return false;
        }
    }
    return true;
}

}  // namespace handover
