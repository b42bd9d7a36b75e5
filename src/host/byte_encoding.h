#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Names and paths in composition files that are not UTF-8: the bytes of an encoding with one byte a
// character, in which programs on Windows and on the Macintosh wrote before Unicode. A file does not say
// which one it was.

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

/// A name in UTF-16: of UTF-8 if it is valid, else of bytes in that encoding. Throws std::bad_alloc.
[[nodiscard]] std::u16string utf16_from_name(std::string_view name, ByteEncoding encoding);

/// The same in UTF-8.
[[nodiscard]] std::string utf8_from_name(std::string_view name, ByteEncoding encoding);

/// The paths in UTF-8 that a path which is not UTF-8 may mean, the likelier first: the names in it that are
/// not UTF-8 are read as Windows-1252, then as Mac Roman. Each name counts by itself, because the folder of a
/// composition file and the footage named in it come from different systems. Names end at "/" and "\". Empty
/// for a path that is UTF-8. Throws std::bad_alloc.
[[nodiscard]] std::vector<std::string> paths_in_other_encodings(std::string_view path);
