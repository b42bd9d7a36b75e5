#include "cli/preview/sheet.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "cli/project/project_labels.h"
#include "limit/limits.h"
#include "render/frame_plan.h"
#include "text/printable.h"

namespace cli {
namespace {

// Of a tile below its title.
constexpr std::size_t kMostLines = 6;

/// The colour of a texture with one of its alphas, or opaque.
render::Picture picture_of(const Texture& texture, const PixelBuffer* alpha) {
    render::Picture picture;
    picture.width_px = texture.width_px;
    picture.height_px = texture.height_px;
    picture.has_alpha = alpha != nullptr;
    picture.bytes.resize(texture.pixel_count() * 4);
    const auto channels = static_cast<std::size_t>(texture.channels());
    const std::size_t green = channels == 1 ? 0 : 1;
    for (std::size_t i = 0; i < texture.pixel_count(); ++i) {
        const std::uint8_t* const colour = texture.pixels.data() + i * channels;
        std::uint8_t* const to = &picture.bytes[i * 4];
        to[0] = colour[0];
        to[1] = colour[green];
        to[2] = colour[green * 2];
        to[3] = alpha != nullptr ? alpha->data()[i] : 255;
    }
    return picture;
}

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

Texture texture_of(const render::Picture& opaque) {
    Texture texture;
    texture.width_px = opaque.width_px;
    texture.height_px = opaque.height_px;
    texture.mode = Texture::kRgb;
    texture.pixels = PixelBuffer(texture.pixel_count() * 3);
    for (std::size_t i = 0; i < texture.pixel_count(); ++i) {
        std::copy_n(&opaque.bytes[i * 4], 3, texture.pixels.data() + i * 3);
    }
    return texture;
}

std::string size_text(std::int64_t width_px, std::int64_t height_px) {
    return std::to_string(width_px) + " x " + std::to_string(height_px);
}

void finish(Sheet& sheet, const std::string& heading, const std::vector<render::SheetTile>& tiles) {
    sheet.tiles = tiles.size();
    sheet.marked = static_cast<std::size_t>(std::count_if(
        tiles.begin(), tiles.end(), [](const render::SheetTile& tile) { return !tile.marks.empty(); }));
    sheet.picture = texture_of(render::contact_sheet(heading, tiles));
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

class SceneSheet {
  public:
    SceneSheet(Preview& preview, std::int64_t frame, const render::SheetScale& scale)
        : preview_(preview), project_(preview.project()), frame_(frame), scale_(scale) {}

    render::SheetTile tile_of(const Shown& shown) {
        return shown.layer == nullptr ? composition_tile(*shown.composition)
                                      : pass_tile(*shown.composition, *shown.layer);
    }

  private:
    [[nodiscard]] std::int64_t frame_of(const embedded::Composition& composition) const {
        return std::min(frame_, render::frame_count(composition) - 1);
    }

    void show(render::SheetTile& tile, const PreviewFrame& drawn) const {
        if (drawn.picture) {
            tile.thumbnail = render::thumbnail_of(
                picture_of(*drawn.picture, &drawn.picture->alphas.front().values), scale_);
        } else {
            tile.marks.emplace_back("too large to show");
        }
    }

    render::SheetTile composition_tile(const embedded::Composition& composition) {
        const std::int64_t frames = render::frame_count(composition);
        render::SheetTile tile;
        tile.title = text::printable(project_.item(composition.item).name);
        tile.facts = {"composition, " + size_text(composition.width, composition.height) + ", aspect " +
                          plain_number(rate_of(composition.pixel_aspect)),
                      std::to_string(frames) + (frames == 1 ? " frame at " : " frames at ") +
                          plain_number(rate_of(composition.frame_rate)) + ", this is frame " +
                          std::to_string(frame_of(composition))};
        show(tile, preview_.draw(composition.id, frame_of(composition)));
        return tile;
    }

    render::SheetTile pass_tile(const embedded::Composition& composition, const embedded::Layer& layer) {
        const embedded::Footage& footage = project_.footage_of(project_.item(layer.source_item).content);
        render::SheetTile tile;
        tile.title = text::printable(footage.name);
        tile.facts = {"in " + text::printable(project_.item(composition.item).name) + ", " +
                          blend_label(layer.transfer),
                      size_text(footage.width, footage.height) + ", alpha " + alpha_label(footage)};
        if (footage.sequence) {
            tile.facts.push_back("files " + frame_range_text(*footage.sequence));
        }
        add_marks(tile, composition, layer, footage);
        const std::string file = seen_file(composition, footage, tile);
        const PreviewFrame drawn = preview_.draw_footage(footage.id, file);
        bool& unreadable = unreadable_[{footage.id, file}];
        unreadable = unreadable || !drawn.findings.empty();
        if (unreadable && footage.kind != embedded::FootageKind::placeholder) {
            tile.marks.emplace_back("cannot be read");
        }
        show(tile, drawn);
        return tile;
    }

    static void add_marks(render::SheetTile& tile, const embedded::Composition& composition,
                          const embedded::Layer& layer, const embedded::Footage& footage) {
        if (footage.kind == embedded::FootageKind::placeholder) {
            tile.marks.push_back("missing");
            return;
        }
        if (footage.width != composition.width || footage.height != composition.height) {
            tile.marks.push_back("of another size than " + size_text(composition.width, composition.height));
        }
        if (footage.sequence) {
            const std::int64_t gaps =
                footage.sequence->range.last - footage.sequence->range.first + 1 - footage.sequence->count;
            if (gaps > 0) {
                tile.marks.push_back(std::to_string(gaps) +
                                     (gaps == 1 ? " file is missing" : " files are missing"));
            }
            add_length_mark(tile, composition, layer, footage);
        }
    }

    static void add_length_mark(render::SheetTile& tile, const embedded::Composition& composition,
                                const embedded::Layer& layer, const embedded::Footage& footage) {
        const double rate = rate_of(composition.frame_rate);
        const double begin = seconds_of(layer.offset);
        const double end = std::min(begin + seconds_of(layer.in_point) + seconds_of(layer.duration),
                                    begin + seconds_of(footage.duration));
        const auto frames = render::frame_count(composition);
        const auto shown = static_cast<std::int64_t>(std::llround(end * rate));
        if (shown < frames) {
            tile.marks.push_back("short: ends after frame " +
                                 std::to_string(std::max<std::int64_t>(shown, 0) - 1) + " of 0-" +
                                 std::to_string(frames - 1));
        }
    }

    // The file of the footage at the frame, or its first one.
    std::string seen_file(const embedded::Composition& composition, const embedded::Footage& footage,
                          render::SheetTile& tile) {
        auto [plan, is_new] = plans_.try_emplace(composition.id);
        if (is_new) {
            for (render::PlanStep& step :
                 render::plan_frame(project_, composition.id, frame_of(composition)).steps) {
                plan->second.try_emplace(step.footage, std::move(step.file));
            }
        }
        const auto seen = plan->second.find(footage.id);
        if (seen != plan->second.end()) {
            return seen->second;
        }
        tile.facts.push_back("not seen at frame " + std::to_string(frame_of(composition)));
        return footage.kind == embedded::FootageKind::placeholder
                   ? std::string()
                   : render::sequence_file(footage, 0).value_or(footage.path);
    }

    Preview& preview_;
    const embedded::Project& project_;
    std::int64_t frame_;
    render::SheetScale scale_;
    std::map<embedded::Id, std::map<embedded::Id, std::string>> plans_;  ///< files by composition and footage
    std::map<std::pair<embedded::Id, std::string>, bool> unreadable_;
};

}  // namespace

Sheet scene_sheet(Preview& preview, const std::string& heading, std::int64_t frame, embedded::Id only,
                  const OnTile& on_tile) {
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
        tile.thumbnail = render::thumbnail_of(picture_of(texture, nullptr), scale);
        tile.facts = {size_text(texture.width_px, texture.height_px) +
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
