#include <windows.h>

#include <string>

#include "system/program_place.h"

namespace os {

std::filesystem::path program_path() {
    constexpr std::size_t kLongestPath = 32768;
    std::wstring path(kLongestPath, L'\0');
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    path.resize(length < path.size() ? length : 0);
    return path;
}

}  // namespace os
