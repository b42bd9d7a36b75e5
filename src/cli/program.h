#pragma once

#include <string>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/help/help_page.h"
#include "cli/terminal/terminal.h"

namespace cli {

/// "vxr 1.0.0", as --version prints it.
std::string program_version();

/// Runs the program with `arguments` (without its own name). Does not throw: an exception becomes an error
/// message and exit code 3, and so does a result that could not be written.
ExitCode run_program(const std::vector<std::string>& arguments, Terminal& terminal);

/// The page of the program, then those of the groups and verbs, in the order of the help.
std::vector<HelpPage> program_help_pages();

}  // namespace cli
