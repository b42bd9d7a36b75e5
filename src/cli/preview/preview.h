#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/project/host_setup.h"
#include "cli/report/diagnostic_text.h"
#include "cli/scene/scene_reading.h"
#include "embedded/host.h"
#include "embedded/project.h"
#include "image/image.h"
#include "render/frame_renderer.h"
#include "render/square_pixels.h"

namespace cli {

/// What a preview shows, and how.
struct PreviewOptions {
    std::string composition;  ///< its name; empty for the outermost one
    bool raw = false;         ///< a pixel of the composition is a pixel of the picture, whatever its aspect
    render::RenderOptions render;
    /// Draws over a frame that is done; may be empty.
    std::function<void(Texture& picture, std::int64_t frame)> over;
};

/// One frame as a picture.
struct PreviewFrame {
    std::optional<Texture> picture;    ///< red, green, blue and one alpha, colour straight
    std::optional<Diagnostic> error;   ///< why there is no picture
    std::vector<Diagnostic> findings;  ///< what it does not show as the scene says; each told once a preview
};

/// A scene as the plug-in imports it, to look at. Only one lives at a time, because it keeps the host whose
/// input module draws the textures; for one thread.
class Preview {
  public:
    /// Imports the scene into an embedded host of the current generation. If that fails, or there is no such
    /// composition, code() says so and nothing can be drawn.
    Preview(const SceneReading& reading, const FoundBundle& bundle, const PreviewOptions& options);

    [[nodiscard]] ExitCode code() const { return code_; }
    [[nodiscard]] const std::vector<Diagnostic>& diagnostics() const { return diagnostics_; }
    [[nodiscard]] const std::vector<std::string>& problems() const { return problems_; }

    // Only if code() is fine.

    [[nodiscard]] const embedded::Project& project() const { return imported_; }
    [[nodiscard]] const embedded::Composition& composition() const { return imported_.composition(shown_); }
    [[nodiscard]] std::string composition_name() const;
    [[nodiscard]] std::int64_t frame_count() const { return render::frame_count(composition()); }
    [[nodiscard]] double rate_fps() const;
    [[nodiscard]] double pixel_aspect() const;
    [[nodiscard]] std::int64_t width_px() const { return rows_->width(); }
    [[nodiscard]] std::int64_t height_px() const { return composition().height; }

    /// Frame `frame` of the composition, counted from 0 and less than frame_count().
    [[nodiscard]] PreviewFrame draw(std::int64_t frame);
    /// The same of any composition, at its own frames, with nothing drawn over it.
    [[nodiscard]] PreviewFrame draw(embedded::Id composition, std::int64_t frame);
    /// One footage by itself, as FrameRenderer::render_footage() draws it.
    [[nodiscard]] PreviewFrame draw_footage(embedded::Id footage, const std::string& file);

  private:
    [[nodiscard]] PreviewFrame draw_rows(
        const render::SquarePixels& rows, std::int64_t height_px,
        const std::function<render::RenderedFrame(const render::RowSink& sink)>& render);
    void refuse(ExitCode code, std::string problem);
    [[nodiscard]] embedded::Id find_composition(const std::string& name);
    [[nodiscard]] render::PictureReading draw_texture(const embedded::Footage& footage);

    PreviewOptions options_;
    FoundBundle bundle_;
    embedded::Host host_;
    ExitCode code_ = ExitCode::fine;
    std::vector<Diagnostic> diagnostics_;
    std::vector<std::string> problems_;
    embedded::Id shown_ = 0;
    embedded::Project imported_;  ///< unchanged by the textures that are opened to draw them
    bool bundle_loaded_ = false;
    std::optional<render::SquarePixels> rows_;
    std::optional<render::RowWriter> writer_;
    std::optional<render::FrameRenderer> renderer_;
};

}  // namespace cli
