#pragma once

#include <memory>

// The one place where a path changes its style. Classic Macintosh hosts name files in the colon-separated HFS
// style while the C library opens POSIX paths; everywhere else both are the same. One source file per
// platform defines the two functions: path_conversion_identity.cpp is the one for every platform without
// CoreFoundation.

/// Turns a POSIX path into the host's style, as `Filename` stores it.
/// Returns a new terminated array, or null when `path` is null, cannot be converted or memory is short.
[[nodiscard]] std::unique_ptr<char[]> host_path_from_posix(const char* path);

/// Turns a path in the host's style back into the POSIX path that the C library opens; undoes
/// host_path_from_posix. Returns a new terminated array, or null when `path` is null, cannot be converted or
/// memory is short.
[[nodiscard]] std::unique_ptr<char[]> posix_path_from_host(const char* path);
