#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "diagnostic/diagnostic.h"
#include "texture/value/row_set.h"
#include "texture/value/texture.h"

// What the pixels of a texture show about its alpha. The plug-in tells After Effects that every texture with
// alpha is premultiplied; a texture whose colour was never multiplied then has fringes.

/// Codes of notes about a texture with alpha.
enum class AlphaUse : std::uint8_t {
    straight,       ///< a colour above alpha somewhere: it was not multiplied by alpha
    premultiplied,  ///< no colour above alpha anywhere
    opaque,         ///< alpha is 255 everywhere, so both are the same
};

[[nodiscard]] std::span<const diagnostic::CodeRow<AlphaUse>> alpha_uses();
[[nodiscard]] const diagnostic::CodeInfo& code_info(AlphaUse use);

struct AlphaFinding {
    AlphaUse use = AlphaUse::opaque;
    std::int64_t pixels_above = 0;  ///< pixels with a colour above their alpha
    std::int64_t pixel_count = 0;   ///< of the picture

    /// pixels_above in percent of the picture, rounded, but 0 and 100 only where they are exact.
    [[nodiscard]] int percent() const;
};

/// Compares the colour of every pixel with the first alpha channel, which the texture must have.
/// `colour_rows` are the rows that are not all 0; the time grows with them, not with the size that a file
/// claims.
[[nodiscard]] AlphaFinding find_alpha_use(const Texture& texture, const RowSet& colour_rows);

/// The same for a texture of which every row counts.
[[nodiscard]] AlphaFinding find_alpha_use(const Texture& texture);

/// "colour above alpha in 12 % of the pixels: straight; in After Effects choose Interpret Footage, Straight"
[[nodiscard]] std::string alpha_use_text(const AlphaFinding& finding);

/// Multiplies the colour of every pixel by the first alpha channel, rounded to the nearest byte. A texture
/// without alpha stays as it is.
void multiply_by_alpha(Texture& texture);

/// The colour that was multiplied by `alpha`, rounded, at most 255. Alpha 0 keeps no colour to divide, so
/// `colour` stays as it is.
[[nodiscard]] std::uint8_t divided_by_alpha(std::uint8_t colour, std::uint8_t alpha);

/// Divides the colour of every pixel by the first alpha channel. A texture without alpha stays as it is.
void divide_by_alpha(Texture& texture);
