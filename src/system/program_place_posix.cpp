#include <system_error>

#include "system/program_place.h"

namespace os {

std::filesystem::path program_path() {
    std::error_code error;
    std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::path() : path;
}

}  // namespace os
