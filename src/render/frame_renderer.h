#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "diagnostic/diagnostic.h"
#include "embedded/project.h"
#include "limit/limits.h"
#include "render/footage_pictures.h"
#include "render/frame_plan.h"
#include "render/pixel_rows.h"

namespace render {

/// Which rows of interlaced footage a frame shows.
enum class Fields : std::uint8_t {
    both,   ///< all rows as they are stored
    upper,  ///< rows 0, 2, 4..., each shown twice
    lower,  ///< rows 1, 3, 5..., each shown twice
};

struct RenderOptions {
    Light light = Light::as_stored;
    Fields fields = Fields::both;
    std::size_t threads = 1;  ///< the frame has the same bytes whatever their number
    /// Memory for decoded pictures and for unfinished compositions. What does not fit is drawn in passes and
    /// bands, with the same bytes.
    std::int64_t pictures_bytes = limits::kPreviewPictures_bytes;
    std::int64_t rows_bytes = limits::kPreviewRows_bytes;
};

/// Receives row `y`, counted from the top, as pixels of compositing.h; the row is not kept. Called once for
/// every row of a frame, in any order and from several threads.
using RowSink = std::function<void(std::int64_t y, const float* row)>;

/// What became of a frame.
struct RenderedFrame {
    std::optional<diagnostic::Diagnostic> error;  ///< why the frame was not drawn; no row was given
    std::vector<diagnostic::Diagnostic>
        findings;  ///< what it does not show as the scene says, each told once
};

/// Draws frames of the compositions of one project, one at a time, from the bottom layer to the top one.
/// Footage lies in the middle, at its own size, as a host adds it; cameras and lights are not looked through.
/// Between layers nothing is rounded.
///
/// Memory stays within a few hundred MiB whatever the number of layers: pictures are read as they are needed,
/// and frames whose nested compositions would take too much are drawn in bands.
class FrameRenderer {
  public:
    /// `project` outlives this object.
    FrameRenderer(const embedded::Project& project, ModulePictures module_pictures,
                  const RenderOptions& options);

    /// `frame` is one of frame_count().
    [[nodiscard]] RenderedFrame render(embedded::Id composition, std::int64_t frame, const RowSink& sink);

    /// One footage by itself, at its own size: the picture of `file`, one of its files, empty for a
    /// placeholder.
    [[nodiscard]] RenderedFrame render_footage(embedded::Id footage, const std::string& file,
                                               const RowSink& sink);

  private:
    [[nodiscard]] RenderedFrame draw(const FramePlan& plan, std::int64_t width_px, std::int64_t height_px,
                                     const RowSink& sink);

    const embedded::Project& project_;
    RenderOptions options_;
    FootagePictures pictures_;
};

}  // namespace render
