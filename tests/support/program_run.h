#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "cli/program.h"

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
    return {code, out.str(), err.str()};
}
