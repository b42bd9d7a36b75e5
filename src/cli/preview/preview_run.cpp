#include "cli/preview/preview_run.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <nlohmann/json.hpp>
#include <utility>

#include "cli/report/diagnostic_json.h"
#include "cli/terminal/ordered_jobs.h"
#include "cli/texture/texture_conversion.h"
#include "embedded/json_values.h"
#include "image/image.h"
#include "text/printable.h"
#include "texture/value/alpha_use.h"

namespace cli {
namespace {

using embedded::Json;

/// Frames that wait to be written, together: four of 8K.
constexpr std::int64_t kWaiting_bytes = std::int64_t{512} << 20;

/// Writes the picture; a format without alpha gets it on black.
image::Writing write_picture(const std::string& path, Texture& picture) {
    image::WriteOptions options;
    options.alpha = {image::AlphaBytes::converted, image::AlphaPixels::straight};
    image::Writing writing = image::write(path, picture, options);
    if (writing.error && writing.error->code == image::Code::channels_without_room) {
        multiply_by_alpha(picture);
        picture.alphas.clear();
        writing = image::write(path, picture);
    }
    return writing;
}

/// The reason with the file in front of it, unless it begins with it.
std::string about_file(const std::string& path, const std::string& reason) {
    return reason.starts_with(path + ": ") ? reason : path + ": " + reason;
}

/// Frames that were drawn and are to be written.
struct Batch {
    std::vector<FrameFile> files;
    std::vector<Texture> pictures;
};

/// Writes all of them side by side. After the first failure in their order the later ones may be written, and
/// do not count.
void write_batch(Batch& batch, std::size_t threads, PreviewRun& run) {
    struct Written {
        image::Writing writing;
        std::string failure;
    };
    bool failed = false;
    run_in_order<Written>(
        batch.files.size(), threads,
        [&batch](std::size_t i) {
            Written written;
            try {
                written.writing = write_picture(batch.files[i].path, batch.pictures[i]);
            } catch (const std::exception& error) {
                written.failure = error.what();
            }
            batch.pictures[i] = Texture();
            return written;
        },
        [](std::size_t /*done*/) {},
        [&](std::size_t i, const Written& written) {
            const bool refused = written.writing.error.has_value();
            if (!refused && written.failure.empty()) {
                run.written.push_back(batch.files[i]);
            } else if (!std::exchange(failed, true)) {
                run.code = most_serious(run.code, refused ? image_exit_code(*written.writing.error)
                                                          : ExitCode::cannot_read_or_write);
                run.problems.push_back(about_file(batch.files[i].path,
                                                  refused ? written.writing.error->reason : written.failure));
            }
        });
    batch = {};
}

}  // namespace

void add_findings(PreviewFrame& frame, PreviewRun& run) {
    if (!frame.findings.empty()) {
        run.code = most_serious(run.code, ExitCode::footage_missing);
    }
    std::move(frame.findings.begin(), frame.findings.end(), std::back_inserter(run.diagnostics));
    if (frame.error) {
        run.code = most_serious(run.code, ExitCode::refused);
        run.diagnostics.push_back(std::move(*frame.error));
    }
}

PreviewRun write_frames(Preview& preview, const std::vector<FrameFile>& files, std::size_t threads,
                        const std::function<void(std::size_t)>& drawing) {
    PreviewRun run;
    const std::int64_t frame_bytes = std::max<std::int64_t>(1, preview.width_px() * preview.height_px() * 4);
    const auto together = static_cast<std::size_t>(
        std::clamp<std::int64_t>(kWaiting_bytes / frame_bytes, 1, static_cast<std::int64_t>(threads)));
    Batch batch;
    for (std::size_t i = 0; i < files.size() && run.problems.empty(); ++i) {
        drawing(i);
        PreviewFrame drawn = preview.draw(files[i].frame);
        add_findings(drawn, run);
        if (!drawn.picture) {
            break;
        }
        batch.files.push_back(files[i]);
        batch.pictures.push_back(std::move(*drawn.picture));
        if (batch.files.size() == together || i + 1 == files.size()) {
            write_batch(batch, threads, run);
        }
    }
    write_batch(batch, threads, run);
    return run;
}

std::string preview_text(const Preview& preview, const PreviewRun& run, const std::string& output,
                         const Paint& paint) {
    if (run.written.empty()) {
        return {};
    }
    const std::string frames = run.written.size() == 1 ? "frame " + std::to_string(run.written.front().frame)
                                                       : std::to_string(run.written.size()) + " frames";
    return paint(Ink::bold, text::printable(preview.composition_name())) + ": " + frames + " of " +
           std::to_string(preview.frame_count()) + ", " + std::to_string(preview.width_px()) + " x " +
           std::to_string(preview.height_px()) + " -> " + text::printable(output) + '\n';
}

Json preview_document(const std::string& scene, const Preview& preview, const PreviewOptions& options,
                      const PreviewRun& run) {
    constexpr int kPreviewSchema = 1;
    const bool ready = preview.code() == ExitCode::fine;
    Json shown;
    if (ready) {
        const embedded::Composition& composition = preview.composition();
        shown = Json{{"name", embedded::json_text(preview.composition_name())},
                     {"width_px", composition.width},
                     {"height_px", composition.height},
                     {"pixel_aspect", preview.pixel_aspect()},
                     {"frames", preview.frame_count()},
                     {"rate_fps", preview.rate_fps()}};
    }
    Json frames = Json::array();
    for (const FrameFile& file : run.written) {
        frames.push_back(Json{{"frame", file.frame}, {"output", embedded::json_text(file.path)}});
    }
    std::vector<Diagnostic> diagnostics = preview.diagnostics();
    diagnostics.insert(diagnostics.end(), run.diagnostics.begin(), run.diagnostics.end());
    std::vector<std::string> problems = preview.problems();
    problems.insert(problems.end(), run.problems.begin(), run.problems.end());
    constexpr const char* kFields[] = {"both", "upper", "lower"};
    return Json{{"schema", kPreviewSchema},
                {"exit_code", static_cast<int>(most_serious(preview.code(), run.code))},
                {"scene", embedded::json_text(scene)},
                {"composition", shown},
                {"width_px", ready ? Json(preview.width_px()) : Json()},
                {"height_px", ready ? Json(preview.height_px()) : Json()},
                {"linear", options.render.light == render::Light::linear},
                {"fields", kFields[static_cast<std::size_t>(options.render.fields)]},
                {"frames", frames},
                {"problems", texts_json(problems)},
                {"diagnostics", diagnostics_json(diagnostics)}};
}

}  // namespace cli
