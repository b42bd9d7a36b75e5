#pragma once

#include <optional>
#include <string>

namespace cli {

/// Whether a number was kept as it was written. `written` is empty when the text is not a single number ("-",
/// "1.2.3"). An integer must be exactly equal (29.97 is not kept as 29); a real number must not have become
/// infinite or zero. Rounding to single precision does not count.
bool is_kept_as_written(std::optional<double> written, double kept, bool integer);

/// The shortest text that reads back as `value` in single precision; integers of any size in full.
std::string shortest_text(double value);

/// A result for a person: three significant digits, and all digits before the point: "0.0123", "3.24",
/// "1234".
std::string measured_text(double value);

}  // namespace cli
