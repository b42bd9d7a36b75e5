#include "handover/proof/truth.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace proof {
namespace {

double true_radians(double degrees) {
    return degrees * std::numbers::pi / 180;
}

struct TrueAxes {
    Point right;
    Point up;
    Point view;
};

TrueAxes true_axes(const TruthKey& key) {
    const double h = true_radians(key.angles[0]);
    const double p = true_radians(key.angles[1]);
    const double b = true_radians(key.angles[2]);
    const Point view{-std::cos(p) * std::sin(h), std::sin(p), std::cos(p) * std::cos(h)};
    const Point r{std::cos(h), 0, std::sin(h)};
    const Point u{std::sin(p) * std::sin(h), std::cos(p), -std::sin(p) * std::cos(h)};
    const double c = std::cos(b);
    const double s = std::sin(b);
    return {{r.x * c - u.x * s, r.y * c - u.y * s, r.z * c - u.z * s},
            {u.x * c + r.x * s, u.y * c + r.y * s, u.z * c + r.z * s},
            view};
}

double true_dot(const Point& a, const Point& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

// The same direction as `angle`, at most half a turn from `before`.
double by_short_way(double before, double angle) {
    return before + std::remainder(angle - before, 360.0);
}

bool is_cut(const TruthKey& before, const TruthKey& after, double cut_angle_degrees) {
    const double cosine = true_dot(true_axes(before).view, true_axes(after).view);
    return cosine < std::cos(true_radians(cut_angle_degrees));
}

// The last key at or before a frame; the first key for frames before it.
std::size_t key_before(const TruthObject& object, double frame) {
    const auto after = std::upper_bound(
        object.keys.begin(), object.keys.end(), frame,
        [](double one, const TruthKey& key) { return one < static_cast<double>(key.frame); });
    return after == object.keys.begin() ? 0 : static_cast<std::size_t>(after - object.keys.begin()) - 1;
}

// What part of the way to the next key is done; 0 outside the keys.
double part_of_way(const TruthObject& object, std::size_t key, double frame) {
    const auto start = static_cast<double>(object.keys[key].frame);
    if (key + 1 == object.keys.size() || frame <= start) {
        return 0;
    }
    return (frame - start) / (static_cast<double>(object.keys[key + 1].frame) - start);
}

Point true_between(const Point& a, const Point& b, double part) {
    return {a.x + (b.x - a.x) * part, a.y + (b.y - a.y) * part, a.z + (b.z - a.z) * part};
}

TruthObject true_object(const CSceneObject& object) {
    TruthObject one;
    const auto* const camera = dynamic_cast<const CCamera*>(&object);
    one.kind = camera != nullptr                                 ? TruthObject::Kind::camera
               : dynamic_cast<const CLight*>(&object) != nullptr ? TruthObject::Kind::light
                                                                 : TruthObject::Kind::null;
    one.name = object.name != nullptr ? object.name : "";
    one.keys.reserve(static_cast<std::size_t>(object.keyCount));
    for (A_long i = 0; i < object.keyCount; ++i) {
        const tagKeyFrame& key = *object.keys[i];
        one.keys.push_back({key.frame,
                            {key.position[0], key.position[1], key.position[2]},
                            {key.rotation[0], key.rotation[1], key.rotation[2]},
                            key.fov,
                            key.targetDistance});
    }
    std::stable_sort(one.keys.begin(), one.keys.end(),
                     [](const TruthKey& a, const TruthKey& b) { return a.frame < b.frame; });
    // Of several keys at one frame the last one counts.
    const auto kept = std::unique(one.keys.rbegin(), one.keys.rend(),
                                  [](const TruthKey& a, const TruthKey& b) { return a.frame == b.frame; });
    one.keys.erase(one.keys.begin(), kept.base());
    return one;
}

}  // namespace

TruthCamera::TruthCamera(const tagProjectSettings& settings, const TruthObject& camera,
                         double cut_angle_degrees)
    : settings_(settings), camera_(camera), cut_angle_degrees_(cut_angle_degrees) {}

TruthKey TruthCamera::at(double frame) const {
    const std::size_t i = key_before(camera_, frame);
    const double part = part_of_way(camera_, i, frame);
    TruthKey now = camera_.keys[i];
    if (part == 0) {
        return now;
    }
    TruthKey next = camera_.keys[i + 1];
    if (next.frame - now.frame == 1) {
        if (is_cut(now, next, cut_angle_degrees_)) {
            return now;
        }
        for (std::size_t angle = 0; angle < next.angles.size(); ++angle) {
            next.angles[angle] = by_short_way(now.angles[angle], next.angles[angle]);
        }
    }
    now.position = true_between(now.position, next.position, part);
    for (std::size_t angle = 0; angle < next.angles.size(); ++angle) {
        now.angles[angle] += (next.angles[angle] - now.angles[angle]) * part;
    }
    now.view_angle += (next.view_angle - now.view_angle) * part;
    now.distance += (next.distance - now.distance) * part;
    return now;
}

void TruthCamera::land(double frame, std::span<const Point> points, std::span<Landing> landings) const {
    const TruthKey now = at(frame);
    const TrueAxes axes = true_axes(now);
    const double width = settings_.width;
    const double height = settings_.height;
    const double f = width / 2 / std::tan(true_radians(now.view_angle) / 2);
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Point from_camera{points[i].x - now.position.x, points[i].y - now.position.y,
                                points[i].z - now.position.z};
        const double depth = true_dot(from_camera, axes.view);
        Landing& landing = landings[i];
        landing.x_px = width / 2 + f * true_dot(from_camera, axes.right) / depth;
        landing.y_px = height / 2 - f * double{settings_.aspect} * true_dot(from_camera, axes.up) / depth;
        landing.seen = depth > 0 && std::isfinite(landing.x_px) && std::isfinite(landing.y_px);
    }
}

bool TruthCamera::has_picture(double frame) const {
    const TruthKey now = at(frame);
    const double sum =
        now.position.x + now.position.y + now.position.z + now.angles[0] + now.angles[1] + now.angles[2];
    return std::isfinite(sum) && now.view_angle > 0 && now.view_angle < 180;
}

Point TruthCamera::point_of(double frame, const FramePoint& place) const {
    const TruthKey now = at(frame);
    const TrueAxes axes = true_axes(now);
    const double edge = std::tan(true_radians(now.view_angle) / 2);
    const double right = place.across * edge * place.depth;
    const double up =
        place.up * edge * place.depth * settings_.height / (settings_.width * double{settings_.aspect});
    return {now.position.x + axes.view.x * place.depth + axes.right.x * right + axes.up.x * up,
            now.position.y + axes.view.y * place.depth + axes.right.y * right + axes.up.y * up,
            now.position.z + axes.view.z * place.depth + axes.right.z * right + axes.up.z * up};
}

double TruthCamera::aim_distance(double frame) const {
    return at(frame).distance;
}

std::vector<TruthObject> true_objects(const tagProjectSettings& settings) {
    std::vector<TruthObject> objects;
    // The list has the newest first.
    for (const CListItem* item = settings.objects.head.next; item != &settings.objects.tail;
         item = item->next) {
        objects.push_back(true_object(static_cast<const CSceneObject&>(*item)));
    }
    std::reverse(objects.begin(), objects.end());
    return objects;
}

Point true_position(const TruthObject& object, double frame) {
    const std::size_t i = key_before(object, frame);
    const double part = part_of_way(object, i, frame);
    return part == 0 ? object.keys[i].position
                     : true_between(object.keys[i].position, object.keys[i + 1].position, part);
}

}  // namespace proof
