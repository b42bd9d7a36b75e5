#include "viewer/scene_frames.h"

#include <algorithm>
#include <set>

#include "cli/footage/finding_options.h"
#include "cli/project/host_setup.h"
#include "embedded/project.h"
#include "render/frame_plan.h"
#include "viewer/decoded_images.h"

namespace viewer {
namespace {

cli::FindingChoices search_in(const std::string& folder) {
    cli::FindingChoices choices;
    if (!folder.empty()) {
        choices.search.push_back(folder);
    }
    return choices;
}

}  // namespace

SceneFrames::SceneFrames(const std::string& path, const std::string& search, const std::string& bundle)
    : scene_(path, search_in(search)), preview_(scene_.reading(), cli::find_bundle(bundle), {}) {}

std::vector<SceneFrames::Composition> SceneFrames::compositions() const {
    std::vector<Composition> all;
    if (preview_.code() != cli::ExitCode::fine) {
        return all;
    }
    for (const embedded::Composition& one : preview_.project().compositions) {
        all.push_back({preview_.project().item(one.item).name, render::frame_count(one)});
    }
    return all;
}

std::vector<std::string> SceneFrames::files_to_decode(std::size_t composition, std::int64_t frame) const {
    const embedded::Project& project = preview_.project();
    const render::FramePlan plan =
        render::plan_frame(project, project.compositions.at(composition).id, frame);
    std::set<std::string> shown;
    for (const render::PlanStep& step : plan.steps) {
        const bool has_image = step.kind == render::PlanStep::Kind::footage && !step.file.empty();
        if (has_image && project.footage_of(step.footage).kind != embedded::FootageKind::module_file) {
            shown.insert(step.file);
        }
    }
    keep_only_images(shown);
    std::vector<std::string> files;
    std::copy_if(shown.begin(), shown.end(), std::back_inserter(files),
                 [](const std::string& file) { return !has_decoded_image(file); });
    return files;
}

cli::PreviewFrame SceneFrames::draw(std::size_t composition, std::int64_t frame) {
    return preview_.draw(preview_.project().compositions.at(composition).id, frame);
}

}  // namespace viewer
