#pragma once

// Contact sheets: what a scene or textures hold, in one picture.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cli/preview/preview.h"
#include "render/contact_sheet.h"

namespace cli {

/// A sheet, or the reason that it was not drawn.
struct Sheet {
    std::optional<Texture> picture;
    std::string problem;
    std::size_t tiles = 0;
    bool missing = false;    ///< footage is not there, or cannot be read
    std::size_t marked = 0;  ///< of something that is missing, short, of another size, or cannot be read
};

/// Called before each tile, with its number from 0, their count, and what it shows.
using OnTile = std::function<void(std::size_t tile, std::size_t tiles, const std::string& name)>;

/// Every composition of the scene and every pass in it, at `frame` of each composition or its last one;
/// without a frame where most of it is seen. With `only` above 0, that composition alone. A pass that is not
/// seen then is shown with its first file.
[[nodiscard]] Sheet scene_sheet(Preview& preview, const std::string& heading,
                                std::optional<std::int64_t> frame, embedded::Id only, const OnTile& on_tile);

/// Colour and every alpha channel of textures that were read.
struct NamedTexture {
    std::string name;
    std::optional<Texture> texture;
    std::string problem;  ///< why it could not be read
};
/// `read` is called once for each file, so that one texture is in memory at a time.
[[nodiscard]] Sheet texture_sheet(const std::vector<std::string>& files,
                                  const std::function<NamedTexture(const std::string& file)>& read,
                                  const OnTile& on_tile);

}  // namespace cli
