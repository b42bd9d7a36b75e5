#include "handover/scene3d/gltf_motion.h"

#include <algorithm>
#include <cmath>

namespace handover {
namespace {

// The angle between two turns, precise for small ones.
double angle_between(const Quaternion& a, const Quaternion& b) {
    double same = 0;
    double opposite = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        same += (a[i] - b[i]) * (a[i] - b[i]);
        opposite += (a[i] + b[i]) * (a[i] + b[i]);
    }
    return 4 * std::asin(std::min(1.0, std::sqrt(std::min(same, opposite)) / 2));
}

// As the format goes from one turn to the next: the short way, at constant speed.
Quaternion on_the_way(const Quaternion& a, Quaternion b, double part) {
    double cosine = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        cosine += a[i] * b[i];
    }
    if (cosine < 0) {
        for (double& one : b) {
            one = -one;
        }
    }
    const double angle = angle_between(a, b) / 2;
    const double sine = std::sin(angle);
    // Turns that are almost equal: a straight line is as good.
    constexpr double kTiny = 1e-9;
    const double weight_a = sine < kTiny ? 1 - part : std::sin((1 - part) * angle) / sine;
    const double weight_b = sine < kTiny ? part : std::sin(part * angle) / sine;
    Quaternion turn{};
    for (std::size_t i = 0; i < a.size(); ++i) {
        turn[i] = weight_a * a[i] + weight_b * b[i];
    }
    return turn;
}

bool turns_close(ObjectKind kind, const PictureFrame& frame, const TimedPose& a, const TimedPose& b) {
    if (a.heading == b.heading && a.pitch == b.pitch && a.bank == b.bank) {
        return true;
    }
    const Quaternion from = turn_of(kind, a);
    const Quaternion to = turn_of(kind, b);
    for (const double part : {0.125, 0.375, 0.625, 0.875, 0.25, 0.5, 0.75}) {
        const TimedPose truth = between(a, b, part);
        const double apart = angle_between(on_the_way(from, to, part), turn_of(kind, truth));
        const bool close = kind == ObjectKind::camera
                               ? frame.shift(apart, clamped_angle(truth.view_angle)) <= kClose_px
                               : apart <= kCloseTurn;
        if (!close) {
            return false;
        }
    }
    return true;
}

bool angles_close(const PictureFrame& frame, const TimedPose& a, const TimedPose& b) {
    if (a.view_angle == b.view_angle) {
        return true;
    }
    const double from = vertical_angle(frame, a.view_angle);
    const double to = vertical_angle(frame, b.view_angle);
    for (const double part : {0.25, 0.5, 0.75}) {
        const double truth = vertical_angle(frame, between(a, b, part).view_angle);
        const double shown = from + part * (to - from);
        if (!(std::abs(std::tan(truth / 2) / std::tan(shown / 2) - 1) * frame.corner <= kClose_px)) {
            return false;
        }
    }
    return true;
}

}  // namespace

double vertical_angle(const PictureFrame& frame, double view_angle) {
    return 2 * std::atan(std::tan(radians_of(clamped_angle(view_angle)) / 2) / frame.aspect_ratio);
}

std::vector<Motion> gltf_motions(const Handover& handover, const Scene3dOptions& options) {
    const PictureFrame frame(handover.shot);
    std::vector<Motion> motions;
    for (const SceneObject& object : handover.objects) {
        const ObjectKind kind = object.kind;
        const IsClose is_close = [&frame, kind](const TimedPose& a, const TimedPose& b) {
            return turns_close(kind, frame, a, b) &&
                   (kind != ObjectKind::camera || angles_close(frame, a, b));
        };
        // Time begins with the scene's first frame.
        motions.push_back(from_frame(motion_of(object, options.cut_angle_degrees, is_close),
                                     static_cast<double>(handover.shot.from)));
    }
    return motions;
}

bool view_angle_changes(const Motion& motion) {
    return std::any_of(motion.poses.begin(), motion.poses.end(), [&](const TimedPose& pose) {
        return pose.view_angle != motion.poses.front().view_angle;
    });
}

// Positions, and the times at which they hold, are floats; a key that is left out is missed by as much again.
Rounding rounding_of(const Handover& handover, const std::vector<TimedPose>& poses) {
    constexpr double kFloatStep = 1.0 / (1 << 23);
    constexpr double kUsualDistance = 1000;
    const PictureFrame frame(handover.shot);
    Rounding most;
    for (std::size_t i = 0; i < poses.size(); ++i) {
        const TimedPose& pose = poses[i];
        const double late_frames = kFloatStep / 2 * (pose.frame - static_cast<double>(handover.shot.from));
        const double angle = clamped_angle(pose.view_angle);
        double place = kFloatStep * std::hypot(pose.position[0], pose.position[1], pose.position[2]);
        double turn = 0;
        for (const std::size_t other : {i - std::min<std::size_t>(i, 1), std::min(i + 1, poses.size() - 1)}) {
            const TimedPose& next = poses[other];
            const double frames = std::abs(next.frame - pose.frame);
            // Two poses of one frame are a cut, which takes no time.
            if (frames > 0) {
                const double way =
                    std::hypot(next.position[0] - pose.position[0], next.position[1] - pose.position[1],
                               next.position[2] - pose.position[2]);
                place = std::max(
                    place, kFloatStep * std::hypot(pose.position[0], pose.position[1], pose.position[2]) +
                               way / frames * late_frames);
                turn = std::max(turn, angle_between(turn_of(ObjectKind::camera, pose),
                                                    turn_of(ObjectKind::camera, next)) /
                                          frames * late_frames);
            }
        }
        const double distance = std::abs(pose.target_distance);
        const double depth = (std::isfinite(distance) && distance > 0 ? distance : kUsualDistance) / 2;
        const double px = frame.shift(place / depth + turn, angle);
        if (px > most.px) {
            most = {px, pose.frame};
        }
    }
    return most;
}

}  // namespace handover
