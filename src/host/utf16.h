#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Between the narrow texts of this system, which are UTF-8, and the wide ones of today's hosts. Strict: what
// is not valid is refused and never mended, because a path that was changed on the way names another file.

/// A converted text, or where it could not be converted.
template <typename String>
struct ConvertedText {
    String text;  ///< empty when there is a fault
    /// The offset in units of the source (bytes or 16-bit units) of the sequence that is not valid.
    std::optional<std::size_t> fault;
};

/// Refuses stray and missing continuation bytes, overlong forms, surrogates, and whatever is beyond U+10FFFF.
/// Throws std::bad_alloc.
ConvertedText<std::u16string> utf16_from_utf8(std::string_view text);

/// Refuses unpaired surrogates. Throws std::bad_alloc.
ConvertedText<std::string> utf8_from_utf16(std::u16string_view text);
