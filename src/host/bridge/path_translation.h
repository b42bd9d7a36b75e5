#pragma once

#include <string>

#include "host/today_interface.h"

// Paths between the plug-in, which knows narrow ones, and today's hosts. Separators stay as they are. What
// cannot be translated is refused with 3 and one report that names what is wrong. None of these throws: 4
// when there is no memory, 13 and a report when the host offers no memory handles, else the host's own error.

namespace bridge {

/// For the host. Null is refused without a report: the plug-in has none to give.
A_Err wide_path(const A_char* path, std::u16string* wide) noexcept;

/// For the plug-in.
A_Err narrow_path(const A_UTF16Char* path, std::string* narrow) noexcept;

/// Asks the host for a path and copies it into a classic path's buffer, which has kClassicPathBytes and is
/// only written when all went well. A path that does not fit is refused. The host's memory handle is freed on
/// every way out.
A_Err copy_asked_path(A_Err (*ask)(const void* context, AEGP_MemHandle* handle), const void* context,
                      A_char* path) noexcept;

/// The same; `ask(AEGP_MemHandle*)` is the host's function with everything else that it takes.
template <typename Ask>
A_Err copy_host_path(const Ask& ask, A_char* path) noexcept {
    return copy_asked_path([](const void* context,
                              AEGP_MemHandle* handle) { return (*static_cast<const Ask*>(context))(handle); },
                           &ask, path);
}

/// Makes a memory handle with the path, which is the host's to free. Null is put into `handle` on an error.
A_Err make_path_handle(const A_char* path, AEGP_MemHandle* handle) noexcept;

}  // namespace bridge
