#include "handover/scene3d/scene3d_values.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "handover/loss.h"

namespace handover {
namespace {

constexpr double kRadiansOfDegree = 3.14159265358979323846 / 180;

Quaternion about_axis(std::size_t axis, double degrees) {
    // The remainder keeps the cosine exact for many whole turns.
    const double half = std::remainder(degrees, 720.0) * kRadiansOfDegree / 2;
    Quaternion turn{0, 0, 0, std::cos(half)};
    turn[axis] = std::sin(half);
    return turn;
}

// The turn `b` followed by `a`.
Quaternion product(const Quaternion& a, const Quaternion& b) {
    return {a[3] * b[0] + a[0] * b[3] + a[1] * b[2] - a[2] * b[1],
            a[3] * b[1] - a[0] * b[2] + a[1] * b[3] + a[2] * b[0],
            a[3] * b[2] + a[0] * b[1] - a[1] * b[0] + a[2] * b[3],
            a[3] * b[3] - a[0] * b[0] - a[1] * b[1] - a[2] * b[2]};
}

Loss loss_at(const SceneObject& object, LossCode code, std::string reason, Target target) {
    return {diagnostic::make(code, object.at, std::move(reason), {}), target};
}

std::string quoted_name(const SceneObject& object) {
    return '"' + object.name + '"';
}

}  // namespace

Quaternion turn_of(ObjectKind kind, const TimedPose& pose) {
    const Quaternion bank = about_axis(2, -pose.bank);
    if (kind == ObjectKind::null) {
        return product(about_axis(0, pose.heading), product(about_axis(1, pose.pitch), bank));
    }
    return product(about_axis(1, pose.heading), product(about_axis(0, pose.pitch), bank));
}

std::array<double, 3> place_of(const TimedPose& pose) {
    // 0 - z and not -z, so that no zero has a sign.
    return {pose.position[0], pose.position[1], 0 - pose.position[2]};
}

PictureFrame::PictureFrame(const Shot& shot)
    : width(shot.width_px),
      aspect_ratio(shot.width_px * shot.pixel_aspect / shot.height_px),
      corner(std::hypot(shot.width_px, shot.height_px / shot.pixel_aspect) / 2) {}

double PictureFrame::focal_length(double view_angle) const {
    return width / 2 / std::tan(view_angle * kRadiansOfDegree / 2);
}

double PictureFrame::shift(double radians, double view_angle) const {
    const double focal = focal_length(view_angle);
    return radians * (focal + corner * corner / focal);
}

double clamped_angle(double view_angle) {
    return std::clamp(view_angle, kLeastAngle, kMostAngle);
}

LightValues light_values(const SceneObject& light) {
    LightValues values;
    const auto plain = [&](double one) {
        const bool good = std::isfinite(one) && one >= 0;
        values.changed = values.changed || !good;
        return good ? one : 0.0;
    };
    for (std::size_t i = 0; i < 3; ++i) {
        values.color[i] = plain(light.color[i]);
    }
    values.intensity = plain(light.intensity);
    const double brightest = *std::max_element(values.color.begin(), values.color.end());
    if (brightest > 1) {
        for (double& one : values.color) {
            one /= brightest;
        }
        values.intensity *= brightest;
    }
    return values;
}

ClippingRange clipping_range(const Handover& handover) {
    std::array<double, 3> least{HUGE_VAL, HUGE_VAL, HUGE_VAL};
    std::array<double, 3> most{-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
    double target = 0;
    for (const SceneObject& object : handover.objects) {
        for (const ObjectKey& key : object.keys) {
            for (std::size_t i = 0; i < 3; ++i) {
                if (std::isfinite(key.position[i])) {
                    least[i] = std::min(least[i], key.position[i]);
                    most[i] = std::max(most[i], key.position[i]);
                }
            }
            if (object.kind == ObjectKind::camera && std::isfinite(key.target_distance)) {
                target = std::max(target, std::abs(key.target_distance));
            }
        }
    }
    double extent = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        extent = std::hypot(extent, std::max(0.0, most[i] - least[i]));
    }
    // Cameras of the scene have no near and far end: both ends lie well outside of what the scene shows.
    constexpr double kAtLeast = 1000;
    constexpr double kAtMost = 1e9;
    const double farthest = std::clamp(10 * (extent + target), kAtLeast, kAtMost);
    return {farthest / 1e5, farthest};
}

std::vector<Loss> common_losses(const Handover& handover, const std::vector<Motion>& motions, Target target) {
    std::vector<Loss> losses;
    const auto add = [&](const SceneObject& object, LossCode code,
                         std::string reason) -> diagnostic::Diagnostic& {
        losses.push_back(loss_at(object, code, std::move(reason), target));
        return losses.back().what;
    };
    for (std::size_t i = 0; i < handover.objects.size(); ++i) {
        const SceneObject& object = handover.objects[i];
        const std::string name = quoted_name(object);
        const Motion& motion = motions[i];
        if (motion.left_out > 0) {
            add(object, LossCode::value_not_finite,
                "keys of " + name + " have numbers without an end; they are left out")
                .count = static_cast<std::int64_t>(motion.left_out);
        }
        if (motion.too_fast > 0) {
            add(object, LossCode::turn_too_fast,
                name + " turns or zooms so fast after frame " + std::to_string(motion.first_too_fast) +
                    " that keys at every 32nd of a frame do not follow it")
                .count = motion.too_fast;
        }
        if (object.kind == ObjectKind::null && !motion.poses.empty()) {
            add(object, LossCode::null_orientation_open,
                name + " turns about z, y and x in this order, as After Effects has it from the plug-in");
        }
        if (object.kind == ObjectKind::camera) {
            const bool open =
                std::any_of(motion.poses.begin(), motion.poses.end(), [](const TimedPose& pose) {
                    return !(pose.view_angle >= kLeastAngle && pose.view_angle <= kMostAngle);
                });
            if (open) {
                add(object, LossCode::value_not_finite,
                    "the angle of view of " + name +
                        " is not between 0.01 and 179.9 degrees; the nearest is taken");
            } else if (motion.poses.empty()) {
                add(object, LossCode::view_angle_lost,
                    name + " has no keys, and so no angle of view; 40 degrees is taken");
            }
        }
        if (object.kind == ObjectKind::light) {
            add(object, LossCode::light_intensity_unit,
                "the intensity of " + name + " is handed over as the number that it is");
            if (object.light_word == "TUBE" || object.light_word == "AREA") {
                add(object, LossCode::light_kind_changed,
                    name + " is a light of kind " + object.light_word +
                        ", whose size the scene does not say; it becomes a point");
            } else if (object.light_word == "PSPOT") {
                add(object, LossCode::light_kind_changed,
                    name +
                        " is a parallel spot, whose width the scene does not say; it becomes a parallel "
                        "light");
            }
            if (object.shadow_word != "NONE") {
                add(object, LossCode::shadow_kind_lost,
                    "the file does not say that " + name + " casts shadows");
            }
            if (light_values(object).changed) {
                add(object, LossCode::value_not_finite,
                    "the colour or intensity of " + name + " is negative or without an end; 0 is taken");
            }
        }
    }
    if (!handover.footage.empty()) {
        losses.push_back(
            {diagnostic::make(LossCode::footage_not_handed_over, {handover.shot.file, {}, {}, {}},
                              "cameras, lights and nulls are handed over, the compositions are not"),
             target});
    }
    return losses;
}

}  // namespace handover
