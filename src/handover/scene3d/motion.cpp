#include "handover/scene3d/motion.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace handover {
namespace {

// Enough for every frame of three hours, and half an hour's at eighths. Beyond it, a scene asks for more than
// anyone looks at, and the rest is told as too fast.
constexpr std::size_t kMostPoses = 1'500'000;
// The smallest part of a frame at which a pose is added.
constexpr double kLeastStep_frames = 1.0 / 32;
// A turn beyond this is divided, whatever the curve: at chosen moments, a curve that misses whole turns looks
// right.
constexpr double kMostTurn_degrees = 90;

double short_way(double degrees) {
    return std::remainder(degrees, 360.0);
}

bool is_finite(const ObjectKey& key) {
    const double numbers[] = {key.position[0], key.position[1], key.position[2], key.heading,
                              key.pitch,       key.bank,        key.view_angle};
    return std::all_of(std::begin(numbers), std::end(numbers), [](double one) { return std::isfinite(one); });
}

std::array<double, 3> view_of(const TimedPose& pose) {
    constexpr double kRadians = 3.14159265358979323846 / 180;
    const double h = pose.heading * kRadians;
    const double p = pose.pitch * kRadians;
    return {-std::cos(p) * std::sin(h), std::sin(p), std::cos(p) * std::cos(h)};
}

// The angle between two views, precise for small ones.
double turn_degrees(const TimedPose& a, const TimedPose& b) {
    constexpr double kDegrees = 180 / 3.14159265358979323846;
    const auto va = view_of(a);
    const auto vb = view_of(b);
    const double apart = std::hypot(va[0] - vb[0], va[1] - vb[1], va[2] - vb[2]);
    return 2 * std::asin(std::min(1.0, apart / 2)) * kDegrees;
}

bool is_cut(const TimedPose& a, const TimedPose& b, double cut_angle_degrees) {
    return turn_degrees(a, b) > cut_angle_degrees || std::abs(b.bank - a.bank) > cut_angle_degrees;
}

TimedPose pose_of(const ObjectKey& key) {
    return {static_cast<double>(key.frame),
            key.position,
            key.heading,
            key.pitch,
            key.bank,
            key.view_angle,
            false};
}

// `next` with the angles that follow on `last`, which was continued from `written`.
TimedPose continued_pose(const TimedPose& last, const TimedPose& written, const TimedPose& next,
                         bool neighbours) {
    const auto way = [neighbours](double from, double to) {
        const double straight = to - from;
        return neighbours ? short_way(straight) : straight;
    };
    TimedPose pose = next;
    pose.heading = last.heading + way(written.heading, next.heading);
    pose.pitch = last.pitch + way(written.pitch, next.pitch);
    pose.bank = last.bank + way(written.bank, next.bank);
    return pose;
}

double turned(const TimedPose& a, const TimedPose& b) {
    return std::abs(b.heading - a.heading) + std::abs(b.pitch - a.pitch) + std::abs(b.bank - a.bank);
}

// Adds what lies between the last pose and `end`, and `end`.
class Divider {
  public:
    Divider(Motion& motion, const IsClose& is_close) : motion_(motion), is_close_(is_close) {}

    void go_to(const TimedPose& end) {
        waiting_.push_back(end);
        while (!waiting_.empty()) {
            const TimedPose& last = motion_.poses.back();
            const TimedPose next = waiting_.back();
            if (turned(last, next) <= kMostTurn_degrees && is_close_(last, next)) {
                take();
            } else if (can_divide(next.frame - last.frame)) {
                const double middle = middle_of(last.frame, next.frame);
                waiting_.push_back(between(last, next, (middle - last.frame) / (next.frame - last.frame)));
                waiting_.back().frame = middle;
            } else {
                if (motion_.too_fast++ == 0) {
                    motion_.first_too_fast = static_cast<std::int64_t>(std::floor(last.frame));
                }
                take();
            }
        }
    }

  private:
    void take() {
        motion_.poses.push_back(waiting_.back());
        waiting_.pop_back();
    }

    [[nodiscard]] bool can_divide(double span) const {
        return span > kLeastStep_frames && motion_.poses.size() + waiting_.size() < kMostPoses;
    }

    // A whole frame where there is one between the two.
    static double middle_of(double a, double b) {
        const double middle = a + (b - a) / 2;
        const double whole = std::round(middle);
        return whole > a && whole < b ? whole : middle;
    }

    Motion& motion_;
    const IsClose& is_close_;
    std::vector<TimedPose> waiting_;  // nearest last
};

// The slopes of the straight lines from one pose that pass all others so far.
class Cone {
  public:
    // Whether the line to `to` is among them.
    [[nodiscard]] bool holds(const TimedPose& from, const TimedPose& to,
                             const PoseNumbers& numbers_of) const {
        const auto a = numbers_of(from);
        const auto b = numbers_of(to);
        const double span = to.frame - from.frame;
        for (std::size_t i = 0; i < a.size(); ++i) {
            const double slope = span > 0 ? (b[i] - a[i]) / span : 0;
            if (!(slope >= least_[i] && slope <= most_[i])) {
                return false;
            }
        }
        return true;
    }

    void narrow(const TimedPose& from, const TimedPose& passed, const PoseNumbers& numbers_of) {
        const auto a = numbers_of(from);
        const auto b = numbers_of(passed);
        const double span = passed.frame - from.frame;
        for (std::size_t i = 0; i < a.size(); ++i) {
            const double allowed = std::ldexp(std::abs(b[i]), -24);
            least_[i] = std::max(least_[i], (b[i] - allowed - a[i]) / span);
            most_[i] = std::min(most_[i], (b[i] + allowed - a[i]) / span);
        }
    }

  private:
    std::array<double, 3> least_{-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
    std::array<double, 3> most_{HUGE_VAL, HUGE_VAL, HUGE_VAL};
};

}  // namespace

TimedPose between(const TimedPose& a, const TimedPose& b, double part) {
    const auto mix = [part](double from, double to) { return from + part * (to - from); };
    TimedPose pose;
    pose.frame = mix(a.frame, b.frame);
    for (std::size_t i = 0; i < 3; ++i) {
        pose.position[i] = mix(a.position[i], b.position[i]);
    }
    pose.heading = mix(a.heading, b.heading);
    pose.pitch = mix(a.pitch, b.pitch);
    pose.bank = mix(a.bank, b.bank);
    pose.view_angle = mix(a.view_angle, b.view_angle);
    return pose;
}

Motion motion_of(const SceneObject& object, double cut_angle_degrees, const IsClose& is_close) {
    Motion motion;
    Divider divider(motion, is_close);
    TimedPose written;
    for (const ObjectKey& key : object.keys) {
        if (!is_finite(key)) {
            ++motion.left_out;
            continue;
        }
        const TimedPose next = pose_of(key);
        if (motion.poses.empty()) {
            motion.poses.push_back(next);
        } else {
            const TimedPose last = motion.poses.back();
            const bool neighbours = next.frame - written.frame == 1;
            const TimedPose continued = continued_pose(last, written, next, neighbours);
            if (neighbours && is_cut(last, continued, cut_angle_degrees)) {
                motion.poses.push_back(last);
                motion.poses.back().frame = next.frame;
                motion.poses.back().before_cut = true;
                motion.poses.push_back(continued);
            } else {
                divider.go_to(continued);
            }
        }
        written = next;
    }
    return motion;
}

Motion from_frame(Motion motion, double frame) {
    std::vector<TimedPose>& poses = motion.poses;
    const auto after = std::upper_bound(poses.begin(), poses.end(), frame,
                                        [](double at, const TimedPose& pose) { return at < pose.frame; });
    if (after == poses.begin()) {
        return motion;
    }
    TimedPose first = *(after - 1);
    if (after != poses.end()) {
        first = after->before_cut
                    ? first
                    : between(first, *after, (frame - first.frame) / (after->frame - first.frame));
    }
    first.frame = frame;
    first.before_cut = false;
    poses.erase(poses.begin(), after - 1);
    poses.front() = first;
    return motion;
}

std::vector<std::size_t> needed_poses(const std::vector<TimedPose>& poses, const PoseNumbers& numbers_of) {
    std::vector<std::size_t> needed;
    std::size_t anchor = 0;
    Cone cone;
    for (std::size_t i = 0; i < poses.size(); ++i) {
        const bool must = i == 0 || i + 1 == poses.size() || poses[i].before_cut || poses[i - 1].before_cut;
        // The pose itself must lie on the line as well as all those that it passes.
        const bool reachable = i == 0 || cone.holds(poses[anchor], poses[i], numbers_of);
        if (!reachable && needed.back() != i - 1) {
            needed.push_back(i - 1);
            anchor = i - 1;
            cone = Cone();
        }
        if (must) {
            needed.push_back(i);
            anchor = i;
            cone = Cone();
        } else {
            cone.narrow(poses[anchor], poses[i], numbers_of);
        }
    }
    return needed;
}

}  // namespace handover
