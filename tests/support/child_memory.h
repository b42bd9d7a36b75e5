#pragma once

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <ctime>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

/// The memory and time that work took in a process of its own.
struct ChildMemory {
    bool ended_well = false;       ///< the process ended normally, and the work returned true
    std::int64_t peak_bytes = 0;   ///< the peak resident memory of the process
    std::int64_t start_bytes = 0;  ///< the resident memory before the work began
    double seconds = 0;            ///< processor time

    [[nodiscard]] std::int64_t above_start_bytes() const { return peak_bytes - start_bytes; }
};

/// A number of /proc/self/status, "VmRSS" or "VmHWM", in bytes. The kernel keeps the latter for each address
/// space, while getrusage reports for a child at least what its parent had when it was started.
inline std::int64_t own_memory_bytes(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(name + ':', 0) == 0) {
            constexpr std::int64_t kKilobyte = 1024;
            return kKilobyte * std::stoll(line.substr(name.size() + 1));
        }
    }
    throw std::runtime_error("/proc/self/status has no " + name);
}

/// Runs `work`, which returns whether it succeeded, in a process of its own that ends without the actions of
/// a normal exit. The caller must have a single thread.
template <typename Work>
ChildMemory memory_of(const Work& work) {
    // The child would reuse freed memory, which the measurement would miss.
    ::malloc_trim(0);
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) {
        throw std::runtime_error("no pipe");
    }
    const pid_t child = ::fork();
    if (child < 0) {
        throw std::runtime_error("no process");
    }
    if (child == 0) {
        bool good = false;
        std::int64_t start_bytes = 0;
        try {
            start_bytes = own_memory_bytes("VmRSS");
            good = work();
        } catch (...) {
            good = false;
        }
        const std::int64_t peak_bytes = own_memory_bytes("VmHWM");
        const double seconds = static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
        std::ostringstream told;
        told << good << ' ' << start_bytes << ' ' << peak_bytes << ' ' << seconds;
        const std::string text = told.str();
        const bool written = ::write(ends[1], text.data(), text.size()) == static_cast<ssize_t>(text.size());
        ::_exit(written ? 0 : 1);
    }
    ::close(ends[1]);
    std::string text;
    std::array<char, 256> part{};
    for (ssize_t count = 0; (count = ::read(ends[0], part.data(), part.size())) > 0;) {
        text.append(part.data(), static_cast<std::size_t>(count));
    }
    ::close(ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    ChildMemory memory;
    std::istringstream told(text);
    bool good = false;
    if (told >> good >> memory.start_bytes >> memory.peak_bytes >> memory.seconds) {
        memory.ended_well = good && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    return memory;
}
