#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/options.h"
#include "cli/report/diagnostic_text.h"
#include "image/image.h"

namespace cli {

/// Which alpha channels to keep.
struct AlphaChoice {
    enum class Kind { all, none, one };
    Kind kind = Kind::all;
    std::size_t number = 0;  ///< from 1, for `one`
};

/// Parses "all", "none" or a number from 1; nothing for any other text.
std::optional<AlphaChoice> parse_alpha_choice(std::string_view text);

/// What a user says about the colour of a texture.
enum class AlphaLabel {
    premultiplied,  ///< as the plug-in tells After Effects
    straight,
    pixels,  ///< as the pixels show
};

/// Parses "premultiplied", "straight" or "auto"; nothing for any other text.
std::optional<AlphaLabel> parse_alpha_label(std::string_view text);

/// Adds the option --alpha-label, whose text goes to `label`.
void add_alpha_label_option(Options& options, std::string& label);

/// What an image file says for this label. Looks at the pixels only for AlphaLabel::pixels.
image::AlphaPixels alpha_pixels(AlphaLabel label, const Texture& texture);

struct ConversionOptions {
    AlphaChoice alpha;
    image::AlphaBytes alpha_bytes = image::AlphaBytes::kept;
    AlphaLabel label = AlphaLabel::premultiplied;
    /// Called before the output is begun if a texture has more rows than its file holds. Takes over the
    /// diagnostics of the input. May be empty; then the conversion keeps them.
    std::function<void(const std::vector<Diagnostic>&)> before_missing_rows;
    /// Called while an image is written, never for textures: rows so far, rows of the picture. May be empty.
    std::function<void(std::int64_t written, std::int64_t rows)> on_rows;
};

/// The outcome for one file.
struct Conversion {
    std::string input;
    std::string output;
    ExitCode code = ExitCode::fine;
    std::string size;                     ///< texture_size_text() of what was written
    std::vector<Diagnostic> diagnostics;  ///< the error first, if there is one
};

/// Texture to image, image to texture, or texture to texture, by the extension of the output and the first
/// bytes or the extension of the input. The old file at `output` stays until the new one is complete. Does
/// not throw. Safe to call from several threads for different outputs.
Conversion convert_texture(const std::string& input, const std::string& output,
                           const ConversionOptions& options);

/// Writes a texture to `output` as convert_texture() does; `input` stays empty. Does not throw.
Conversion save_texture(const Texture& texture, const std::string& output);

/// cannot_read_or_write for what the file system prevents, refused for everything else.
ExitCode image_exit_code(const diagnostic::Diagnostic& error);

/// "there is no alpha channel 3: the texture has 2"
std::string no_such_alpha_text(std::size_t number, std::size_t alphas);

/// Whether `path` ends in ".txl", in upper or lower case.
bool has_texture_extension(const std::string& path);

}  // namespace cli
