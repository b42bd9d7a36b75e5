#include "cli/project/frame_run.h"

#include <cstddef>
#include <nlohmann/json.hpp>
#include <utility>

#include "cli/project/host_setup.h"
#include "cli/project/project_labels.h"
#include "cli/report/diagnostic_json.h"
#include "cli/report/diagnostic_text.h"
#include "embedded/project_json.h"
#include "system/files.h"
#include "texture/value/texture_file.h"

namespace cli {
namespace {

void refuse(FrameRun& run, std::string problem, ExitCode code = ExitCode::refused) {
    run.code = most_serious(run.code, code);
    run.problems.push_back(std::move(problem));
}

/// The host's 8-bit pixels as a picture; colour is neither multiplied nor divided by alpha.
Texture picture_of(const embedded::DrawResult& drawn) {
    Texture picture;
    picture.width_px = drawn.width_px;
    picture.height_px = drawn.height_px;
    picture.mode = Texture::kRgb;
    picture.pixels = PixelBuffer(drawn.pixels.size() * 3);
    AlphaChannel alpha{"A", PixelBuffer(drawn.pixels.size())};
    for (std::size_t i = 0; i < drawn.pixels.size(); ++i) {
        const PF_Pixel& pixel = drawn.pixels[i];
        picture.pixels[3 * i] = pixel.red;
        picture.pixels[3 * i + 1] = pixel.green;
        picture.pixels[3 * i + 2] = pixel.blue;
        alpha.values[i] = pixel.alpha;
    }
    picture.alphas.push_back(std::move(alpha));
    return picture;
}

A_long divided_rounding_up(A_long side_px, A_long divisor) {
    return side_px / divisor + (side_px % divisor == 0 ? 0 : 1);
}

void open_and_draw(FrameRun& run, embedded::Host& host, const FrameRequest& request) {
    const std::string path = os::absolute_path(run.file);
    const embedded::Module* const module = host.module_for(path);
    if (module == nullptr) {
        return refuse(run, "no input module of the plug-in reads files like " + run.file);
    }
    if (const std::string problem = host.path_problem(path); !problem.empty()) {
        return refuse(run, run.file + ": " + problem + " (--host classic)");
    }
    run.module = module->name();
    const embedded::OpenResult opened = host.open_with_module(path);
    run.open = opened.callback;
    if (opened.in_spec == 0 || run.open.code != kHostErrorNone) {
        // The module refuses a picture without pixels and does not say why.
        const TextureReading reading = read_texture(run.file);
        const bool no_picture = reading.error.has_value() && reading.error->code == TextureFault::no_picture;
        refuse(run, "the module did not open the file and ended " + end_text(run.open) +
                        (no_picture ? ": " + reading.error->reason : ""));
        return;
    }
    run.in_spec = host.project().in_spec(opened.in_spec);
    embedded::FrameShape shape;
    const A_long divisor = request.resolution_divisor;
    shape.width_px = request.size ? request.size->width_px : divided_rounding_up(run.in_spec->width, divisor);
    shape.height_px =
        request.size ? request.size->height_px : divided_rounding_up(run.in_spec->height, divisor);
    shape.resolution_divisor = divisor;
    shape.fill = request.fill;
    const embedded::DrawResult drawn = host.draw(opened.in_spec, shape);
    run.draw = drawn.callback;
    if (!drawn.error.empty()) {
        return refuse(run, "no frame was requested: " + drawn.error);
    }
    if (run.draw.code != kHostErrorNone) {
        return refuse(run, "the frame was not drawn; the module ended " + end_text(run.draw));
    }
    run.frame = picture_of(drawn);
}

const char* alpha_label_text(const std::optional<AEIO_AlphaLabel>& label) {
    if (!label.has_value()) {
        return "no alpha label";
    }
    switch (label->alpha_type) {
        case kAlphaTypeStraight:
            return "alpha straight";
        case kAlphaTypePremultiplied:
            return "alpha premultiplied";
        case kAlphaTypeIgnore:
            return "alpha ignored";
        case kAlphaTypeNone:
            return "no alpha";
        default:
            return "alpha of an unknown kind";
    }
}

}  // namespace

FrameRun draw_file(embedded::Host& host, const FoundBundle& bundle, const std::string& file,
                   const FrameRequest& request) {
    FrameRun run;
    run.file = file;
    std::string problem;
    run.code = load_bundle(host, bundle, problem);
    if (run.code != ExitCode::fine) {
        run.problems.push_back(std::move(problem));
        return run;
    }
    std::string why_not;
    if (!os::is_regular_file(file, why_not)) {
        refuse(run, file + ": " + why_not, ExitCode::cannot_read_or_write);
    } else {
        open_and_draw(run, host, request);
    }
    // Nothing changes from here on, and what the bundle leaves behind is in the report.
    host.unload();
    if (run.code == ExitCode::fine && !host.conformance().clean()) {
        refuse(run, "the plug-in broke a rule of the host");
    }
    return run;
}

std::string in_spec_text(const embedded::InSpec& in_spec) {
    constexpr double kFixedOne = 65536;  // 16.16
    const std::string length =
        in_spec.duration.value == 0 ? "still" : plain_number(seconds_of(in_spec.duration)) + " s";
    return std::to_string(in_spec.width) + " x " + std::to_string(in_spec.height) + ", " +
           std::to_string(in_spec.depth) + " bits, " + alpha_label_text(in_spec.alpha_label) + ", " + length +
           " at " + plain_number(in_spec.native_fps / kFixedOne) + " frames a second";
}

embedded::Json frame_document(const embedded::Host& host, const FrameRun& run, const std::string& output) {
    using embedded::Json;
    const bool drawn = run.frame.has_value();
    Json document = embedded::project_to_json(host.project());
    document["discipline"] = embedded::conformance_to_json(host.conformance());
    document["frame"] = Json{{"file", embedded::json_text(run.file)},
                             {"exit_code", static_cast<int>(run.code)},
                             {"module", run.module.empty() ? Json() : embedded::json_text(run.module)},
                             {"open_result", run.module.empty() ? Json() : Json(run.open.code)},
                             {"draw_result", run.in_spec.has_value() ? Json(run.draw.code) : Json()},
                             {"width_px", drawn ? Json(run.frame->width_px) : Json()},
                             {"height_px", drawn ? Json(run.frame->height_px) : Json()},
                             {"output", embedded::json_text(output)},
                             {"problems", texts_json(run.problems)}};
    return document;
}

}  // namespace cli
