#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace text {

/// Makes any bytes of a file safe to show on one line of a terminal: well-formed UTF-8 stays, except for
/// control characters, line ends, byte order marks and characters that change the direction of writing. The
/// bytes of those, and bytes that are not UTF-8, become "\xNN".
[[nodiscard]] std::string printable(std::string_view text);

/// The printable text in double quotes.
[[nodiscard]] std::string quoted(std::string_view text);

/// The text as one word of a command that a person copies: as it is, or quoted. Bytes that cannot be shown
/// are written as bash and zsh read them; on Windows, for the Command Prompt.
[[nodiscard]] std::string shell_word(std::string_view text);

/// The number of columns that a printable text takes up on a terminal, as the widths of its characters say.
[[nodiscard]] std::size_t columns_of(std::string_view printable_text);

/// A number as "0x1a4".
[[nodiscard]] std::string hexadecimal(std::uint64_t value);

/// Two lower-case digits for each byte: "0a1f".
[[nodiscard]] std::string hexadecimal_bytes(std::string_view bytes);

/// The bytes that hexadecimal_bytes() wrote as `digits`; nothing for any other text.
[[nodiscard]] std::optional<std::string> bytes_of_hexadecimal(std::string_view digits);

}  // namespace text
