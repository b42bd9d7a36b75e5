#pragma once

// From the scene's space to a map: which part of it is shown, how large, and from where.

#include <array>
#include <cstddef>

#include "handover/plan/page.h"
#include "handover/plan/plan_scene.h"

namespace plan {

// The scene's axes, as places in a Vector.
inline constexpr std::size_t kX = 0;
inline constexpr std::size_t kY = 1;
inline constexpr std::size_t kZ = 2;

/// The part of the scene that maps show.
struct MapSpace {
    Vector middle{};
    double units_per_px = 1;
    Vector size{};  ///< of what must be seen
};

/// A map: an axis of the scene to the right, and one up the page.
class MapView {
  public:
    MapView(const MapSpace& space, const Area& area, std::size_t across, std::size_t up)
        : space_(space), area_(area), across_(across), up_(up) {}

    [[nodiscard]] Spot spot_of(const Vector& point) const { return {x_of(point[across_]), y_of(point[up_])}; }
    [[nodiscard]] double x_of(double across) const {
        return (area_.left + area_.right) / 2 + (across - space_.middle[across_]) / space_.units_per_px;
    }
    [[nodiscard]] double y_of(double up) const {
        return (area_.top + area_.bottom) / 2 - (up - space_.middle[up_]) / space_.units_per_px;
    }
    /// The least and the largest number of the axis to the right that is on the map, and of the one up.
    [[nodiscard]] std::array<double, 2> range_across() const {
        return range(space_.middle[across_], area_.width());
    }
    [[nodiscard]] std::array<double, 2> range_up() const { return range(space_.middle[up_], area_.height()); }

    [[nodiscard]] const Area& area() const { return area_; }
    [[nodiscard]] const MapSpace& space() const { return space_; }

  private:
    [[nodiscard]] std::array<double, 2> range(double middle, double size_px) const {
        const double half = size_px / 2 * space_.units_per_px;
        return {middle - half, middle + half};
    }

    MapSpace space_;
    Area area_;
    std::size_t across_;
    std::size_t up_;
};

/// Chooses what two maps of these sizes show: all cameras, and what is not much farther away than half of
/// everything is.
[[nodiscard]] MapSpace map_space(const Scene& scene, const Area& above, const Area& side);

/// How much of a height two maps need.
[[nodiscard]] double needed_height(const MapSpace& space, double height);

}  // namespace plan
