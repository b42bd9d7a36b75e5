#include "render/contact_sheet.h"

#include <algorithm>
#include <cmath>

#include "render/bitmap_font.h"
#include "render/picture_text.h"

namespace render {
namespace {

constexpr std::int32_t kMargin = 24;
constexpr std::int32_t kGap = 16;
constexpr std::int32_t kBorder = 3;
constexpr std::int32_t kHeadingDot = 3;
constexpr std::int32_t kHeading = (kCellHeight + 4) * kHeadingDot;

// A neutral grey, so that it does not change how colours look; text on it has a contrast of 11 to 1, marks
// of 7.
constexpr Shade kSheetPaper{38, 38, 38};
constexpr Shade kTileFrame{20, 20, 20};
constexpr Shade kSheetInk{230, 230, 230};
constexpr Shade kFactInk{168, 168, 168};
constexpr Shade kMarkInk{255, 159, 28};
constexpr std::int32_t kSquare = 12;

/// How a sheet is laid out.
struct Layout {
    SheetScale scale;
    std::int32_t columns = 1;
    std::int32_t rows = 1;
    std::int32_t tile_height = 0;

    [[nodiscard]] std::int32_t width() const {
        return 2 * kMargin + columns * scale.thumbnail_width + (columns - 1) * kGap;
    }
    [[nodiscard]] std::int64_t height() const {
        return 2 * kMargin + kHeading + std::int64_t{rows} * tile_height + std::int64_t{rows - 1} * kGap;
    }
};

std::int32_t line_height(const SheetScale& scale) {
    return (kCellHeight + 2) * scale.dot;
}

Layout layout_of(std::size_t tiles, std::size_t lines) {
    // About as wide as high, but no wider than one can look at without turning the head.
    constexpr std::size_t kMostColumns = 16;
    const auto root = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(tiles))));
    const std::size_t columns = std::clamp<std::size_t>(root, 1, kMostColumns);
    Layout layout;
    layout.scale = sheet_scale(tiles);
    layout.columns = static_cast<std::int32_t>(columns);
    layout.rows = static_cast<std::int32_t>(std::max<std::size_t>(1, (tiles + columns - 1) / columns));
    layout.tile_height =
        layout.scale.thumbnail_height + static_cast<std::int32_t>(lines + 2) * line_height(layout.scale);
    return layout;
}

// What is transparent shows squares.
void lay(Picture& sheet, const Picture& picture, std::int32_t left, std::int32_t top) {
    const Picture opaque = on_chequerboard(picture, kSquare);
    for (std::int32_t y = 0; y < opaque.height_px; ++y) {
        for (std::int32_t x = 0; x < opaque.width_px; ++x) {
            const std::uint8_t* const from = &opaque.bytes[static_cast<std::size_t>(y) * opaque.row_bytes() +
                                                           static_cast<std::size_t>(x) * 4];
            put_pixel(sheet, left + x, top + y, {from[0], from[1], from[2]});
        }
    }
}

void draw_tile(Picture& sheet, const SheetTile& tile, const SheetScale& scale, std::int32_t left,
               std::int32_t top) {
    const Picture picture = thumbnail_of(tile.thumbnail, scale);
    if (!tile.marks.empty()) {
        fill_area(sheet, left - kBorder, top - kBorder, scale.thumbnail_width + 2 * kBorder,
                  scale.thumbnail_height + 2 * kBorder, kMarkInk);
    }
    fill_area(sheet, left, top, scale.thumbnail_width, scale.thumbnail_height, kTileFrame);
    lay(sheet, picture, left + (scale.thumbnail_width - picture.width_px) / 2,
        top + (scale.thumbnail_height - picture.height_px) / 2);
    std::int32_t line = top + scale.thumbnail_height + line_height(scale) / 2;
    const auto letters = static_cast<std::size_t>(scale.thumbnail_width / (kCellWidth * scale.dot));
    const auto write = [&](const std::string& text, const Shade& shade) {
        draw_text(sheet, cut_to(text, letters), left, line, scale.dot, shade);
        line += line_height(scale);
    };
    write(tile.title, kSheetInk);
    for (const std::string& mark : tile.marks) {
        write("! " + mark, kMarkInk);
    }
    for (const std::string& fact : tile.facts) {
        write(fact, kFactInk);
    }
}

Picture enlarged(const Picture& picture, std::int32_t times) {
    Picture made;
    made.width_px = picture.width_px * times;
    made.height_px = picture.height_px * times;
    made.has_alpha = picture.has_alpha;
    made.bytes.resize(static_cast<std::size_t>(made.height_px) * made.row_bytes());
    for (std::int32_t y = 0; y < made.height_px; ++y) {
        for (std::int32_t x = 0; x < made.width_px; ++x) {
            std::copy_n(&picture.bytes[static_cast<std::size_t>(y / times) * picture.row_bytes() +
                                       static_cast<std::size_t>(x / times) * 4],
                        4,
                        &made.bytes[static_cast<std::size_t>(y) * made.row_bytes() +
                                    static_cast<std::size_t>(x) * 4]);
        }
    }
    return made;
}

}  // namespace

SheetScale sheet_scale(std::size_t tiles) {
    constexpr std::size_t kMany = 100;
    return tiles <= kMany ? SheetScale{} : SheetScale{192, 144, 1};
}

Picture thumbnail_of(const Picture& straight, const SheetScale& scale) {
    if (straight.bytes.empty()) {
        return straight;
    }
    const std::int32_t times =
        std::min(scale.thumbnail_width / straight.width_px, scale.thumbnail_height / straight.height_px);
    if (times > 1) {
        return enlarged(straight, times);
    }
    const double factor = std::max({1.0, static_cast<double>(straight.width_px) / scale.thumbnail_width,
                                    static_cast<double>(straight.height_px) / scale.thumbnail_height});
    if (factor == 1) {
        return straight;
    }
    const auto side = [factor](std::int32_t size, std::int32_t most) {
        return std::clamp(static_cast<std::int32_t>(std::lround(size / factor)), 1, most);
    };
    return reduced(straight, side(straight.width_px, scale.thumbnail_width),
                   side(straight.height_px, scale.thumbnail_height));
}

std::int64_t sheet_pixels(std::size_t tiles, std::size_t lines) {
    const Layout layout = layout_of(tiles, lines);
    return layout.width() * layout.height();
}

Picture contact_sheet(const std::string& heading, const std::vector<SheetTile>& tiles) {
    std::size_t lines = 0;
    for (const SheetTile& tile : tiles) {
        lines = std::max(lines, tile.facts.size() + tile.marks.size());
    }
    const Layout layout = layout_of(tiles.size(), lines);
    Picture sheet;
    sheet.width_px = layout.width();
    sheet.height_px = static_cast<std::int32_t>(layout.height());
    sheet.bytes.resize(static_cast<std::size_t>(sheet.height_px) * sheet.row_bytes());
    fill_area(sheet, 0, 0, sheet.width_px, sheet.height_px, kSheetPaper);
    const auto letters =
        static_cast<std::size_t>((sheet.width_px - 2 * kMargin) / (kCellWidth * kHeadingDot));
    draw_text(sheet, cut_to(heading, letters), kMargin, kMargin, kHeadingDot, kSheetInk);
    for (std::size_t i = 0; i < tiles.size(); ++i) {
        const auto column = static_cast<std::int32_t>(i) % layout.columns;
        const auto row = static_cast<std::int32_t>(i) / layout.columns;
        draw_tile(sheet, tiles[i], layout.scale, kMargin + column * (layout.scale.thumbnail_width + kGap),
                  kMargin + kHeading + row * (layout.tile_height + kGap));
    }
    return sheet;
}

}  // namespace render
