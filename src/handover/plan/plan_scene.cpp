#include "handover/plan/plan_scene.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace plan {
namespace {

using handover::MotionPath;
using handover::ObjectKind;
using handover::PathKey;
using handover::Pose;
using handover::SceneObject;
using handover::Shot;

bool is_finite(const handover::ObjectKey& key) {
    const std::array<double, 8> numbers{key.position[0], key.position[1],    key.position[2],
                                        key.heading,     key.pitch,          key.bank,
                                        key.view_angle,  key.target_distance};
    return std::all_of(numbers.begin(), numbers.end(), [](double number) { return std::isfinite(number); });
}

// The object with those of its keys that are somewhere.
SceneObject with_finite_keys(const SceneObject& object) {
    SceneObject finite;
    finite.kind = object.kind;
    std::copy_if(object.keys.begin(), object.keys.end(), std::back_inserter(finite.keys), is_finite);
    return finite;
}

double frame_of(const PathKey& key) {
    return static_cast<double>(key.frame);
}

Pose pose_at(const std::vector<PathKey>& keys, double frame) {
    const auto after = std::upper_bound(keys.begin(), keys.end(), frame,
                                        [](double at, const PathKey& key) { return at < frame_of(key); });
    if (after == keys.begin()) {
        return keys.front().pose;
    }
    const PathKey& a = *(after - 1);
    if (after == keys.end() || a.holds) {
        return a.pose;
    }
    return pose_between(a.pose, after->pose, (frame - frame_of(a)) / (frame_of(*after) - frame_of(a)));
}

// Right and up of the picture, both of length 1.
std::array<Vector, 2> picture_axes(const Pose& pose) {
    using handover::radians_of;
    const double h = radians_of(pose.heading);
    const double p = radians_of(pose.pitch);
    const double b = radians_of(pose.bank);
    const Vector right{std::cos(h), 0, std::sin(h)};
    const Vector up{std::sin(p) * std::sin(h), std::cos(p), -std::sin(p) * std::cos(h)};
    std::array<Vector, 2> turned{};
    for (std::size_t i = 0; i < right.size(); ++i) {
        turned[0][i] = right[i] * std::cos(b) - up[i] * std::sin(b);
        turned[1][i] = up[i] * std::cos(b) + right[i] * std::sin(b);
    }
    return turned;
}

Frustum frustum_at(const Shot& shot, double frame, const Pose& pose) {
    constexpr double kHalfTurn = 180;
    Frustum frustum{frame, pose.position, aim_of(pose), {}};
    const double picture_aspect = shot.width_px * shot.pixel_aspect / shot.height_px;
    if (!(pose.view_angle > 0 && pose.view_angle < kHalfTurn) || !(picture_aspect > 0) ||
        !std::isfinite(picture_aspect)) {
        return frustum;
    }
    const double across = pose.target_distance * std::tan(handover::radians_of(pose.view_angle) / 2);
    const double upwards = across / picture_aspect;
    const auto [right, up] = picture_axes(pose);
    constexpr std::array<std::array<int, 2>, 4> kCorners{{{-1, 1}, {1, 1}, {1, -1}, {-1, -1}}};
    for (const auto& [sideways, high] : kCorners) {
        Vector corner = frustum.aim;
        for (std::size_t i = 0; i < corner.size(); ++i) {
            corner[i] += sideways * across * right[i] + high * upwards * up[i];
        }
        frustum.corners.push_back(corner);
    }
    return frustum;
}

// Evenly spaced ones of too many, the first and the last among them.
template <typename Item>
void thin(std::vector<Item>& items, std::size_t most) {
    if (items.size() <= most) {
        return;
    }
    for (std::size_t i = 0; i < most; ++i) {
        const std::size_t kept = i * (items.size() - 1) / (most - 1);
        if (kept != i) {
            items[i] = std::move(items[kept]);
        }
    }
    items.resize(most);
}

class MoverMaker {
  public:
    MoverMaker(const Scene& scene, const Shot& shot, const SceneObject& object, double cut_angle_degrees)
        : scene_(scene), shot_(shot), object_(object), path_(object, true, cut_angle_degrees) {}

    [[nodiscard]] Mover make(std::size_t index) {
        mover_.object = index;
        add_moment(scene_.begin, pose_at(keys(), scene_.begin));
        for (std::size_t i = 0; i < keys().size(); ++i) {
            add_key(i);
        }
        if (scene_.end > scene_.begin) {
            add_moment(scene_.end, pose_at(keys(), scene_.end));
        }
        end_stretch();
        thin(mover_.stretches, kMostMoments);
        thin(mover_.cuts, kMostMoments);
        thin(mover_.keys, kMostMoments);
        thin(mover_.key_positions, kMostMoments);
        if (object_.kind == ObjectKind::camera) {
            add_frusta();
        }
        return std::move(mover_);
    }

  private:
    [[nodiscard]] const std::vector<PathKey>& keys() const { return path_.keys(); }

    [[nodiscard]] bool is_within(double frame) const { return frame >= scene_.begin && frame <= scene_.end; }

    void add_moment(double frame, const Pose& pose) {
        if (stretch_.moments.empty() || stretch_.moments.back().frame < frame) {
            stretch_.moments.push_back({frame, pose});
        }
    }

    void add_key(std::size_t i) {
        const PathKey& key = keys()[i];
        const double frame = frame_of(key);
        if (!is_within(frame)) {
            ++mover_.keys_outside;
            return;
        }
        ++mover_.keys_within;
        mover_.keys.push_back(key.frame);
        mover_.key_positions.push_back(key.pose.position);
        add_moment(frame, key.pose);
        // A cut whose later side is not in the shot is not seen.
        if (key.holds && i + 1 < keys().size() && is_within(frame_of(keys()[i + 1]))) {
            mover_.cuts.push_back({frame, frame_of(keys()[i + 1])});
            end_stretch();
        }
    }

    void end_stretch() {
        if (!stretch_.moments.empty()) {
            thin(stretch_.moments, kMostMoments);
            mover_.stretches.push_back(std::move(stretch_));
            stretch_ = {};
        }
    }

    void add_frusta() {
        constexpr int kParts = 4;
        std::vector<double> frames{scene_.begin, scene_.end};
        for (std::size_t i = 0; i < std::min(mover_.cuts.size(), kMostCutFrusta); ++i) {
            frames.insert(frames.end(), mover_.cuts[i].begin(), mover_.cuts[i].end());
        }
        for (int part = 1; part < kParts; ++part) {
            frames.push_back(std::round(scene_.begin + (scene_.end - scene_.begin) * part / kParts));
        }
        std::sort(frames.begin(), frames.end());
        frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
        for (const double frame : frames) {
            mover_.frusta.push_back(frustum_at(shot_, frame, pose_at(keys(), frame)));
        }
    }

    const Scene& scene_;
    const Shot& shot_;
    const SceneObject& object_;
    MotionPath path_;
    Mover mover_;
    Stretch stretch_;
};

}  // namespace

Vector aim_of(const Pose& pose) {
    const Vector view = view_of(pose);
    Vector aim = pose.position;
    for (std::size_t i = 0; i < aim.size(); ++i) {
        aim[i] += pose.target_distance * view[i];
    }
    return aim;
}

bool Mover::moves() const {
    const Vector& at = first().pose.position;
    return std::any_of(stretches.begin(), stretches.end(), [&](const Stretch& stretch) {
        return std::any_of(stretch.moments.begin(), stretch.moments.end(),
                           [&](const Moment& moment) { return moment.pose.position != at; });
    });
}

Scene scene_of(const handover::Handover& handover, double cut_angle_degrees) {
    Scene scene;
    scene.begin = static_cast<double>(std::min(handover.shot.from, handover.shot.to));
    scene.end = static_cast<double>(std::max(handover.shot.from, handover.shot.to));
    for (std::size_t i = 0; i < handover.objects.size(); ++i) {
        const SceneObject object = with_finite_keys(handover.objects[i]);
        if (object.keys.empty()) {
            if (++scene.without_keys == 1) {
                scene.first_without_key = handover.objects[i].name;
            }
            continue;
        }
        const bool is_camera = object.kind == ObjectKind::camera;
        const bool is_light = object.kind == ObjectKind::light;
        std::vector<Mover>& movers = is_camera ? scene.cameras : is_light ? scene.lights : scene.nulls;
        const std::size_t most = is_camera ? kMostCameras : is_light ? kMostLights : kMostNulls;
        if (movers.size() == most) {
            ++scene.not_drawn;
            continue;
        }
        movers.push_back(MoverMaker(scene, handover.shot, object, cut_angle_degrees).make(i));
    }
    return scene;
}

}  // namespace plan
