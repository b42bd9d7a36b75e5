#pragma once

#include <string>
#include <vector>

#include "cli/batch/batch_file.h"
#include "cli/batch/job_folder.h"

namespace cli {

/// The items of all tasks, in the order of the file. Names are relative to `base`, the folder of the batch
/// file at `path`. Throws std::runtime_error for files that are not there and for folders and patterns in
/// which there is nothing, and UsageError for outputs that would overwrite what is read, or each other.
[[nodiscard]] std::vector<BatchItem> find_batch_items(const BatchFile& file,
                                                      const std::vector<PlannedTask>& tasks,
                                                      const std::string& path, const std::string& base);

/// Whether a name is what a pattern stands for: '*' is any text, '?' one character.
[[nodiscard]] bool matches_pattern(std::string_view name, std::string_view pattern);

}  // namespace cli
