#include <string>
#include <vector>

#include "cli/build_identity.h"
#include "cli/program.h"
#include "cli/terminal/terminal.h"

int main(int argc, char** argv) {
    const std::vector<std::string> arguments = cli::begin_program(argc, argv);
    cli::Terminal terminal = cli::standard_terminal();
    return static_cast<int>(cli::run_program(arguments, terminal, {kCommit, kBuild}));
}
