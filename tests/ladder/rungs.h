#pragma once

#include <cstdint>
#include <string>

/// Counts rungs by kind: "cuts", "flips". The last line of the program is
///   rungs: {"cuts": 12, "flips": 96}
/// for scripts that add them up.
void count_rungs(const std::string& kind, std::int64_t count = 1);
