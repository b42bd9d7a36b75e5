#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace cli {

/// Text of a file, safe to show: well-formed UTF-8 stays, every control character and every byte that is no
/// UTF-8 becomes "\xNN", and so do the characters that turn the direction of writing. No break of a line is
/// left.
std::string printable(std::string_view text);

/// The same in double quotes.
std::string quoted(std::string_view text);

/// How many columns a printable text takes: one a character. Wide characters count as one, too.
std::size_t columns_of(std::string_view printable_text);

}  // namespace cli
