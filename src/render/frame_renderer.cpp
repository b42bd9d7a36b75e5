#include "render/frame_renderer.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <utility>

#include "limit/limits.h"
#include "render/code.h"
#include "render/compositing.h"
#include "render/parallel.h"

namespace render {
namespace {

constexpr std::int64_t kTileRows = 16;  // of a full HD frame they fit a processor's cache
constexpr std::int64_t kPixel_bytes = kChannels * sizeof(float);
constexpr std::int64_t kBytesOfPixel = 4;

/// The pictures of one frame that are not finished: the outermost composition and those nested in it. Rows
/// from `first_row` on, each as wide as the frame.
struct Canvas {
    std::int64_t first_row = 0;
    std::int64_t rows = 0;
    std::int64_t width = 0;
    std::vector<std::vector<float>> levels;

    Canvas(std::int64_t frame_width, std::int64_t most_rows, std::size_t depth)
        : rows(most_rows), width(frame_width), levels(depth) {}

    [[nodiscard]] float* row(std::size_t level, std::int64_t y) {
        std::vector<float>& picture = levels[level];
        if (picture.empty()) {
            picture.resize(static_cast<std::size_t>(rows * width) * kChannels);
        }
        return picture.data() + static_cast<std::size_t>((y - first_row) * width) * kChannels;
    }
    [[nodiscard]] float* pixel(std::size_t level, std::int64_t y, std::int64_t x) {
        return row(level, y) + static_cast<std::size_t>(x) * kChannels;
    }
    /// Before several threads draw in it.
    void make_levels() {
        for (std::size_t level = 0; level < levels.size(); ++level) {
            (void)row(level, first_row);
        }
    }
};

/// A step of the plan with its picture.
struct Drawing {
    const PlanStep* step = nullptr;
    SharedPicture picture = {};
    const RowReader* reader = nullptr;
    Area place = {};  ///< of the picture
    Area drawn = {};  ///< the part of it that is seen
    bool interlaced = false;
};

/// Which row of a picture stands at its row `y`.
std::int64_t field_row(std::int64_t y, std::int64_t height, Fields fields) {
    switch (fields) {
        case Fields::upper:
            return y & ~std::int64_t{1};
        case Fields::lower: {
            const std::int64_t row = y | 1;
            return row < height ? row : std::max<std::int64_t>(height - 2, 0) | (height > 1 ? 1 : 0);
        }
        case Fields::both:
            break;
    }
    return y;
}

RowReader::Meaning meaning_of(const embedded::Footage& footage, bool has_alpha, Light light) {
    const AEGP_AlphaLabel& label = footage.interpretation.alpha;
    RowReader::Meaning meaning;
    meaning.light = light;
    if (!has_alpha || (label.flags & kAlphaFlagIgnore) != 0) {
        return meaning;
    }
    meaning.coverage =
        (label.flags & kAlphaFlagPremultiplied) != 0 ? Coverage::premultiplied : Coverage::straight;
    meaning.inverted = (label.flags & kAlphaFlagInverted) != 0;
    meaning.matte = {label.red, label.green, label.blue};
    return meaning;
}

/// Draws rows by the steps of a plan.
class RowDrawer {
  public:
    RowDrawer(Fields fields, std::int64_t width)
        : fields_(fields), layer_(static_cast<std::size_t>(width) * kChannels) {}

    /// Goes through the drawings for rows from `top` to `bottom`, on the picture `level`; returns the level
    /// on which it ends.
    std::size_t draw(const std::vector<Drawing>& drawings, Canvas& canvas, std::size_t level,
                     std::int64_t top, std::int64_t bottom) {
        for (const Drawing& drawing : drawings) {
            switch (drawing.step->kind) {
                case PlanStep::Kind::begin:
                    clear(canvas, ++level, drawing.step->visible, top, bottom);
                    break;
                case PlanStep::Kind::footage:
                    draw_footage(drawing, canvas, level, top, bottom);
                    break;
                case PlanStep::Kind::end:
                    end_composition(*drawing.step, canvas, level, top, bottom);
                    --level;
                    break;
            }
        }
        return level;
    }

    static void clear(Canvas& canvas, std::size_t level, const Area& area, std::int64_t top,
                      std::int64_t bottom) {
        for (std::int64_t y = std::max(top, area.top); y < std::min(bottom, area.bottom); ++y) {
            std::fill_n(canvas.pixel(level, y, area.left), pixels_of(area) * kChannels, 0.0F);
        }
    }

  private:
    static std::size_t pixels_of(const Area& area) {
        return static_cast<std::size_t>(area.right - area.left);
    }

    void draw_footage(const Drawing& drawing, Canvas& canvas, std::size_t level, std::int64_t top,
                      std::int64_t bottom) {
        const Area& drawn = drawing.drawn;
        if (drawn.empty()) {
            return;
        }
        const Picture& picture = *drawing.picture;
        for (std::int64_t y = std::max(top, drawn.top); y < std::min(bottom, drawn.bottom); ++y) {
            const std::int64_t row = field_row(y - drawing.place.top, picture.height_px,
                                               drawing.interlaced ? fields_ : Fields::both);
            const std::uint8_t* const bytes = picture.bytes.data() +
                                              static_cast<std::size_t>(row) * picture.row_bytes() +
                                              static_cast<std::size_t>(drawn.left - drawing.place.left) * 4;
            float* const below = canvas.pixel(level, y, drawn.left);
            // On nothing, every mode leaves the layer as it is.
            if (drawing.step->first) {
                drawing.reader->read(bytes, below, pixels_of(drawn));
            } else {
                drawing.reader->read(bytes, layer_.data(), pixels_of(drawn));
                composite_row(drawing.step->blend, layer_.data(), below, pixels_of(drawn));
            }
        }
    }

    static void end_composition(const PlanStep& step, Canvas& canvas, std::size_t level, std::int64_t top,
                                std::int64_t bottom) {
        const Area& area = step.visible;
        for (std::int64_t y = std::max(top, area.top); y < std::min(bottom, area.bottom); ++y) {
            const float* const layer = canvas.pixel(level, y, area.left);
            float* const below = canvas.pixel(level - 1, y, area.left);
            if (step.first) {
                std::memcpy(below, layer, pixels_of(area) * kChannels * sizeof(float));
            } else {
                composite_row(step.blend, layer, below, pixels_of(area));
            }
        }
    }

    Fields fields_;
    std::vector<float> layer_;  ///< a row of the footage that is drawn
};

/// One frame while it is drawn.
class FrameDrawing {
  public:
    FrameDrawing(const embedded::Project& project, const RenderOptions& options, FootagePictures& pictures,
                 const FramePlan& plan, const Area& frame, const RowSink& sink, RenderedFrame& result)
        : project_(project),
          options_(options),
          pictures_(pictures),
          plan_(plan),
          frame_(frame),
          sink_(sink),
          result_(result) {}

    void draw() {
        if (const std::vector<Drawing> all = drawings(0); all.size() == plan_.steps.size()) {
            return draw_tiles(all);
        }
        // More pictures than are held at once: the unfinished compositions wait between passes.
        const std::int64_t row_bytes = frame_.right * kPixel_bytes * static_cast<std::int64_t>(plan_.depth);
        const std::int64_t rows = std::clamp<std::int64_t>(options_.rows_bytes / row_bytes, 1, frame_.bottom);
        for (std::int64_t top = 0; top < frame_.bottom; top += rows) {
            draw_band(top, std::min(top + rows, frame_.bottom));
        }
    }

  private:
    /// The steps from `begin` on whose pictures are held together; at least one.
    [[nodiscard]] std::vector<Drawing> drawings(std::size_t begin) {
        std::vector<FootagePictures::Wanted> wanted;
        std::int64_t bytes = 0;
        for (std::size_t i = begin; i < plan_.steps.size() && bytes <= options_.pictures_bytes; ++i) {
            const PlanStep& step = plan_.steps[i];
            if (step.kind == PlanStep::Kind::footage) {
                const embedded::Footage& footage = project_.footage_of(step.footage);
                bytes += std::int64_t{footage.width} * footage.height * kBytesOfPixel;
                wanted.emplace_back(step.footage, step.file);
            }
        }
        const std::vector<SharedPicture> pictures = pictures_.get(
            wanted, options_.threads, static_cast<std::size_t>(options_.pictures_bytes), result_.findings);
        std::vector<Drawing> made;
        auto next = pictures.begin();
        for (std::size_t i = begin; i < plan_.steps.size(); ++i) {
            made.push_back({&plan_.steps[i]});
            if (plan_.steps[i].kind != PlanStep::Kind::footage) {
                continue;
            }
            if (next == pictures.end()) {
                made.pop_back();
                break;
            }
            prepare(made.back(), *next++);
        }
        return made;
    }

    void prepare(Drawing& drawing, const SharedPicture& picture) {
        const embedded::Footage& footage = project_.footage_of(drawing.step->footage);
        drawing.picture = picture;
        drawing.reader = reader(meaning_of(footage, picture->has_alpha, options_.light));
        drawing.place = centred_in(drawing.step->around, picture->width_px, picture->height_px);
        drawing.drawn = common_area(drawing.place, drawing.step->visible);
        drawing.interlaced = footage.interpretation.interlace.type != kFieldTypeWholeFrames;
    }

    const RowReader* reader(const RowReader::Meaning& meaning) {
        const Key key{meaning.coverage, meaning.inverted, meaning.matte};
        std::unique_ptr<RowReader>& made = readers_[key];
        if (!made) {
            made = std::make_unique<RowReader>(meaning);
        }
        return made.get();
    }

    /// Everything at once: threads take a few rows each from the first layer to the last.
    void draw_tiles(const std::vector<Drawing>& all) const {
        const std::int64_t row_bytes = frame_.right * kPixel_bytes * static_cast<std::int64_t>(plan_.depth);
        const std::size_t threads = static_cast<std::size_t>(std::clamp<std::int64_t>(
            options_.rows_bytes / row_bytes, 1, static_cast<std::int64_t>(options_.threads)));
        const std::int64_t rows = std::clamp<std::int64_t>(
            options_.rows_bytes / row_bytes / static_cast<std::int64_t>(threads), 1, kTileRows);
        std::vector<std::unique_ptr<Worker>> workers(threads);
        const auto tiles = static_cast<std::size_t>((frame_.bottom + rows - 1) / rows);
        for_each_index(tiles, threads, [&](std::size_t tile, std::size_t thread) {
            std::unique_ptr<Worker>& worker = workers[thread];
            if (!worker) {
                worker = std::make_unique<Worker>(options_.fields, frame_.right, rows, plan_.depth);
            }
            const std::int64_t top = static_cast<std::int64_t>(tile) * rows;
            const std::int64_t bottom = std::min(top + rows, frame_.bottom);
            worker->canvas.first_row = top;
            RowDrawer::clear(worker->canvas, 0, frame_, top, bottom);
            worker->drawer.draw(all, worker->canvas, 0, top, bottom);
            give(worker->canvas, top, bottom);
        });
    }

    /// Rows of a frame whose pictures do not fit at once, in passes from the lowest layer to the highest.
    void draw_band(std::int64_t top, std::int64_t bottom) {
        Canvas canvas(frame_.right, bottom - top, plan_.depth);
        canvas.first_row = top;
        canvas.make_levels();
        RowDrawer::clear(canvas, 0, frame_, top, bottom);
        const auto tiles = static_cast<std::size_t>((bottom - top + kTileRows - 1) / kTileRows);
        std::size_t level = 0;
        for (std::size_t begin = 0; begin < plan_.steps.size();) {
            const std::vector<Drawing> pass = drawings(begin);
            std::size_t next_level = level;
            std::vector<std::unique_ptr<RowDrawer>> drawers(options_.threads);
            for_each_index(tiles, options_.threads, [&](std::size_t tile, std::size_t thread) {
                if (!drawers[thread]) {
                    drawers[thread] = std::make_unique<RowDrawer>(options_.fields, frame_.right);
                }
                const std::int64_t first = top + static_cast<std::int64_t>(tile) * kTileRows;
                const std::size_t ends_on =
                    drawers[thread]->draw(pass, canvas, level, first, std::min(first + kTileRows, bottom));
                if (tile == 0) {
                    next_level = ends_on;
                }
            });
            level = next_level;
            begin += pass.size();
        }
        for_each_index(tiles, options_.threads, [&](std::size_t tile, std::size_t /*thread*/) {
            const std::int64_t first = top + static_cast<std::int64_t>(tile) * kTileRows;
            give(canvas, first, std::min(first + kTileRows, bottom));
        });
    }

    void give(Canvas& canvas, std::int64_t top, std::int64_t bottom) const {
        for (std::int64_t y = top; y < bottom; ++y) {
            sink_(y, canvas.row(0, y));
        }
    }

    struct Worker {
        Canvas canvas;
        RowDrawer drawer;
        Worker(Fields fields, std::int64_t width, std::int64_t rows, std::size_t depth)
            : canvas(width, rows, depth), drawer(fields, width) {}
    };
    using Key = std::tuple<Coverage, bool, std::array<std::uint8_t, 3>>;

    const embedded::Project& project_;
    const RenderOptions& options_;
    FootagePictures& pictures_;
    const FramePlan& plan_;
    Area frame_;
    const RowSink& sink_;
    RenderedFrame& result_;
    std::map<Key, std::unique_ptr<RowReader>> readers_;
};

RenderedFrame refusal(const char* what, std::int64_t width_px, std::int64_t height_px) {
    RenderedFrame result;
    if (width_px * height_px > limits::kPreviewPixels) {
        result.error = diagnostic::make(
            Code::frame_too_large, {},
            std::string(what) + " has " + std::to_string(width_px) + " x " + std::to_string(height_px) +
                " pixels, and a preview draws at most " + std::to_string(limits::kPreviewPixels));
    }
    return result;
}

}  // namespace

FrameRenderer::FrameRenderer(const embedded::Project& project, ModulePictures module_pictures,
                             const RenderOptions& options)
    : project_(project),
      options_(options),
      pictures_(project, std::move(module_pictures), static_cast<std::size_t>(options.pictures_bytes)) {
    options_.threads = std::max<std::size_t>(1, options.threads);
}

RenderedFrame FrameRenderer::render(embedded::Id id, std::int64_t frame, const RowSink& sink) {
    const embedded::Composition& composition = project_.composition(id);
    if (RenderedFrame result = refusal("the composition", composition.width, composition.height);
        result.error) {
        return result;
    }
    return draw(plan_frame(project_, id, frame), composition.width, composition.height, sink);
}

RenderedFrame FrameRenderer::render_footage(embedded::Id id, const std::string& file, const RowSink& sink) {
    const embedded::Footage& footage = project_.footage_of(id);
    if (RenderedFrame result = refusal("the footage", footage.width, footage.height); result.error) {
        return result;
    }
    PlanStep step;
    step.first = true;
    step.footage = id;
    step.file = file;
    step.around = {0, 0, footage.width, footage.height};
    step.visible = step.around;
    FramePlan plan;
    plan.steps.push_back(std::move(step));
    return draw(plan, footage.width, footage.height, sink);
}

RenderedFrame FrameRenderer::draw(const FramePlan& plan, std::int64_t width_px, std::int64_t height_px,
                                  const RowSink& sink) {
    RenderedFrame result;
    result.error = plan.error;
    if (!result.error) {
        FrameDrawing(project_, options_, pictures_, plan, {0, 0, width_px, height_px}, sink, result).draw();
    }
    return result;
}

}  // namespace render
