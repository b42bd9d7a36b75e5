#include <string>
#include <vector>

#include "cli/build_identity.h"
#include "cli/program.h"
#include "cli/terminal/terminal.h"
#include "system/allocator.h"

int main(int argc, char** argv) {
    os::prepare_allocator_for_scenes();
    const std::vector<std::string> arguments = cli::begin_program(argc, argv);
    cli::Terminal terminal = cli::standard_terminal();
    return static_cast<int>(cli::run_program(arguments, terminal, {kCommit, kBuild}));
}
