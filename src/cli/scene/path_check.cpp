#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "cli/scene/motion_check.h"
#include "cli/scene/scene_geometry.h"
#include "cli/scene/written_number.h"

namespace cli {
namespace {

// The scene does not say how large lights and nulls appear. A hundredth of the whole path is taken for the
// smallest bend that anyone sees.
constexpr double kVisiblePartOfPath = 0.01;

// Where a host puts a point between two keys by default: on a cubic curve whose handles, at each key, are a
// sixth of the way from the key before to the key after.
constexpr double kHandle = 1.0 / 6;

// The curve is looked at in so many steps: among them are the thirds and the half, where it is farthest.
constexpr int kSteps = 24;

// The distance of `point` from the straight line between `start` and `start + way`.
double distance_from_line(const Vec3& from_start, const Vec3& way) {
    const double square = dot(way, way);
    const double part = square > 0 ? std::clamp(dot(from_start, way) / square, 0.0, 1.0) : 0;
    return length(from_start - part * way);
}

// How far the curve from `b` to `c` leaves their straight line, where `a` is the key before and `d` the one
// after. Without such a key, it is `b` or `c` itself.
double largest_bend(const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& d, double visible) {
    const Vec3 leaving = kHandle * (c - a);
    const Vec3 arriving = kHandle * (d - b);
    // The two weights below are together at most 3/4.
    if (!(0.75 * std::max(length(leaving), length(arriving)) >= visible)) {
        return 0;
    }
    const Vec3 way = c - b;
    double largest = 0;
    for (int step = 1; step < kSteps; ++step) {
        const double t = static_cast<double>(step) / kSteps;
        const double weight_leaving = 3 * (1 - t) * (1 - t) * t;
        const double weight_arriving = 3 * (1 - t) * t * t;
        const double along = t * t * (3 - 2 * t);
        const Vec3 point = along * way + weight_leaving * leaving - weight_arriving * arriving;
        largest = std::max(largest, distance_from_line(point, way));
    }
    return largest >= visible ? largest : 0;
}

// The parts of a path that have the same fault, and the worst of them.
struct Faults {
    std::int64_t count = 0;
    double worst = 0;
    std::size_t at = 0;  ///< the key before the worst part

    void add(double bend, std::size_t key) {
        // Keys may hold any numbers, and nothing can be said about infinite ones.
        if (bend > 0 && std::isfinite(bend)) {
            ++count;
            // Of parts that differ only by rounding, the first.
            constexpr double kClearlyWorse = 1 + 1e-9;
            if (bend > worst * kClearlyWorse) {
                worst = bend;
                at = key;
            }
        }
    }
};

using PointOf = Vec3 (*)(const tagKeyFrame& key);

class PathCheck {
  public:
    PathCheck(const SceneBlock& object, const KeyTrack& keys, const tagProjectSettings& settings,
              PointOf point_of)
        : object_(object), keys_(keys), settings_(settings) {
        points_.reserve(keys.size());
        for (std::size_t i = 0; i < keys.size(); ++i) {
            points_.push_back(point_of(keys[i]));
        }
    }

    void run() {
        visible_part_ = kVisiblePartOfPath * extent();
        for (std::size_t i = 0; i + 1 < keys_.size(); ++i) {
            if (!keys_.has_frames_after(i) || !is_shown(i)) {
                continue;
            }
            const Vec3& b = points_[i];
            const Vec3& c = points_[i + 1];
            const double bend = largest_bend(i > 0 ? points_[i - 1] : b, b, c,
                                             i + 2 < points_.size() ? points_[i + 2] : c, visible(i));
            (b == c ? holds : moves).add(bend, i);
        }
    }

    Faults holds;  ///< between equal keys
    Faults moves;

  private:
    [[nodiscard]] bool is_shown(std::size_t i) const {
        return keys_[i].frame < settings_.to && keys_[i + 1].frame > settings_.from;
    }

    // The diagonal of the box around all keys.
    [[nodiscard]] double extent() const {
        if (points_.empty()) {
            return 0;
        }
        Vec3 least = points_[0];
        Vec3 most = least;
        for (const Vec3& one : points_) {
            least = {std::min(least.x, one.x), std::min(least.y, one.y), std::min(least.z, one.z)};
            most = {std::max(most.x, one.x), std::max(most.y, one.y), std::max(most.z, one.z)};
        }
        return length(most - least);
    }

    // The least bend between two keys that anyone sees: of a camera, what moves a point at its target
    // distance by a visible part of a pixel.
    [[nodiscard]] double visible(std::size_t i) const {
        if (object_.kind == BlockKind::camera) {
            const double units_per_px = std::min(units_of_pixel(keys_[i]), units_of_pixel(keys_[i + 1]));
            if (units_per_px > 0 && std::isfinite(units_per_px)) {
                return kVisible_px * units_per_px;
            }
        }
        return visible_part_;
    }

    // How large a pixel is at the target distance.
    [[nodiscard]] double units_of_pixel(const tagKeyFrame& key) const {
        return std::abs(double{key.targetDistance}) / zoom_px(settings_.width, double{key.fov});
    }

    const SceneBlock& object_;
    const KeyTrack& keys_;
    const tagProjectSettings& settings_;
    std::vector<Vec3> points_;  // of every key: each is needed five times
    double visible_part_ = 0;
};

void report(const Faults& faults, ToolCode code, const std::string& what, const SceneBlock& object,
            const KeyTrack& keys, WarningList& warnings) {
    if (faults.count == 0) {
        return;
    }
    Diagnostic& warning = warnings.add(code, keys.written(faults.at).at(),
                                       what + " by about " + measured_text(faults.worst) +
                                           " units between frames " + std::to_string(keys[faults.at].frame) +
                                           " and " + std::to_string(keys[faults.at + 1].frame),
                                       object.within);
    warning.count = faults.count;
    if (faults.count > 1) {
        warning.effects.insert(
            warning.effects.begin(),
            "this is the largest of " + std::to_string(faults.count) + " such parts of the path");
    }
}

}  // namespace

void check_path(const SceneBlock& object, const KeyTrack& keys, const tagProjectSettings& settings,
                WarningList& warnings) {
    PathCheck position(object, keys, settings, position_of);
    position.run();
    const std::string who = block_word(object.kind);
    report(position.holds, ToolCode::hold_drifts,
           "the " + who + " holds its position, and After Effects moves it", object, keys, warnings);
    report(position.moves, ToolCode::path_bends, "the path of the " + who + " leaves the straight line",
           object, keys, warnings);
    // A camera whose position drifts is reported once.
    if (is_aimed(object) && position.holds.count == 0) {
        // Between keys that differ, a scene turns the object, and a straight way of the point of interest is
        // no truer than a curve.
        PathCheck aim(object, keys, settings, aim_of);
        aim.run();
        report(aim.holds, ToolCode::hold_drifts,
               "the " + who + " holds its point of interest, and After Effects moves it", object, keys,
               warnings);
    }
}

}  // namespace cli
