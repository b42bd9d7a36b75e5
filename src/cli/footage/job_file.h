#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/footage/footage_finder.h"

// The TOML files of a job: where the footage of all its scenes is, and what checks of them refuse and ignore;
// any other as plain values. Only job_file.cpp knows the library that reads and writes TOML.

namespace cli {

inline constexpr std::uint64_t kMostJobFileBytes = std::uint64_t{64} << 20U;

/// The text of a job file: search folders, maps, preference, and what was decided for each path.
[[nodiscard]] std::string job_file_text(const FinderOptions& options);

/// Reads the text of a job file. Nothing if it is wrong; `problem` then says why, with line and column where
/// they are known.
[[nodiscard]] std::optional<FinderOptions> parse_job_file(std::string_view text, std::string& problem);

/// A word of a project file and its line, from 1.
struct ProjectWord {
    std::string text;
    std::int64_t line = 1;
};

/// What a project file says about one verb. Nothing where it says nothing.
struct CheckChoices {
    std::optional<std::vector<ProjectWord>> fail_on;
    std::optional<std::vector<ProjectWord>> ignore;
};

/// What is wrong with a project file, and in which line.
struct ProjectFileError {
    std::string reason;
    std::int64_t line = 1;
};

/// Reads the text of a project file: a table for each verb that has one, [check] or [texture-check], with
/// the lists fail-on and ignore; a single text counts as a list of one. The result is by the name of the
/// table. What the words mean is left to the verb. Throws ProjectFileError for anything else in the file.
[[nodiscard]] std::map<std::string, CheckChoices> parse_project_file(std::string_view text);

/// A value of a TOML file, and where it begins: lines and columns count from 1.
struct TomlValue {
    enum class Kind { text, integer, boolean, list, table, other };
    Kind kind = Kind::other;  ///< `other` for dates, times and fractions
    std::string text;
    std::int64_t integer = 0;
    bool boolean = false;
    std::vector<TomlValue> values;  ///< of a list or of a table, in the order of the file
    std::string key;                ///< of a value in a table
    std::int64_t line = 1;          ///< of the key, or of a value in a list
    std::int64_t column = 1;
};

/// What is wrong with a TOML file, and where.
struct TomlError {
    std::string reason;
    std::int64_t line = 1;
    std::int64_t column = 1;
};

/// The table that the whole text is. Throws TomlError.
[[nodiscard]] TomlValue parse_toml(std::string_view text);

}  // namespace cli
