#include <algorithm>
#include <initializer_list>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "cli/footage/finding_options.h"
#include "cli/handover/handover_run.h"
#include "cli/job/relinked_copy.h"
#include "cli/options.h"
#include "cli/picture/terminal_screen.h"
#include "cli/preview/film.h"
#include "cli/preview/frame_choice.h"
#include "cli/preview/overlay.h"
#include "cli/preview/preview.h"
#include "cli/preview/preview_run.h"
#include "cli/preview/sheet.h"
#include "cli/project/host_setup.h"
#include "cli/project/import_run.h"
#include "cli/report/diagnostic_text.h"
#include "cli/report/json_text.h"
#include "cli/terminal/file_roles.h"
#include "cli/terminal/ordered_jobs.h"
#include "cli/terminal/output_file.h"
#include "cli/terminal/standard_input.h"
#include "cli/terminal/terminal.h"
#include "cli/texture/texture_conversion.h"
#include "cli/verbs.h"
#include "handover/plan/plan_picture.h"
#include "image/image.h"
#include "text/ascii.h"
#include "text/plain_number.h"
#include "text/printable.h"

namespace cli {
namespace {

constexpr const char* kShownGroup = "What is shown";

class PreviewCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.file_argument("SCENE", file_, "a composition file; - for the standard input").required();
        options
            .option("-o,--output", output_,
                    "the image or film to write; its extension chooses the format, and #### in its name "
                    "stands for the number of the frame")
            .value_name("FILE")
            .group("Output");
        options.flag("--show", show_, "draw the frame in the terminal instead of writing it").group("Output");
        add_protocol_option(options, protocol_, "Output");
        options.flag("--json", json_, "write one JSON document instead of text").group("Output");
        options
            .option("--frame", frame_,
                    "the frame of the composition, counted from 0; without this, the first, or all where "
                    "the output has #### or is a film")
            .value_name("N")
            .check([](const std::string& text) {
                return parse_frame(text) ? std::string() : '"' + text + "\" is not a number from 0";
            })
            .group(kShownGroup);
        options.option("--frames", range_, "the frames from A to B")
            .value_name("A-B")
            .check([](const std::string& text) {
                FrameChoice choice;
                return parse_frame_range(text, choice) ? std::string()
                                                       : '"' + text + "\" is not A-B, with A first";
            })
            .group(kShownGroup);
        options.option("--every", every_, "of these frames, or of all, every K-th")
            .value_name("K")
            .check([](const std::string& text) {
                return parse_frame(text).value_or(0) > 0 ? std::string()
                                                         : '"' + text + "\" is not a number from 1";
            })
            .group(kShownGroup);
        options.option("--comp", composition_, "a composition by its name; without this, the outermost one")
            .value_name("NAME")
            .group(kShownGroup);
        options.flag("--linear", linear_, "blend in linear light, as hosts can today").group(kShownGroup);
        options.flag("--raw", raw_, "keep the composition's pixels, even if they are not square")
            .group(kShownGroup);
        options
            .option("--fields", fields_,
                    "of interlaced footage: the rows of one field, each twice, or both as they are")
            .value_name("upper|lower|both")
            .choices({"upper", "lower", "both"})
            .show_default()
            .group(kShownGroup);
        options
            .option("--overlay", overlay_,
                    "draw over the frame what the scene's camera sees: camera, nulls, safe, grid, or several "
                    "with commas")
            .value_name("PARTS")
            .group(kShownGroup);
        options
            .flag("--plan", plan_,
                  "instead of a frame, cameras, lights and nulls from above, from the side and over time; "
                  "FILE is an .svg file")
            .group(kShownGroup);
        options
            .flag("--sheet", sheet_,
                  "instead of a frame, a contact sheet of every composition and pass, with marks on what is "
                  "missing, short or of another size")
            .group(kShownGroup);
        add_finding_options(options, choices_, false);
        options.option("-j,--jobs", jobs_, "how many processors to use; 0 for all")
            .value_name("N")
            .range(0, kMostJobs)
            .show_default()
            .group("Work");
        add_bundle_option(options, bundle_);
    }

    ExitCode run(Terminal& terminal) override {
        if (show_) {
            return show_frame(terminal);
        }
        if (output_.empty()) {
            throw UsageError("-o FILE or --show is required");
        }
        if (sheet_) {
            return draw_sheet(terminal);
        }
        if (plan_) {
            return draw_plan(terminal);
        }
        const FrameChoice choice = frame_choice();
        if (!makes_film() && !image::can_write(output_)) {
            throw UsageError("no image format has the extension of " + output_);
        }
        const FoundScene scene(file_, choices_);
        const FoundBundle bundle = find_bundle(bundle_);
        const PreviewOptions shown = preview_options(scene.reading());
        Preview preview(scene.reading(), bundle, shown);
        PreviewRun run;
        if (preview.code() == ExitCode::fine) {
            const std::vector<FrameFile> files = frame_files(preview, choice);
            refuse_to_overwrite({&scene.original(), &scene.reading()}, bundle, files);
            run = draw(preview, files, shown, terminal);
        }
        return tell(preview, shown, run, terminal);
    }

  private:
    static constexpr int kMostJobs = 256;

    ExitCode show_frame(Terminal& terminal) const {
        if (!output_.empty() || json_ || plan_ || sheet_ || !range_.empty() || !every_.empty()) {
            throw UsageError("--show excludes -o, --json, --plan, --sheet, --frames and --every");
        }
        const std::optional<TerminalScreen> screen = TerminalScreen::find(protocol_);
        if (!screen) {
            throw UsageError(kNoScreen);
        }
        const FoundScene scene(file_, choices_);
        const FoundBundle bundle = find_bundle(bundle_);
        const PreviewOptions shown = preview_options(scene.reading());
        Preview preview(scene.reading(), bundle, shown);
        PreviewRun run;
        if (preview.code() == ExitCode::fine) {
            FrameChoice choice;
            choice.frame = frame_.empty() ? 0 : parse_frame(frame_);
            std::string problem;
            const std::vector<std::int64_t> frames = chosen_frames(choice, preview.frame_count(), problem);
            if (!problem.empty()) {
                throw UsageError(problem);
            }
            PreviewFrame frame = preview.draw(frames.front());
            add_findings(frame, run);
            if (frame.picture && !screen->draw(screen->fitted(*frame.picture), terminal)) {
                run.code = ExitCode::cannot_read_or_write;
            }
        }
        tell_findings(preview, run, terminal);
        return most_serious(preview.code(), run.code);
    }

    // Footage does not count, so the exit code does not tell of any that is missing.
    ExitCode draw_plan(Terminal& terminal) const {
        if (!(frame_.empty() && range_.empty() && every_.empty() && composition_.empty() &&
              overlay_.empty()) ||
            json_) {
            throw UsageError("--plan excludes --frame, --frames, --every, --comp, --overlay and --json");
        }
        if (!text::ends_with_ignoring_case(output_, ".svg")) {
            throw UsageError("--plan writes SVG, so the name of its output ends in .svg");
        }
        const SceneReading reading = read_scene(file_);
        const FoundBundle bundle = find_bundle(bundle_);
        refuse_to_overwrite({&reading}, bundle, {{0, output_}});
        OutputFile output(output_);
        const handover::HandoverOptions options;
        const HandedOver run = hand_over(reading, bundle, handover::Version::corrected, options);
        for (const Diagnostic& diagnostic : run.diagnostics) {
            terminal.err << diagnostic_text(diagnostic, terminal.err_paint);
        }
        for (const std::string& problem : run.problems) {
            complain(terminal, problem);
        }
        if (!run.handover) {
            return run.code;
        }
        output.write(plan::plan_picture(*run.handover, options.cut_angle_degrees));
        output.close();
        terminal.out << "plan of " << run.handover->objects.size() << " objects -> "
                     << text::printable(output_) << '\n';
        return ExitCode::fine;
    }

    ExitCode draw_sheet(Terminal& terminal) const {
        if (plan_ || json_ || !range_.empty() || !every_.empty() || !overlay_.empty()) {
            throw UsageError("--sheet excludes --plan, --overlay, --frames, --every and --json");
        }
        if (!image::can_write(output_)) {
            throw UsageError("no image format has the extension of " + output_);
        }
        const FoundScene scene(file_, choices_);
        const FoundBundle bundle = find_bundle(bundle_);
        const PreviewOptions shown = preview_options(scene.reading());
        Preview preview(scene.reading(), bundle, shown);
        if (preview.code() != ExitCode::fine) {
            return tell(preview, shown, {}, terminal);
        }
        refuse_to_overwrite({&scene.original(), &scene.reading()}, bundle, {{0, output_}});
        const std::string heading =
            text::printable(is_standard_input(file_) ? preview.composition_name() : file_);
        Sheet sheet;
        {
            std::optional<Progress> progress;
            sheet = scene_sheet(preview, heading, frame_.empty() ? std::nullopt : parse_frame(frame_),
                                composition_.empty() ? 0 : preview.composition().id,
                                [&](std::size_t tile, std::size_t tiles, const std::string& name) {
                                    if (tile == 0) {
                                        progress.emplace(terminal, tiles);
                                    }
                                    progress->step(text::printable(name));
                                });
        }
        if (!sheet.picture) {
            complain(terminal, sheet.problem);
            return ExitCode::refused;
        }
        const image::Writing writing = image::write(output_, *sheet.picture);
        if (writing.error) {
            complain(terminal, writing.error->reason);
            return image_exit_code(*writing.error);
        }
        terminal.out << text::count_text(sheet.tiles, "picture", "pictures") << ", " << sheet.marked
                     << " marked -> " << text::printable(output_) << '\n';
        return sheet.missing ? ExitCode::footage_missing : ExitCode::fine;
    }

    /// One frame as WebP is a picture.
    [[nodiscard]] bool makes_film() const {
        return is_film(output_) && !has_number_signs(output_) &&
               (frame_.empty() || !image::can_write(output_));
    }

    PreviewRun draw(Preview& preview, const std::vector<FrameFile>& files, const PreviewOptions& shown,
                    Terminal& terminal) const {
        Progress progress(terminal, files.size());
        const auto drawing = [&](std::size_t i) { progress.step("frame " + std::to_string(files[i].frame)); };
        if (!makes_film()) {
            return write_frames(preview, files, shown.render.threads, drawing);
        }
        std::vector<std::int64_t> frames;
        frames.reserve(files.size());
        for (const FrameFile& file : files) {
            frames.push_back(file.frame);
        }
        const std::int64_t step = every_.empty() ? 1 : std::min(*parse_frame(every_), preview.frame_count());
        return write_film(preview, frames, step, output_, drawing);
    }

    [[nodiscard]] FrameChoice frame_choice() const {
        if (!frame_.empty() && !(range_.empty() && every_.empty())) {
            throw UsageError("--frame excludes --frames and --every");
        }
        FrameChoice choice;
        if (!frame_.empty()) {
            choice.frame = parse_frame(frame_);
        }
        if (!range_.empty()) {
            (void)parse_frame_range(range_, choice);
        }
        if (!every_.empty()) {
            choice.every = parse_frame(every_);
        }
        if (!has_number_signs(output_) && !makes_film()) {
            if (choice.several()) {
                throw UsageError(
                    "several frames need #### in the name of the output, as in frame.####.png, or a film, "
                    ".mp4 or .webp");
            }
            choice.frame = choice.frame.value_or(0);
        }
        return choice;
    }

    [[nodiscard]] std::vector<FrameFile> frame_files(const Preview& preview,
                                                     const FrameChoice& choice) const {
        std::string problem;
        const std::vector<std::int64_t> frames = chosen_frames(choice, preview.frame_count(), problem);
        if (!problem.empty()) {
            throw UsageError(problem);
        }
        std::vector<FrameFile> files;
        files.reserve(frames.size());
        for (const std::int64_t frame : frames) {
            files.push_back({frame, has_number_signs(output_) ? numbered_path(output_, frame) : output_});
        }
        return files;
    }

    [[nodiscard]] PreviewOptions preview_options(const SceneReading& reading) const {
        PreviewOptions options;
        options.composition = composition_;
        options.raw = raw_;
        options.render.light = linear_ ? render::Light::linear : render::Light::as_stored;
        options.render.fields = fields_ == "upper"   ? render::Fields::upper
                                : fields_ == "lower" ? render::Fields::lower
                                                     : render::Fields::both;
        options.render.threads = threads_for(jobs_);
        // What is wrong with a scene that cannot be read is told by the preview.
        if (!overlay_.empty() && !reading.error) {
            try {
                const auto overlay = std::make_shared<Overlay>(reading, overlay_parts(overlay_));
                options.over = [overlay](Texture& picture, std::int64_t frame) {
                    overlay->draw(picture, frame);
                };
            } catch (const std::invalid_argument& wrong) {
                throw UsageError(std::string("--overlay ") + wrong.what());
            }
        }
        return options;
    }

    static void refuse_to_overwrite(std::initializer_list<const SceneReading*> scenes,
                                    const FoundBundle& bundle, const std::vector<FrameFile>& files) {
        FileRoles roles;
        for (const SceneReading* const scene : scenes) {
            add_import_reads(*scene, bundle, roles);
        }
        for (const FrameFile& file : files) {
            if (&file != files.data() && file.path == files.front().path) {
                continue;  // one film
            }
            const std::string refusal = roles.writes(file.path, "frame " + std::to_string(file.frame));
            if (!refusal.empty()) {
                throw UsageError(refusal);
            }
        }
    }

    ExitCode tell(const Preview& preview, const PreviewOptions& shown, const PreviewRun& run,
                  Terminal& terminal) const {
        if (json_) {
            terminal.out << json_text_of(preview_document(file_, preview, shown, run));
        } else {
            terminal.out << preview_text(preview, run, output_, terminal.out_paint);
        }
        terminal.out << std::flush;
        tell_findings(preview, run, terminal);
        return most_serious(preview.code(), run.code);
    }

    static void tell_findings(const Preview& preview, const PreviewRun& run, Terminal& terminal) {
        for (const auto* const diagnostics : {&preview.diagnostics(), &run.diagnostics}) {
            for (const Diagnostic& diagnostic : *diagnostics) {
                terminal.err << diagnostic_text(diagnostic, terminal.err_paint);
            }
        }
        for (const auto* const problems : {&preview.problems(), &run.problems}) {
            for (const std::string& problem : *problems) {
                complain(terminal, problem);
            }
        }
    }

    std::string file_;
    std::string output_;
    std::string frame_;
    std::string range_;
    std::string every_;
    std::string composition_;
    std::string fields_ = "both";
    bool linear_ = false;
    bool raw_ = false;
    bool plan_ = false;
    std::string overlay_;
    bool sheet_ = false;
    bool show_ = false;
    std::string protocol_ = "auto";
    bool json_ = false;
    int jobs_ = 0;
    FindingChoices choices_;
    std::string bundle_;
};

}  // namespace

Verb preview_verb() {
    return {
        "preview",
        "draw a frame of a scene's composition as a picture",
        {"Imports SCENE with the plug-in into an embedded host and draws what its layers show: footage "
         "with its alpha as it is interpreted, blended from bottom to top, nested compositions, "
         "sequences at their frames, and textures through the plug-in. Footage lies in the middle at its "
         "own size, as a host adds it. Cameras and lights are not looked through.",
         "Values are blended as they are stored, with 8 bits a channel in the files and no rounding "
         "between layers, as hosts did when these scenes were made. Footage that is missing or cannot be "
         "read is shown as colour bars with its name, and the exit code is 4. A PNG has straight alpha.",
         "--show draws one frame in the terminal, as `vxr texture view` draws textures; what is transparent "
         "shows a chequerboard.",
         "Films are made by ffmpeg, if it is installed: MP4 with H.264, on black, or WebP, with alpha."},
        {{"vxr preview shot.aec -o shot.png", "The first frame of the outermost composition."},
         {"vxr preview shot.aec --show --protocol blocks",
          "The same in the terminal, in characters; without --protocol as well as it can."},
         {"vxr preview shot.aec --frames 0-1 -o frame.####.png",
          "The first two frames, as frame.0000.png and frame.0001.png."},
         {"vxr preview shot.aec --every 10 -o small.####.jpg --json | jq '.frames[].output'",
          "Every tenth frame of the whole length, on black, and the names of the files."},
         {"vxr preview shot.aec -o shot.mp4", "The whole composition as a film, on black."},
         {"vxr preview shot.aec --comp Inner --frame 1 -o inner.png",
          "A nested composition by itself, at its second frame."},
         {"vxr preview shot.aec --overlay camera,nulls,grid -o shot.png",
          "Whether camera and footage agree, at one glance."},
         {"vxr preview shot.aec --sheet -o sheet.png",
          "Every pass and composition at one glance, with what is wrong with them."},
         {"vxr preview shot.aec --plan -o plan.svg",
          "Where the camera goes and what it sees, for any browser."}},
        []() -> std::unique_ptr<Command> { return std::make_unique<PreviewCommand>(); }};
}

}  // namespace cli
