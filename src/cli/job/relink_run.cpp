#include "cli/job/relink_run.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <istream>
#include <map>
#include <nlohmann/json.hpp>
#include <ostream>
#include <set>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "cli/report/diagnostic_json.h"
#include "cli/terminal/output_file.h"
#include "cli/terminal/standard_input.h"
#include "embedded/json_values.h"
#include "system/files.h"
#include "text/printable.h"

namespace cli {
namespace {

namespace fs = std::filesystem;
using embedded::Json;

constexpr int kRelinkSchema = 1;

std::string folder_of(const std::string& path) {
    return os::text_of(os::path_of(path).parent_path());
}

std::string name_of(const std::string& path) {
    return os::text_of(os::path_of(path).filename());
}

// The path that the output needs; nothing if the scene's own is right there too.
std::optional<std::string> new_path(const RelinkedScene& scene, const SoughtFootage& footage) {
    if (!footage.finding.is_found() || footage.finding.rule == FindingRule::as_written) {
        return std::nullopt;
    }
    if (footage.finding.rule == FindingRule::beside_scene) {
        std::error_code none;
        if (fs::equivalent(os::native_path(folder_of(scene.full_path)),
                           os::native_path(folder_of(os::absolute_path(scene.output))), none)) {
            return std::nullopt;
        }
    }
    return footage.finding.path;
}

std::string place_text(const RelinkedScene& scene, const SoughtFootage& footage) {
    return text::printable(scene.file) + ":" + std::to_string(footage.at.line) + ":" +
           std::to_string(footage.at.column);
}

// A layer begins with the first frame of its sequence and ends with itself or its composition.
std::int64_t shown_frames(const tagProjectSettings& settings) {
    const std::int64_t start = settings.local != 0 ? settings.from : 0;
    return std::max(std::int64_t{1}, std::min(layer_length(settings), settings.range - start));
}

void refuse_unwritable(RelinkedScene& scene) {
    for (SoughtFootage& footage : scene.footage) {
        const std::string problem =
            footage.finding.is_found() ? unwritable_path(footage.finding.path) : std::string();
        if (!problem.empty()) {
            scene.problems.push_back(place_text(scene, footage) + ": " + text::quoted(footage.finding.path) +
                                     " cannot be written into a scene: " + problem);
            scene.code = most_serious(scene.code, ExitCode::footage_missing);
            footage.finding.candidates = {{footage.finding.path, footage.finding.rule, 0}};
            footage.finding.outcome = Finding::Outcome::missing;
            footage.finding.path.clear();
        }
    }
}

Json candidate_json(const FootageCandidate& candidate) {
    return Json{{"path", embedded::json_text(candidate.path)}, {"rule", label(candidate.rule)}};
}

Json footage_json(const SoughtFootage& footage) {
    const Finding& finding = footage.finding;
    const bool known = finding.outcome != Finding::Outcome::missing;
    Json candidates = Json::array();
    for (const FootageCandidate& candidate : finding.candidates) {
        candidates.push_back(candidate_json(candidate));
    }
    return Json{{"line", footage.at.line},
                {"column", footage.at.column},
                {"offset_bytes", footage.at.offset_bytes},
                {"written", embedded::json_text(footage.written)},
                {"sequence", footage.is_sequence},
                {"outcome", label(finding.outcome)},
                {"rule", known ? Json(label(finding.rule)) : Json()},
                {"result", footage.finding.is_found() ? embedded::json_text(finding.path) : Json()},
                {"candidates", candidates}};
}

// The last folder that all scenes lie below.
fs::path common_folder(const std::vector<RelinkedScene>& scenes) {
    fs::path common = os::path_of(scenes.front().full_path).lexically_normal().parent_path();
    for (const RelinkedScene& scene : scenes) {
        const fs::path folder = os::path_of(scene.full_path).lexically_normal().parent_path();
        const auto [mine, theirs] = std::mismatch(common.begin(), common.end(), folder.begin(), folder.end());
        fs::path kept;
        for (auto part = common.begin(); part != mine; ++part) {
            kept /= *part;
        }
        common = kept;
    }
    return common;
}

}  // namespace

std::string scene_argument_problem(const std::vector<std::string>& files) {
    for (const std::string& file : files) {
        if (is_standard_input(file)) {
            return "SCENE is a file: the standard input has no name for the new scene";
        }
        if (os::file_state(file).kind == os::FileKind::folder) {
            return file + " is a folder; folders to search follow --search, one each";
        }
    }
    return {};
}

RelinkedScene seek_scene(const std::string& file, FootageFinder& finder, const ChooseCandidate& choose) {
    const SceneReading reading = read_scene(file);
    RelinkedScene scene;
    scene.file = file;
    scene.full_path = reading.full_path;
    scene.code = reading.code;
    if (reading.error) {
        scene.diagnostics.push_back(*reading.error);
        return scene;
    }
    scene.shown_frames = shown_frames(*reading.settings);
    scene.footage = seek_footage(reading, finder);
    for (SoughtFootage& footage : scene.footage) {
        if (footage.finding.outcome == Finding::Outcome::ambiguous && choose) {
            if (const auto chosen = choose(scene, footage)) {
                const FootageCandidate candidate = footage.finding.candidates.at(*chosen);
                finder.keep(footage.written, candidate.path);
                footage.finding = {Finding::Outcome::found, FindingRule::kept, candidate.path, {}};
            }
        }
        if (!footage.finding.is_found()) {
            scene.code = most_serious(scene.code, ExitCode::footage_missing);
        }
    }
    refuse_unwritable(scene);
    return scene;
}

void place_outputs(std::vector<RelinkedScene>& scenes, const std::string& folder) {
    std::set<std::string> names;
    bool unique = true;
    for (const RelinkedScene& scene : scenes) {
        unique = names.insert(name_of(scene.full_path)).second && unique;
    }
    const fs::path common = unique || scenes.empty() ? fs::path() : common_folder(scenes);
    for (RelinkedScene& scene : scenes) {
        const fs::path path = os::path_of(scene.full_path).lexically_normal();
        const fs::path below = unique ? path.filename() : path.lexically_relative(common);
        scene.output = os::text_of(os::path_of(folder) / below);
    }
}

void add_roles(const RelinkedScene& scene, FootageFinder& finder, FileRoles& roles) {
    roles.reads(scene.file);
    for (const SoughtFootage& footage : scene.footage) {
        if (!footage.finding.is_found()) {
            continue;
        }
        const std::string use = "footage of " + scene.file;
        roles.reads(footage.finding.path, use);
        if (footage.is_sequence) {
            const std::string folder = folder_of(footage.finding.path);
            for (const SequenceFile& frame : sequence_files(finder.sequences(), footage.finding.path)) {
                roles.reads(joined_path(folder, frame.name), use);
            }
        }
    }
}

void write_scene(RelinkedScene& scene) {
    if (!scene.diagnostics.empty()) {
        scene.output.clear();
        return;
    }
    try {
        std::error_code failure;
        const std::string folder = folder_of(scene.output);
        if (!folder.empty()) {
            fs::create_directories(os::native_path(folder), failure);
        }
        std::vector<PathChange> changes;
        for (const SoughtFootage& footage : scene.footage) {
            if (auto path = new_path(scene, footage)) {
                changes.push_back({footage.at, footage.written, std::move(*path)});
            }
        }
        std::string problem;
        const std::optional<std::string> bytes = scene_with_paths(scene.full_path, changes, problem);
        if (!bytes) {
            throw std::runtime_error(scene.file + ": " + problem);
        }
        OutputFile output(scene.output);
        output.write(*bytes);
        output.close();
        scene.written = true;
    } catch (const std::runtime_error& error) {
        scene.problems.emplace_back(error.what());
        scene.code = most_serious(scene.code, ExitCode::cannot_read_or_write);
    }
}

std::optional<std::size_t> ask_for_candidate(std::istream& in, std::ostream& out, const RelinkedScene& scene,
                                             const SoughtFootage& footage) {
    const std::vector<FootageCandidate>& candidates = footage.finding.candidates;
    out << place_text(scene, footage) << ": " << text::quoted(footage.written) << " may be\n";
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        out << "  " << i + 1 << "  " << text::printable(candidates[i].path) << '\n';
    }
    for (;;) {
        out << "Which one? 1 to " << candidates.size() << ", or nothing to leave it: " << std::flush;
        std::string answer;
        if (!std::getline(in, answer) || answer.find_first_not_of(" \t\r") == std::string::npos) {
            return std::nullopt;
        }
        std::size_t number = 0;
        const auto [end, failure] = std::from_chars(answer.data(), answer.data() + answer.size(), number);
        if (failure != std::errc() || end != answer.data() + answer.size()) {
            continue;
        }
        if (number >= 1 && number <= candidates.size()) {
            return number - 1;
        }
    }
}

std::map<std::string, std::string> decisions_of(const std::vector<RelinkedScene>& scenes) {
    std::map<std::string, std::set<std::string>> paths;
    for (const RelinkedScene& scene : scenes) {
        for (const SoughtFootage& footage : scene.footage) {
            const bool own = footage.finding.rule == FindingRule::as_written ||
                             folder_of(footage.finding.path) == folder_of(scene.full_path);
            if (footage.finding.is_found() && (!own || footage.finding.rule == FindingRule::kept)) {
                paths[footage.written].insert(footage.finding.path);
            }
        }
    }
    std::map<std::string, std::string> decisions;
    for (const auto& [written, found] : paths) {
        if (found.size() == 1) {
            decisions[written] = *found.begin();
        }
    }
    return decisions;
}

std::string relink_summary(const std::vector<RelinkedScene>& scenes) {
    std::array<std::int64_t, 3> outcomes{};
    std::map<FindingRule, std::int64_t> rules;
    std::int64_t paths = 0;
    for (const RelinkedScene& scene : scenes) {
        for (const SoughtFootage& footage : scene.footage) {
            ++paths;
            ++outcomes.at(static_cast<std::size_t>(footage.finding.outcome));
            if (footage.finding.is_found()) {
                ++rules[footage.finding.rule];
            }
        }
    }
    std::string by_rule;
    for (const auto& [rule, count] : rules) {
        by_rule += (by_rule.empty() ? " (" : ", ") + grouped(count) + ' ' + label(rule);
    }
    std::string text = grouped(paths) + (paths == 1 ? " path: " : " paths: ") + grouped(outcomes[0]) +
                       " found" + by_rule + (by_rule.empty() ? "" : ")");
    for (const auto outcome : {Finding::Outcome::ambiguous, Finding::Outcome::missing}) {
        const std::int64_t count = outcomes.at(static_cast<std::size_t>(outcome));
        text += count == 0 ? std::string() : ", " + grouped(count) + ' ' + label(outcome);
    }
    return text;
}

nlohmann::ordered_json relink_document(const std::vector<RelinkedScene>& scenes, ExitCode code,
                                       bool dry_run) {
    Json list = Json::array();
    for (const RelinkedScene& scene : scenes) {
        Json paths = Json::array();
        for (const SoughtFootage& footage : scene.footage) {
            paths.push_back(footage_json(footage));
        }
        list.push_back({{"scene", embedded::json_text(scene.file)},
                        {"exit_code", static_cast<int>(scene.code)},
                        {"output", scene.output.empty() ? Json() : embedded::json_text(scene.output)},
                        {"written", scene.written},
                        {"paths", paths},
                        {"problems", texts_json(scene.problems)},
                        {"diagnostics", diagnostics_json(scene.diagnostics)}});
    }
    return Json{{"schema", kRelinkSchema},
                {"exit_code", static_cast<int>(code)},
                {"dry_run", dry_run},
                {"scenes", list}};
}

}  // namespace cli
