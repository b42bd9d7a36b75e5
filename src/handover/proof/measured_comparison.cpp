#include "handover/proof/measured_comparison.h"

#include <algorithm>
#include <cmath>

#include "handover/proof/measuring_plan.h"
#include "handover/proof/truth.h"

namespace proof {
namespace {

// The landings of one camera in one project, as the plan counts them: those that the table lacks are not
// seen.
using CameraLandings = std::vector<std::vector<Landing>>;

CameraLandings landings_in(const MeasuredTable& table, const handover::Measuring& plan, std::size_t camera,
                           bool corrected) {
    CameraLandings landings;
    const auto& moments = plan.cameras[camera].moments;
    for (std::size_t moment = 0; moment < moments.size(); ++moment) {
        auto& of_moment = landings.emplace_back(moments[moment].points.size());
        for (std::size_t point = 0; point < of_moment.size(); ++point) {
            const auto row = table.points.find({corrected, camera, moment, point});
            if (row != table.points.end() && row->second.value) {
                of_moment[point] = {(*row->second.value)[0], (*row->second.value)[1], true};
            }
        }
    }
    return landings;
}

double distance_px(const Landing& a, const Landing& b) {
    return std::hypot(a.x_px - b.x_px, a.y_px - b.y_px);
}

void compare_with_truth(const handover::MeasuredCamera& camera, const CameraLandings& truth,
                        const CameraLandings& measured, MeasuredTarget& result) {
    double sum = 0;
    for (std::size_t moment = 0; moment < truth.size(); ++moment) {
        for (std::size_t point = 0; point < truth[moment].size(); ++point) {
            if (!truth[moment][point].seen) {
                continue;
            }
            if (!measured[moment][point].seen) {
                ++result.missing;
                continue;
            }
            const double px = distance_px(truth[moment][point], measured[moment][point]);
            sum += px;
            if (++result.compared == 1 || px > result.largest_px) {
                result.largest_px = px;
                result.frame = camera.moments[moment].frame;
                result.truth = truth[moment][point];
                result.landed = measured[moment][point];
            }
        }
    }
    result.mean_px = result.compared > 0 ? sum / static_cast<double>(result.compared) : 0;
}

ModelDistance distance_from(const ProofTarget& model, const handover::MeasuredCamera& camera,
                            const CameraLandings& truth, const CameraLandings& measured) {
    ModelDistance result{model.name, 0};
    std::string problem;
    const auto projector = model.camera(camera.object, {}, problem);
    if (projector == nullptr) {
        result.largest_px = HUGE_VAL;
        return result;
    }
    for (std::size_t moment = 0; moment < truth.size(); ++moment) {
        std::vector<Point> points;
        for (const auto& point : camera.moments[moment].points) {
            points.push_back({point[0], point[1], point[2]});
        }
        std::vector<Landing> landings(points.size());
        projector->land(camera.moments[moment].frame, points, landings);
        for (std::size_t point = 0; point < points.size(); ++point) {
            if (truth[moment][point].seen && measured[moment][point].seen) {
                const double px =
                    landings[point].seen ? distance_px(landings[point], measured[moment][point]) : HUGE_VAL;
                result.largest_px = std::max(result.largest_px, px);
            }
        }
    }
    return result;
}

}  // namespace

bool MeasuredTarget::meets_goal() const {
    return missing == 0 && largest_px <= kGoal_px;
}

bool MeasuredResult::meets_goal() const {
    return std::all_of(cameras.begin(), cameras.end(), [](const MeasuredCameraResult& camera) {
        return std::all_of(camera.targets.begin(), camera.targets.end(),
                           [](const MeasuredTarget& one) { return !one.judged || one.meets_goal(); });
    });
}

bool MeasuredResult::is_as_written() const {
    return std::none_of(answers.begin(), answers.end(),
                        [](const QuestionAnswer& answer) { return answer.contradicts; });
}

TableRefusal unfit(const MeasuredTable& table, const handover::Measuring& plan) {
    constexpr std::size_t kSceneLine = 2;
    constexpr std::size_t kAskedLine = 3;
    if (table.scene != plan.scene) {
        return {kSceneLine, "the table belongs to another scene: its id is not " + plan.scene};
    }
    if (table.asked != plan.sum) {
        return {
            kAskedLine,
            "the scene or this program has changed since the script was written: write it and measure again"};
    }
    for (const auto& [place, row] : table.points) {
        const bool exists = place.camera < plan.cameras.size() &&
                            place.moment < plan.cameras[place.camera].moments.size() &&
                            place.point < plan.cameras[place.camera].moments[place.moment].points.size();
        if (!exists) {
            return {row.line, "there is no point " + std::to_string(place.point) + " of moment " +
                                  std::to_string(place.moment) + " of camera " +
                                  std::to_string(place.camera) + " in this scene"};
        }
    }
    return {};
}

MeasuredResult judge(const MeasuredTable& table, const handover::Measuring& plan,
                     const tagProjectSettings& settings, const std::vector<ProofTarget>& models) {
    MeasuredResult result;
    const std::vector<TruthObject> objects = true_objects(settings);
    const auto truth = true_landings(settings, plan);
    for (std::size_t i = 0; i < plan.cameras.size(); ++i) {
        const handover::MeasuredCamera& camera = plan.cameras[i];
        MeasuredCameraResult& one = result.cameras.emplace_back();
        one.name = objects[camera.object].name;
        one.moments = static_cast<std::int64_t>(camera.moments.size());
        for (const bool corrected : {true, false}) {
            MeasuredTarget& target = one.targets.emplace_back();
            target.target = corrected ? "corrected" : "imported";
            target.judged = corrected;
            const CameraLandings measured = landings_in(table, plan, i, corrected);
            compare_with_truth(camera, truth[i], measured, target);
            for (const ProofTarget& model : models) {
                if (target.compared > 0 && model.name.starts_with(target.target)) {
                    target.models.push_back(distance_from(model, camera, truth[i], measured));
                }
            }
        }
    }
    result.answers = answers_in(table, plan.texture);
    return result;
}

}  // namespace proof
