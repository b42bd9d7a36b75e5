#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "cli/program.h"
#include "support/program_output.h"

/// What the command line did and wrote, without colours and not on a terminal.
struct Ran {
    cli::ExitCode code;
    std::string out;
    std::string err;
};

inline Ran run(const std::vector<std::string>& arguments) {
    std::ostringstream out;
    std::ostringstream err;
    cli::Terminal terminal{out, err, cli::Paint(false), cli::Paint(false), false};
    const cli::ExitCode code = cli::run_program(arguments, terminal);
    if (program_output_listener != nullptr) {
        std::vector<std::string> command{"vxr"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        program_output_listener(command, out.str());
    }
    return {code, out.str(), err.str()};
}
