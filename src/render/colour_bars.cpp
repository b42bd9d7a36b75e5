#include "render/colour_bars.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

#include "render/bitmap_font.h"
#include "render/picture_text.h"

namespace render {
namespace {

/// White, yellow, cyan, green, magenta, red, blue at three quarters, as test pictures have them.
constexpr std::array<Shade, 7> kBars{
    {{191, 191, 191}, {191, 191, 0}, {0, 191, 191}, {0, 191, 0}, {191, 0, 191}, {191, 0, 0}, {0, 0, 191}}};
constexpr Shade kInk{255, 255, 255};
constexpr Shade kPaper{0, 0, 0};

/// One line of letters whose dots are `dot` pixels wide, centred, on a strip of its own.
void write_line(Picture& picture, const std::string& text, std::int32_t top, std::int32_t dot) {
    const std::int32_t left =
        (picture.width_px - static_cast<std::int32_t>(text.size()) * kCellWidth * dot) / 2;
    fill_area(picture, 0, top, picture.width_px, (kCellHeight + 1) * dot, kPaper);
    draw_text(picture, text, left, top + dot, dot, kInk);
}

}  // namespace

Picture colour_bars(std::int32_t width_px, std::int32_t height_px, std::string_view name,
                    std::string_view note) {
    Picture picture;
    picture.width_px = width_px;
    picture.height_px = height_px;
    picture.bytes.resize(static_cast<std::size_t>(height_px) * picture.row_bytes());
    for (std::int32_t x = 0; x < width_px; ++x) {
        const auto bar = static_cast<std::size_t>(x) * kBars.size() / static_cast<std::size_t>(width_px);
        put_pixel(picture, x, 0, kBars[bar]);
    }
    for (std::int32_t y = 1; y < height_px; ++y) {
        std::memcpy(&picture.bytes[static_cast<std::size_t>(y) * picture.row_bytes()], picture.bytes.data(),
                    picture.row_bytes());
    }
    // Large enough to read in a small window, as long as the longer line fits.
    const auto longest =
        static_cast<std::int32_t>(std::clamp<std::size_t>(std::max(name.size(), note.size()), 1, 64));
    const std::int32_t dot =
        std::max(1, std::min(width_px / ((longest + 2) * kCellWidth), height_px / (20 * kCellHeight)));
    const auto letters = static_cast<std::size_t>(width_px / (kCellWidth * dot));
    const std::int32_t line = (kCellHeight + 1) * dot;
    write_line(picture, cut_to(name, letters), height_px / 2 - line, dot);
    write_line(picture, cut_to(note, letters), height_px / 2, dot);
    return picture;
}

}  // namespace render
