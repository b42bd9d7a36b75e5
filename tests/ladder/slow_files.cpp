#include "ladder/slow_files.h"

#include <dlfcn.h>
#include <sys/types.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>

namespace {

bool g_slow = false;
long g_bytes = 0;

int descriptor_of(void* cookie) {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(cookie));
}

ssize_t read_one(void* cookie, char* buffer, std::size_t size) {
    const ssize_t read = ::read(descriptor_of(cookie), buffer, size == 0 ? 0 : 1);
    g_bytes += read > 0 ? 1 : 0;
    return read;
}

int seek(void* cookie, off64_t* offset, int whence) {
    const off64_t position = ::lseek64(descriptor_of(cookie), *offset, whence);
    if (position < 0) {
        return -1;
    }
    *offset = position;
    return 0;
}

int close_descriptor(void* cookie) {
    return ::close(descriptor_of(cookie));
}

}  // namespace

// Opens the C library's stream over a source that gives one byte at a time: fread asks it repeatedly, as it
// asks the system.
extern "C" std::FILE* fdopen(int descriptor, const char* mode) noexcept {
    using Function = std::FILE* (*)(int, const char*);
    static const auto real = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "fdopen"));
    if (!g_slow) {
        return real(descriptor, mode);
    }
    cookie_io_functions_t functions{};
    functions.read = read_one;
    functions.seek = seek;
    functions.close = close_descriptor;
    return ::fopencookie(reinterpret_cast<void*>(static_cast<std::intptr_t>(descriptor)), mode, functions);
}

SlowFiles::SlowFiles() {
    g_slow = true;
    g_bytes = 0;
}

SlowFiles::~SlowFiles() {
    g_slow = false;
}

long SlowFiles::bytes() {
    return g_bytes;
}
