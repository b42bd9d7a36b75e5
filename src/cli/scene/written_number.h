#pragma once

#include <string>
#include <string_view>

namespace cli {

/// Whether the text of a number token says what was kept of it. Not so when something of it was dropped
/// ("29.97" as an integer, "1.2.3"), when it says no number at all ("-"), and when it is too large or too
/// small. Rounding to single precision does not count.
bool is_kept_as_written(std::string_view text, double kept, bool integer);

/// The shortest text that reads back as `value` in single precision; integers of any size as they are.
std::string number_text(double value);

}  // namespace cli
