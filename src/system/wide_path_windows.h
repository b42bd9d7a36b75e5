#pragma once

#include <string>
#include <string_view>

// Windows only. Names of files are UTF-8 throughout this system; Windows opens them as wide characters, and
// at their full length only in a form of its own. Both functions may throw std::bad_alloc, nothing else.

namespace os {

/// The text in wide characters; empty when it is not UTF-8.
[[nodiscard]] std::wstring wide_text(std::string_view utf8);

/// The text in UTF-8; unpaired surrogates become U+FFFD.
[[nodiscard]] std::string utf8_text(std::wstring_view wide);

/// The name under which the system opens `path`: wide characters from UTF-8, absolute, with the separators
/// '\' and the prefix "\\?\" (before a server's folder "\\?\UNC\"). Behind the prefix a name may have 32,767
/// characters and is taken as it stands: a full stop at its end stays, and a reserved word like "nul" is a
/// name like others. "." and ".." are resolved by the text alone. A path that begins with "\\?\" or "\\.\"
/// already is only widened.
///
/// Empty when `path` is empty, is not UTF-8 or holds a NUL, or when the system does not tell its current
/// folder.
[[nodiscard]] std::wstring wide_path(std::string_view path);

}  // namespace os
