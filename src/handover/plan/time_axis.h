#pragma once

#include <string_view>

#include "handover/plan/page.h"
#include "handover/plan/plan_scene.h"

namespace plan {

/// Attributes of numbers beside a curve.
inline constexpr std::string_view kSmall = "font-size=\"10\" fill=\"#555555\"";

/// The time of the shot across a strip.
class TimeAxis {
  public:
    TimeAxis(const Scene& scene, double left, double right) : scene_(scene), left_(left), right_(right) {}

    [[nodiscard]] double x_of(double frame) const {
        if (scene_.end == scene_.begin) {
            return (left_ + right_) / 2;
        }
        return left_ + (frame - scene_.begin) / (scene_.end - scene_.begin) * (right_ - left_);
    }

    /// Ticks with frame numbers below `top`.
    void draw(Page& page, double top) const;

    [[nodiscard]] double left() const { return left_; }
    [[nodiscard]] double right() const { return right_; }

  private:
    const Scene& scene_;
    double left_;
    double right_;
};

}  // namespace plan
