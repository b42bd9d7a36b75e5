#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "embedded/sequence.h"

namespace cli {

/// A file of a numbered sequence.
struct SequenceFile {
    std::string name;
    std::int64_t number = 0;
};

/// Every file of the sequence that a host imports for the file at `path`, in the order of their numbers. That
/// file alone if its name has no number.
[[nodiscard]] std::vector<SequenceFile> sequence_files(embedded::SequenceIndex& index,
                                                       const std::string& path);

}  // namespace cli
