#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/options.h"
#include "cli/report/diagnostic_text.h"
#include "image/image.h"
#include "render/picture.h"

namespace cli {

/// How a texture is shown by itself, as the user types it.
struct TextureLook {
    std::string alpha;  ///< "none", the number of a channel, or empty for the first that shows anything
    std::string label = "auto";  ///< what its colour is, as parse_alpha_label() reads it
};

/// Adds --alpha and --alpha-label.
void add_look_options(Options& options, TextureLook& look);

/// A texture that was made small, or why there is none.
struct SmallPicture {
    ExitCode code = ExitCode::fine;
    std::vector<Diagnostic> diagnostics;     ///< the error first, if there is one
    std::optional<render::Picture> picture;  ///< straight, in its own proportions, never enlarged
    std::string size;                        ///< of the texture, as texture_size_text() says it
};

/// Reads the texture at `path` and reduces it to fit. Takes as much memory as the texture has pixels, and
/// refuses one with more than limits::kShownTexture_bytes of them.
[[nodiscard]] SmallPicture read_small_picture(const std::string& path, const TextureLook& look,
                                              std::int32_t most_width_px, std::int32_t most_height_px);

/// Writes a PNG to `path`, whatever its extension, with alpha if the picture has it.
[[nodiscard]] image::Writing write_png(const render::Picture& straight, const std::string& path);

}  // namespace cli
