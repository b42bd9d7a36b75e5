#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "render/picture.h"

namespace render {

/// How large the parts of a sheet are: less for a sheet of many tiles.
struct SheetScale {
    std::int32_t thumbnail_width = 384;
    std::int32_t thumbnail_height = 288;
    std::int32_t dot = 2;  ///< of letters, in pixels
};
[[nodiscard]] SheetScale sheet_scale(std::size_t tiles);

/// One picture of a sheet.
struct SheetTile {
    Picture thumbnail;               ///< straight alpha, of any size; empty if nothing can be shown
    std::string title;               ///< the name of what is seen
    std::vector<std::string> facts;  ///< one line each
    std::vector<std::string> marks;  ///< what is wrong with it, one line each
};

/// A picture made small enough for a sheet: each pixel is the average of those it covers, colours weighted by
/// their coverage. A small one is enlarged by a whole factor, its pixels as squares.
[[nodiscard]] Picture thumbnail_of(const Picture& straight, const SheetScale& scale);

/// How many pixels a sheet of so many tiles has when the longest of them has so many lines below its title.
[[nodiscard]] std::int64_t sheet_pixels(std::size_t tiles, std::size_t lines);

/// The tiles in rows below a heading, opaque. What is transparent shows a chequerboard; a tile with marks has
/// an orange frame. Text beyond ASCII is shown as question marks.
[[nodiscard]] Picture contact_sheet(const std::string& heading, const std::vector<SheetTile>& tiles);

}  // namespace render
