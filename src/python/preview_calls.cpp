#include "python/preview_calls.h"

#include <cstddef>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <utility>

#include "cli/job/relinked_copy.h"
#include "cli/preview/overlay.h"
#include "cli/preview/preview.h"
#include "cli/project/host_setup.h"
#include "cli/report/diagnostic_json.h"
#include "cli/terminal/ordered_jobs.h"
#include "embedded/json_values.h"
#include "python/import_calls.h"

namespace python {
namespace {

using embedded::Json;

// The part of the work that reading takes, for the watch.
constexpr double kReadingPart = 0.1;

render::Fields fields_named(const std::string& name) {
    if (name == "both") {
        return render::Fields::both;
    }
    if (name == "upper" || name == "lower") {
        return name == "upper" ? render::Fields::upper : render::Fields::lower;
    }
    throw std::invalid_argument("fields is \"" + name + "\"; it takes both, upper or lower");
}

cli::PreviewOptions preview_options(const PreviewRequest& request, const cli::SceneReading& reading) {
    cli::PreviewOptions options;
    options.composition = request.composition;
    options.raw = request.raw;
    options.render.light = request.linear ? render::Light::linear : render::Light::as_stored;
    options.render.fields = fields_named(request.fields);
    options.render.threads = cli::threads_for(request.threads);
    // What is wrong with a scene that cannot be read is told by the preview.
    if (!request.overlay.empty()) {
        const std::set<cli::OverlayPart> parts = cli::overlay_parts(request.overlay);
        if (!reading.error) {
            const auto overlay = std::make_shared<cli::Overlay>(reading, parts);
            options.over = [overlay](Texture& picture, std::int64_t frame) { overlay->draw(picture, frame); };
        }
    }
    return options;
}

void refuse_missing_frames(const cli::Preview& preview, const std::vector<std::int64_t>& frames) {
    for (const std::int64_t frame : frames) {
        if (frame < 0 || frame >= preview.frame_count()) {
            throw std::invalid_argument("there is no frame " + std::to_string(frame) +
                                        ": the composition has the frames 0 to " +
                                        std::to_string(preview.frame_count() - 1));
        }
    }
}

// Draws into the answer. Ends with the first frame that cannot be drawn, whose error is then the last of
// `problems`.
Json frames_json(const PreviewRequest& request, cli::Preview& preview, const Watch& watch,
                 PreviewAnswer& answer, Json& problems) {
    Json frames = Json::array();
    for (std::size_t i = 0; i < request.frames.size(); ++i) {
        const double part = static_cast<double>(i) / static_cast<double>(request.frames.size());
        watch(kReadingPart + (1 - kReadingPart) * part);
        cli::PreviewFrame frame = preview.draw(request.frames[i]);
        if (!frame.picture) {
            problems.push_back("frame " + std::to_string(request.frames[i]) + " cannot be drawn: " +
                               (frame.error ? frame.error->reason : std::string("for an unknown reason")));
            break;
        }
        answer.pictures.push_back(std::move(*frame.picture));
        frames.push_back(
            Json{{"number", request.frames[i]}, {"diagnostics", cli::diagnostics_json(frame.findings)}});
    }
    return frames;
}

}  // namespace

PreviewAnswer draw_frames(const PreviewRequest& request, const Watch& watch) {
    const Watch while_reading = [&watch](double fraction) { watch(kReadingPart * fraction); };
    const cli::FoundScene scene(request.path, request.choices, reading_watch(while_reading));
    const cli::PreviewOptions options = preview_options(request, scene.reading());

    const HostTurn turn;
    cli::Preview preview(scene.reading(), cli::find_bundle(request.bundle), options);
    PreviewAnswer answer;
    Json problems = cli::texts_json(preview.problems());
    Json document{{"exit_code", static_cast<int>(preview.code())},
                  {"diagnostics", cli::diagnostics_json(preview.diagnostics())}};
    if (preview.code() == cli::ExitCode::fine) {
        refuse_missing_frames(preview, request.frames);
        document["composition"] = embedded::json_text(preview.composition_name());
        document["width"] = preview.width_px();
        document["height"] = preview.height_px();
        document["frame_count"] = preview.frame_count();
        document["fps"] = preview.rate_fps();
        document["pixel_aspect"] = preview.pixel_aspect();
        document["frames"] = frames_json(request, preview, watch, answer, problems);
        if (!problems.empty()) {
            document["exit_code"] = static_cast<int>(cli::ExitCode::refused);
        }
    }
    document["problems"] = std::move(problems);
    answer.document = document.dump();
    return answer;
}

}  // namespace python
