#pragma once

// What the scene itself says: its cameras and nulls, straight from the model of the composition file. This
// pair of files and those of the models share no function, only the plain values of landing.h;
// script/check-includes holds that.
//
// With heading h, pitch p and bank b the camera looks along d = (-cos p sin h, sin p, cos p cos h); to its
// right is r = (cos h, 0, sin h), above it u = (sin p sin h, cos p, -sin p cos h). The bank turns both
// clockwise as seen from the camera: r' = r cos b - u sin b, u' = u cos b + r sin b. In a picture of W x H
// pixels of aspect a with the horizontal angle of view v, a point q before a camera at c lands, with f = (W /
// 2) / tan(v / 2), at
//     x = W / 2 + f (q - c).r' / (q - c).d,    y = H / 2 - f a (q - c).u' / (q - c).d
//
// Between keys every number changes linearly. Between keys on neighbouring frames, angles take the short way,
// and a view that turns farther than the cut angle is cut: the camera keeps its values until the later key.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "composition/model/project_settings.h"
#include "handover/proof/landing.h"

namespace proof {

struct TruthKey {
    std::int64_t frame = 0;
    Point position;
    std::array<double, 3> angles{};  ///< heading, pitch, bank; degrees
    double view_angle = 0;           ///< horizontal; degrees
    double distance = 0;             ///< of the point of interest
};

struct TruthObject {
    enum class Kind { camera, light, null };
    Kind kind = Kind::null;
    std::string name;            ///< the bytes of the file
    std::vector<TruthKey> keys;  ///< by rising frame, one a frame: the one written last
};

/// A point of a camera's frame at a depth: `across` and `up` are from -1 to 1 within the frame.
struct FramePoint {
    double across = 0;
    double up = 0;
    double depth = 0;  ///< along the view, in the scene's units
};

class TruthCamera : public Projector {
  public:
    /// Both outlive this; `camera` has keys.
    TruthCamera(const tagProjectSettings& settings, const TruthObject& camera, double cut_angle_degrees);

    void land(double frame, std::span<const Point> points, std::span<Landing> landings) const override;

    /// Whether there is a picture: finite numbers and an angle of view between 0 and 180 degrees.
    [[nodiscard]] bool has_picture(double frame) const;
    [[nodiscard]] Point point_of(double frame, const FramePoint& place) const;
    /// The distance of the point of interest.
    [[nodiscard]] double aim_distance(double frame) const;

  private:
    [[nodiscard]] TruthKey at(double frame) const;

    const tagProjectSettings& settings_;
    const TruthObject& camera_;
    double cut_angle_degrees_;
};

/// The scene's objects in the order of the file.
[[nodiscard]] std::vector<TruthObject> true_objects(const tagProjectSettings& settings);

/// Where an object is; it has keys.
[[nodiscard]] Point true_position(const TruthObject& object, double frame);

}  // namespace proof
