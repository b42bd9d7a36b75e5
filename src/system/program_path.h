#pragma once

// The running program, and the files that are installed with it.

#include <filesystem>
#include <string>
#include <vector>

namespace os {

/// The file of the running program, links resolved; empty if it cannot be determined.
std::filesystem::path program_path();

/// The program whose installed files are used: the running one, unless a library inside another program has
/// named its own.
std::filesystem::path own_program();

/// Names the program that a library inside another one belongs to. Call it before there are threads.
void set_own_program(std::filesystem::path program);

/// Where the file `name` that belongs to `program` may be, the likeliest path first: in the folder of its own
/// that it is installed in, in the build's library folder, in the program's folder.
std::vector<std::filesystem::path> paths_beside(const std::filesystem::path& program,
                                                const std::string& name);

}  // namespace os
