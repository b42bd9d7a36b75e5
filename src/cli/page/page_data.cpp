#include "cli/page/page_data.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <vector>

#include "cli/report/check_summary.h"
#include "cli/report/diagnostic_json.h"
#include "cli/scene/written_number.h"
#include "embedded/json_values.h"
#include "handover/correction.h"
#include "handover/motion_path.h"

namespace cli {
namespace {

using embedded::Json;
using embedded::json_text;
using handover::Handover;

/// The page draws these as curves and paths. More of them would not show, and the page has to stay small.
constexpr std::size_t kMostKeysOfScene = 20000;
constexpr std::size_t kMostObjects = 2000;
/// Diagnostics for scripts; the page itself shows as many for each code.
constexpr std::size_t kMostDiagnostics = 2000;

// The scene's numbers are of single precision; further digits say nothing.
Json short_number(double value) {
    return std::isfinite(value) ? Json(Json::parse(shortest_text(value)).get<double>())
                                : embedded::json_number(value);
}

// Evenly spaced ones of `count`, the first and the last among them.
std::vector<std::size_t> spread(std::size_t count, std::size_t most) {
    std::vector<std::size_t> chosen;
    const std::size_t wanted = std::min(count, std::max<std::size_t>(most, 2));
    for (std::size_t i = 0; i < wanted; ++i) {
        chosen.push_back(wanted == 1 ? 0 : i * (count - 1) / (wanted - 1));
    }
    return chosen;
}

Json object_json(const handover::SceneObject& object, std::size_t most_keys) {
    // Cut as in `vxr export`.
    const handover::MotionPath path(object, true, handover::HandoverOptions().cut_angle_degrees);
    const std::vector<handover::PathKey>& keys = path.keys();
    Json frames = Json::array();
    Json holds = Json::array();
    Json columns[8];
    for (const std::size_t index : spread(keys.size(), most_keys)) {
        const handover::PathKey& key = keys[index];
        const handover::Pose& pose = key.pose;
        frames.push_back(key.frame);
        holds.push_back(key.holds);
        const double numbers[8] = {pose.position[0], pose.position[1],    pose.position[2],
                                   pose.heading,     pose.pitch,          pose.bank,
                                   pose.view_angle,  pose.target_distance};
        for (std::size_t i = 0; i < 8; ++i) {
            columns[i].push_back(short_number(numbers[i]));
        }
    }
    const auto column = [&](std::size_t i) { return columns[i].is_null() ? Json::array() : columns[i]; };
    Json json{{"kind", word_of(object.kind)},
              {"name", json_text(object.name)},
              {"keys_in_scene", object.keys.size()},
              {"keys",
               {{"frame", frames},
                {"holds", holds},
                {"x", column(0)},
                {"y", column(1)},
                {"z", column(2)},
                {"heading", column(3)},
                {"pitch", column(4)},
                {"bank", column(5)},
                {"view_angle", column(6)},
                {"target_distance", column(7)}}}};
    if (object.kind == handover::ObjectKind::light) {
        json["light"] = json_text(object.light_word);
        json["color"] = Json::array();
        for (const double part : object.color) {
            json["color"].push_back(short_number(part));
        }
        json["intensity"] = short_number(object.intensity);
        json["cone_angle"] = short_number(object.cone_angle);
    }
    return json;
}

Json objects_json(const Handover& handover) {
    Json objects = Json::array();
    const std::size_t shown = std::min(handover.objects.size(), kMostObjects);
    for (std::size_t i = 0; i < shown; ++i) {
        objects.push_back(object_json(handover.objects[i], kMostKeysOfScene / shown));
    }
    return objects;
}

Json corrections_json(const PageScene& scene) {
    Json corrections = Json::array();
    for (const handover::AppliedCorrection& applied : scene.corrections) {
        const handover::CorrectionInfo& info =
            handover::correction_table().at(static_cast<std::size_t>(applied.correction));
        corrections.push_back({{"name", info.name},
                               {"reason", info.reason},
                               {"count", applied.count},
                               {"example", json_text(applied.example)}});
    }
    return corrections;
}

Json pictures_json(const PagePictures& pictures) {
    Json frames = Json::array();
    for (const PagePicture& one : pictures.frames) {
        frames.push_back({{"frame", one.frame}, {"url", one.url}});
    }
    return {{"composition", json_text(pictures.composition)},
            {"width_px", pictures.width_px},
            {"height_px", pictures.height_px},
            {"problems", texts_json(pictures.problems)},
            {"frames", frames}};
}

Json shot_json(const Handover& handover) {
    const handover::Shot& shot = handover.shot;
    return {{"width_px", shot.width_px},
            {"height_px", shot.height_px},
            {"pixel_aspect", embedded::json_number(shot.pixel_aspect)},
            {"from", shot.from},
            {"to", shot.to},
            {"rate_fps", embedded::json_number(shot.rate_fps)}};
}

std::string script_text(const Json& value) {
    const std::string text = value.dump();
    std::string safe;
    safe.reserve(text.size());
    for (const char c : text) {
        // Only texts hold this sign, and it begins everything that could end the element or open a comment.
        if (c == '<') {
            safe += "\\u003c";
        } else {
            safe += c;
        }
    }
    return safe;
}

Json scene_json(const PageScene& scene) {
    const std::vector<Diagnostic> diagnostics(
        scene.diagnostics.begin(),
        scene.diagnostics.begin() +
            static_cast<std::ptrdiff_t>(std::min(scene.diagnostics.size(), kMostDiagnostics)));
    Json losses = Json::array();
    for (std::size_t i = 0; i < std::min(scene.losses.size(), kMostDiagnostics); ++i) {
        Json loss = diagnostic_json(scene.losses[i].what);
        loss["targets"] = Json::array();
        for (const auto& [target, name] :
             {std::pair{handover::Target::jsx, "jsx"}, std::pair{handover::Target::gltf, "gltf"},
              std::pair{handover::Target::usda, "usda"}}) {
            if (scene.losses[i].targets.has(target)) {
                loss["targets"].push_back(name);
            }
        }
        losses.push_back(loss);
    }
    return {{"scene", json_text(scene.file)},
            {"verdict", verdict_label(scene.code)},
            {"exit_code", static_cast<int>(scene.code)},
            {"problems", texts_json(scene.problems)},
            {"diagnostics", diagnostics_json(diagnostics)},
            {"diagnostics_found", scene.diagnostics.size()},
            {"corrections", corrections_json(scene)},
            {"losses", losses},
            {"shot", scene.imported ? shot_json(*scene.imported) : Json()},
            {"objects", scene.imported ? objects_json(*scene.imported) : Json::array()},
            {"objects_in_scene", scene.imported ? scene.imported->objects.size() : 0},
            {"pictures", pictures_json(scene.pictures)},
            {"proof", scene.proof ? proof_document(*scene.proof) : Json()}};
}

}  // namespace

std::string page_data(const PageScene& scene) {
    return script_text(scene_json(scene));
}

}  // namespace cli
