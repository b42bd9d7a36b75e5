#pragma once

// UTF-8, in which this host keeps texts that have an encoding, and UTF-16, in which current hosts pass paths.
// Conversion never repairs a text: one that is not well-formed has no counterpart.
//
// Deliberately separate from the plug-in's own UTF-16 in src/host and from src/text: the host and the plug-in
// meet as two binaries do, so an error in one implementation must not hide the same error in the other.

#include <optional>
#include <string>
#include <string_view>

#include "host/current_interface.h"

namespace embedded {

using Utf16View = std::basic_string_view<A_UTF16Char>;
using Utf16String = std::basic_string<A_UTF16Char>;

/// The offset in bytes at which the first ill-formed sequence begins (overlong forms, surrogates and values
/// above U+10FFFF are ill-formed); nothing for well-formed text.
std::optional<std::size_t> first_fault(std::string_view utf8);

/// The offset in units of the first surrogate without its partner; nothing for well-formed text.
std::optional<std::size_t> first_fault(Utf16View utf16);

inline bool is_utf8(std::string_view text) {
    return !first_fault(text);
}

/// Nothing for text that is not well-formed.
std::optional<Utf16String> to_utf16(std::string_view utf8);
std::optional<std::string> to_utf8(Utf16View utf16);

}  // namespace embedded
