// The two path conversions on macOS, by CoreFoundation. Written from its documentation and checked only for
// syntax: this repository is not built or run on macOS (docs/hosts.md).

#include <CoreFoundation/CoreFoundation.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>

#include "texture/file/filename.h"

namespace {

/// In bytes. Longer paths are refused; the host's interface has none.
constexpr std::size_t kLongestPath = 2000;

struct Release {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};
template <class Ref>
using Owned = std::unique_ptr<std::remove_pointer_t<Ref>, Release>;

std::unique_ptr<char[]> copy_of(const char* path) {
    const std::size_t size = std::strlen(path) + 1;
    std::unique_ptr<char[]> copy(new (std::nothrow) char[size]);
    if (copy != nullptr) {
        std::memcpy(copy.get(), path, size);
    }
    return copy;
}

/// Converts one style into the other through a URL. Null when a step fails or the result is not ASCII.
std::unique_ptr<char[]> converted(const char* path, CFStringEncoding encoding, CFURLPathStyle from,
                                  CFURLPathStyle to) {
    const Owned<CFStringRef> text(CFStringCreateWithCString(kCFAllocatorDefault, path, encoding));
    if (text == nullptr) {
        return nullptr;
    }
    const Owned<CFURLRef> url(CFURLCreateWithFileSystemPath(kCFAllocatorDefault, text.get(), from, false));
    if (url == nullptr) {
        return nullptr;
    }
    const Owned<CFStringRef> other(CFURLCopyFileSystemPath(url.get(), to));
    std::array<char, kLongestPath> buffer{};
    if (other == nullptr ||
        !CFStringGetCString(other.get(), buffer.data(), buffer.size(), kCFStringEncodingASCII)) {
        return nullptr;
    }
    return copy_of(buffer.data());
}

bool is_ascii(const char* path) {
    return std::all_of(path, path + std::strlen(path),
                       [](char byte) { return (static_cast<unsigned char>(byte) & 0x80U) == 0; });
}

}  // namespace

// Deliberate: an absolute path with other characters keeps its style. The host's style cannot express them,
// and current hosts, the only ones that this is built for, do pass such paths.
std::unique_ptr<char[]> host_path_from_posix(const char* path) {
    if (path == nullptr) {
        return nullptr;
    }
    if (is_ascii(path)) {
        return converted(path, kCFStringEncodingASCII, kCFURLPOSIXPathStyle, kCFURLHFSPathStyle);
    }
    return path[0] == '/' ? copy_of(path) : nullptr;
}

// A path that host_path_from_posix has converted contains a colon and does not begin with a slash; any other
// path was never converted.
std::unique_ptr<char[]> posix_path_from_host(const char* path) {
    if (path == nullptr) {
        return nullptr;
    }
    if (path[0] == '/' || std::strchr(path, ':') == nullptr) {
        return copy_of(path);
    }
    return converted(path, kCFStringEncodingMacRoman, kCFURLHFSPathStyle, kCFURLPOSIXPathStyle);
}
