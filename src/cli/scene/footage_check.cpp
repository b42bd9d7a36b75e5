#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/report/diagnostic_text.h"
#include "cli/scene/footage_check.h"
#include "cli/scene/scene_check.h"
#include "host/byte_encoding.h"
#include "image/image.h"
#include "system/files.h"
#include "system/open_regular_file.h"
#include "text/ascii.h"
#include "text/utf8.h"
#include "texture/file/base_file.h"
#include "texture/value/texture_file.h"

namespace cli {

std::string shown_path(std::string_view path) {
    constexpr std::size_t kShownPathBytes = 400;
    return path.size() <= kShownPathBytes ? std::string(path)
                                          : std::string(path.substr(0, kShownPathBytes)) + "...";
}

// Every platform's separator counts on every platform: files travel.
std::string_view last_component(std::string_view path) {
    return text::last_component(path, ":\\/");
}

// The bundle's input module reads textures; it recognises them by their extension, ignoring case.
bool is_texture(std::string_view path) {
    return text::ends_with_ignoring_case(path, ".txl");
}

namespace {

// The path beside the composition file, as the user would write it: with the separator in the user's own
// path.
std::string beside(const SceneReading& reading, std::string_view path) {
    std::string place = os::text_of(os::path_of(reading.file).parent_path());
    const char next = place.size() < reading.file.size() ? reading.file[place.size()] : '\0';
    if (!place.empty() && place.back() != '/' && (next == '/' || next == '\\')) {
        place += next;
    }
    return place.append(last_component(path));
}

std::string placeholder_text(const SceneReading& reading, std::string_view name) {
    const tagProjectSettings& settings = *reading.settings;
    return "a placeholder \"" + truncated_name(name) + "\" of " + std::to_string(settings.width) + "x" +
           std::to_string(settings.height) + " and " + std::to_string(layer_length(settings)) +
           " frames takes its place";
}

bool is_missing(const SceneFootage& footage) {
    return footage.file->path != nullptr && !footage.opens_as_written && GeFExist(footage.file->path) == 0;
}

diagnostic::MissingFootage facts_of_missing(const SceneReading& reading, const SceneFootage& footage) {
    return {footage.written,
            {footage.written, beside(reading, footage.file->path)},
            truncated_name(last_component(footage.file->path))};
}

// Footage that the plug-in does not find and that `finding` did not find either.
void check_missing(const SceneReading& reading, const SceneFootage& footage, const Finding& finding,
                   FootageSurvey& survey, WarningList& warnings) {
    Diagnostic& warning =
        warnings.add(ToolCode::footage_missing, footage.path_at,
                     "the footage \"" + shown_path(footage.written) + "\" does not exist", footage.within);
    warning.effects.push_back("looked for as written, then as \"" +
                              shown_path(beside(reading, footage.file->path)) + '"');
    if (!text::is_utf8(footage.written)) {
        warning.effects.emplace_back(
            "the path is not UTF-8; it was also read as Windows-1252 and as Mac Roman");
    }
    if (finding.outcome == Finding::Outcome::ambiguous) {
        add_candidates(finding, warning);
    } else {
        add_near_miss(reading, footage, survey, warning);
    }
    warning.effects.push_back(placeholder_text(reading, last_component(footage.file->path)));
    warning.missing_footage = facts_of_missing(reading, footage);
}

// Why the file cannot be read as a picture; empty if it can. Of an image, `header` says what it is.
std::string reading_obstacle(const std::string& path, std::optional<image::Header>& header) {
    if (is_texture(path)) {
        const std::optional<diagnostic::Diagnostic> error = read_texture(path).error;
        if (!error) {
            return {};
        }
        return error->limit == nullptr ? error->reason : error->reason + "; " + limit_text(*error->limit);
    }
    const image::Probe probe = image::probe(path);
    header = probe.header;
    if (!probe.error) {
        return {};
    }
    // Then nothing is wrong with the picture.
    if (const std::string problem = image::library_problem(); !problem.empty()) {
        throw std::runtime_error(problem);
    }
    return probe.error->reason;
}

void check_picture(const SceneReading& reading, const SceneFootage& footage, const std::string& path,
                   FootageSurvey& survey, WarningList& warnings) {
    std::optional<image::Header> header;
    const std::string obstacle = reading_obstacle(path, header);
    if (header) {
        check_image_fit(reading, footage, path, *header, survey, warnings);
    }
    if (obstacle.empty()) {
        return;
    }
    warnings
        .add(ToolCode::footage_unreadable, footage.path_at,
             "the footage \"" + shown_path(footage.written) +
                 "\" exists but is not a readable image: " + obstacle,
             footage.within)
        .effects.emplace_back(
            "if After Effects cannot read it either, the import ends there; whatever was built before stays");
}

// The path under which a current host finds the file.
std::string path_on_disk(const std::string& path) {
    if (os::InputFile(os::open_exactly(path.c_str())) != nullptr) {
        return path;
    }
    for (std::string& other : paths_in_other_encodings(path)) {
        if (os::InputFile(os::open_exactly(other.c_str())) != nullptr) {
            return std::move(other);
        }
    }
    return path;
}

void check_entry(const SceneReading& reading, const SceneFootage& footage, FootageSurvey& survey,
                 WarningList& warnings) {
    if (footage.file->path == nullptr) {
        warnings
            .add(ToolCode::footage_path_unread, footage.path_at, "no path could be read for this footage",
                 footage.within)
            .effects.push_back(placeholder_text(reading, ""));
        return;
    }
    const bool is_sequence = footage.file->isSequence != 0;
    std::string path = footage.file->path;
    if (is_missing(footage)) {
        const Finding finding =
            survey.finder() == nullptr
                ? Finding()
                : survey.finder()->find({reading.full_path, footage.written, is_sequence});
        if (!finding.is_found()) {
            check_missing(reading, footage, finding, survey, warnings);
            return;
        }
        path = finding.path;
    } else {
        path = path_on_disk(path);
    }
    if (is_sequence) {
        check_sequence(reading, footage, path, survey, warnings);
    }
    check_picture(reading, footage, path, survey, warnings);
}

}  // namespace

std::vector<diagnostic::MissingFootage> missing_footage(const SceneReading& reading) {
    const os::PathGuesses guesses(paths_in_other_encodings);
    std::vector<diagnostic::MissingFootage> missing;
    for (const SceneFootage& footage : reading.facts.footage) {
        if (footage.file != nullptr && is_missing(footage)) {
            missing.push_back(facts_of_missing(reading, footage));
        }
    }
    return missing;
}

void check_footage(const SceneReading& reading, FootageSurvey& survey, WarningList& warnings) {
    const os::PathGuesses guesses(paths_in_other_encodings);
    for (const SceneFootage& footage : reading.facts.footage) {
        // The entry at which reading stopped has its error already.
        if (footage.top_level || !footage.problem) {
            check_entry(reading, footage, survey, warnings);
        }
    }
}

}  // namespace cli
