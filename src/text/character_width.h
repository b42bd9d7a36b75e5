#pragma once

#include <cstddef>

namespace text {

/// The number of columns of a terminal that a character takes up: 2 for the ideographs, syllables and
/// full-width forms of East Asia and for pictures, 0 for marks on the character before, else 1.
[[nodiscard]] std::size_t width_of(char32_t code_point);

}  // namespace text
