#include "python/scene_calls.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>

#include "cli/footage/footage_finder.h"
#include "cli/footage/footage_survey.h"
#include "cli/footage/stored_path.h"
#include "cli/report/diagnostic_json.h"
#include "cli/scene/footage_paths.h"
#include "cli/scene/scene_reading.h"
#include "cli/verb/check_files.h"
#include "embedded/json_values.h"
#include "python/scene_document.h"

namespace python {
using embedded::Json;

cli::ReadingWatch reading_watch(const Watch& watch) {
    if (!watch) {
        return {};
    }
    return [&watch](std::int64_t read_bytes, std::uint64_t file_bytes) {
        watch(file_bytes == 0 ? 0.0 : static_cast<double>(read_bytes) / static_cast<double>(file_bytes));
    };
}

SceneAnswer read_scene(const SceneRequest& request, const Watch& watch) {
    const cli::SceneReading reading = cli::read_scene(request.path, reading_watch(watch));
    cli::FootageFinder finder(request.choices.finder_options());
    cli::FileCheck check{reading.code, {}};
    if (request.check) {
        // As in `vxr check`: what looks like missing footage is named unless the user said where footage is.
        cli::FootageSurvey survey(request.choices.given() ? &finder : nullptr, request.read_pixels);
        check = cli::check_scene(reading, survey);
    } else if (reading.error) {
        check.diagnostics.push_back(*reading.error);
    }
    (void)cli::apply_policy(check, {});

    SceneAnswer answer;
    Json document{{"error", reading.error ? cli::diagnostic_json(*reading.error) : Json()},
                  {"code", static_cast<int>(check.code)},
                  {"verdict", cli::verdict_label(check.code)},
                  {"diagnostics", cli::diagnostics_json(check.diagnostics)}};
    if (request.columns && !reading.error) {
        document["scene"] = scene_json(reading, cli::seek_footage(reading, finder));
        std::transform(reading.facts.objects.begin(), reading.facts.objects.end(),
                       std::back_inserter(answer.columns), key_columns);
    }
    answer.document = document.dump();
    return answer;
}

bool is_path_map(const std::string& text) {
    return cli::parse_path_map(text).has_value();
}

}  // namespace python
