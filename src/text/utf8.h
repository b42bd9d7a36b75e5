#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
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

/// Appends one character, from 0 to U+10FFFF and no surrogate, in UTF-8.
void append_utf8(std::string& text, char32_t character);

/// Converts 16-bit code units to UTF-8. Unpaired surrogates become U+FFFD; every other unit is kept, 0 and
/// the units 0xFF80 to 0xFFFF, to which textures extend bytes above 127, among them.
[[nodiscard]] std::string utf8_of_units(std::span<const std::uint16_t> units);

}  // namespace text
