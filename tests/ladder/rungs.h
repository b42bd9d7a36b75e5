#pragma once

#include <cstdint>
#include <string>

/// Counts rungs that were climbed, by kind: "cuts", "flips". When the program ends, its last line is
///   rungs: {"cuts": 12, "flips": 96}
/// for programs that add them up.
void count_rungs(const std::string& kind, std::int64_t count = 1);
