#pragma once

// UTF-8, in which this host keeps texts that have an encoding, and UTF-16, in which today's hosts pass paths.
// Nothing is mended: what is not well formed has no other form.

#include <optional>
#include <string>
#include <string_view>

#include "host/current_interface.h"

namespace embedded {

using Utf16View = std::basic_string_view<A_UTF16Char>;
using Utf16String = std::basic_string<A_UTF16Char>;

/// The offset in bytes of the first that begins no well-formed sequence (no overlong forms, no surrogates,
/// nothing above U+10FFFF); nothing when all is well.
std::optional<std::size_t> first_fault(std::string_view utf8);

/// The offset in units of the first surrogate without its partner; nothing when all is well.
std::optional<std::size_t> first_fault(Utf16View utf16);

inline bool is_utf8(std::string_view text) {
    return !first_fault(text);
}

/// Nothing for what is not well formed.
std::optional<Utf16String> to_utf16(std::string_view utf8);
std::optional<std::string> to_utf8(Utf16View utf16);

}  // namespace embedded
