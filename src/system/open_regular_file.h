#pragma once

#include <cstdio>
#include <string>

// How the system opens files by name, one source file per platform. Names are UTF-8 on Windows, where they
// are opened as wide characters and at any length that the system has names for; elsewhere they are bytes.

namespace os {

/// Opens a regular file (after following links) for reading bytes.
/// Returns null for a path that is missing, unreadable, or names a directory, a pipe, a socket or a device,
/// and never waits on one of those: footage paths are data from a file and may name anything. The caller
/// closes the stream.
[[nodiscard]] std::FILE* open_regular_file(const char* path);

/// A name by which the system opens the file anew that was opened at `path`, whatever is there by now; `path`
/// itself on systems that have no such name. Only as long as `file` is open.
[[nodiscard]] std::string name_of_open_file(std::FILE* file, const char* path);

/// Opens `path` for writing bytes, in which case what was in the file is lost. Returns null when that cannot
/// be done. The caller closes the stream.
[[nodiscard]] std::FILE* open_file_to_write(const char* path);

}  // namespace os
