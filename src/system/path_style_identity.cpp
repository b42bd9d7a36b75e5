#include <cstring>
#include <new>

#include "system/path_style.h"

namespace os {
namespace {

// Accepts any length and any bytes; nothing is re-encoded or cut.
std::unique_ptr<char[]> copy_of(const char* path) {
    if (path == nullptr) {
        return nullptr;
    }
    const std::size_t size = std::strlen(path) + 1;
    std::unique_ptr<char[]> copy(new (std::nothrow) char[size]);
    if (copy != nullptr) {
        std::memcpy(copy.get(), path, size);
    }
    return copy;
}

}  // namespace

std::unique_ptr<char[]> host_path_from_posix(const char* path) {
    return copy_of(path);
}

std::unique_ptr<char[]> posix_path_from_host(const char* path) {
    return copy_of(path);
}

}  // namespace os
