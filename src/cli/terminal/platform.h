#pragma once

// What the command line needs of the operating system. One implementation a platform: platform_<name>.cpp.

#include <string>
#include <vector>

namespace cli {

/// True when the standard stream `descriptor` (1 or 2) is a terminal.
bool is_terminal(int descriptor);

/// Before anything else: makes the standard streams carry bytes as they are written, and texts as UTF-8.
/// Returns the arguments behind the program's name.
std::vector<std::string> begin_program(int argc, char** argv);

}  // namespace cli
