#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "cli/batch/job_folder.h"

// How a batch is handed to something that runs many commands: in parts, each by `vxr batch run --part`.

namespace cli {

/// The text as one word for any POSIX shell, on one line and in ASCII, whatever its bytes are. Not for a text
/// that ends with a line end.
[[nodiscard]] std::string script_word(std::string_view text);

/// How many parts there are: one for each item, but at most `most`.
[[nodiscard]] std::size_t part_count(std::size_t items, std::size_t most);

/// The shell command that does one part, without an end of line. `program` is the path of `vxr`.
[[nodiscard]] std::string part_command(const std::string& program, const JobFolder& folder,
                                       const BatchPart& part);

/// The script of an array job of Slurm whose tasks are numbered from 1 to `parts`. A task does as many items
/// at a time as it has processors, and its messages are among the logs of the job folder.
[[nodiscard]] std::string slurm_script(const std::string& program, const JobFolder& folder,
                                       std::size_t parts);

}  // namespace cli
