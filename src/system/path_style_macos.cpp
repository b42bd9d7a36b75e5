// The two path conversions on macOS, by CoreFoundation. Written from its documentation; script/macos compiles
// and links them, but nothing here can run them (docs/hosts.md).

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>

#include "system/macos_libraries.h"
#include "system/path_style.h"

namespace os {
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

/// Converts one style into the other through a URL. Null when a step fails.
std::unique_ptr<char[]> converted(const Owned<CFStringRef>& text, CFURLPathStyle from, CFURLPathStyle to) {
    if (text == nullptr) {
        return nullptr;
    }
    const Owned<CFURLRef> url(CFURLCreateWithFileSystemPath(kCFAllocatorDefault, text.get(), from, 0));
    if (url == nullptr) {
        return nullptr;
    }
    const Owned<CFStringRef> other(CFURLCopyFileSystemPath(url.get(), to));
    std::array<char, kLongestPath> buffer{};
    if (other == nullptr ||
        CFStringGetCString(other.get(), buffer.data(), static_cast<CFIndex>(buffer.size()),
                           kCFStringEncodingUTF8) == 0) {
        return nullptr;
    }
    return copy_of(buffer.data());
}

Owned<CFStringRef> string_of(const char* path, CFStringEncoding encoding) {
    return Owned<CFStringRef>(CFStringCreateWithCString(kCFAllocatorDefault, path, encoding));
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
        return converted(string_of(path, kCFStringEncodingUTF8), kCFURLPOSIXPathStyle, kCFURLHFSPathStyle);
    }
    return path[0] == '/' ? copy_of(path) : nullptr;
}

// A path that host_path_from_posix has converted contains a colon and does not begin with a slash; any other
// path was never converted. The importer puts the UTF-8 name of a missing file behind the converted folder of
// its scene, so the text is UTF-8 wherever it can be; composition files of classic systems are Mac Roman.
std::unique_ptr<char[]> posix_path_from_host(const char* path) {
    if (path == nullptr) {
        return nullptr;
    }
    if (path[0] == '/' || std::strchr(path, ':') == nullptr) {
        return copy_of(path);
    }
    Owned<CFStringRef> text = string_of(path, kCFStringEncodingUTF8);
    if (text == nullptr) {
        text = string_of(path, kCFStringEncodingMacRoman);
    }
    return converted(text, kCFURLHFSPathStyle, kCFURLPOSIXPathStyle);
}

}  // namespace os
