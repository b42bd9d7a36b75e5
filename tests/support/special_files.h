#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

/// Makes a named pipe. Windows has no such files: the name stays free there, so tests see a missing file.
inline void make_pipe(const std::string& path) {
#if !defined(_WIN32)
    constexpr mode_t kOwnFile = 0600;
    if (::mkfifo(path.c_str(), kOwnFile) != 0) {
        throw std::runtime_error("cannot make the pipe " + path);
    }
#else
    static_cast<void>(path);
#endif
}

/// Makes a symbolic link. Only administrators may do so on Windows: the name stays free there, so tests see a
/// missing file.
inline void make_link(const std::string& target, const std::string& path) {
#if !defined(_WIN32)
    std::filesystem::create_symlink(target, path);
#else
    static_cast<void>(target);
    static_cast<void>(path);
#endif
}
