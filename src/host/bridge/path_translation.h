#pragma once

#include <cstddef>
#include <string>

#include "host/current_interface.h"

// Converts paths between the plug-in, whose paths are UTF-8, and current hosts, whose paths are UTF-16. On
// macOS the plug-in's paths are in the colon style of classic hosts, which current hosts do not know; they
// get POSIX paths. Elsewhere separators stay as they are. A path that is not UTF-8, as old composition files
// have them, is read as Windows-1252 or as Mac Roman if a file has that name. A path that cannot be converted
// is refused with 3 and one report that names the fault. No function throws: 4 is returned when memory is
// short, 13 with a report when the host offers no memory handles, and otherwise the host's own error.

namespace bridge {

/// No platform has longer paths: 32,767 UTF-16 units of at most three bytes each in UTF-8.
inline constexpr std::size_t kLongestPathBytes = std::size_t{3} * 32767;

/// From the plug-in to the host. A path in the colon style without a POSIX form is refused with 4, as if
/// memory were short; the importer never passes one, because it opens a file before it names it. Null is
/// refused without a report, because there is no path to name.
A_Err wide_path(const A_char* path, std::u16string* wide) noexcept;

/// From the host to the plug-in.
A_Err narrow_path(const A_UTF16Char* path, std::string* narrow) noexcept;

/// Asks the host for a path and copies it into a classic path's buffer of kClassicPathBytes, which is written
/// only on success. A path that does not fit is refused. The host's memory handle is always freed.
A_Err copy_asked_path(A_Err (*ask)(const void* context, AEGP_MemHandle* handle), const void* context,
                      A_char* path) noexcept;

/// Calls the callable `ask(AEGP_MemHandle*)` at `context`, which calls the host's function.
template <typename Ask>
A_Err call_ask(const void* context, AEGP_MemHandle* handle) {
    return (*static_cast<const Ask*>(context))(handle);
}

/// copy_asked_path for any callable `ask(AEGP_MemHandle*)`.
template <typename Ask>
A_Err copy_host_path(const Ask& ask, A_char* path) noexcept {
    return copy_asked_path(call_ask<Ask>, &ask, path);
}

/// Asks the host for a path and returns it in UTF-8; a path above kLongestPathBytes is refused.
A_Err take_asked_path(A_Err (*ask)(const void* context, AEGP_MemHandle* handle), const void* context,
                      std::string* path) noexcept;

/// take_asked_path for any callable `ask(AEGP_MemHandle*)`.
template <typename Ask>
A_Err take_host_path(const Ask& ask, std::string* path) noexcept {
    return take_asked_path(call_ask<Ask>, &ask, path);
}

/// Makes a memory handle with the path, for the host to free. `*handle` is null on an error.
A_Err make_path_handle(const A_char* path, AEGP_MemHandle* handle) noexcept;

}  // namespace bridge
