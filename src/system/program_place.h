#pragma once

// Where the running program is, and what came with it. program_place_<platform>.cpp answers the first.

#include <filesystem>
#include <string>
#include <vector>

namespace os {

/// Where the running program's file is, links resolved; empty when that cannot be told.
std::filesystem::path program_path();

/// Where the file `name` that came with `program` may be, the likeliest first: in the folder of its own that
/// it is installed in, in the build's folder of libraries, in the program's own.
std::vector<std::filesystem::path> places_beside(const std::filesystem::path& program,
                                                 const std::string& name);

}  // namespace os
