#include "python/handover_calls.h"

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "cli/footage/footage_finder.h"
#include "cli/handover/export_run.h"
#include "cli/handover/proof_run.h"
#include "cli/job/relink_run.h"
#include "cli/job/relinked_copy.h"
#include "cli/project/host_setup.h"
#include "cli/project/import_run.h"
#include "cli/terminal/file_roles.h"
#include "embedded/json_values.h"
#include "python/import_calls.h"

namespace python {
namespace {

void refuse_to_overwrite(cli::FileRoles& roles, const std::string& output, const std::string& scene) {
    if (const std::string refusal = roles.writes(output, scene); !refusal.empty()) {
        throw std::invalid_argument(refusal);
    }
}

cli::ExportSettings export_settings(const ExportRequest& request) {
    cli::ExportSettings settings;
    settings.format = cli::handover_format_named(request.format);
    if (settings.format == nullptr) {
        throw std::invalid_argument('"' + request.format + "\" is not an export format");
    }
    settings.version = request.corrected ? handover::Version::corrected : handover::Version::imported;
    for (const std::string& name : request.without) {
        const auto correction = handover::correction_named(name);
        if (!correction) {
            throw std::invalid_argument('"' + name + "\" is not the name of a correction");
        }
        settings.handover_options.left_out.insert(*correction);
    }
    settings.handover_options.rate_fps = request.rate_fps;
    settings.format_options.cut_angle_degrees = settings.handover_options.cut_angle_degrees;
    settings.format_options.scale_m = request.scale_m;
    settings.format_options.undo_safe = request.undo_safe;
    settings.write = !request.output.empty();
    settings.packaged = request.packaged;
    return settings;
}

}  // namespace

std::string relink_scene(const RelinkRequest& request) {
    cli::FootageFinder finder(request.choices.finder_options());
    std::vector<cli::RelinkedScene> scenes{cli::seek_scene(request.path, finder, {})};
    cli::RelinkedScene& scene = scenes.front();
    if (!request.output.empty()) {
        scene.output = request.output;
        cli::FileRoles roles;
        cli::add_roles(scene, finder, roles);
        refuse_to_overwrite(roles, scene.output, scene.file);
        cli::write_scene(scene);
    }
    return cli::relink_document(scenes, scene.code, request.output.empty()).at("scenes").at(0).dump();
}

std::string export_scene(const ExportRequest& request, const Watch& watch) {
    const cli::ExportSettings settings = export_settings(request);
    const cli::FoundScene scene(request.path, request.choices, reading_watch(watch));
    const cli::FoundBundle bundle = cli::find_bundle(request.bundle);
    if (settings.write) {
        cli::FileRoles roles;
        cli::add_import_reads(scene.original(), bundle, roles);
        cli::add_import_reads(scene.reading(), bundle, roles);
        refuse_to_overwrite(roles, request.output, request.path);
    }
    const HostTurn turn;
    return cli::exported_json(cli::export_scene(scene.reading(), bundle, settings, request.output)).dump();
}

std::string prove_scene(const ProofRequest& request, const Watch& watch) {
    const cli::SceneReading reading = cli::read_scene(request.path, reading_watch(watch));
    const cli::FoundBundle bundle = cli::find_bundle(request.bundle);
    proof::ProofOptions options;
    options.grid_points = request.grid_points;
    options.listed_frames = request.listed_frames;
    const HostTurn turn;
    return cli::proof_document(cli::prove(reading, bundle, options)).dump();
}

}  // namespace python
