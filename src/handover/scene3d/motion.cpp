#include "handover/scene3d/motion.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "handover/line_slopes.h"

namespace handover {
namespace {

// Enough for every frame of three hours, and for minutes at the smallest step. What is left beyond it counts
// as too fast.
constexpr std::size_t kMostPoses = 1'500'000;
// The smallest part of a frame at which a pose is added.
constexpr double kLeastStep_frames = 1.0 / 32;
// A larger turn is always divided: a curve that leaves out whole turns looks right at the moments that are
// compared.
constexpr double kMostTurn_degrees = 90;

bool is_finite(const ObjectKey& key) {
    const double numbers[] = {key.position[0], key.position[1], key.position[2], key.heading,
                              key.pitch,       key.bank,        key.view_angle};
    return std::all_of(std::begin(numbers), std::end(numbers), [](double one) { return std::isfinite(one); });
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

}  // namespace

TimedPose between(const TimedPose& a, const TimedPose& b, double part) {
    return {pose_between(a, b, part), a.frame + part * (b.frame - a.frame)};
}

Motion motion_of(const SceneObject& object, double cut_angle_degrees, const IsClose& is_close) {
    Motion motion;
    const auto is_left_out = [](const ObjectKey& key) { return !is_finite(key); };
    SceneObject finite;
    motion.left_out =
        static_cast<std::size_t>(std::count_if(object.keys.begin(), object.keys.end(), is_left_out));
    if (motion.left_out > 0) {
        finite = object;
        std::erase_if(finite.keys, is_left_out);
    }
    const MotionPath path(motion.left_out > 0 ? finite : object, true, cut_angle_degrees);
    Divider divider(motion, is_close);
    bool cut = false;
    for (const PathKey& key : path.keys()) {
        const TimedPose next{key.pose, static_cast<double>(key.frame)};
        if (cut) {
            motion.poses.push_back(motion.poses.back());
            motion.poses.back().frame = next.frame;
            motion.poses.back().before_cut = true;
        }
        if (cut || motion.poses.empty()) {
            motion.poses.push_back(next);
        } else {
            divider.go_to(next);
        }
        cut = key.holds;
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
    std::array<double, 3> anchor{};
    double anchor_frame = 0;
    LineSlopes slopes;
    const auto keep = [&](std::size_t pose) {
        needed.push_back(pose);
        anchor = numbers_of(poses[pose]);
        anchor_frame = poses[pose].frame;
        slopes.restart();
    };
    for (std::size_t i = 0; i < poses.size(); ++i) {
        const std::array<double, 3> here = numbers_of(poses[i]);
        // The pose itself must lie on the line as well as all those that it passes.
        if (i > 0 && needed.back() != i - 1 &&
            !slopes.reaches(anchor.data(), here.data(), here.size(), poses[i].frame - anchor_frame)) {
            keep(i - 1);
        }
        const bool must = i == 0 || i + 1 == poses.size() || poses[i].before_cut || poses[i - 1].before_cut;
        if (must) {
            keep(i);
        } else {
            slopes.pass(anchor.data(), here.data(), here.size(), poses[i].frame - anchor_frame, 0);
        }
    }
    return needed;
}

}  // namespace handover
