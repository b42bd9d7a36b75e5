#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Converts between the plug-in's UTF-8 and the UTF-16 of current hosts. Strict: invalid text is refused and
// never repaired, because a path that changes on the way names another file.

/// A converted text, or the place where the conversion fails.
template <typename String>
struct ConvertedText {
    String text;  ///< empty when there is a fault
    /// The offset of the invalid sequence, in units of the source (bytes or 16-bit units).
    std::optional<std::size_t> fault;
};

/// Refuses stray and missing continuation bytes, overlong forms, surrogates, and code points beyond U+10FFFF.
/// Throws std::bad_alloc.
ConvertedText<std::u16string> utf16_from_utf8(std::string_view text);

/// Refuses unpaired surrogates. Throws std::bad_alloc.
ConvertedText<std::string> utf8_from_utf16(std::u16string_view text);
