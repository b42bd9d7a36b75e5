#pragma once

// What the tools ask the operating system about files; files_<platform>.cpp implements it. A file name is a
// string of bytes: UTF-8 on Windows, which itself uses wide characters, and in any encoding elsewhere.

#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <tuple>
#include <vector>

namespace os {

enum class FileKind { missing, regular, folder, pipe, device, socket, other };

struct FileState {
    FileKind kind = FileKind::missing;
    std::uint64_t size_bytes = 0;  ///< of a regular file
    std::string error;             ///< the reason for `missing`; empty for every other kind
};

/// What is at `path`, links followed. Opens nothing.
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

/// The number by which the system knows a file, a folder or a device; `device` tells file systems apart.
struct FileNumber {
    std::uint64_t device = 0;
    std::array<std::uint64_t, 2> number{};

    friend bool operator==(const FileNumber&, const FileNumber&) = default;
    friend bool operator<(const FileNumber& a, const FileNumber& b) {
        return std::tie(a.device, a.number) < std::tie(b.device, b.number);
    }
};

/// Of what is at `path`, links followed; nothing when it cannot be determined, as for a missing file.
std::optional<FileNumber> file_number(const std::string& path);

/// The names of the regular files in `folder`, links followed, in no particular order; empty if it cannot be
/// read.
std::vector<std::string> regular_files_in(const std::string& folder);

/// The files that a name with wildcards stands for, in the order of their names: '*' for any characters, '?'
/// for one, upper and lower case alike, in the last component only; brackets are ordinary characters, and a
/// name that begins with a full stop is matched by one that does. `path` itself when it has no wildcard or
/// matches nothing. Only on Windows: elsewhere the shell has done this, and every name means itself.
std::vector<std::string> matching_files(const std::string& path);

/// One name in a folder.
struct FolderEntry {
    std::string name;
    FileKind kind = FileKind::other;  ///< links followed; `missing` for a link that leads nowhere
    bool is_link = false;
};

/// Everything in `folder` but "." and "..", in no particular order; empty if it cannot be read.
std::vector<FolderEntry> entries_in(const std::string& folder);

/// `path` as an absolute path, which hosts pass; `path` itself if that cannot be determined.
std::string absolute_path(const std::string& path);

/// Creates an empty file; std::errc::file_exists if something is already there.
std::error_code create_file(const std::string& path);

/// Creates an empty file that is to replace the file at `replaced`: from the beginning it has that file's
/// owner and group where the system allows it, and nobody may do more with it than with that file, except
/// that its owner may write it. `notice` says what could not be kept. On Windows the file takes its rights
/// from the folder, as every new file does.
std::error_code create_replacement(const std::string& path, const std::string& replaced, std::string& notice);

/// Checks whether the file at `path` may be written, without changing it.
std::error_code may_write(const std::string& path);

/// Opens the device or pipe at `path` for writing. Never waits for a reader of a pipe: a pipe without one is
/// an error. Returns null on failure; `failure` then says why.
std::FILE* open_device(const std::string& path, std::error_code& failure);

/// Replaces the content of the existing file at `path` by `bytes`.
std::error_code fill_file(const std::string& path, std::string_view bytes);

/// Waits until everything written to the file at `path` is on the disk. Some file systems only then notice
/// that the disk is full.
std::error_code flush_file(const std::string& path);

/// The final target of the links at `path`, whether or not it exists; `path` itself if it is not a link.
/// Links to the open files of a process, such as /dev/stdout, are not followed. Empty if the links form a
/// circle or cannot be followed; `failure` then says why.
std::string link_target(const std::string& path, std::error_code& failure);

/// Renames `from`, which create_file() or create_replacement() made, to `to` in one step, replacing an
/// existing file and taking over its permissions.
std::error_code replace_file(const std::string& from, const std::string& to);

/// Gives the empty file at `to` the content of `from` in such a way that both share their blocks until one is
/// changed. An error where the disk, or this system, has no such copies.
std::error_code clone_file(const std::string& from, const std::string& to);

/// The path under which the standard library's streams and file functions open that name.
std::filesystem::path native_path(const std::string& path);

#if defined(_WIN32)
/// The text for an error of Windows, in the words of other systems if they have the same error.
std::string system_reason(unsigned long error);
#endif

/// Converts between a name and the standard library's path. On Windows, text that is not UTF-8 gives an empty
/// path.
std::filesystem::path path_of(const std::string& text);
std::string text_of(const std::filesystem::path& path);

}  // namespace os
