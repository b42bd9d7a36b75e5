#pragma once

#include <span>

// What the truth and the models have in common: plain values and one interface, and deliberately no function.
// A mistake in shared code would be made on both sides of a comparison and never show.

namespace proof {

/// In the scene's axes and units: left-handed, x to the right, y up, z away from the viewer.
struct Point {
    double x = 0;
    double y = 0;
    double z = 0;
};

/// Where a point is in the picture, in pixels from its top left corner; x to the right, y down.
struct Landing {
    double x_px = 0;
    double y_px = 0;
    bool seen = false;  ///< false: behind the camera, or a camera or point without sound numbers
};

/// A camera that puts points into the picture, at any frame of the scene's timeline.
class Projector {
  public:
    Projector() = default;
    virtual ~Projector() = default;
    Projector(const Projector&) = delete;
    Projector& operator=(const Projector&) = delete;

    /// Where `points` land at `frame`; `landings` is as long. Frames may have fractions.
    virtual void land(double frame, std::span<const Point> points, std::span<Landing> landings) const = 0;
};

/// A view that turns farther from one frame to the next is cut, unless the user says otherwise. Stated apart
/// from HandoverOptions, as everything here is.
inline constexpr double kUsualCutAngle_degrees = 60;

}  // namespace proof
