#include "python/report_calls.h"

#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <utility>

#include "cli/footage/footage_finder.h"
#include "cli/footage/footage_survey.h"
#include "cli/job/relinked_copy.h"
#include "cli/page/report_page.h"
#include "cli/project/host_setup.h"
#include "cli/project/import_run.h"
#include "cli/report/diagnostic_json.h"
#include "cli/terminal/file_roles.h"
#include "cli/terminal/ordered_jobs.h"
#include "cli/terminal/output_file.h"
#include "cli/verb/check_files.h"
#include "embedded/json_values.h"
#include "python/import_calls.h"

namespace python {
namespace {

using embedded::Json;

void refuse_to_overwrite(cli::FileRoles roles, const std::string& output) {
    if (const std::string refusal = roles.writes(output, "the page"); !refusal.empty()) {
        throw std::invalid_argument(refusal);
    }
}

Json scene_json(const cli::PageScene& scene, const std::string& verdict) {
    return {{"file", embedded::json_text(scene.file)},
            {"exit_code", static_cast<int>(scene.code)},
            {"verdict", verdict},
            {"missing_footage", scene.missing_footage()},
            {"diagnostics", cli::diagnostics_json(scene.diagnostics)}};
}

}  // namespace

std::string write_report(const ReportRequest& request, const Watch& watch) {
    cli::FileRoles named;
    for (const std::string& path : request.paths) {
        named.reads(path);
    }
    refuse_to_overwrite(std::move(named), request.output);
    const cli::FoundBundle bundle = cli::find_bundle(request.bundle);
    // Finds a file that cannot be written before the work, not after it.
    cli::OutputFile output(request.output);
    std::optional<cli::FootageFinder> finder;
    if (request.choices.given()) {
        finder.emplace(request.choices.finder_options());
    }
    cli::FootageSurvey survey(finder ? &*finder : nullptr);
    const std::size_t count = request.paths.size();
    std::vector<cli::WrittenScene> scenes;
    Json told = Json::array();
    for (std::size_t i = 0; i < count; ++i) {
        watch(static_cast<double>(i) / static_cast<double>(count));
        const cli::FoundScene found(request.paths[i], request.choices);
        cli::FileCheck check = cli::check_scene(found.original(), survey);
        (void)cli::apply_policy(check, {});
        cli::FileRoles roles;
        cli::add_import_reads(found.original(), bundle, roles);
        cli::add_import_reads(found.reading(), bundle, roles);
        refuse_to_overwrite(std::move(roles), request.output);
        cli::PageScene scene;
        {
            const HostTurn turn;
            scene = cli::page_scene(found.reading(), check.code, std::move(check.diagnostics), bundle,
                                    cli::pictures_of_each(request.pictures, count),
                                    cli::threads_for(request.threads));
        }
        scenes.push_back(cli::write_scene(scene, i, count == 1));
        told.push_back(scene_json(scene, scenes.back().verdict));
    }
    cli::write_report_page(scenes, [&](std::string_view piece) { output.write(piece); });
    output.close();
    return Json{{"scenes", std::move(told)}}.dump();
}

}  // namespace python
