// A stand-in for the path styles of macOS, for a build of the bundle that runs on other systems: paths on the
// disk "Disk", separated by colons. As on macOS, a slash in a name is a colon in the POSIX path, and a colon
// is a slash.

#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "system/path_style.h"

namespace os {
namespace {

constexpr std::string_view kDisk = "Disk";

std::unique_ptr<char[]> copy_of(std::string_view path) {
    std::unique_ptr<char[]> copy(new (std::nothrow) char[path.size() + 1]);
    if (copy != nullptr) {
        std::copy(path.begin(), path.end(), copy.get());
        copy[path.size()] = '\0';
    }
    return copy;
}

std::string exchanged(std::string_view path) {
    std::string other(path);
    for (char& c : other) {
        c = c == '/' ? ':' : c == ':' ? '/' : c;
    }
    return other;
}

bool is_ascii(std::string_view path) {
    return std::all_of(path.begin(), path.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

std::unique_ptr<char[]> host_path_from_posix(const char* path) {
    if (path == nullptr) {
        return nullptr;
    }
    if (!is_ascii(path)) {
        return *path == '/' ? copy_of(path) : nullptr;
    }
    // A path from the root begins with the name of the disk, any other path with a colon.
    return copy_of((*path == '/' ? std::string(kDisk) : ":") + exchanged(path));
}

std::unique_ptr<char[]> posix_path_from_host(const char* path) {
    if (path == nullptr) {
        return nullptr;
    }
    std::string_view rest(path);
    if (rest.starts_with('/') || rest.find(':') == std::string_view::npos) {
        return copy_of(rest);
    }
    if (rest.starts_with(':')) {
        return copy_of(exchanged(rest.substr(1)));
    }
    const bool own_disk = rest.starts_with(std::string(kDisk) + ':');
    rest.remove_prefix(own_disk ? kDisk.size() : 0);
    return copy_of((own_disk ? "" : "/Volumes/") + exchanged(rest));
}

}  // namespace os
