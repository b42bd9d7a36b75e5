#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

/// Makes a pipe with a name of its own in a folder. Windows has no such files: there the name stays free, and
/// what is said of the pipe is said of a missing file.
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

/// Makes a link. Only administrators may make links on Windows:
/// there the name stays free as well, which says the same of links that lead to no file.
inline void make_link(const std::string& target, const std::string& path) {
#if !defined(_WIN32)
    std::filesystem::create_symlink(target, path);
#else
    static_cast<void>(target);
    static_cast<void>(path);
#endif
}
