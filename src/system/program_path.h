#pragma once

// The running program, and the files that are installed with it.

#include <filesystem>
#include <string>
#include <vector>

namespace os {

/// The file of the running program, links resolved; empty if it cannot be determined.
std::filesystem::path program_path();

/// Where the file `name` that belongs to `program` may be, the likeliest path first: in the folder of its own
/// that it is installed in, in the build's library folder, in the program's folder.
std::vector<std::filesystem::path> paths_beside(const std::filesystem::path& program,
                                                const std::string& name);

}  // namespace os
