#include <windows.h>

#include <cstdio>

#include "cli/terminal/terminal_dialogue.h"

namespace cli {

TerminalSize terminal_size() {
    CONSOLE_SCREEN_BUFFER_INFO about{};
    if (GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &about) == 0) {
        return {};
    }
    return {about.srWindow.Right - about.srWindow.Left + 1, about.srWindow.Bottom - about.srWindow.Top + 1, 0,
            0};
}

std::string ask_terminal(std::string_view /*question*/,
                         const std::function<bool(std::string_view)>& /*complete*/, int /*timeout_ms*/) {
    return {};
}

bool write_to_terminal(std::string_view bytes, std::string_view /*ending*/) {
    return std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() && std::fflush(stdout) == 0;
}

}  // namespace cli
