#include "cli/preview/sheet.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <utility>

#include "cli/project/project_labels.h"
#include "limit/limits.h"
#include "render/frame_plan.h"
#include "text/plain_number.h"
#include "text/printable.h"

namespace cli {
namespace {

// Of a tile below its title.
constexpr std::size_t kMostLines = 6;

render::Picture grey_picture_of(const Texture& texture, const PixelBuffer& values) {
    render::Picture picture;
    picture.width_px = texture.width_px;
    picture.height_px = texture.height_px;
    picture.bytes.resize(texture.pixel_count() * 4);
    for (std::size_t i = 0; i < texture.pixel_count(); ++i) {
        std::fill_n(&picture.bytes[i * 4], 3, values.data()[i]);
        picture.bytes[i * 4 + 3] = 255;
    }
    return picture;
}

void finish(Sheet& sheet, const std::string& heading, const std::vector<render::SheetTile>& tiles) {
    sheet.tiles = tiles.size();
    sheet.marked = static_cast<std::size_t>(std::count_if(
        tiles.begin(), tiles.end(), [](const render::SheetTile& tile) { return !tile.marks.empty(); }));
    sheet.picture = render::texture_of(render::contact_sheet(heading, tiles));
}

bool too_large(Sheet& sheet, std::size_t tiles, const char* advice) {
    if (render::sheet_pixels(tiles, kMostLines) <= limits::kPreviewPixels) {
        return false;
    }
    sheet.problem = "a sheet of " + std::to_string(tiles) + " pictures would have more than " +
                    std::to_string(limits::kPreviewPixels) + " pixels; " + advice;
    return true;
}

/// A layer with a picture, or a composition itself.
struct Shown {
    const embedded::Composition* composition = nullptr;
    const embedded::Layer* layer = nullptr;
};

/// What the frames of one composition show, by footage.
class Timeline {
  public:
    Timeline(const embedded::Project& project, const embedded::Composition& composition,
             std::optional<std::int64_t> wanted)
        : project_(project), composition_(composition), last_(render::frame_count(composition) - 1) {
        frame_ = wanted ? std::min(*wanted, last_) : fullest_frame();
        files_ = files_at(frame_);
        find_ends();
    }

    [[nodiscard]] std::int64_t frame() const { return frame_; }
    [[nodiscard]] std::int64_t last_frame() const { return last_; }
    /// The file that is seen at frame(); nothing if the footage is not seen there.
    [[nodiscard]] std::optional<std::string> file(embedded::Id footage) const {
        const auto found = files_.find(footage);
        return found == files_.end() ? std::nullopt : std::optional(found->second);
    }
    /// The last frame at which the footage is seen; nothing if that is far from the end.
    [[nodiscard]] std::optional<std::int64_t> end(embedded::Id footage) const {
        const auto found = ends_.find(footage);
        return found == ends_.end() ? std::nullopt : std::optional(found->second);
    }

  private:
    // Frames that are looked at to find one, so that a sheet of long scenes does not take long.
    static constexpr std::size_t kMostFrames = 300;
    using Files = std::map<embedded::Id, std::string>;

    [[nodiscard]] Files files_at(std::int64_t frame) const {
        Files files;
        for (render::PlanStep& step : render::plan_frame(project_, composition_.id, frame).steps) {
            if (step.kind == render::PlanStep::Kind::footage) {
                files.try_emplace(step.footage, std::move(step.file));
            }
        }
        return files;
    }

    // Where most is seen: layers begin at different frames, and often none at the first one.
    [[nodiscard]] std::int64_t fullest_frame() const {
        std::set<std::int64_t> beginnings{0};
        for (const embedded::Id id : composition_.layers) {
            const embedded::Layer& layer = project_.layer(id);
            const double seconds = seconds_of(layer.offset) + seconds_of(layer.in_point);
            const double frame = std::round(seconds * rate_of(composition_.frame_rate));
            if (frame > 0 && frame <= static_cast<double>(last_) && beginnings.size() < kMostFrames) {
                beginnings.insert(static_cast<std::int64_t>(frame));
            }
        }
        std::int64_t fullest = 0;
        std::size_t most = 0;
        for (const std::int64_t frame : beginnings) {
            const std::size_t seen = files_at(frame).size();
            if (seen > most) {
                most = seen;
                fullest = frame;
            }
        }
        return fullest;
    }

    void find_ends() {
        std::size_t looked = 0;
        for (std::int64_t frame = last_; frame >= 0 && looked < kMostFrames; --frame, ++looked) {
            for (const auto& [footage, file] : files_at(frame)) {
                ends_.try_emplace(footage, frame);
            }
            if (ends_.size() >= composition_.layers.size()) {
                return;
            }
        }
    }

    const embedded::Project& project_;
    const embedded::Composition& composition_;
    std::int64_t last_;
    std::int64_t frame_ = 0;
    Files files_;
    std::map<embedded::Id, std::int64_t> ends_;
};

class SceneSheet {
  public:
    SceneSheet(Preview& preview, std::optional<std::int64_t> frame, const render::SheetScale& scale)
        : preview_(preview), project_(preview.project()), frame_(frame), scale_(scale) {}

    render::SheetTile tile_of(const Shown& shown) {
        return shown.layer == nullptr ? composition_tile(*shown.composition)
                                      : pass_tile(*shown.composition, *shown.layer);
    }

    /// Of the passes that were drawn.
    [[nodiscard]] bool misses_footage() const { return misses_footage_; }

  private:
    void show(render::SheetTile& tile, const PreviewFrame& drawn) const {
        if (drawn.picture) {
            tile.thumbnail = render::thumbnail_of(
                render::picture_of(*drawn.picture, &drawn.picture->alphas.front().values), scale_);
        } else {
            tile.marks.emplace_back("too large to show");
        }
    }

    render::SheetTile composition_tile(const embedded::Composition& composition) {
        const Timeline& timeline = timeline_of(composition);
        render::SheetTile tile;
        tile.title = text::printable(project_.item(composition.item).name);
        tile.facts = {"composition",
                      text::size_text(composition.width, composition.height) + ", pixel aspect " +
                          plain_number(rate_of(composition.pixel_aspect)),
                      plain_number(rate_of(composition.frame_rate)) + " fps, frame " +
                          std::to_string(timeline.frame()) + " of 0-" +
                          std::to_string(timeline.last_frame())};
        show(tile, preview_.draw(composition.id, timeline.frame()));
        return tile;
    }

    render::SheetTile pass_tile(const embedded::Composition& composition, const embedded::Layer& layer) {
        const embedded::Footage& footage = project_.footage_of(project_.item(layer.source_item).content);
        const Timeline& timeline = timeline_of(composition);
        render::SheetTile tile;
        tile.title = text::printable(footage.name);
        tile.facts = {"in " + text::printable(project_.item(composition.item).name),
                      blend_label(layer.transfer) + ", alpha " + alpha_label(footage),
                      text::size_text(footage.width, footage.height) +
                          (footage.sequence ? ", files " + frame_range_text(*footage.sequence) : "")};
        add_marks(tile, composition, footage);
        if (footage.sequence && timeline.end(footage.id) != timeline.last_frame()) {
            tile.marks.push_back(ending_text(timeline, footage.id));
        }
        std::optional<std::string> file = timeline.file(footage.id);
        if (!file) {
            tile.facts.push_back("not seen at frame " + std::to_string(timeline.frame()));
            file = footage.kind == embedded::FootageKind::placeholder
                       ? std::string()
                       : render::sequence_file(footage, 0).value_or(footage.path);
        }
        const PreviewFrame drawn = preview_.draw_footage(footage.id, *file);
        bool& unreadable = unreadable_[{footage.id, *file}];
        unreadable = unreadable || !drawn.findings.empty();
        misses_footage_ = misses_footage_ || unreadable || footage.kind == embedded::FootageKind::placeholder;
        if (unreadable && footage.kind != embedded::FootageKind::placeholder) {
            tile.marks.emplace_back("cannot be read");
        }
        show(tile, drawn);
        return tile;
    }

    static std::string ending_text(const Timeline& timeline, embedded::Id footage) {
        const std::optional<std::int64_t> end = timeline.end(footage);
        return end ? "short: ends at frame " + std::to_string(*end) + " of " +
                         std::to_string(timeline.last_frame())
                   : "short: ends long before frame " + std::to_string(timeline.last_frame());
    }

    static void add_marks(render::SheetTile& tile, const embedded::Composition& composition,
                          const embedded::Footage& footage) {
        if (footage.kind == embedded::FootageKind::placeholder) {
            tile.marks.emplace_back("missing");
            return;
        }
        if (footage.width != composition.width || footage.height != composition.height) {
            tile.marks.push_back("not " + text::size_text(composition.width, composition.height));
        }
        if (footage.sequence) {
            const embedded::SequenceFrames& files = *footage.sequence;
            if (const std::int64_t gaps = files.range.last - files.range.first + 1 - files.count; gaps > 0) {
                tile.marks.push_back(text::count_text(gaps, "file is missing", "files are missing"));
            }
        }
    }

    Timeline& timeline_of(const embedded::Composition& composition) {
        return timelines_.try_emplace(composition.id, project_, composition, frame_).first->second;
    }

    Preview& preview_;
    const embedded::Project& project_;
    std::optional<std::int64_t> frame_;
    render::SheetScale scale_;
    std::map<embedded::Id, Timeline> timelines_;  ///< by composition
    std::map<std::pair<embedded::Id, std::string>, bool> unreadable_;
    bool misses_footage_ = false;
};

}  // namespace

Sheet scene_sheet(Preview& preview, const std::string& heading, std::optional<std::int64_t> frame,
                  embedded::Id only, const OnTile& on_tile) {
    const embedded::Project& project = preview.project();
    std::vector<Shown> all;
    for (const embedded::Composition& composition : project.compositions) {
        if (only > 0 && composition.id != only) {
            continue;
        }
        all.push_back({&composition, nullptr});
        for (const embedded::Id id : composition.layers) {
            const embedded::Layer& layer = project.layer(id);
            if (layer.source_item != 0 &&
                project.item(layer.source_item).kind == embedded::ItemKind::footage) {
                all.push_back({&composition, &layer});
            }
        }
    }
    Sheet sheet;
    if (too_large(sheet, all.size(), "--comp shows one composition")) {
        return sheet;
    }
    SceneSheet scene(preview, frame, render::sheet_scale(all.size()));
    std::vector<render::SheetTile> tiles(all.size());
    std::size_t done = 0;
    // What cannot be read is told once, so passes are drawn before the compositions that show them.
    for (const bool passes : {true, false}) {
        for (std::size_t i = 0; i < all.size(); ++i) {
            const embedded::Layer* const layer = all[i].layer;
            if ((layer != nullptr) == passes) {
                const embedded::Id item = passes ? layer->source_item : all[i].composition->item;
                on_tile(done++, all.size(), project.item(item).name);
                tiles[i] = scene.tile_of(all[i]);
            }
        }
    }
    sheet.missing = scene.misses_footage();
    finish(sheet, heading, tiles);
    return sheet;
}

Sheet texture_sheet(const std::vector<std::string>& files,
                    const std::function<NamedTexture(const std::string& file)>& read, const OnTile& on_tile) {
    Sheet sheet;
    // How many alphas there are is known once the textures are read; thumbnails of the usual size are kept.
    const render::SheetScale scale = render::sheet_scale(2 * files.size());
    std::vector<render::SheetTile> tiles;
    for (std::size_t i = 0; i < files.size(); ++i) {
        on_tile(i, files.size(), files[i]);
        const NamedTexture one = read(files[i]);
        render::SheetTile tile;
        tile.title = text::printable(one.name);
        if (!one.texture) {
            tile.marks = {one.problem};
            tiles.push_back(std::move(tile));
            continue;
        }
        const Texture& texture = *one.texture;
        const std::size_t alphas = texture.alphas.size();
        tile.thumbnail = render::thumbnail_of(render::picture_of(texture, nullptr), scale);
        tile.facts = {text::size_text(texture.width_px, texture.height_px) +
                          (texture.mode == Texture::kGrey ? ", grey" : ", RGB"),
                      std::to_string(alphas) + (alphas == 1 ? " alpha channel" : " alpha channels")};
        tiles.push_back(std::move(tile));
        for (const AlphaChannel& alpha : texture.alphas) {
            render::SheetTile of_alpha;
            of_alpha.thumbnail = render::thumbnail_of(grey_picture_of(texture, alpha.values), scale);
            of_alpha.title = text::printable(alpha.name);
            of_alpha.facts = {"alpha of " + text::printable(one.name)};
            tiles.push_back(std::move(of_alpha));
        }
        if (too_large(sheet, tiles.size(), "name fewer textures")) {
            return sheet;
        }
    }
    finish(sheet,
           files.size() == 1 ? text::printable(files.front()) : std::to_string(files.size()) + " textures",
           tiles);
    return sheet;
}

}  // namespace cli
