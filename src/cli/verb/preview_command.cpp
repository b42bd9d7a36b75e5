#include <algorithm>
#include <initializer_list>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "cli/footage/finding_options.h"
#include "cli/handover/handover_run.h"
#include "cli/job/relinked_copy.h"
#include "cli/options.h"
#include "cli/preview/preview.h"
#include "cli/project/host_setup.h"
#include "cli/project/import_run.h"
#include "cli/report/diagnostic_text.h"
#include "cli/terminal/file_roles.h"
#include "cli/terminal/output_file.h"
#include "cli/terminal/terminal.h"
#include "cli/texture/texture_conversion.h"
#include "cli/verbs.h"
#include "handover/plan/plan_picture.h"
#include "image/image.h"
#include "text/ascii.h"
#include "text/printable.h"

namespace cli {
namespace {

constexpr const char* kShownGroup = "What is shown";

class PreviewCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.file_argument("SCENE", file_, "a composition file; - for the standard input").required();
        options.option("-o,--output", output_, "the image to write; its extension chooses the format")
            .value_name("IMAGE")
            .required()
            .group("Output");
        options.option("--frame", frame_, "the frame of the composition, counted from 0")
            .value_name("N")
            .show_default()
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
            .flag("--plan", plan_,
                  "instead of a frame, cameras, lights and nulls from above, from the side and over time; "
                  "IMAGE is an .svg file")
            .group(kShownGroup);
        add_finding_options(options, choices_, false);
        add_bundle_option(options, bundle_);
    }

    ExitCode run(Terminal& terminal) override {
        if (plan_) {
            return draw_plan(terminal);
        }
        if (!image::can_write(output_)) {
            throw UsageError("no image format has the extension of " + output_);
        }
        const FoundScene scene(file_, choices_);
        const FoundBundle bundle = find_bundle(bundle_);
        refuse_to_overwrite({&scene.original(), &scene.reading()}, bundle);
        Preview preview(scene.reading(), bundle, preview_options());
        if (preview.code() != ExitCode::fine) {
            return tell(preview, terminal);
        }
        const std::optional<int> frame = parse_option_integer(frame_);
        if (!frame || *frame < 0 || *frame >= preview.frame_count()) {
            throw UsageError("--frame " + frame_ + " is not in the composition, which has the frames 0 to " +
                             std::to_string(preview.frame_count() - 1));
        }
        return write(preview, *frame, terminal);
    }

  private:
    // Footage does not count, so the exit code does not tell of any that is missing.
    ExitCode draw_plan(Terminal& terminal) const {
        if (!text::ends_with_ignoring_case(output_, ".svg")) {
            throw UsageError("--plan writes SVG, so the name of its output ends in .svg");
        }
        const SceneReading reading = read_scene(file_);
        const FoundBundle bundle = find_bundle(bundle_);
        refuse_to_overwrite({&reading}, bundle);
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

    [[nodiscard]] PreviewOptions preview_options() const {
        PreviewOptions options;
        options.composition = composition_;
        options.raw = raw_;
        options.render.light = linear_ ? render::Light::linear : render::Light::as_stored;
        options.render.fields = fields_ == "upper"   ? render::Fields::upper
                                : fields_ == "lower" ? render::Fields::lower
                                                     : render::Fields::both;
        options.render.threads = std::max<std::size_t>(1, std::thread::hardware_concurrency());
        return options;
    }

    void refuse_to_overwrite(std::initializer_list<const SceneReading*> scenes,
                             const FoundBundle& bundle) const {
        FileRoles roles;
        for (const SceneReading* const scene : scenes) {
            add_import_reads(*scene, bundle, roles);
        }
        if (const std::string refusal = roles.writes(output_, "--output"); !refusal.empty()) {
            throw UsageError(refusal);
        }
    }

    ExitCode write(Preview& preview, std::int64_t frame, Terminal& terminal) const {
        PreviewFrame drawn = preview.draw(frame);
        for (const Diagnostic& finding : drawn.findings) {
            terminal.err << diagnostic_text(finding, terminal.err_paint);
        }
        if (!drawn.picture) {
            terminal.err << diagnostic_text(*drawn.error, terminal.err_paint);
            return ExitCode::refused;
        }
        image::WriteOptions options;
        options.alpha.pixels = image::AlphaPixels::straight;
        const image::Writing writing = image::write(output_, *drawn.picture, options);
        if (writing.error) {
            complain(terminal, writing.error->reason);
            return image_exit_code(*writing.error);
        }
        terminal.out << terminal.out_paint(Ink::bold, text::printable(preview.composition_name()))
                     << ": frame " << frame << " of " << preview.frame_count() << ", "
                     << drawn.picture->width_px << " x " << drawn.picture->height_px << " -> "
                     << text::printable(output_) << '\n';
        return drawn.findings.empty() ? ExitCode::fine : ExitCode::footage_missing;
    }

    static ExitCode tell(const Preview& preview, Terminal& terminal) {
        for (const Diagnostic& diagnostic : preview.diagnostics()) {
            terminal.err << diagnostic_text(diagnostic, terminal.err_paint);
        }
        for (const std::string& problem : preview.problems()) {
            complain(terminal, problem);
        }
        return preview.code();
    }

    std::string file_;
    std::string output_;
    std::string frame_ = "0";
    std::string composition_;
    std::string fields_ = "both";
    bool linear_ = false;
    bool raw_ = false;
    bool plan_ = false;
    FindingChoices choices_;
    std::string bundle_;
};

}  // namespace

Verb preview_verb() {
    return {"preview",
            "draw a frame of a scene's composition as a picture",
            {"Imports SCENE with the plug-in into an embedded host and draws what its layers show: footage "
             "with its alpha as it is interpreted, blended from bottom to top, nested compositions, "
             "sequences at their frames, and textures through the plug-in. Footage lies in the middle at its "
             "own size, as a host adds it. Cameras and lights are not looked through.",
             "Values are blended as they are stored, with 8 bits a channel in the files and no rounding "
             "between layers, as hosts did when these scenes were made. Footage that is missing or cannot be "
             "read is shown as colour bars with its name, and the exit code is 4. A PNG has straight alpha."},
            {{"vxr preview shot.aec -o shot.png", "The first frame of the outermost composition."},
             {"vxr preview shot.aec --comp Inner --frame 1 -o inner.png",
              "A nested composition by itself, at its second frame."},
             {"vxr preview shot.aec --plan -o plan.svg",
              "Where the camera goes and what it sees, for any browser."}},
            []() -> std::unique_ptr<Command> { return std::make_unique<PreviewCommand>(); }};
}

}  // namespace cli
