#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "cli/handover/proof_run.h"
#include "cli/report/diagnostic_json.h"
#include "cli/scene/written_number.h"
#include "cli/terminal/text_table.h"
#include "embedded/json_values.h"
#include "text/printable.h"

namespace cli {
namespace {

using ProofJson = nlohmann::ordered_json;

constexpr int kProofSchema = 1;

std::string pixels_text(double px) {
    return distance_text(px, "inf");
}

std::string causes_text(const proof::TargetResult& target) {
    if (!target.problem.empty()) {
        return target.problem;
    }
    std::string text;
    for (const proof::CauseFound& cause : target.causes) {
        text += (text.empty() ? "" : "; ") + std::string(info_of(cause.cause).name);
        if (std::isfinite(cause.before_px)) {
            text += ' ' + pixels_text(std::abs(cause.before_px - cause.after_px));
        }
    }
    return text;
}

Ink ink_of(const proof::TargetResult& target) {
    return !target.judged ? Ink::plain : target.meets_goal() ? Ink::green : Ink::red;
}

void add_target(TextTable& table, const proof::TargetResult& target) {
    const proof::Deviation& deviation = target.deviation;
    const bool any = deviation.compared > 0;
    const auto pixels = [&](double px) { return any ? pixels_text(px) : std::string(); };
    table.add({{target.target, ink_of(target)},
               {pixels(target.judged_px()), ink_of(target), true},
               {pixels(deviation.mean_px), Ink::plain, true},
               {pixels(deviation.between_frames_px), Ink::plain, true},
               {any && deviation.largest.px >= kShown_px ? measured_text(deviation.largest.frame) : "",
                Ink::plain, true},
               {deviation.lost > 0 ? std::to_string(deviation.lost) : "", Ink::red, true},
               {causes_text(target)}});
}

std::string camera_text(const proof::CameraResult& camera, const Paint& paint) {
    std::string text = "\n" + paint(Ink::bold, "camera " + text::quoted(camera.name)) + ": " +
                       std::to_string(camera.keys_compared) + " of " + std::to_string(camera.keys) +
                       " keys, " + std::to_string(camera.moments) + " moments";
    if (camera.no_picture > 0) {
        text += ", " + std::to_string(camera.no_picture) + " more without a picture";
    }
    if (camera.left_out > 0) {
        text +=
            "; " + std::to_string(camera.left_out) + " points behind it or far outside its frame left out";
    }
    text += '\n';
    if (camera.keys == 0) {
        return text + "  without keys it says nothing\n";
    }
    TextTable table;
    table.add({{"target"},
               {"pixels", Ink::plain, true},
               {"mean", Ink::plain, true},
               {"between frames", Ink::plain, true},
               {"worst at", Ink::plain, true},
               {"lost", Ink::plain, true},
               {"why"}});
    for (const proof::TargetResult& target : camera.targets) {
        add_target(table, target);
    }
    for (const std::string& line : table.lines(paint)) {
        text += "  " + line + '\n';
    }
    return text;
}

std::string nulls_text(const proof::ProofResult& result, const Paint& paint) {
    if (result.nulls.empty()) {
        return {};
    }
    std::string text = "\n" + paint(Ink::bold, "nulls") +
                       ", by position, in the scene's units: " + std::to_string(result.nulls.size()) +
                       " of " + std::to_string(result.nulls_in_scene) +
                       "; how a null is turned has no truth\n";
    TextTable table;
    table.add({{"target"}, {"units", Ink::plain, true}, {"worst"}});
    for (std::size_t i = 0; i < result.targets.size(); ++i) {
        const proof::NullResult* const worst = result.worst_null(i);
        const auto absent = std::count_if(result.nulls.begin(), result.nulls.end(),
                                          [i](const proof::NullResult& null) { return !null.distances[i]; });
        std::string where;
        if (worst != nullptr && *worst->distances[i] >= kShown_px) {
            where = text::quoted(worst->name) + " at frame " + measured_text(worst->frames[i]);
        }
        if (absent > 0) {
            where += (where.empty() ? "" : "; ") + std::to_string(absent) + " did not arrive";
        }
        table.add({{result.targets[i]},
                   {worst != nullptr ? pixels_text(*worst->distances[i]) : "", Ink::plain, true},
                   {where}});
    }
    for (const std::string& line : table.lines(paint)) {
        text += "  " + line + '\n';
    }
    return text;
}

std::string verdict_text(const ProofRun& run) {
    if (!run.result) {
        return "nothing to compare";
    }
    if (run.result->cameras.empty()) {
        return "no camera, so nothing is seen";
    }
    const std::string goal = measured_text(proof::kGoal_px);
    return run.code == ExitCode::fine
               ? "what is handed over is where the scene has it, within " + goal + " pixels"
               : "what is handed over is more than " + goal + " pixels off, or incomplete";
}

ProofJson landing_json(const proof::Landing& landing) {
    return landing.seen ? ProofJson::array({landing.x_px, landing.y_px}) : ProofJson();
}

ProofJson number_json(double number) {
    return std::isfinite(number) ? ProofJson(number) : ProofJson();
}

ProofJson target_json(const proof::TargetResult& target) {
    const proof::Deviation& deviation = target.deviation;
    const proof::FarthestPoint& largest = deviation.largest;
    ProofJson causes = ProofJson::array();
    for (const proof::CauseFound& cause : target.causes) {
        causes.push_back({{"cause", info_of(cause.cause).name},
                          {"meaning", info_of(cause.cause).text},
                          {"before_px", number_json(cause.before_px)},
                          {"after_px", number_json(cause.after_px)}});
    }
    const bool any = deviation.compared > 0;
    return {{"target", target.target},
            {"judged", target.judged},
            {"meets_goal", target.meets_goal()},
            {"problem", target.problem.empty() ? ProofJson() : ProofJson(target.problem)},
            {"compared", deviation.compared},
            {"lost", deviation.lost},
            {"largest_px", any ? ProofJson(target.judged_px()) : ProofJson()},
            {"mean_px", any ? ProofJson(deviation.mean_px) : ProofJson()},
            {"in_frame_px", deviation.in_frame_px},
            {"at_keys_px", deviation.at_keys_px},
            {"at_frames_px", deviation.at_frames_px},
            {"between_frames_px", deviation.between_frames_px},
            {"worst", any ? ProofJson{{"px", largest.px},
                                      {"frame", largest.frame},
                                      {"point", embedded::json_text(largest.point)},
                                      {"truth", landing_json(largest.truth)},
                                      {"landed", landing_json(largest.landed)}}
                          : ProofJson()},
            {"causes", causes}};
}

ProofJson listed_json(const proof::CameraResult& camera) {
    ProofJson frames = ProofJson::array();
    for (const proof::ListedFrame& listed : camera.listed) {
        ProofJson points = ProofJson::array();
        for (const proof::ListedPoint& point : listed.points) {
            ProofJson landed = ProofJson::array();
            for (const proof::Landing& landing : point.landed) {
                landed.push_back(landing_json(landing));
            }
            points.push_back(
                {{"point", embedded::json_text(point.label)},
                 {"place",
                  {number_json(point.place.x), number_json(point.place.y), number_json(point.place.z)}},
                 {"truth", landing_json(point.truth)},
                 {"landed", landed}});
        }
        frames.push_back({{"frame", listed.frame}, {"points", points}});
    }
    return frames;
}

}  // namespace

std::string distance_text(double px, const char* lost) {
    return !std::isfinite(px) ? lost : px < kShown_px ? "0" : measured_text(px);
}

std::string proof_text(const ProofRun& run, const Paint& paint) {
    std::string text = paint(Ink::bold, text::printable(run.file)) + ": " +
                       paint(run.code == ExitCode::fine ? Ink::green : Ink::red, verdict_text(run)) + '\n';
    if (!run.result) {
        return text;
    }
    text += "  proved against the written model of After Effects, and by reading glTF and USD back\n";
    for (const proof::CameraResult& camera : run.result->cameras) {
        text += camera_text(camera, paint);
    }
    return text + nulls_text(*run.result, paint);
}

nlohmann::ordered_json proof_document(const ProofRun& run) {
    ProofJson cameras = ProofJson::array();
    ProofJson nulls = ProofJson::array();
    ProofJson names = ProofJson::array();
    if (run.result) {
        for (const std::string& name : run.result->targets) {
            names.push_back(name);
        }
        for (const proof::CameraResult& camera : run.result->cameras) {
            ProofJson targets = ProofJson::array();
            for (const proof::TargetResult& target : camera.targets) {
                targets.push_back(target_json(target));
            }
            cameras.push_back({{"name", embedded::json_text(camera.name)},
                               {"keys", camera.keys},
                               {"keys_compared", camera.keys_compared},
                               {"moments", camera.moments},
                               {"left_out", camera.left_out},
                               {"no_picture", camera.no_picture},
                               {"targets", targets}});
            if (!camera.listed.empty()) {
                cameras.back()["frames"] = listed_json(camera);
            }
        }
        for (const proof::NullResult& null : run.result->nulls) {
            ProofJson distances = ProofJson::array();
            for (std::size_t i = 0; i < null.distances.size(); ++i) {
                distances.push_back(
                    {{"target", run.result->targets[i]},
                     {"largest", null.distances[i] ? number_json(*null.distances[i]) : ProofJson()},
                     {"frame", null.frames[i]}});
            }
            nulls.push_back({{"name", embedded::json_text(null.name)}, {"distances", distances}});
        }
    }
    return {{"schema", kProofSchema},
            {"exit_code", static_cast<int>(run.code)},
            {"scene", embedded::json_text(run.file)},
            {"goal_px", proof::kGoal_px},
            {"proved_against", "written model"},
            {"targets", names},
            {"cameras", cameras},
            {"nulls", nulls},
            {"nulls_in_scene", run.result ? run.result->nulls_in_scene : 0},
            {"measured", ProofJson()},
            {"problems", texts_json(run.problems)},
            {"diagnostics", diagnostics_json(run.diagnostics)}};
}

}  // namespace cli
