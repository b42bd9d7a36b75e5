#include "measuring.h"

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <malloc.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <map>

namespace {

/// The value of a line of /proc/self/status such as "VmRSS:     2196 kB", in bytes; 0 if there is none.
std::int64_t status_bytes(const std::string& key) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        std::int64_t kilobytes = 0;
        if (word == key && status >> kilobytes) {
            return kilobytes * 1024;
        }
    }
    return 0;
}

/// Resets the kernel's high-water mark to the memory that is resident now.
bool reset_peak() {
    std::ofstream clear("/proc/self/clear_refs");
    clear << "5" << std::flush;
    return clear.good();
}

}  // namespace

void require(bool holds, const std::string& what) {
    if (holds) {
        return;
    }
    std::fprintf(stderr, "error: %s\n", what.c_str());
    std::exit(EXIT_FAILURE);
}

std::int64_t peak_memory_bytes(const std::function<void()>& work) {
    malloc_trim(0);
    const std::int64_t before = status_bytes("VmRSS:");
    if (before == 0 || !reset_peak()) {
        work();
        return 0;
    }
    work();
    return std::max<std::int64_t>(status_bytes("VmHWM:") - before, 0);
}

std::int64_t peak_memory_bytes_once(const std::string& name, const std::function<void()>& work) {
    static std::map<std::string, std::int64_t> known;
    const auto found = known.find(name);
    if (found != known.end()) {
        return found->second;
    }
    return known[name] = peak_memory_bytes(work);
}

void keep_freed_memory() {
    constexpr int kNever = std::numeric_limits<int>::max();
    ::mallopt(M_TRIM_THRESHOLD, kNever);
    ::mallopt(M_MMAP_MAX, 0);
}

double child_seconds(const std::vector<std::string>& arguments, int exit_code) {
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) {
        pointers.push_back(const_cast<char*>(argument.c_str()));  // execvp does not change them
    }
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int failed = ::posix_spawnp(&child, pointers.front(), &actions, nullptr, pointers.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    require(failed == 0, "cannot start " + arguments.front());
    int status = 0;
    rusage usage{};
    ::wait4(child, &status, 0, &usage);
    require(WIFEXITED(status) && WEXITSTATUS(status) == exit_code, arguments.front() + " failed");
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

int run_benchmarks(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return EXIT_FAILURE;
    }
    const std::size_t run = benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return run > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
