#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace cli::doctor {

/// One file of a bundle, read as a whole.
struct ReadFile {
    std::string path;                  ///< as it is shown
    std::optional<std::string> bytes;  ///< nothing when it could not be read
    std::string error;                 ///< why not
};

/// No plug-in is near as long; the file is kept in memory.
inline constexpr std::uint64_t kLargestFile = std::uint64_t{256} << 20U;

/// Reads a regular file. What is none (pipes, devices, folders), cannot be opened or is longer than
/// kLargestFile gives an error; nothing waits.
ReadFile read_file(const std::string& path);

enum class PathKind { missing, file, folder, other };
PathKind path_kind(const std::string& path);

/// The name at the end of a path, without slashes behind it.
std::string last_name(const std::string& path);

/// The folder that a file is in: everything before its name, "." without.
std::string folder_of(const std::string& path);

/// Whether `name` ends with `ending`, letters of either case alike.
bool has_ending(const std::string& name, const std::string& ending);

/// The name of the only file in `folder` whose name ends with `ending`; nothing when there is none, or
/// several.
std::optional<std::string> only_file(const std::string& folder, const std::string& ending);

}  // namespace cli::doctor
