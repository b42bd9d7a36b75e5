#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "limit/limits.h"
#include "support/temporary_folder.h"

/// A limit with the last file that is accepted and the first that is refused.
struct LimitPair {
    const char* name;  ///< what is counted, as part of a test name
    const limits::Limit* limit;
    bool texture;         ///< otherwise a composition file
    const char* refusal;  ///< the error's code
    /// Writes the file that exceeds the limit by `above`, 0 or 1, and returns its path.
    std::function<std::string(const TemporaryFolder& folder, int above)> write;
};

inline void PrintTo(const LimitPair& pair, std::ostream* out) {
    *out << pair.name;
}

/// Every limit that a file can reach.
const std::vector<LimitPair>& limit_pairs();
