#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace cli::doctor {

/// One file of a bundle, read as a whole.
struct ReadFile {
    std::string path;                  ///< as it is shown
    std::optional<std::string> bytes;  ///< nothing when it could not be read
    std::string error;                 ///< why it could not be read
};

/// Far longer than any plug-in; the file is kept in memory.
inline constexpr std::uint64_t kLargestFile = std::uint64_t{256} << 20U;

/// Reads a regular file. Anything else (a pipe, a device, a folder), a file that cannot be opened, and one
/// that is longer than kLargestFile give an error. Never waits.
ReadFile read_file(const std::string& path);

enum class PathKind { missing, file, folder, other };
PathKind path_kind(const std::string& path);

/// The last component of a path, ignoring slashes at its end.
std::string last_name(const std::string& path);

/// The folder that a file is in: everything before its name, or ".".
std::string folder_of(const std::string& path);

/// Whether `name` is longer than `ending` and ends with it, ignoring case.
bool has_ending(const std::string& name, const std::string& ending);

/// The name of the only file in `folder` whose name has that ending; nothing when there is no such file or
/// more than one.
std::optional<std::string> only_file(const std::string& folder, const std::string& ending);

}  // namespace cli::doctor
