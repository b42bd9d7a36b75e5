#pragma once

// What the tools ask the operating system about files. The name of a file is a text of bytes throughout:
// UTF-8 on Windows, where the system takes wide characters, and whatever it is elsewhere.
// files_<platform>.cpp answers.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace os {

enum class FileKind { missing, regular, folder, pipe, device, socket, other };

struct FileState {
    FileKind kind = FileKind::missing;
    std::uint64_t size_bytes = 0;  ///< of a regular file
    std::string error;             ///< why nothing is known; empty for every kind but `missing`
};

/// What is at `path`, links followed; nothing is opened.
FileState file_state(const std::string& path);

/// Whether a regular file is at `path`; if not, `why_not` says what is wrong.
inline bool is_regular_file(const std::string& path, std::string& why_not) {
    const FileState state = file_state(path);
    if (state.kind == FileKind::regular) {
        return true;
    }
    why_not = state.kind == FileKind::missing ? state.error : "not a regular file";
    return false;
}

/// The names of the regular files in `folder`, links followed, in no order; none when it cannot be read.
std::vector<std::string> regular_files_in(const std::string& folder);

/// `path` from the root on, as hosts hand paths over; `path` itself when that cannot be told.
std::string absolute_path(const std::string& path);

/// Makes an empty file where there is none; std::errc::file_exists where there is one.
std::error_code create_file(const std::string& path);

/// Asks whether the file at `path` may be written; nothing in it changes.
std::error_code may_write(const std::string& path);

/// Opens what is at `path`, a device or a pipe, for writing as it is. Never waits for somebody to read from
/// the pipe: that nobody does is an error. Null when it cannot be opened; `failure` then says why.
std::FILE* open_device(const std::string& path, std::error_code& failure);

/// Makes `bytes` the whole of the file at `path`, which is there.
std::error_code fill_file(const std::string& path, std::string_view bytes);

/// Waits until the disk has what was written to the file at `path`. Some file systems find out only then that
/// there is no room.
std::error_code flush_file(const std::string& path);

/// Where the links at `path` lead to in the end, be there a file or not; `path` itself when it is no link.
/// A link to what a process has open, as /dev/stdout is, is not followed. Empty when the links lead round in
/// a circle or cannot be followed; `failure` then says why.
std::string link_target(const std::string& path, std::error_code& failure);

/// Puts the file `from` in the place of `to`, if there is one, in one step and with its permissions.
std::error_code replace_file(const std::string& from, const std::string& to);

/// What the standard library's streams and file functions open under that name.
std::filesystem::path native_path(const std::string& path);

#if defined(_WIN32)
/// The text for an error of the system, in the words that other systems have for it where they have any.
std::string system_reason(unsigned long error);
#endif

/// The path as the standard library cuts and joins it, and back. On Windows a text that is not UTF-8 has no
/// path: the result is empty.
std::filesystem::path path_of(const std::string& text);
std::string text_of(const std::filesystem::path& path);

}  // namespace os
