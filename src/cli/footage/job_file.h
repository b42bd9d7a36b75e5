#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "cli/footage/footage_finder.h"

// Where the footage of a job is, kept in a file for all its scenes. Only job_file.cpp knows the library that
// reads and writes TOML.

namespace cli {

inline constexpr std::uint64_t kMostJobFileBytes = std::uint64_t{64} << 20U;

/// The text of a job file: search folders, maps, preference, and what was decided for each path.
[[nodiscard]] std::string job_file_text(const FinderOptions& options);

/// Reads such a text. Nothing if it is none; `problem` then says why, with line and column where they are
/// known.
[[nodiscard]] std::optional<FinderOptions> parse_job_file(std::string_view text, std::string& problem);

}  // namespace cli
