#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Names and paths in composition files that are not UTF-8. Before Unicode, programs for Windows and for
// classic Mac OS used encodings of one byte per character; a file does not name its encoding.

/// Both have ASCII in their lower halves.
enum class ByteEncoding {
    /// The tables are those of the Unicode consortium. The five bytes that Windows-1252 leaves open are the
    /// control characters of the same number, as Windows itself reads them.
    windows_1252,
    /// With the euro sign, which replaced the currency sign in 1998.
    mac_roman,
};

/// "windows-1252", "mac-roman"
[[nodiscard]] const char* label(ByteEncoding encoding);

/// The encoding with this label; nothing for any other text.
[[nodiscard]] std::optional<ByteEncoding> parse_byte_encoding(std::string_view text);

/// The bytes as characters of that encoding; every byte is one. Throws std::bad_alloc.
[[nodiscard]] std::u16string utf16_from_bytes(std::string_view bytes, ByteEncoding encoding);

/// A name in UTF-16. It is read as UTF-8 if it is valid UTF-8, otherwise in that encoding. Throws
/// std::bad_alloc.
[[nodiscard]] std::u16string utf16_from_name(std::string_view name, ByteEncoding encoding);

/// The same in UTF-8.
[[nodiscard]] std::string utf8_from_name(std::string_view name, ByteEncoding encoding);

/// The possible meanings, in UTF-8, of a path that is not UTF-8, the likelier first: its names that are not
/// UTF-8 are read as Windows-1252, then as Mac Roman. Names in UTF-8 stay, because the folder of a
/// composition file and the footage that it names may come from different systems. Names end at "/" and "\".
/// Empty for a path in UTF-8. Throws std::bad_alloc.
[[nodiscard]] std::vector<std::string> paths_in_other_encodings(std::string_view path);
