#include <unistd.h>

#include <csignal>
#include <system_error>

#include "cli/platform.h"

namespace cli {

bool is_terminal(int descriptor) {
    return ::isatty(descriptor) == 1;
}

std::filesystem::path program_path() {
    std::error_code error;
    std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::path() : path;
}

std::vector<std::string> begin_program(int argc, char** argv) {
    // A file that grows too large is then an error like a full disk, and no end without a word.
    std::signal(SIGXFSZ, SIG_IGN);
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

}  // namespace cli
