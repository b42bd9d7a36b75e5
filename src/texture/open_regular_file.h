#pragma once

#include <cstdio>

/// Opens a regular file (after following links) for reading bytes; one source file per platform.
/// Returns null for a path that is missing, unreadable, or names a directory, a pipe, a socket or a device,
/// and never waits on one of those: footage paths are data from a file and may name anything. The caller
/// closes the stream.
[[nodiscard]] std::FILE* open_regular_file(const char* path);
