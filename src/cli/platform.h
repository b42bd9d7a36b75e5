#pragma once

// What the command line needs of the operating system. One implementation a platform: platform_<name>.cpp.

#include <filesystem>

namespace cli {

/// True when the standard stream `descriptor` (1 or 2) is a terminal.
bool is_terminal(int descriptor);

/// Where the running program's file is, links resolved; empty when that cannot be told.
std::filesystem::path program_path();

}  // namespace cli
