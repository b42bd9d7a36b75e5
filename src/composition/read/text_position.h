#pragma once

#include <cstdint>

/// A place in a text file, as a person finds it there. Lines end with CR, LF, CR LF or LF CR; a line end
/// belongs to the line that it ends.
struct TextPosition {
    std::int64_t offset_bytes = 0;  ///< from the start of the file
    std::int64_t line = 1;          ///< counted from 1
    std::int64_t column = 1;        ///< in bytes, counted from 1
};
