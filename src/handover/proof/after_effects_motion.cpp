#include "handover/proof/after_effects_motion.h"

#include <algorithm>
#include <numbers>

namespace proof {
namespace {

using handover::Interpolation;
using handover::Property;
using handover::Track;

// The handles of a curve are this part of the way from the key before to the key after.
constexpr double kHandlePart = 1.0 / 6;

// A curve is followed in so many straight steps: with them a bend is right to 1/65536 of itself.
constexpr int kCurveSteps = 256;

// Where a frame is among the keys of a track.
struct TrackPlace {
    std::size_t key = 0;  ///< the key before
    double part = 0;      ///< of the way to the next; 0 if nothing moves
};

TrackPlace place_in(const Track& track, double frame) {
    const auto after = std::upper_bound(track.frames.begin(), track.frames.end(), frame);
    if (after == track.frames.begin() || after == track.frames.end()) {
        return {after == track.frames.begin() ? 0 : track.frames.size() - 1, 0};
    }
    const auto key = static_cast<std::size_t>(after - track.frames.begin()) - 1;
    const bool holds = track.interpolation == Interpolation::hold ||
                       std::binary_search(track.holds.begin(), track.holds.end(), key);
    return {key, holds ? 0 : (frame - track.frames[key]) / (track.frames[key + 1] - track.frames[key])};
}

LayerValue value_of_key(const Track& track, std::size_t key) {
    const std::size_t count = handover::component_count(track.property);
    LayerValue value{};
    for (std::size_t i = 0; i < count && key * count + i < track.values.size(); ++i) {
        value[i] = track.values[key * count + i];
    }
    return value;
}

LayerValue sum(const LayerValue& a, double factor, const LayerValue& b) {
    return {a[0] + factor * b[0], a[1] + factor * b[1], a[2] + factor * b[2]};
}

LayerValue straight(const LayerValue& a, const LayerValue& b, double part) {
    return sum(a, part, sum(b, -1, a));
}

double length_between(const LayerValue& a, const LayerValue& b) {
    const LayerValue way = sum(b, -1, a);
    return std::hypot(way[0], way[1], way[2]);
}

// The part of the curve from `b` to `c`, with `a` before and `d` after them, at constant speed.
LayerValue on_curve(const LayerValue& a, const LayerValue& b, const LayerValue& c, const LayerValue& d,
                    double part) {
    const LayerValue leaving = sum(b, kHandlePart, sum(c, -1, a));
    const LayerValue arriving = sum(c, -kHandlePart, sum(d, -1, b));
    std::array<LayerValue, kCurveSteps + 1> points;
    std::array<double, kCurveSteps + 1> lengths;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double t = static_cast<double>(i) / kCurveSteps;
        const double s = 1 - t;
        LayerValue point{};
        point = sum(point, s * s * s, b);
        point = sum(point, 3 * s * s * t, leaving);
        point = sum(point, 3 * s * t * t, arriving);
        points[i] = sum(point, t * t * t, c);
        lengths[i] = i == 0 ? 0 : lengths[i - 1] + length_between(points[i - 1], points[i]);
    }
    const double done = part * lengths.back();
    const auto next = static_cast<std::size_t>(
        std::upper_bound(lengths.begin() + 1, lengths.end() - 1, done) - lengths.begin());
    const double step = lengths[next] - lengths[next - 1];
    return straight(points[next - 1], points[next], step > 0 ? (done - lengths[next - 1]) / step : 0);
}

LayerValue on_track_curve(const Track& track, const TrackPlace& place) {
    const LayerValue b = value_of_key(track, place.key);
    const LayerValue c = value_of_key(track, place.key + 1);
    const LayerValue a = place.key > 0 ? value_of_key(track, place.key - 1) : b;
    const LayerValue d = place.key + 2 < track.frames.size() ? value_of_key(track, place.key + 2) : c;
    return on_curve(a, b, c, d, place.part);
}

bool is_spatial(Property property) {
    return property == Property::position || property == Property::anchor;
}

TurnMatrix turn_of(const LayerValue& degrees) {
    return product(product(turn_about(0, degrees[0]), turn_about(1, degrees[1])), turn_about(2, degrees[2]));
}

// `to` with whole turns added so that each angle is at most half a turn from that of `from`.
LayerValue nearest_turn(const LayerValue& from, const LayerValue& to) {
    LayerValue near{};
    for (std::size_t i = 0; i < near.size(); ++i) {
        near[i] = from[i] + std::remainder(to[i] - from[i], 360.0);
    }
    return near;
}

TurnMatrix transposed(const TurnMatrix& m) {
    TurnMatrix t{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            t[row][column] = m[column][row];
        }
    }
    return t;
}

// A turn by `angle` about a unit axis.
TurnMatrix turn_about_axis(const LayerValue& axis, double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    TurnMatrix m{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            m[row][column] = (1 - c) * axis[row] * axis[column] + (row == column ? c : 0);
        }
    }
    for (std::size_t i = 0; i < 3; ++i) {
        const std::size_t j = (i + 1) % 3;
        const std::size_t k = (i + 2) % 3;
        m[k][j] += s * axis[i];
        m[j][k] -= s * axis[i];
    }
    return m;
}

// A part of the shortest turn from one matrix to another.
TurnMatrix part_of_turn(const TurnMatrix& from, const TurnMatrix& to, double part) {
    const TurnMatrix way = product(to, transposed(from));
    LayerValue axis{way[2][1] - way[1][2], way[0][2] - way[2][0], way[1][0] - way[0][1]};
    const double twice_sine = std::hypot(axis[0], axis[1], axis[2]);
    const double angle = std::atan2(twice_sine, way[0][0] + way[1][1] + way[2][2] - 1);
    if (twice_sine < 1e-12) {
        if (angle < 1) {
            return part < 0.5 ? from : to;
        }
        // Half a turn: (way + 1) / 2 is the product of the axis with itself.
        std::size_t largest = 0;
        for (std::size_t i = 1; i < 3; ++i) {
            largest = way[i][i] > way[largest][largest] ? i : largest;
        }
        const double own = std::sqrt((way[largest][largest] + 1) / 2);
        for (std::size_t i = 0; i < 3; ++i) {
            axis[i] = i == largest ? own : way[i][largest] / 2 / own;
        }
    } else {
        axis = sum({}, 1 / twice_sine, axis);
    }
    return product(turn_about_axis(axis, part * angle), from);
}

}  // namespace

TurnMatrix product(const TurnMatrix& a, const TurnMatrix& b) {
    TurnMatrix c{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            for (std::size_t i = 0; i < 3; ++i) {
                c[row][column] += a[row][i] * b[i][column];
            }
        }
    }
    return c;
}

TurnMatrix turn_about(std::size_t axis, double degrees) {
    const double angle = degrees * std::numbers::pi / 180;
    LayerValue unit{};
    unit[axis] = 1;
    return turn_about_axis(unit, angle);
}

const Track* track_of(const handover::Layer& layer, Property property) {
    const auto found = std::find_if(layer.tracks.begin(), layer.tracks.end(), [&](const Track& track) {
        return track.property == property && !track.values.empty();
    });
    return found == layer.tracks.end() ? nullptr : &*found;
}

LayerValue value_at(const Track* track, double frame, const LayerValue& fallback, bool curves) {
    if (track == nullptr) {
        return fallback;
    }
    if (track->frames.empty()) {
        return value_of_key(*track, 0);
    }
    const TrackPlace place = place_in(*track, frame);
    if (place.part == 0) {
        return value_of_key(*track, place.key);
    }
    if (curves && track->interpolation == Interpolation::host && is_spatial(track->property)) {
        return on_track_curve(*track, place);
    }
    return straight(value_of_key(*track, place.key), value_of_key(*track, place.key + 1), place.part);
}

TurnMatrix orientation_at(const Track* track, double frame, bool curves) {
    if (track == nullptr) {
        return turn_of({});
    }
    const TrackPlace place = track->frames.empty() ? TrackPlace{} : place_in(*track, frame);
    const LayerValue b = value_of_key(*track, place.key);
    if (place.part == 0) {
        return turn_of(b);
    }
    const LayerValue c = nearest_turn(b, value_of_key(*track, place.key + 1));
    if (!curves || track->interpolation != Interpolation::host) {
        return part_of_turn(turn_of(b), turn_of(c), place.part);
    }
    const LayerValue a = place.key > 0 ? nearest_turn(b, value_of_key(*track, place.key - 1)) : b;
    const LayerValue d =
        place.key + 2 < track->frames.size() ? nearest_turn(c, value_of_key(*track, place.key + 2)) : c;
    return turn_of(on_curve(a, b, c, d, place.part));
}

}  // namespace proof
