#include <string>
#include <vector>

#include "cli/program.h"
#include "cli/terminal.h"

int main(int argc, char** argv) {
    cli::Terminal terminal = cli::standard_terminal();
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.emplace_back(argv[i]);
    }
    return static_cast<int>(cli::run_program(arguments, terminal));
}
