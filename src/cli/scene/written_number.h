#pragma once

#include <optional>
#include <string>

namespace cli {

/// Whether the number that a text says is the one that was kept. `written` is empty when the text says no
/// number or more than a number ("-", "1.2.3"). An integer must be exactly the same ("29.97" is not kept as
/// 29); a real number must not have become infinite or zero. Rounding to single precision is no change.
bool is_kept_as_written(std::optional<double> written, double kept, bool integer);

/// The shortest text that reads back as `value` in single precision; integers of any size in full.
std::string shortest_text(double value);

}  // namespace cli
