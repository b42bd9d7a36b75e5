#pragma once

// Runs a program and captures how it ends. One implementation for each platform:
// child_process_<platform>.cpp.

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

struct ChildResult {
    std::string error;             ///< why it could not be started; empty when it was
    bool timed_out = false;        ///< run_child() ended it
    std::optional<int> exit_code;  ///< nothing when it did not exit by itself
    std::string signal;            ///< what ended it instead: "SIGSEGV, Segmentation fault"
    std::string out;               ///< its output, at most kMostOutput bytes of each stream
    std::string err;
};

inline constexpr std::size_t kMostOutput = std::size_t{4} << 20U;

/// Gives the next piece of what a child reads, which stays until the next call; an empty one is the end. Is
/// not called again once the child reads no more. What it throws ends the child and is passed on.
using ChildInput = std::function<std::string_view()>;

/// Runs `program` with `arguments` (without its own name) and `input` as its standard input, which is empty
/// without one, and waits for it. Ends the process when it takes longer than `longest`, and in any case the
/// processes that it started and left behind, except for those that made themselves independent (a session of
/// their own).
ChildResult run_child(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                      std::chrono::seconds longest, const ChildInput& input = {});

/// Where the system finds the program of this name, as a shell does; nothing if it does not.
std::optional<std::filesystem::path> find_program(const std::string& name);

}  // namespace cli
