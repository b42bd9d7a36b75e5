#pragma once

#include <memory>

// Hosts on classic Mac OS name files in the colon-separated HFS style, while the C library and current hosts
// take POSIX paths. Everywhere else both styles are the same. One source file per platform defines the two
// conversions: path_style_macos.cpp where CoreFoundation exists, path_style_identity.cpp everywhere else.

namespace os {

/// Converts a POSIX path to the classic host's style. Returns a new terminated array, or null when `path` is
/// null or cannot be converted, or when memory is short.
[[nodiscard]] std::unique_ptr<char[]> host_path_from_posix(const char* path);

/// Converts a path in the classic host's style to a POSIX path: the inverse of host_path_from_posix. A path
/// that is a POSIX path already stays as it is. Returns a new terminated array, or null when `path` is null
/// or cannot be converted, or when memory is short.
[[nodiscard]] std::unique_ptr<char[]> posix_path_from_host(const char* path);

}  // namespace os
