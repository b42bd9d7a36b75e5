#include "handover/proof/comparison.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "handover/proof/test_points.h"
#include "handover/proof/truth.h"

namespace proof {
namespace {

constexpr std::array kCauses{
    CauseInfo{Cause::stretched_space, "stretched-space",
              "the 3D space is stretched as far as its pixels are wide"},
    CauseInfo{Cause::aspect_cut, "aspect-cut", "the pixel aspect is cut to hundredths"},
    CauseInfo{Cause::curve, "curve-between-keys", "After Effects moves along curves from key to key"},
    CauseInfo{Cause::bank_sense, "bank-sense", "the camera banks to the other side"},
    CauseInfo{Cause::view_angle, "view-angle", "the angle of view does not change with time"},
    CauseInfo{Cause::interpolation, "interpolation", "right at the keys; between them another way"},
    CauseInfo{Cause::undefined, "undefined", "the camera has no sound numbers, as straight up or down"},
    CauseInfo{Cause::rounding, "rounding", "numbers of limited precision"},
    CauseInfo{Cause::unexplained, "unexplained", "none of the known causes"},
};

// What is called rounding: a twentieth of a thousandth of the width of a picture of 2000 pixels.
constexpr double kRounding_px = 1e-3;
// What deviates by less needs no reason.
constexpr double kNothing_px = 1e-6;
// The most nulls that are test points; they are compared by position all the same.
constexpr std::size_t kMostNullPoints = 32;
// Keys of a null at which its position is compared.
constexpr std::size_t kMostNullKeys = 50;

// What the scene says, kept for all targets.
struct TruthAtMoment {
    Moment moment;
    std::vector<Point> points;
    std::vector<Landing> landings;  ///< those that do not count are not seen
};

class CameraComparison {
  public:
    CameraComparison(const tagProjectSettings& settings, const std::vector<TruthObject>& objects,
                     std::size_t object, const ProofOptions& options)
        : settings_(settings), camera_(objects[object]), object_(object), options_(options) {
        for (const TruthObject& one : objects) {
            if (one.kind == TruthObject::Kind::null && !one.keys.empty() && nulls_.size() < kMostNullPoints) {
                nulls_.push_back(&one);
            }
        }
        result.object = object;
        result.name = objects[object].name;
        result.keys = static_cast<std::int64_t>(objects[object].keys.size());
        if (result.keys > 0) {
            look();
        }
    }

    void add(const ProofTarget& target) {
        TargetResult one;
        one.target = target.name;
        one.judged = target.judged;
        if (result.keys == 0) {
            one.problem = "the camera has no keys";
        } else if (const auto camera = target.camera(object_, {}, one.problem)) {
            one.deviation = deviation_of(*camera);
            find_causes(target, one);
        }
        result.targets.push_back(std::move(one));
    }

    // At the frame where a target that is judged, or else any other, is farthest off.
    void take_picture(const std::vector<ProofTarget>& targets) {
        if (truth_.empty()) {
            return;
        }
        const TargetResult* worst = nullptr;
        for (const TargetResult& one : result.targets) {
            if (worst == nullptr || one.deviation.largest.px > worst->deviation.largest.px) {
                worst = &one;
            }
        }
        const TruthAtMoment* at = &truth_.front();
        for (const TruthAtMoment& one : truth_) {
            if (worst != nullptr && one.moment.frame == worst->deviation.largest.frame) {
                at = &one;
            }
        }
        result.picture_frame = at->moment.frame;
        result.picture.clear();
        for (const Landing& landing : at->landings) {
            result.picture.push_back({landing, {}});
        }
        for (const ProofTarget& target : targets) {
            std::vector<Landing> landings(at->points.size());
            std::string problem;
            if (const auto camera = target.camera(object_, {}, problem)) {
                camera->land(at->moment.frame, at->points, landings);
            }
            for (std::size_t i = 0; i < landings.size(); ++i) {
                result.picture[i].landed.push_back(landings[i]);
            }
        }
    }

    void list_points(const std::vector<ProofTarget>& targets) {
        const TruthCamera truth(settings_, camera_, options_.cut_angle_degrees);
        for (const double frame : options_.listed_frames) {
            ListedFrame listed{frame, {}};
            if (result.keys > 0 && truth.has_picture(frame)) {
                std::int64_t left_out = 0;
                const TruthAtMoment at = truth_at(truth, {frame, MomentKind::frame}, left_out);
                for (std::size_t i = 0; i < at.points.size(); ++i) {
                    listed.points.push_back(
                        {point_label(i, options_.grid_points, nulls_), at.points[i], at.landings[i], {}});
                }
                add_landings(targets, at, listed);
            }
            result.listed.push_back(std::move(listed));
        }
    }

    CameraResult result;

  private:
    void add_landings(const std::vector<ProofTarget>& targets, const TruthAtMoment& at,
                      ListedFrame& listed) const {
        for (const ProofTarget& target : targets) {
            std::vector<Landing> landings(at.points.size());
            std::string problem;
            if (const auto camera = target.camera(object_, {}, problem)) {
                camera->land(at.moment.frame, at.points, landings);
            }
            for (std::size_t i = 0; i < landings.size(); ++i) {
                listed.points[i].landed.push_back(landings[i]);
            }
        }
    }

    void look() {
        const TruthCamera truth(settings_, camera_, options_.cut_angle_degrees);
        for (const Moment& moment :
             moments_of(camera_, settings_.from, settings_.to, kMostKeys, result.keys_compared)) {
            if (!truth.has_picture(moment.frame)) {
                ++result.no_picture;
                continue;
            }
            truth_.push_back(truth_at(truth, moment, result.left_out));
        }
        result.moments = static_cast<std::int64_t>(truth_.size());
    }

    // Adds the points that do not count to `left_out`.
    [[nodiscard]] TruthAtMoment truth_at(const TruthCamera& truth, const Moment& moment,
                                         std::int64_t& left_out) const {
        TruthAtMoment one{moment, test_points(truth, moment.frame, options_.grid_points, nulls_), {}};
        one.landings.resize(one.points.size());
        truth.land(moment.frame, one.points, one.landings);
        for (Landing& landing : one.landings) {
            if (!is_compared(landing, settings_.width, settings_.height)) {
                landing.seen = false;
                ++left_out;
            }
        }
        return one;
    }

    // Corners are computed, too, and miss themselves by rounding.
    [[nodiscard]] bool is_within_frame(const Landing& landing) const {
        return std::abs(landing.x_px - settings_.width / 2.0) <= settings_.width / 2.0 + kNothing_px &&
               std::abs(landing.y_px - settings_.height / 2.0) <= settings_.height / 2.0 + kNothing_px;
    }

    [[nodiscard]] Deviation deviation_of(const Projector& camera) const {
        Deviation deviation;
        double sum = 0;
        std::vector<Landing> landings;
        for (const TruthAtMoment& truth : truth_) {
            landings.assign(truth.points.size(), {});
            camera.land(truth.moment.frame, truth.points, landings);
            for (std::size_t i = 0; i < landings.size(); ++i) {
                if (!truth.landings[i].seen) {
                    continue;
                }
                if (!landings[i].seen) {
                    ++deviation.lost;
                    continue;
                }
                ++deviation.compared;
                const double px = std::hypot(landings[i].x_px - truth.landings[i].x_px,
                                             landings[i].y_px - truth.landings[i].y_px);
                sum += px;
                double& of_kind = truth.moment.kind == MomentKind::key     ? deviation.at_keys_px
                                  : truth.moment.kind == MomentKind::frame ? deviation.at_frames_px
                                                                           : deviation.between_frames_px;
                of_kind = std::max(of_kind, px);
                if (is_within_frame(truth.landings[i])) {
                    deviation.in_frame_px = std::max(deviation.in_frame_px, px);
                }
                if (px > deviation.largest.px || deviation.compared == 1) {
                    deviation.largest = {px, truth.moment.frame, point_label(i, options_.grid_points, nulls_),
                                         truth.landings[i], landings[i]};
                }
            }
        }
        deviation.mean_px = deviation.compared > 0 ? sum / static_cast<double>(deviation.compared) : 0;
        return deviation;
    }

    // Takes away one suspect after the other, always the one without which the least is left, and sees what
    // becomes of the distance. What no suspect explains is judged by where it occurs.
    void find_causes(const ProofTarget& target, TargetResult& result_of_target) const {
        Deviation now = result_of_target.deviation;
        std::set<Cause> without;
        std::vector<Cause> suspects = target.suspects;
        if (now.lost > 0) {
            result_of_target.causes.push_back({Cause::undefined, HUGE_VAL, now.largest.px});
        }
        while (now.largest.px > kNothing_px && !suspects.empty()) {
            Deviation best;
            auto best_suspect = suspects.end();
            for (auto suspect = suspects.begin(); suspect != suspects.end(); ++suspect) {
                std::set<Cause> fewer = without;
                fewer.insert(*suspect);
                std::string problem;
                const auto camera = target.camera(object_, fewer, problem);
                if (camera == nullptr) {
                    continue;
                }
                const Deviation rest = deviation_of(*camera);
                // A cause explains a deviation only if a good part of it goes away.
                if (rest.mean_px < 0.9 * now.mean_px && rest.largest.px < now.largest.px &&
                    rest.lost <= now.lost &&
                    (best_suspect == suspects.end() || rest.mean_px < best.mean_px)) {
                    best = rest;
                    best_suspect = suspect;
                }
            }
            if (best_suspect == suspects.end()) {
                break;
            }
            result_of_target.causes.push_back({*best_suspect, now.largest.px, best.largest.px});
            without.insert(*best_suspect);
            suspects.erase(best_suspect);
            now = best;
        }
        if (now.largest.px > kNothing_px) {
            const Cause rest = now.largest.px <= kRounding_px   ? Cause::rounding
                               : now.at_keys_px <= kRounding_px ? Cause::interpolation
                                                                : Cause::unexplained;
            result_of_target.causes.push_back({rest, now.largest.px, 0});
        }
    }

    const tagProjectSettings& settings_;
    const TruthObject& camera_;
    std::size_t object_;
    ProofOptions options_;
    std::vector<const TruthObject*> nulls_;
    std::vector<TruthAtMoment> truth_;
};

NullResult compare_null(const tagProjectSettings& settings, const TruthObject& null, std::size_t object,
                        const std::vector<ProofTarget>& targets) {
    NullResult result;
    result.object = object;
    result.name = null.name;
    std::int64_t keys_taken = 0;
    const std::vector<Moment> moments =
        moments_of(null, settings.from, settings.to, kMostNullKeys, keys_taken);
    for (const ProofTarget& target : targets) {
        std::optional<double> largest;
        double at = settings.from;
        for (const Moment& moment : moments) {
            const std::optional<Point> position = target.position(object, moment.frame);
            if (!position || moment.kind == MomentKind::between_frames) {
                continue;
            }
            const Point truth = true_position(null, moment.frame);
            const double distance =
                std::hypot(position->x - truth.x, position->y - truth.y, position->z - truth.z);
            if (!largest || distance > *largest) {
                largest = distance;
                at = moment.frame;
            }
        }
        result.distances.push_back(largest);
        result.frames.push_back(at);
    }
    return result;
}

}  // namespace

const CauseInfo& info_of(Cause cause) {
    return kCauses[static_cast<std::size_t>(cause)];
}

const NullResult* ProofResult::worst_null(std::size_t target) const {
    const NullResult* worst = nullptr;
    for (const NullResult& null : nulls) {
        if (null.distances[target] &&
            (worst == nullptr || *null.distances[target] > *worst->distances[target])) {
            worst = &null;
        }
    }
    return worst;
}

double TargetResult::judged_px() const {
    return std::max(deviation.at_keys_px, deviation.at_frames_px);
}

bool TargetResult::meets_goal() const {
    return problem.empty() && deviation.lost == 0 && judged_px() <= kGoal_px;
}

bool ProofResult::meets_goal() const {
    return std::all_of(cameras.begin(), cameras.end(), [](const CameraResult& camera) {
        return camera.keys == 0 ||
               std::all_of(camera.targets.begin(), camera.targets.end(),
                           [](const TargetResult& one) { return !one.judged || one.meets_goal(); });
    });
}

ProofResult compare(const tagProjectSettings& settings, const std::vector<ProofTarget>& targets,
                    const ProofOptions& options) {
    ProofResult result;
    for (const ProofTarget& target : targets) {
        result.targets.push_back(target.name);
    }
    const std::vector<TruthObject> objects = true_objects(settings);
    for (std::size_t i = 0; i < objects.size(); ++i) {
        if (objects[i].kind == TruthObject::Kind::camera) {
            CameraComparison comparison(settings, objects, i, options);
            for (const ProofTarget& target : targets) {
                comparison.add(target);
            }
            comparison.take_picture(targets);
            comparison.list_points(targets);
            result.cameras.push_back(std::move(comparison.result));
        } else if (objects[i].kind == TruthObject::Kind::null && !objects[i].keys.empty()) {
            ++result.nulls_in_scene;
            if (result.nulls.size() < kMostNulls) {
                result.nulls.push_back(compare_null(settings, objects[i], i, targets));
            }
        }
    }
    return result;
}

}  // namespace proof
