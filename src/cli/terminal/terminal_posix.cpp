#include <unistd.h>

#include <csignal>

#include "cli/terminal/terminal.h"

namespace cli {

bool is_terminal(int descriptor) {
    return ::isatty(descriptor) == 1;
}

std::vector<std::string> begin_program(int argc, char** argv) {
    // Exceeding the file size limit is then a write error, like a full disk, instead of ending the process
    // silently.
    std::signal(SIGXFSZ, SIG_IGN);
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

}  // namespace cli
