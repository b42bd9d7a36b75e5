#pragma once

#include <chrono>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "cli/doctor/diagnosis.h"
#include "embedded/host_options.h"

namespace cli::doctor {

/// Loads the bundle in the embedded host of that generation, in this process, and unloads it. A bundle that
/// crashes takes this process with it.
[[nodiscard]] LoadTest load_here(const std::string& bundle, embedded::HostGeneration generation);

/// Does the same in a process of its own, which is this program with `--load`. A process that crashes, or
/// does not end within `longest`, is a result too. Throws std::runtime_error when the process cannot be
/// started.
[[nodiscard]] LoadTest load_apart(const std::string& bundle, embedded::HostGeneration generation,
                                  std::chrono::seconds longest);

/// {"generation","end","reason","registered":[{"kind","name","extensions"}],"messages"}
[[nodiscard]] nlohmann::ordered_json load_test_json(const LoadTest& test);

/// The same on one line with a line break at its end, as the process that loads the bundle reports to the one
/// that started it.
[[nodiscard]] std::string load_test_line(const LoadTest& test);
/// Nothing when the text is not such a line.
[[nodiscard]] std::optional<LoadTest> read_load_test_line(const std::string& line);

}  // namespace cli::doctor
