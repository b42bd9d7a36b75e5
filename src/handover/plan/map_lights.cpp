#include "handover/plan/map_lights.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "handover/plan/plan_style.h"

namespace plan {

using handover::SceneObject;

// A disc with rays; the colour of a light may be white, so the line around it is dark.
void draw_lamp(Page& page, const Spot& at, const SceneObject& object) {
    constexpr int kRays = 8;
    constexpr double kInner = 6.5;
    constexpr double kOuter = 9;
    if (object.light_word == "OMNI" || object.light_word.empty()) {
        for (int ray = 0; ray < kRays; ++ray) {
            const double angle = ray * 2 * std::numbers::pi / kRays;
            page.line(std::array{Spot{at.x + kInner * std::cos(angle), at.y + kInner * std::sin(angle)},
                                 Spot{at.x + kOuter * std::cos(angle), at.y + kOuter * std::sin(angle)}},
                      "stroke=\"#333333\" stroke-width=\"1.2\"");
        }
    }
    page.circle(
        at, 4.8,
        "class=\"lamp\" stroke=\"#333333\" stroke-width=\"1.2\" " + attribute("fill", light_colour(object)));
}

// The way of parallel light, as far as it is in the plane of the map.
void draw_arrow(Page& page, const MapView& view, const Spot& at, const handover::Pose& pose) {
    constexpr double kLength = 44;
    constexpr double kHead = 6;
    const Vector look = view_of(pose);
    const Vector middle = view.space().middle;
    Vector ahead = middle;
    for (std::size_t i = 0; i < ahead.size(); ++i) {
        ahead[i] += look[i] * view.space().units_per_px;
    }
    const Spot zero = view.spot_of(middle);
    const Spot one = view.spot_of(ahead);
    const Spot way{one.x - zero.x, one.y - zero.y};
    const double length = std::hypot(way.x, way.y);
    constexpr double kShortest = 0.15;
    if (!(length > kShortest)) {
        return;
    }
    const Spot tip{at.x + kLength * way.x, at.y + kLength * way.y};
    const Spot unit{way.x / length, way.y / length};
    const std::array<Spot, 3> head{
        tip, Spot{tip.x - kHead * unit.x - kHead / 2 * unit.y, tip.y - kHead * unit.y + kHead / 2 * unit.x},
        Spot{tip.x - kHead * unit.x + kHead / 2 * unit.y, tip.y - kHead * unit.y - kHead / 2 * unit.x}};
    for (const std::vector<Spot>& part : clipped_line(std::array{at, tip}, view.area(), 2)) {
        page.line(part, "class=\"arrow\" stroke=\"#333333\" stroke-width=\"1.6\"");
    }
    if (std::all_of(head.begin(), head.end(), [&](const Spot& spot) { return view.area().has(spot); })) {
        page.outline(head, "fill=\"#333333\"");
    }
}

void draw_cone(Page& page, const MapView& view, const SceneObject& object, const handover::Pose& pose) {
    constexpr int kRim = 24;
    constexpr double kLength_px = 70;
    constexpr double kWidest = 170;
    const double half = handover::radians_of(std::clamp(object.cone_angle, 0.0, kWidest)) / 2;
    const double length = kLength_px * view.space().units_per_px;
    const Vector look = view_of(pose);
    // Two directions across the view, from angles as a camera's.
    const double h = handover::radians_of(pose.heading);
    const double p = handover::radians_of(pose.pitch);
    const Vector right{std::cos(h), 0, std::sin(h)};
    const Vector up{std::sin(p) * std::sin(h), std::cos(p), -std::sin(p) * std::cos(h)};
    std::vector<Spot> spots{view.spot_of(pose.position)};
    for (int i = 0; i < kRim; ++i) {
        const double around = i * 2 * std::numbers::pi / kRim;
        Vector rim = pose.position;
        for (std::size_t axis = 0; axis < rim.size(); ++axis) {
            rim[axis] +=
                length * (std::cos(half) * look[axis] +
                          std::sin(half) * (std::cos(around) * right[axis] + std::sin(around) * up[axis]));
        }
        spots.push_back(view.spot_of(rim));
    }
    if (const std::vector<Spot> outline = clipped_outline(spots, view.area()); outline.size() > 2) {
        page.outline(outline,
                     "class=\"cone\" fill-opacity=\"0.35\" stroke=\"#806000\" stroke-width=\"0.9\" "
                     "stroke-dasharray=\"4 2\" " +
                         attribute("fill", light_colour(object)));
    }
}

}  // namespace plan
