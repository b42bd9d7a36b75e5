#include <sys/ioctl.h>
#include <unistd.h>

#include <csignal>

#include "cli/terminal/terminal.h"
#include "system/signal_cleanup.h"

namespace cli {

bool is_terminal(int descriptor) {
    return ::isatty(descriptor) == 1;
}

std::optional<std::size_t> terminal_columns(int descriptor) {
    struct winsize size {};
    return ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0
               ? std::optional<std::size_t>(size.ws_col)
               : std::nullopt;
}

std::vector<std::string> begin_program(int argc, char** argv) {
    // Exceeding the file size limit is then a write error, like a full disk, instead of ending the process
    // silently.
    std::signal(SIGXFSZ, SIG_IGN);
    os::end_on_signals();
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

}  // namespace cli
