#pragma once

// What glTF and USD say in the same way.

#include <array>
#include <cstdint>
#include <vector>

#include "handover/handover.h"
#include "handover/scene3d/motion.h"
#include "handover/scene3d/scene3d_options.h"

namespace handover {

/// A turn as a unit quaternion x, y, z, w.
using Quaternion = std::array<double, 4>;

/// How a camera or a light that looks along -z with y up is turned, or a null, in right-handed axes with y
/// up. A null turns about z, y and x in this order, as the importer has After Effects turn it.
[[nodiscard]] Quaternion turn_of(ObjectKind kind, const TimedPose& pose);

/// The position in right-handed axes.
[[nodiscard]] std::array<double, 3> place_of(const TimedPose& pose);

/// The picture in square pixels, and how precise a camera must be.
struct PictureFrame {
    explicit PictureFrame(const Shot& shot);

    double width = 0;         ///< in pixels of the scene
    double aspect_ratio = 1;  ///< width over height as it is seen
    double corner = 0;        ///< from the middle to a corner, in pixels

    /// In pixels, for an angle of view within kLeastAngle..kMostAngle.
    [[nodiscard]] double focal_length(double view_angle) const;
    /// By how many pixels the picture moves at most when the camera turns by `radians`.
    [[nodiscard]] double shift(double radians, double view_angle) const;
};

/// Angles of view that both formats can say.
inline constexpr double kLeastAngle = 0.01;
inline constexpr double kMostAngle = 179.9;
[[nodiscard]] double clamped_angle(double view_angle);

/// A camera is this close to the scene between its keys, in pixels. A fifth of what a proof allows.
inline constexpr double kClose_px = 0.01;
/// Lights and nulls, in radians.
inline constexpr double kCloseTurn = 2e-4;

/// A light's colour within 0..1, and its intensity with what the colour had beyond.
struct LightValues {
    std::array<double, 3> color{};
    double intensity = 0;
    bool changed = false;  ///< a number was negative or not finite
};
[[nodiscard]] LightValues light_values(const SceneObject& light);

/// Cameras see from here to there: from a hundredth of the nearest thing to twice the farthest, in the
/// scene's units.
struct ClippingRange {
    double nearest = 0;
    double farthest = 0;
};
[[nodiscard]] ClippingRange clipping_range(const Handover& handover);

/// The losses that both formats have in common, for `target`.
[[nodiscard]] std::vector<Loss> common_losses(const Handover& handover, const std::vector<Motion>& motions,
                                              Target target);

}  // namespace handover
