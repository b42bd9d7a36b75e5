#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace cli {

/// Any bytes as they stand in an element, or in an attribute between double quotes: text::printable() of
/// them, with the signs of HTML escaped.
[[nodiscard]] std::string html_text(std::string_view text);

/// A name of the scene, whose direction of writing does not reach what is around it.
[[nodiscard]] std::string html_name(std::string_view name);

/// "1 loss", "1,024 losses"
[[nodiscard]] std::string counted(std::int64_t count, std::string_view one, std::string_view several);

/// The shortest text that reads back as the same float; "not a number" or "infinite" for the others.
[[nodiscard]] std::string html_number(double value);

}  // namespace cli
