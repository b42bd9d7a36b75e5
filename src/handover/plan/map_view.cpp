#include "handover/plan/map_view.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace plan {
namespace {

// Numbers whose squares are finite.
bool is_somewhere(const Vector& point) {
    constexpr double kFarthest = 1e100;
    return std::all_of(point.begin(), point.end(),
                       [](double number) { return std::abs(number) < kFarthest; });
}

// A few positions of each object.
void add_positions(const Mover& mover, std::vector<Vector>& points) {
    constexpr std::size_t kMost = 9;
    std::vector<Vector> positions;
    for (const Stretch& stretch : mover.stretches) {
        for (const Moment& moment : stretch.moments) {
            positions.push_back(moment.pose.position);
        }
    }
    const std::size_t count = std::min(positions.size(), kMost);
    for (std::size_t i = 0; i < count; ++i) {
        points.push_back(positions[count == 1 ? 0 : i * (positions.size() - 1) / (count - 1)]);
    }
}

double median_of(std::vector<double> numbers) {
    const auto middle = numbers.begin() + static_cast<std::ptrdiff_t>(numbers.size() / 2);
    std::nth_element(numbers.begin(), middle, numbers.end());
    return *middle;
}

double distance(const Vector& a, const Vector& b) {
    return std::hypot(a[kX] - b[kX], a[kY] - b[kY], a[kZ] - b[kZ]);
}

class Box {
  public:
    void add(const Vector& point) {
        for (std::size_t i = 0; i < point.size(); ++i) {
            low_[i] = empty_ ? point[i] : std::min(low_[i], point[i]);
            high_[i] = empty_ ? point[i] : std::max(high_[i], point[i]);
        }
        empty_ = false;
    }
    [[nodiscard]] double size(std::size_t axis) const { return high_[axis] - low_[axis]; }
    [[nodiscard]] double middle(std::size_t axis) const { return (high_[axis] + low_[axis]) / 2; }

  private:
    Vector low_{};
    Vector high_{};
    bool empty_ = true;
};

Box box_of(const Scene& scene) {
    // Farther away than this many times the median is too far.
    constexpr double kFar = 8;
    std::vector<Vector> points;
    Box box;
    for (const Mover& camera : scene.cameras) {
        add_positions(camera, points);
        for (const Stretch& stretch : camera.stretches) {
            for (const Moment& moment : stretch.moments) {
                if (is_somewhere(moment.pose.position)) {
                    box.add(moment.pose.position);
                }
            }
        }
        for (const Frustum& frustum : camera.frusta) {
            points.push_back(frustum.aim);
            points.insert(points.end(), frustum.corners.begin(), frustum.corners.end());
        }
    }
    for (const std::vector<Mover>* const movers : {&scene.lights, &scene.nulls}) {
        for (const Mover& mover : *movers) {
            add_positions(mover, points);
        }
    }
    std::erase_if(points, [](const Vector& point) { return !is_somewhere(point); });
    if (points.empty()) {
        return box;
    }
    Vector middle{};
    for (std::size_t i = 0; i < middle.size(); ++i) {
        std::vector<double> numbers(points.size());
        std::transform(points.begin(), points.end(), numbers.begin(),
                       [i](const Vector& point) { return point[i]; });
        middle[i] = median_of(std::move(numbers));
    }
    std::vector<double> distances(points.size());
    std::transform(points.begin(), points.end(), distances.begin(),
                   [&](const Vector& point) { return distance(point, middle); });
    double usual = median_of(distances);
    if (usual == 0) {
        usual = *std::max_element(distances.begin(), distances.end());
    }
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (distances[i] <= kFar * usual) {
            box.add(points[i]);
        }
    }
    return box;
}

// The share of a map that is filled; names need the rest.
constexpr double kFilled = 0.78;

}  // namespace

MapSpace map_space(const Scene& scene, const Area& above, const Area& side) {
    const Box box = box_of(scene);
    MapSpace space;
    for (std::size_t i = 0; i < space.middle.size(); ++i) {
        space.middle[i] = box.middle(i);
        space.size[i] = box.size(i);
    }
    const double needed = std::max({box.size(kX) / above.width(), box.size(kZ) / above.height(),
                                    box.size(kZ) / side.width(), box.size(kY) / side.height()});
    // Of numbers as large as the middle, a double can tell apart no smaller ones.
    const double largest =
        std::max({std::abs(space.middle[kX]), std::abs(space.middle[kY]), std::abs(space.middle[kZ])});
    constexpr double kTold = 1e-9;
    space.units_per_px = std::max(needed / kFilled, largest * kTold);
    if (space.units_per_px == 0) {
        space.units_per_px = 1;
    }
    return space;
}

double needed_height(const MapSpace& space, double height) {
    constexpr double kLeast = 0.6;
    const double used = std::max(space.size[kY], space.size[kZ]) / space.units_per_px / kFilled;
    return std::clamp(used, kLeast * height, height);
}

}  // namespace plan
