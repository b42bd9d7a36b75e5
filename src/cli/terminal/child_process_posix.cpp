#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
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
    // No child of another thread may inherit them: it would keep the pipe open. So they are made closed to
    // children in one step; macOS has no such step, and GroupLeader closes everything there.
    Pipe() {
#if defined(__APPLE__)
        const int failure = ::pipe(ends_.data());
#else
        const int failure = ::pipe2(ends_.data(), O_CLOEXEC);
#endif
        if (failure != 0) {
            throw std::system_error(errno, std::generic_category(), "pipe");
        }
    }
    ~Pipe() {
        close(0);
        close(1);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    [[nodiscard]] int end(std::size_t which) const {
        return ends_[which];
    }
    void close(std::size_t which) {
        if (ends_[which] >= 0) {
            ::close(ends_[which]);
            ends_[which] = -1;
        }
    }

  private:
    std::array<int, 2> ends_{-1, -1};
};

/// What the child reads. A pair of sockets and not a pipe, because a socket can be told not to end this
/// program when the child reads no more.
class InputChannel {
  public:
    explicit InputChannel(const ChildInput& input) : input_(input) {
        if (!input_) {
            return;
        }
#if defined(__APPLE__)
        constexpr int kKind = SOCK_STREAM;
#else
        constexpr int kKind = SOCK_STREAM | SOCK_CLOEXEC;
#endif
        if (::socketpair(AF_UNIX, kKind, 0, ends_.data()) != 0) {
            throw std::system_error(errno, std::generic_category(), "socketpair");
        }
        ::fcntl(ends_[1], F_SETFL, O_NONBLOCK);
#if defined(__APPLE__)
        const int on = 1;
        ::setsockopt(ends_[1], SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
#endif
    }
    ~InputChannel() {
        close(0);
        close(1);
    }
    InputChannel(const InputChannel&) = delete;
    InputChannel& operator=(const InputChannel&) = delete;

    [[nodiscard]] int childs_end() const {
        return ends_[0];
    }
    void given_to_child() {
        close(0);
    }
    /// -1 when nothing is to be written any more.
    [[nodiscard]] int own_end() const {
        return ends_[1];
    }

    /// Writes as much as the child takes without waiting.
    void write_some() {
        if (piece_.empty()) {
            piece_ = input_();
        }
        if (piece_.empty()) {
            return close(1);
        }
#if defined(__APPLE__)
        constexpr int kFlags = 0;
#else
        constexpr int kFlags = MSG_NOSIGNAL;
#endif
        const ssize_t count = ::send(ends_[1], piece_.data(), piece_.size(), kFlags);
        if (count > 0) {
            piece_.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) {
            close(1);
        }
    }

  private:
    void close(std::size_t which) {
        if (ends_[which] >= 0) {
            ::close(ends_[which]);
            ends_[which] = -1;
        }
    }

    const ChildInput& input_;
    std::array<int, 2> ends_{-1, -1};  ///< the child's, ours
    std::string_view piece_;           ///< what is left of it
};

/// Makes the child the leader of a new process group, so that what it starts can be ended with it. On macOS
/// it inherits nothing but its standard streams.
class GroupLeader {
  public:
    GroupLeader() {
        posix_spawnattr_init(&attributes_);
#if defined(__APPLE__)
        constexpr short kFlags = POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_CLOEXEC_DEFAULT;
#else
        constexpr short kFlags = POSIX_SPAWN_SETPGROUP;
#endif
        posix_spawnattr_setflags(&attributes_, kFlags);
        posix_spawnattr_setpgroup(&attributes_, 0);
    }
    ~GroupLeader() {
        posix_spawnattr_destroy(&attributes_);
    }
    GroupLeader(const GroupLeader&) = delete;
    GroupLeader& operator=(const GroupLeader&) = delete;
    posix_spawnattr_t* get() {
        return &attributes_;
    }

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
                                Name{SIGHUP, "SIGHUP"},   Name{SIGINT, "SIGINT"},   Name{SIGILL, "SIGILL"},
                                Name{SIGKILL, "SIGKILL"}, Name{SIGPIPE, "SIGPIPE"}, Name{SIGSEGV, "SIGSEGV"},
                                Name{SIGTERM, "SIGTERM"}, Name{SIGTRAP, "SIGTRAP"}};
    const auto* const known = std::find_if(kNames.begin(), kNames.end(),
                                           [number](const Name& name) { return name.number == number; });
    const std::string text = known == kNames.end() ? "signal " + std::to_string(number) : known->name;
    const char* const words = ::strsignal(number);
    return words == nullptr ? text : text + ", " + words;
}

/// The memory that a process occupies; 0 where the system does not tell, and of a process that is over.
std::uint64_t memory_of([[maybe_unused]] pid_t process) {
#if defined(__linux__)
    const std::string path = "/proc/" + std::to_string(process) + "/statm";
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return 0;
    }
    // "total resident shared ...", in pages
    std::array<char, 128> text{};
    const ssize_t count = ::read(file, text.data(), text.size() - 1);
    ::close(file);
    const char* const blank = count > 0 ? std::strchr(text.data(), ' ') : nullptr;
    return blank == nullptr
               ? 0
               : std::strtoull(blank, nullptr, 10) * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
#else
    return 0;
#endif
}

/// Watches that a child stays within its limits.
class LimitWatch {
  public:
    LimitWatch(pid_t child, const ChildLimits& limits)
        : child_(child),
          most_bytes_(limits.most_memory_bytes),
          most_output_bytes_(limits.most_output_bytes),
          end_(Clock::now() + limits.longest) {}

    /// Keeps what the child wrote to one of its streams.
    void keep(std::string_view part, std::string& text, ChildResult& result) const {
        const std::size_t most = most_output_bytes_ > 0 ? most_output_bytes_ : kMostOutput;
        const std::size_t room = most - text.size();
        text.append(part.substr(0, room));
        result.over_output = result.over_output || (most_output_bytes_ > 0 && part.size() > room);
    }

    /// Whether the child is beyond a limit; `result` then says which.
    bool exceeded(ChildResult& result) {
        const Clock::time_point now = Clock::now();
        result.timed_out = now >= end_;
        if (most_bytes_ > 0 && now >= next_look_) {
            next_look_ = now + kBetweenLooks;
            result.over_memory = !result.timed_out && memory_of(child_) > most_bytes_;
        }
        return result.timed_out || result.over_memory || result.over_output;
    }

    /// How long to wait for anything else before the next look.
    [[nodiscard]] std::chrono::milliseconds pause() const {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end_ - Clock::now());
        const std::chrono::milliseconds most = most_bytes_ > 0 ? kBetweenLooks : kWithoutLooks;
        return std::clamp(left, std::chrono::milliseconds(1), most);
    }

  private:
    static constexpr std::chrono::milliseconds kBetweenLooks{20};
    static constexpr std::chrono::milliseconds kWithoutLooks{1000};

    pid_t child_;
    std::uint64_t most_bytes_;
    std::size_t most_output_bytes_;
    Clock::time_point end_;
    Clock::time_point next_look_;
};

/// Writes the input and reads from both pipes until both are closed. Returns false when the child is beyond a
/// limit before that.
bool talk_until_closed(InputChannel& input, const Pipe& out, const Pipe& err, ChildResult& result,
                       LimitWatch& watch) {
    std::array<pollfd, 3> watched{
        {{out.end(0), POLLIN, 0}, {err.end(0), POLLIN, 0}, {input.own_end(), POLLOUT, 0}}};
    const std::array<std::string*, 2> texts{&result.out, &result.err};
    std::array<char, 65536> part{};
    while (watched[0].fd >= 0 || watched[1].fd >= 0) {
        if (watch.exceeded(result)) {
            return false;
        }
        if (::poll(watched.data(), watched.size(), static_cast<int>(watch.pause().count())) <= 0) {
            continue;
        }
        if (watched[2].fd >= 0 && watched[2].revents != 0) {
            input.write_some();
            watched[2].fd = input.own_end();
        }
        for (std::size_t i = 0; i < texts.size(); ++i) {
            if (watched[i].fd < 0 || watched[i].revents == 0) {
                continue;
            }
            const ssize_t count = ::read(watched[i].fd, part.data(), part.size());
            if (count <= 0) {
                watched[i].fd = count < 0 && errno == EINTR ? watched[i].fd : -1;
                continue;
            }
            watch.keep({part.data(), static_cast<std::size_t>(count)}, *texts[i], result);
        }
    }
    return !result.over_output;
}

/// Returns false when the child is beyond a limit before it has ended. Does not reap it: its number, which is
/// also that of its group, stays taken.
bool wait_until_over(pid_t child, ChildResult& result, LimitWatch& watch) {
    // Most children end at once when they have closed their pipes.
    constexpr useconds_t kFirstPause = 50;
    constexpr useconds_t kLongestPause = 5000;
    const auto over = [child] {
        siginfo_t about{};
        return ::waitid(P_PID, static_cast<id_t>(child), &about, WEXITED | WNOHANG | WNOWAIT) != 0 ||
               about.si_pid == child;
    };
    for (useconds_t pause = kFirstPause; !over(); pause = std::min(pause * 2, kLongestPause)) {
        if (watch.exceeded(result)) {
            return false;
        }
        ::usleep(pause);
    }
    return true;
}

}  // namespace

ChildResult run_child(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                      const ChildLimits& limits, const ChildInput& input) {
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
    InputChannel channel(input);
    GroupLeader leader;
    FileActions actions;
    if (input) {
        posix_spawn_file_actions_adddup2(actions.get(), channel.childs_end(), STDIN_FILENO);
    } else {
        posix_spawn_file_actions_addopen(actions.get(), STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    }
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
    channel.given_to_child();

    // Ctrl-C in a terminal reaches this program only.
    const os::RemovedOnSignal cleanup = os::RemovedOnSignal::process_group(child);
    LimitWatch watch(child, limits);
    // A process that the child left behind may keep the pipes open: the time limit covers that too.
    bool within_limits = true;
    int status = 0;
    const auto end_group = [child, &status] {
        ::kill(-child, SIGKILL);  // the child, if it is still there, and whatever it started
        ::waitpid(child, &status, 0);
    };
    try {
        within_limits =
            talk_until_closed(channel, out, err, result, watch) && wait_until_over(child, result, watch);
    } catch (...) {
        end_group();
        throw;
    }
    end_group();
    if (!within_limits) {
        return result;
    }
    if (WIFEXITED(status)) {
        result.exit_code = WEXITSTATUS(status);
    } else if (WIFSIGNALED(status)) {
        result.signal = signal_text(WTERMSIG(status));
    }
    return result;
}

std::optional<std::filesystem::path> find_program(const std::string& name) {
    const char* const set = std::getenv("PATH");
    std::string_view folders = set == nullptr ? std::string_view() : set;
    while (!folders.empty()) {
        const std::size_t colon = folders.find(':');
        // An empty folder is the present one.
        const std::filesystem::path place = std::filesystem::path(folders.substr(0, colon)) / name;
        std::error_code none;
        if (std::filesystem::is_regular_file(place, none) && ::access(place.c_str(), X_OK) == 0) {
            return place;
        }
        folders.remove_prefix(colon == std::string_view::npos ? folders.size() : colon + 1);
    }
    return std::nullopt;
}

}  // namespace cli
