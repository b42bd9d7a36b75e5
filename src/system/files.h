#pragma once

// What the tools ask the operating system about files. The name of a file is a text of bytes throughout:
// UTF-8 on Windows, where the system takes wide characters, and whatever it is elsewhere.
// files_<platform>.cpp answers.

#include <cstdint>
#include <filesystem>
#include <string>
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

/// True for a regular file; otherwise `why_not` says what is wrong.
bool is_regular_file(const std::string& path, std::string& why_not);

/// The names of the regular files in `folder`, links followed, in no order; none when it cannot be read.
std::vector<std::string> regular_files_in(const std::string& folder);

/// `path` from the root on, as hosts hand paths over; `path` itself when that cannot be told.
std::string absolute_path(const std::string& path);

/// Makes an empty file where there is none; std::errc::file_exists where there is one.
std::error_code create_file(const std::string& path);

/// Asks whether the file at `path` may be written; nothing in it changes.
std::error_code may_write(const std::string& path);

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
