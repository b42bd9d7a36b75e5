#pragma once

// Runs a program and captures how it ends. One implementation for each platform:
// child_process_<platform>.cpp.

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

struct ChildResult {
    std::string error;             ///< why it could not be started; empty when it was
    bool timed_out = false;        ///< run_child() ended it after its time
    bool over_memory = false;      ///< run_child() ended it, because it used too much memory
    bool over_output = false;      ///< run_child() ended it, because it wrote too much
    std::optional<int> exit_code;  ///< nothing when it did not exit by itself
    std::string signal;            ///< what ended it instead: "SIGSEGV, Segmentation fault"
    std::string out;               ///< its output, at most what the limits allow of each stream
    std::string err;
};

/// When run_child() ends a process.
struct ChildLimits {
    std::chrono::seconds longest;
    /// Of the process itself, as it occupies it; 0 for any. It is looked at many times a second, so what a
    /// process takes and gives back in between is not seen. On macOS there is no such limit.
    std::uint64_t most_memory_bytes = 0;
    /// Of each stream. 0: a process may write any amount, of which kMostOutput bytes are kept.
    std::size_t most_output_bytes = 0;
};

inline constexpr std::size_t kMostOutput = std::size_t{4} << 20U;

/// Gives the next piece of what a child reads, which stays until the next call; an empty one is the end. Is
/// not called again once the child reads no more. What it throws ends the child and is passed on.
using ChildInput = std::function<std::string_view()>;

/// Runs `program` with `arguments` (without its own name) and `input` as its standard input, which is empty
/// without one, and waits for it. Ends the process when it is beyond a limit, and in any case the processes
/// that it started and left behind, except for those that made themselves independent (a session of their
/// own).
ChildResult run_child(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                      const ChildLimits& limits, const ChildInput& input = {});

/// Where the system finds the program of this name, as a shell does; nothing if it does not.
std::optional<std::filesystem::path> find_program(const std::string& name);

}  // namespace cli
