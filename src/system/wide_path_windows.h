#pragma once

#include <string>
#include <string_view>

// Windows only. File names are UTF-8 throughout our code; Windows opens them as wide characters, and at full
// length only in a form of its own. These functions may throw std::bad_alloc, nothing else.

namespace os {

/// The text in wide characters; empty if it is not UTF-8.
[[nodiscard]] std::wstring wide_text(std::string_view utf8);

/// The text in UTF-8; unpaired surrogates become U+FFFD.
[[nodiscard]] std::string utf8_text(std::wstring_view wide);

/// The name under which Windows opens `path`: absolute, in wide characters, with the separators '\' and the
/// prefix
/// "\\?\" ("\\?\UNC\" for a server's folder). A name with the prefix may have 32,767 characters and is used
/// literally: a full stop at its end stays, and a reserved word such as "nul" is an ordinary name. "." and
/// ".." are resolved in the text alone. A path that already begins with "\\?\" or "\\.\" is only converted to
/// wide characters.
///
/// Empty if `path` is empty, is not UTF-8 or contains a NUL, or if Windows does not reveal its current
/// folder.
[[nodiscard]] std::wstring wide_path(std::string_view path);

}  // namespace os
