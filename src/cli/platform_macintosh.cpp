// Written from documentation and checked for syntax only, as docs/hosts.md says.

#include <mach-o/dyld.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <string>
#include <system_error>

#include "cli/platform.h"

namespace cli {

bool is_terminal(int descriptor) {
    return ::isatty(descriptor) == 1;
}

std::filesystem::path program_path() {
    // Asked without room it says how much it needs.
    std::uint32_t size = 0;
    _NSGetExecutablePath(nullptr, &size);
    std::string path(size, '\0');
    if (size == 0 || _NSGetExecutablePath(path.data(), &size) != 0) {
        return {};
    }
    std::error_code error;
    std::filesystem::path resolved = std::filesystem::canonical(path.c_str(), error);
    return error ? std::filesystem::path() : resolved;
}

std::vector<std::string> begin_program(int argc, char** argv) {
    // A file that grows too large is then an error like a full disk, and no end without a word.
    std::signal(SIGXFSZ, SIG_IGN);
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

}  // namespace cli
