#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "system/open_regular_file.h"

namespace os {

std::FILE* open_exactly(const char* path) {
    // Two checks: the first keeps the open itself from touching a pipe (its writer would wake up) or a device
    // (a tape would rewind); the second, on the open descriptor, holds even if the path was replaced in
    // between. The open does not block, so that such a replacement cannot hang the host.
    struct stat about {};
    if (::stat(path, &about) != 0 || !S_ISREG(about.st_mode)) {
        return nullptr;
    }
    const int descriptor = ::open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) {
        return nullptr;
    }
    std::FILE* file = nullptr;
    if (::fstat(descriptor, &about) == 0 && S_ISREG(about.st_mode)) {
        file = ::fdopen(descriptor, "rb");
    }
    if (file == nullptr) {
        ::close(descriptor);
    }
    return file;
}

std::string name_of_open_file([[maybe_unused]] std::FILE* file, const char* path) {
#if defined(__linux__)
    // Other systems have such names too, but share one file position among all who open them.
    std::string name = "/proc/self/fd/" + std::to_string(::fileno(file));
    if (::access(name.c_str(), R_OK) == 0) {
        return name;
    }
#endif
    return path;
}

std::FILE* open_file_to_write(const char* path) {
    return std::fopen(path, "wb");
}

}  // namespace os
