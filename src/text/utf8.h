#pragma once

#include <cstddef>
#include <string_view>

namespace text {

struct Utf8Character {
    char32_t code_point = 0;
    std::size_t size_bytes = 0;  ///< 1 to 4; 0 when the text does not begin with a well-formed character
};

/// Decodes the first character of `text`. Not well-formed: nothing at all, a character that is cut off, one
/// that is longer than it needs to be, a surrogate, anything beyond U+10FFFF, and a byte that begins no
/// character.
[[nodiscard]] Utf8Character first_character(std::string_view text);

/// Whether `text` is well-formed UTF-8 from beginning to end.
[[nodiscard]] bool is_utf8(std::string_view text);

}  // namespace text
