#include "system/program_path.h"

#include <system_error>
#include <utility>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace os {

#if defined(_WIN32)

std::filesystem::path program_path() {
    constexpr std::size_t kLongestPath = 32768;
    std::wstring path(kLongestPath, L'\0');
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    path.resize(length < path.size() ? length : 0);
    return path;
}

#elif !defined(__APPLE__)  // for which program_path_macos.cpp has it

std::filesystem::path program_path() {
    std::error_code error;
    std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::path() : path;
}

#endif

namespace {

// Empty until a library names one.
std::filesystem::path& named_program() {
    static std::filesystem::path program;
    return program;
}

}  // namespace

std::filesystem::path own_program() {
    return named_program().empty() ? program_path() : named_program();
}

void set_own_program(std::filesystem::path program) {
    named_program() = std::move(program);
}

std::vector<std::filesystem::path> paths_beside(const std::filesystem::path& program,
                                                const std::string& name) {
    const std::filesystem::path folder = program.parent_path();
    // VXR_INSTALLED_FOLDER leads from the folder of the programs to the folder of their own files.
    std::vector<std::filesystem::path> paths{folder / VXR_INSTALLED_FOLDER / name, folder / "../lib" / name,
                                             folder / name};
    for (std::filesystem::path& path : paths) {
        path = path.lexically_normal();
    }
    return paths;
}

}  // namespace os
