#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdint>
#include <new>
#include <string>

#include "system/open_regular_file.h"
#include "system/wide_path_windows.h"

namespace os {
namespace {

std::FILE* open_wide(const std::wstring& path) {
    // Two checks, as on other systems: the first keeps the open itself from touching a pipe or a device, the
    // second examines what was opened.
    const DWORD about = GetFileAttributesW(path.c_str());
    constexpr DWORD kNoFile = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE;
    if (about == INVALID_FILE_ATTRIBUTES || (about & kNoFile) != 0) {
        return nullptr;
    }
    // Shared in every way, so that others may write, rename or delete the file while it is read.
    const HANDLE handle =
        CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return nullptr;
    }
    if (GetFileType(handle) != FILE_TYPE_DISK) {
        CloseHandle(handle);
        return nullptr;
    }
    const int descriptor =
        _open_osfhandle(reinterpret_cast<std::intptr_t>(handle), _O_RDONLY | _O_BINARY | _O_NOINHERIT);
    if (descriptor < 0) {
        CloseHandle(handle);
        return nullptr;
    }
    std::FILE* file = _fdopen(descriptor, "rb");
    if (file == nullptr) {
        _close(descriptor);  // closes the handle too
    }
    return file;
}

/// `path` as Windows opens it; empty if it has no such form or memory is short, so that opening it fails.
std::wstring wide_or_empty(const char* path) {
    try {
        return wide_path(path);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

}  // namespace

std::FILE* open_exactly(const char* path) {
    const std::wstring wide = wide_or_empty(path);
    return wide.empty() ? nullptr : open_wide(wide);
}

std::string name_of_open_file(std::FILE* /*file*/, const char* path) {
    return path;
}

std::FILE* open_file_to_write(const char* path) {
    const std::wstring wide = wide_or_empty(path);
    return wide.empty() ? nullptr : _wfopen(wide.c_str(), L"wb");
}

}  // namespace os
