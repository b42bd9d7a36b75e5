#include "cli/preview/preview.h"

#include <algorithm>
#include <utility>

#include "cli/project/import_run.h"
#include "limit/limits.h"
#include "render/code.h"
#include "text/printable.h"

namespace cli {
namespace {

double ratio_of(const A_Ratio& ratio) {
    return ratio.den == 0 ? 0 : static_cast<double>(ratio.num) / static_cast<double>(ratio.den);
}

render::Picture picture_of(const embedded::DrawResult& drawn, bool has_alpha) {
    render::Picture picture;
    picture.width_px = drawn.width_px;
    picture.height_px = drawn.height_px;
    picture.has_alpha = has_alpha;
    picture.bytes.resize(drawn.pixels.size() * 4);
    std::uint8_t* to = picture.bytes.data();
    for (const PF_Pixel& pixel : drawn.pixels) {
        to[0] = pixel.red;
        to[1] = pixel.green;
        to[2] = pixel.blue;
        to[3] = pixel.alpha;
        to += 4;
    }
    return picture;
}

/// A picture into whose rows several threads write.
Texture empty_picture(std::int64_t width_px, std::int64_t height_px) {
    Texture picture;
    picture.width_px = static_cast<std::int32_t>(width_px);
    picture.height_px = static_cast<std::int32_t>(height_px);
    picture.mode = Texture::kRgb;
    picture.pixels = PixelBuffer(picture.pixel_count() * 3);
    picture.alphas.push_back({"A", PixelBuffer(picture.pixel_count())});
    return picture;
}

void put_row(Texture& picture, std::int64_t y, const std::vector<std::uint8_t>& bytes) {
    const auto width = static_cast<std::size_t>(picture.width_px);
    std::uint8_t* colour = picture.pixels.data() + static_cast<std::size_t>(y) * width * 3;
    std::uint8_t* alpha = picture.alphas.front().values.data() + static_cast<std::size_t>(y) * width;
    const std::uint8_t* from = bytes.data();
    for (std::size_t x = 0; x < width; ++x, from += 4, colour += 3) {
        colour[0] = from[0];
        colour[1] = from[1];
        colour[2] = from[2];
        alpha[x] = from[3];
    }
}

std::string too_large_text(std::int64_t width_px, std::int64_t height_px) {
    return "the frame would have " + std::to_string(width_px) + " x " + std::to_string(height_px) +
           " pixels, and a preview draws at most " + std::to_string(limits::kPreviewPixels);
}

}  // namespace

Preview::Preview(const SceneReading& reading, const FoundBundle& bundle, const PreviewOptions& options)
    : options_(options), bundle_(bundle), host_(host_of_kind(kUsualHost)) {
    if (reading.error) {
        diagnostics_.push_back(*reading.error);
        code_ = reading.code;
        return;
    }
    ImportRun run = import_scene(host_, host_of_kind(kUsualHost), bundle, reading);
    if (run.code != ExitCode::fine) {
        code_ = run.code;
        diagnostics_ = std::move(run.diagnostics);
        problems_ = std::move(run.problems);
        return;
    }
    imported_ = host_.project();
    shown_ = find_composition(options.composition);
    if (shown_ == 0) {
        return;
    }
    const embedded::Composition& shown = composition();
    const double aspect = options.raw ? 1 : ratio_of(shown.pixel_aspect);
    const std::int64_t width = render::SquarePixels::width(shown.width, aspect);
    if (width > limits::kPreviewPixels / std::max<std::int64_t>(1, shown.height)) {
        refuse(ExitCode::refused, too_large_text(width, shown.height) +
                                      (options.raw ? "" : "; --raw shows its pixels as they are"));
        return;
    }
    rows_.emplace(shown.width, aspect);
    writer_.emplace(options.render.light);
    renderer_.emplace(
        imported_, [this](const embedded::Footage& footage) { return draw_texture(footage); },
        options.render);
}

void Preview::refuse(ExitCode code, std::string problem) {
    code_ = most_serious(code_, code);
    problems_.push_back(std::move(problem));
}

embedded::Id Preview::find_composition(const std::string& name) {
    const std::vector<embedded::Composition>& all = imported_.compositions;
    if (all.empty()) {
        refuse(ExitCode::refused, "the scene has no composition");
        return 0;
    }
    if (name.empty()) {
        return all.front().id;
    }
    std::string names;
    for (const embedded::Composition& one : all) {
        const std::string& its_name = imported_.item(one.item).name;
        if (its_name == name) {
            return one.id;
        }
        names += (names.empty() ? "" : ", ") + text::quoted(its_name);
    }
    refuse(ExitCode::usage, "no composition is called " + text::quoted(name) + "; there are " + names);
    return 0;
}

std::string Preview::composition_name() const {
    return imported_.item(composition().item).name;
}

double Preview::rate_fps() const {
    return ratio_of(composition().frame_rate);
}

double Preview::pixel_aspect() const {
    return ratio_of(composition().pixel_aspect);
}

render::PictureReading Preview::draw_texture(const embedded::Footage& footage) {
    if (!bundle_loaded_) {
        std::string problem;
        if (load_bundle(host_, bundle_, problem) != ExitCode::fine) {
            return {std::nullopt, problem};
        }
        bundle_loaded_ = true;
    }
    const embedded::OpenResult opened = host_.open_with_module(footage.path);
    if (opened.in_spec == 0 || opened.callback.code != kHostErrorNone) {
        return {std::nullopt, "the module did not open the file and ended " + end_text(opened.callback)};
    }
    embedded::FrameShape shape;
    shape.width_px = host_.project().in_spec(opened.in_spec).width;
    shape.height_px = host_.project().in_spec(opened.in_spec).height;
    if (std::int64_t{shape.width_px} * shape.height_px > limits::kPreviewPixels) {
        (void)host_.dispose(opened.in_spec);
        return {std::nullopt, "it has more pixels than a preview reads"};
    }
    const embedded::DrawResult drawn = host_.draw(opened.in_spec, shape);
    (void)host_.dispose(opened.in_spec);
    if (!drawn.error.empty() || drawn.callback.code != kHostErrorNone) {
        return {std::nullopt, drawn.error.empty()
                                  ? "the frame was not drawn; the module ended " + end_text(drawn.callback)
                                  : drawn.error};
    }
    return {picture_of(drawn, footage.has_alpha), {}};
}

PreviewFrame Preview::draw(std::int64_t frame) {
    PreviewFrame drawn = draw_rows(*rows_, height_px(), [&](const render::RowSink& sink) {
        return renderer_->render(shown_, frame, sink);
    });
    if (drawn.picture && options_.over) {
        options_.over(*drawn.picture, frame);
    }
    return drawn;
}

PreviewFrame Preview::draw(embedded::Id composition, std::int64_t frame) {
    const embedded::Composition& drawn = imported_.composition(composition);
    const render::SquarePixels rows(drawn.width, options_.raw ? 1 : ratio_of(drawn.pixel_aspect));
    return draw_rows(rows, drawn.height, [&](const render::RowSink& sink) {
        return renderer_->render(composition, frame, sink);
    });
}

PreviewFrame Preview::draw_footage(embedded::Id footage, const std::string& file) {
    const embedded::Footage& drawn = imported_.footage_of(footage);
    const double aspect = ratio_of(drawn.interpretation.pixel_aspect);
    const render::SquarePixels rows(drawn.width, options_.raw || aspect <= 0 ? 1 : aspect);
    return draw_rows(rows, drawn.height, [&](const render::RowSink& sink) {
        return renderer_->render_footage(footage, file, sink);
    });
}

PreviewFrame Preview::draw_rows(
    const render::SquarePixels& rows, std::int64_t height_px,
    const std::function<render::RenderedFrame(const render::RowSink& sink)>& render) {
    PreviewFrame result;
    const std::int64_t width_px = rows.width();
    if (width_px > limits::kPreviewPixels / std::max<std::int64_t>(1, height_px)) {
        result.error =
            diagnostic::make(render::Code::frame_too_large, {}, too_large_text(width_px, height_px));
        return result;
    }
    Texture picture = empty_picture(width_px, height_px);
    render::RenderedFrame rendered = render([&](std::int64_t y, const float* row) {
        thread_local std::vector<float> stretched;
        thread_local std::vector<std::uint8_t> bytes;
        const auto width = static_cast<std::size_t>(width_px);
        bytes.resize(width * 4);
        if (!rows.same()) {
            stretched.resize(width * render::kChannels);
            rows.stretch(row, stretched.data());
            row = stretched.data();
        }
        writer_->write(row, bytes.data(), width);
        put_row(picture, y, bytes);
    });
    result.error = std::move(rendered.error);
    result.findings = std::move(rendered.findings);
    if (!result.error) {
        result.picture = std::move(picture);
    }
    return result;
}

}  // namespace cli
