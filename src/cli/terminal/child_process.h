#pragma once

// Running a program to its end, watched. One implementation a platform: child_process_<name>.cpp.

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace cli {

struct ChildResult {
    std::string error;             ///< why it was not started; empty when it was
    bool timed_out = false;        ///< it was ended from here
    std::optional<int> exit_code;  ///< nothing when it did not exit by itself
    std::string signal;            ///< what ended it instead: "SIGSEGV, Segmentation fault"
    std::string out;               ///< what it wrote, at most kMostOutput bytes of each
    std::string err;
};

inline constexpr std::size_t kMostOutput = std::size_t{4} << 20U;

/// Runs `program` with `arguments` (without its own name) and nothing on its standard input, and waits until
/// it is over or `longest` has passed, when it is ended.
ChildResult run_child(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                      std::chrono::seconds longest);

}  // namespace cli
