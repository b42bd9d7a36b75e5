#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "cli/terminal/child_process.h"
#include "system/signal_cleanup.h"

#if defined(__APPLE__)
// No header declares it on macOS.
extern char** environ;
#endif

namespace cli {
namespace {

using Clock = std::chrono::steady_clock;

/// Both ends of a pipe; the destructor closes them.
class Pipe {
  public:
    Pipe() {
        if (::pipe(ends_.data()) != 0) {
            throw std::system_error(errno, std::generic_category(), "pipe");
        }
        for (const int end : ends_) {
            ::fcntl(end, F_SETFD, FD_CLOEXEC);
        }
    }
    ~Pipe() {
        close(0);
        close(1);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    [[nodiscard]] int end(std::size_t which) const { return ends_[which]; }
    void close(std::size_t which) {
        if (ends_[which] >= 0) {
            ::close(ends_[which]);
            ends_[which] = -1;
        }
    }

  private:
    std::array<int, 2> ends_{-1, -1};
};

/// Makes the child the leader of a new process group, so that what it starts can be ended with it.
class GroupLeader {
  public:
    GroupLeader() {
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETPGROUP);
        posix_spawnattr_setpgroup(&attributes_, 0);
    }
    ~GroupLeader() { posix_spawnattr_destroy(&attributes_); }
    GroupLeader(const GroupLeader&) = delete;
    GroupLeader& operator=(const GroupLeader&) = delete;
    posix_spawnattr_t* get() { return &attributes_; }

  private:
    posix_spawnattr_t attributes_{};
};

class FileActions {
  public:
    FileActions() { posix_spawn_file_actions_init(&actions_); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    posix_spawn_file_actions_t* get() { return &actions_; }

  private:
    posix_spawn_file_actions_t actions_{};
};

std::string signal_text(int number) {
    struct Name {
        int number;
        const char* name;
    };
    constexpr std::array kNames{Name{SIGABRT, "SIGABRT"}, Name{SIGBUS, "SIGBUS"},   Name{SIGFPE, "SIGFPE"},
                                Name{SIGILL, "SIGILL"},   Name{SIGKILL, "SIGKILL"}, Name{SIGPIPE, "SIGPIPE"},
                                Name{SIGSEGV, "SIGSEGV"}, Name{SIGTERM, "SIGTERM"}, Name{SIGTRAP, "SIGTRAP"}};
    const auto* const known = std::find_if(kNames.begin(), kNames.end(),
                                           [number](const Name& name) { return name.number == number; });
    const std::string text = known == kNames.end() ? "signal " + std::to_string(number) : known->name;
    const char* const words = ::strsignal(number);
    return words == nullptr ? text : text + ", " + words;
}

/// Reads from both pipes until both are closed. Returns false when time runs out before that.
bool read_until_closed(const Pipe& out, const Pipe& err, ChildResult& result, Clock::time_point end) {
    std::array<pollfd, 2> watched{{{out.end(0), POLLIN, 0}, {err.end(0), POLLIN, 0}}};
    const std::array<std::string*, 2> texts{&result.out, &result.err};
    std::array<char, 65536> part{};
    while (watched[0].fd >= 0 || watched[1].fd >= 0) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        if (left <= 0) {
            return false;
        }
        if (::poll(watched.data(), watched.size(), static_cast<int>(std::min<long long>(left, 1000))) <= 0) {
            continue;
        }
        for (std::size_t i = 0; i < watched.size(); ++i) {
            if (watched[i].fd < 0 || watched[i].revents == 0) {
                continue;
            }
            const ssize_t count = ::read(watched[i].fd, part.data(), part.size());
            if (count <= 0) {
                watched[i].fd = count < 0 && errno == EINTR ? watched[i].fd : -1;
                continue;
            }
            const auto room = kMostOutput - texts[i]->size();
            texts[i]->append(part.data(), std::min(static_cast<std::size_t>(count), room));
        }
    }
    return true;
}

/// Returns false when time runs out before the process has ended. Does not reap it: its number, which is also
/// that of its group, stays taken.
bool wait_until_over(pid_t child, Clock::time_point end) {
    constexpr useconds_t kPause = 5000;
    const auto over = [child] {
        siginfo_t about{};
        return ::waitid(P_PID, static_cast<id_t>(child), &about, WEXITED | WNOHANG | WNOWAIT) != 0 ||
               about.si_pid == child;
    };
    while (!over()) {
        if (Clock::now() >= end) {
            return false;
        }
        ::usleep(kPause);
    }
    return true;
}

}  // namespace

ChildResult run_child(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                      std::chrono::seconds longest) {
    ChildResult result;
    std::string name = program.string();
    std::vector<std::string> words = arguments;
    std::vector<char*> pointers{name.data()};
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);

    Pipe out;
    Pipe err;
    GroupLeader leader;
    FileActions actions;
    posix_spawn_file_actions_addopen(actions.get(), STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(actions.get(), out.end(1), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(actions.get(), err.end(1), STDERR_FILENO);
    pid_t child = 0;
    if (const int failure =
            ::posix_spawn(&child, name.c_str(), actions.get(), leader.get(), pointers.data(), environ);
        failure != 0) {
        result.error = std::generic_category().message(failure);
        return result;
    }
    out.close(1);
    err.close(1);

    // Ctrl-C in a terminal reaches this program only.
    const os::RemovedOnSignal cleanup = os::RemovedOnSignal::process_group(child);
    const Clock::time_point end = Clock::now() + longest;
    // A process that the child left behind may keep the pipes open: the time limit covers that too.
    result.timed_out = !read_until_closed(out, err, result, end) || !wait_until_over(child, end);
    ::kill(-child, SIGKILL);  // the child, if it is still there, and whatever it started
    int status = 0;
    ::waitpid(child, &status, 0);
    if (result.timed_out) {
        return result;
    }
    if (WIFEXITED(status)) {
        result.exit_code = WEXITSTATUS(status);
    } else if (WIFSIGNALED(status)) {
        result.signal = signal_text(WTERMSIG(status));
    }
    return result;
}

}  // namespace cli
