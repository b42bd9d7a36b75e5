#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <tuple>

#include "system/files.h"

namespace os {

/// Tells whether two paths lead to one file: two identities are equal when the paths lead to the same place,
/// through links of either kind or another spelling of the folder. A file that does
/// not exist yet is known by the nearest folder that exists and the names below it.
struct FileIdentity {
    FileNumber number;  ///< of the file, or of that folder
    std::string below;  ///< empty for what exists

    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
    friend bool operator<(const FileIdentity& a, const FileIdentity& b) {
        return std::tie(a.number, a.below) < std::tie(b.number, b.below);
    }
};

/// Opens nothing and never waits.
[[nodiscard]] FileIdentity identity_of(const std::string& path);

/// What a file looks like without reading it: two versions differ when the file was written or replaced
/// between them, as far as its file system notices.
struct FileVersion {
    FileNumber number;
    std::uint64_t size_bytes = 0;
    std::filesystem::file_time_type changed;

    friend bool operator==(const FileVersion&, const FileVersion&) = default;
};

/// Of what is at `path`, links followed. What is missing has a version of its own.
[[nodiscard]] FileVersion version_of(const std::string& path);

/// The one full name of what exists at `path`: without links, "." and "..". `path` itself if it cannot be
/// determined.
[[nodiscard]] std::string canonical_path(const std::string& path);

}  // namespace os
