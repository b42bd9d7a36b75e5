#include "cli/terminal/terminal_dialogue.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>

#include "cli/terminal/terminal.h"

namespace cli {
namespace {

/// Holds back the signals that would end or stop the program, and delivers them at the end.
class HeldSignals {
  public:
    HeldSignals() {
        sigemptyset(&held_);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP}) {
            // One that is ignored, as nohup wants it, ends nothing.
            struct sigaction action {};
            if (::sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) {
                sigaddset(&held_, signal);
            }
        }
        ::pthread_sigmask(SIG_BLOCK, &held_, &before_);
    }
    ~HeldSignals() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

    /// Whether one of them is waiting.
    [[nodiscard]] bool pending() const {
        sigset_t waiting;
        sigemptyset(&waiting);
        ::sigpending(&waiting);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP}) {
            if (sigismember(&held_, signal) == 1 && sigismember(&waiting, signal) == 1) {
                return true;
            }
        }
        return false;
    }

  private:
    sigset_t held_{};
    sigset_t before_{};
};

/// How long a wait lasts before signals are looked at again.
constexpr int kSlice_ms = 20;
/// More than any terminal answers.
constexpr std::size_t kLongestAnswer_bytes = 4096;

bool send(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (written > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (written == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

}  // namespace

TerminalSize terminal_size() {
    struct winsize size {};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0) {
        return {};
    }
    return {size.ws_col, size.ws_row, size.ws_xpixel, size.ws_ypixel};
}

std::string ask_terminal(std::string_view question, const std::function<bool(std::string_view)>& complete,
                         int timeout_ms) {
    // In the background, changing the terminal would stop the program.
    termios before{};
    if (!is_terminal(STDIN_FILENO) || !is_terminal(STDOUT_FILENO) ||
        ::tcgetpgrp(STDIN_FILENO) != ::getpgrp() || ::tcgetattr(STDIN_FILENO, &before) != 0) {
        return {};
    }
    const HeldSignals held;
    termios quiet = before;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    quiet.c_cc[VMIN] = 0;
    quiet.c_cc[VTIME] = 0;
    // Now, because output that the user has stopped is never drained.
    if (::tcsetattr(STDIN_FILENO, TCSANOW, &quiet) != 0) {
        return {};
    }
    std::string answer;
    bool answered = false;
    if (send(question)) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout_ms);
        while (!answered && !held.pending() && answer.size() < kLongestAnswer_bytes &&
               std::chrono::steady_clock::now() < end) {
            pollfd input{STDIN_FILENO, POLLIN, 0};
            if (::poll(&input, 1, kSlice_ms) <= 0) {
                continue;
            }
            std::array<char, 256> bytes{};
            const ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
            if (count <= 0) {
                break;
            }
            answer.append(bytes.data(), static_cast<std::size_t>(count));
            answered = complete(answer);
        }
    }
    if (!answered) {
        ::tcflush(STDIN_FILENO, TCIFLUSH);  // a part of an answer is no input of the user
    }
    ::tcsetattr(STDIN_FILENO, TCSANOW, &before);
    return answer;
}

bool write_to_terminal(std::string_view bytes, std::string_view ending) {
    constexpr std::size_t kPiece_bytes = 1024;
    const HeldSignals held;
    while (!bytes.empty()) {
        pollfd output{STDOUT_FILENO, POLLOUT, 0};
        const int ready = ::poll(&output, 1, kSlice_ms);
        if (held.pending()) {
            return ready <= 0 || send(ending);
        }
        if (ready <= 0) {
            continue;
        }
        const std::string_view piece = bytes.substr(0, kPiece_bytes);
        if (!send(piece)) {
            return false;
        }
        bytes.remove_prefix(piece.size());
    }
    return true;
}

}  // namespace cli
