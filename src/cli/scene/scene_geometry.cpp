#include "cli/scene/scene_geometry.h"

#include <cmath>

#include "composition/build/host_values.h"

namespace cli {

Vec3 operator+(const Vec3& a, const Vec3& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

Vec3 operator-(const Vec3& a, const Vec3& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

Vec3 operator*(double factor, const Vec3& a) {
    return {factor * a.x, factor * a.y, factor * a.z};
}

bool operator==(const Vec3& a, const Vec3& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

double dot(const Vec3& a, const Vec3& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Vec3 cross(const Vec3& a, const Vec3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

double length(const Vec3& a) {
    return std::hypot(a.x, a.y, a.z);
}

ViewAxes banked(const ViewAxes& axes, double bank_degrees) {
    const double bank = radians_from_degrees(bank_degrees);
    const double cosine = std::cos(bank);
    const double sine = std::sin(bank);
    return {cosine * axes.right - sine * axes.up, cosine * axes.up + sine * axes.right, axes.view};
}

namespace {

// Without the bank, which turns the other two axes and leaves the view as it is.
ViewAxes upright_axes_of(const tagKeyFrame& key) {
    const double heading = radians_from_degrees(double{key.rotation[0]});
    const double pitch = radians_from_degrees(double{key.rotation[1]});
    const double sin_h = std::sin(heading);
    const double cos_h = std::cos(heading);
    const double sin_p = std::sin(pitch);
    const double cos_p = std::cos(pitch);
    return {
        {cos_h, 0, sin_h}, {sin_p * sin_h, cos_p, -sin_p * cos_h}, {-cos_p * sin_h, sin_p, cos_p * cos_h}};
}

}  // namespace

ViewAxes axes_of(const tagKeyFrame& key) {
    return banked(upright_axes_of(key), double{key.rotation[2]});
}

Vec3 position_of(const tagKeyFrame& key) {
    return {double{key.position[0]}, double{key.position[1]}, double{key.position[2]}};
}

Vec3 aim_of(const tagKeyFrame& key) {
    return position_of(key) + double{key.targetDistance} * upright_axes_of(key).view;
}

bool is_aimed(const SceneBlock& object) {
    if (object.kind != BlockKind::light) {
        return object.kind == BlockKind::camera;
    }
    const A_long kind = static_cast<const CLight&>(*object.object).lightType;
    return kind == kLightSpot || kind == kLightParallel || kind == kLightParallelSpot;
}

double zoom_px(double width_px, double field_of_view_degrees) {
    return width_px * 0.5 / std::tan(radians_from_degrees(field_of_view_degrees) * 0.5);
}

}  // namespace cli
