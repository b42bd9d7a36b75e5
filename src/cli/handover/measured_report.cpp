#include "cli/handover/measured_report.h"

#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <system_error>

#include "cli/handover/measuring_run.h"
#include "cli/report/diagnostic_json.h"
#include "cli/scene/written_number.h"
#include "cli/terminal/text_table.h"
#include "embedded/json_values.h"
#include "system/file_content.h"
#include "system/files.h"
#include "text/printable.h"

namespace cli {
namespace {

using MeasuredJson = nlohmann::ordered_json;
using proof::MeasuredTarget;
using proof::QuestionAnswer;
using proof::Verdict;

TableProblem refused_table(const std::string& path, const proof::TableRefusal& refusal) {
    const std::string line = refusal.line > 0 ? ", line " + std::to_string(refusal.line) : std::string();
    return {ExitCode::refused, text::printable(path) + line + ": " + refusal.reason};
}

Ink ink_of_target(const MeasuredTarget& target) {
    return !target.judged ? Ink::plain : target.meets_goal() ? Ink::green : Ink::red;
}

std::string models_text(const MeasuredTarget& target) {
    std::string text;
    for (const proof::ModelDistance& model : target.models) {
        text += (text.empty() ? "" : "; ") + model.model + " " + distance_text(model.largest_px, "lost");
    }
    return text;
}

std::string measured_camera_text(const proof::MeasuredCameraResult& camera, const Paint& paint) {
    std::string text = "\n" + paint(Ink::bold, "camera " + text::quoted(camera.name)) + ", at " +
                       std::to_string(camera.moments) + (camera.moments == 1 ? " frame\n" : " frames\n");
    TextTable table;
    table.add({{"target"},
               {"points", Ink::plain, true},
               {"pixels", Ink::plain, true},
               {"mean", Ink::plain, true},
               {"worst at", Ink::plain, true},
               {"missing", Ink::plain, true},
               {"from the written model"}});
    for (const MeasuredTarget& target : camera.targets) {
        const bool any = target.compared > 0;
        table.add(
            {{target.target, ink_of_target(target)},
             {std::to_string(target.compared), Ink::plain, true},
             {any ? distance_text(target.largest_px, "lost") : "", ink_of_target(target), true},
             {any ? distance_text(target.mean_px, "lost") : "", Ink::plain, true},
             {any && target.largest_px >= kShown_px ? measured_text(target.frame) : "", Ink::plain, true},
             {target.missing > 0 ? std::to_string(target.missing) : "", Ink::red, true},
             {models_text(target)}});
    }
    for (const std::string& line : table.lines(paint)) {
        text += "  " + line + '\n';
    }
    return text;
}

std::string answers_text(const proof::MeasuredResult& result, const Paint& paint) {
    std::string text = "\n" + paint(Ink::bold, "open questions") + '\n';
    TextTable table;
    for (const QuestionAnswer& answer : result.answers) {
        const Ink ink = answer.contradicts                   ? Ink::red
                        : answer.verdict == Verdict::settled ? Ink::green
                                                             : Ink::plain;
        const char* const said = answer.verdict == Verdict::settled   ? answer.answer.c_str()
                                 : answer.verdict == Verdict::another ? "something else"
                                                                      : "not told";
        table.add({{answer.name}, {said, ink}, {std::string(answer.asks) + ": " + answer.text}});
    }
    for (const std::string& line : table.lines(paint)) {
        text += "  " + line + '\n';
    }
    return text;
}

std::string measured_verdict(const proof::MeasuredResult& result) {
    const std::string goal = measured_text(proof::kGoal_px);
    if (result.cameras.empty()) {
        return "no camera, so only the open questions are answered";
    }
    return result.meets_goal()
               ? "After Effects puts what is corrected where the scene has it, within " + goal + " pixels"
               : "in After Effects, what is corrected is more than " + goal + " pixels off, or missing";
}

const char* verdict_name(Verdict verdict) {
    switch (verdict) {
        case Verdict::settled:
            return "settled";
        case Verdict::another:
            return "another";
        case Verdict::untold:
            return "untold";
    }
    return "";
}

MeasuredJson measured_target_json(const MeasuredTarget& target) {
    const bool any = target.compared > 0;
    MeasuredJson models = MeasuredJson::array();
    for (const proof::ModelDistance& model : target.models) {
        models.push_back({{"model", model.model},
                          {"largest_px", std::isfinite(model.largest_px) ? MeasuredJson(model.largest_px)
                                                                         : MeasuredJson()}});
    }
    const auto number = [any](double value) { return any ? MeasuredJson(value) : MeasuredJson(); };
    return {{"target", target.target},
            {"judged", target.judged},
            {"meets_goal", target.meets_goal()},
            {"compared", target.compared},
            {"missing", target.missing},
            {"largest_px", number(target.largest_px)},
            {"mean_px", number(target.mean_px)},
            {"frame", number(target.frame)},
            {"models", models}};
}

}  // namespace

std::variant<Measurement, TableProblem> read_measurement(const std::string& path,
                                                         const SceneReading& reading) {
    std::error_code failure;
    const std::uintmax_t size = std::filesystem::file_size(os::path_of(path), failure);
    if (!failure && size > proof::kMostTableBytes) {
        return refused_table(
            path, {0, "it has " + std::to_string(size) + " bytes, and no such table has more than " +
                          std::to_string(proof::kMostTableBytes)});
    }
    const std::optional<std::string> content = os::content_of(path, proof::kMostTableBytes);
    if (!content) {
        return TableProblem{ExitCode::cannot_read_or_write, "cannot read " + text::printable(path)};
    }
    auto read = proof::read_measured_table(*content);
    if (const auto* const refusal = std::get_if<proof::TableRefusal>(&read)) {
        return refused_table(path, *refusal);
    }
    Measurement measurement{path, measuring_plan_of(reading),
                            std::get<proof::MeasuredTable>(std::move(read))};
    const proof::TableRefusal refusal = proof::unfit(measurement.table, measurement.plan);
    if (!refusal.reason.empty()) {
        return refused_table(path, refusal);
    }
    return measurement;
}

std::string measured_text(const ProofRun& run, const Measurement& measurement, const Paint& paint) {
    const proof::MeasuredResult& result = *run.measured;
    std::string text = paint(Ink::bold, text::printable(run.file)) + ": " +
                       paint(result.meets_goal() ? Ink::green : Ink::red, measured_verdict(result)) + '\n';
    text += "  measured in After Effects " + measurement.table.version +
            (measurement.table.bits ? ", " + std::to_string(*measurement.table.bits) + " bits a channel\n"
                                    : "\n");
    for (const proof::MeasuredCameraResult& camera : result.cameras) {
        text += measured_camera_text(camera, paint);
    }
    text += answers_text(result, paint);
    if (!measurement.table.notes.empty()) {
        text += "\n" + paint(Ink::bold, "the script says") + '\n';
    }
    for (const std::string& note : measurement.table.notes) {
        text += "  " + note + '\n';
    }
    return text;
}

nlohmann::ordered_json measured_json(const ProofRun& run, const Measurement& measurement) {
    MeasuredJson cameras = MeasuredJson::array();
    MeasuredJson questions = MeasuredJson::array();
    for (const proof::MeasuredCameraResult& camera : run.measured->cameras) {
        MeasuredJson targets = MeasuredJson::array();
        for (const MeasuredTarget& target : camera.targets) {
            targets.push_back(measured_target_json(target));
        }
        cameras.push_back(
            {{"name", embedded::json_text(camera.name)}, {"moments", camera.moments}, {"targets", targets}});
    }
    for (const QuestionAnswer& answer : run.measured->answers) {
        const bool settled = answer.verdict == Verdict::settled;
        questions.push_back({{"question", answer.name},
                             {"asks", answer.asks},
                             {"verdict", verdict_name(answer.verdict)},
                             {"answer", settled ? MeasuredJson(answer.answer) : MeasuredJson()},
                             {"text", answer.text},
                             {"contradicts", answer.contradicts}});
    }
    const proof::MeasuredTable& table = measurement.table;
    return {{"table", embedded::json_text(measurement.file)},
            {"after_effects", table.version},
            {"bits", table.bits ? MeasuredJson(*table.bits) : MeasuredJson()},
            {"linear", table.linear ? MeasuredJson(*table.linear) : MeasuredJson()},
            {"meets_goal", run.measured->meets_goal()},
            {"as_written", run.measured->is_as_written()},
            {"cameras", cameras},
            {"questions", questions},
            {"notes", texts_json(table.notes)}};
}

}  // namespace cli
