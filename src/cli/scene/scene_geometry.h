#pragma once

#include "cli/scene/scene_facts.h"

// Where objects stand and look. The axes of a scene are left-handed: x to the right, y up, z away from the
// viewer. Angles of keys are heading, pitch and bank, in degrees.

namespace cli {

/// From half a pixel on one sees that a plate and what is laid over it do not meet.
inline constexpr double kVisible_px = 0.5;

struct Vec3 {
    double x = 0;
    double y = 0;
    double z = 0;
};

Vec3 operator+(const Vec3& a, const Vec3& b);
Vec3 operator-(const Vec3& a, const Vec3& b);
Vec3 operator*(double factor, const Vec3& a);
bool operator==(const Vec3& a, const Vec3& b);
double dot(const Vec3& a, const Vec3& b);
Vec3 cross(const Vec3& a, const Vec3& b);
double length(const Vec3& a);

/// The axes of a view: unit vectors at right angles to each other.
struct ViewAxes {
    Vec3 right;
    Vec3 up;
    Vec3 view;
};

/// `axes` turned about its view, clockwise as seen from the camera.
ViewAxes banked(const ViewAxes& axes, double bank_degrees);

/// How a camera stands at a key.
ViewAxes axes_of(const tagKeyFrame& key);

Vec3 position_of(const tagKeyFrame& key);

/// The point of interest: at the target distance along the view.
Vec3 aim_of(const tagKeyFrame& key);

/// Whether the object looks somewhere: a camera, or a light that becomes a spot or parallel light.
bool is_aimed(const SceneBlock& object);

/// The distance, in pixels, at which `width_px` fills a horizontal field of view. Not positive and finite for
/// angles that are not between 0 and 180 degrees.
double zoom_px(double width_px, double field_of_view_degrees);

}  // namespace cli
