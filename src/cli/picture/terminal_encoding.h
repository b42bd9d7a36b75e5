#pragma once

#include <string>

#include "render/picture.h"

// Pictures as the escape sequences with which terminals draw. Only colour counts; alpha is ignored. Each ends
// with a line break, so that text goes on below.

namespace cli {

/// For terminals with the graphics protocol of kitty: colour as it is, 24 bits a pixel.
[[nodiscard]] std::string kitty_picture(const render::Picture& opaque);

/// For terminals with DEC's sixel graphics: 252 colours, six levels of red and blue and seven of green, with
/// an ordered dither.
[[nodiscard]] std::string sixel_picture(const render::Picture& opaque);

/// How many colours characters may have.
enum class TextColours {
    none,  ///< shades of characters
    few,   ///< the 256 that most terminals know by number
    all,   ///< 24 bits
};

/// Characters that every terminal has, halves of blocks: each shows two pixels one above the other. Without
/// colours a character of five shades stands for both.
[[nodiscard]] std::string block_picture(const render::Picture& opaque, TextColours colours);

/// What ends a sequence that was cut anywhere, and colours with it.
inline constexpr const char* kEndOfSequence = "\x1b\\\x1b[0m\n";

}  // namespace cli
