// Written from documentation; script/macos compiles and links it, but nothing here can run it
// (docs/hosts.md).

#include <cstdint>
#include <string>
#include <system_error>

#include "system/macos_libraries.h"
#include "system/program_path.h"

namespace os {

std::filesystem::path program_path() {
    // Called without a buffer, it yields the size that it needs.
    std::uint32_t size = 0;
    _NSGetExecutablePath(nullptr, &size);
    std::string path(size, '\0');
    if (size == 0 || _NSGetExecutablePath(path.data(), &size) != 0) {
        return {};
    }
    std::error_code error;
    std::filesystem::path resolved = std::filesystem::canonical(path.c_str(), error);
    return error ? std::filesystem::path() : resolved;
}

}  // namespace os
