#pragma once

#include <string>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/help/help_page.h"
#include "cli/terminal/terminal.h"

namespace cli {

/// "vxr 1.0.0", the first line of what --version prints.
std::string program_version();

/// What a program was built of, for the second line of --version.
struct BuildIdentity {
    const char* commit = "unknown";  ///< twelve digits; "+" behind them where files differed from it
    const char* build = "unknown";   ///< "Release, GNU 12.2.0, Linux x86_64"
};

/// Runs the program with `arguments` (without its own name). Does not throw: an exception becomes an error
/// message and exit code 3, and so does a result that could not be written.
ExitCode run_program(const std::vector<std::string>& arguments, Terminal& terminal,
                     const BuildIdentity& identity = {});

/// The page of the program, then those of the groups and verbs, in the order of the help.
std::vector<HelpPage> program_help_pages();

}  // namespace cli
