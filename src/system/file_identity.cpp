#include "system/file_identity.h"

#include <filesystem>
#include <optional>
#include <system_error>

namespace os {

namespace fs = std::filesystem;

namespace {

/// The usual file systems of Windows and macOS find a name in either case.
std::string found_form(std::string name) {
#if defined(_WIN32) || defined(__APPLE__)
    for (char& c : name) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
#endif
    return name;
}

}  // namespace

FileIdentity identity_of(const std::string& path) {
    // Writing to a link to a missing file makes the file.
    std::error_code failure;
    std::string target = link_target(path, failure);
    if (failure) {
        target = path;
    }
    if (const std::optional<FileNumber> number = file_number(target)) {
        return {*number, {}};
    }
    std::string below;
    fs::path place = path_of(absolute_path(target)).lexically_normal();
    while (place.has_relative_path()) {
        below.insert(0, '/' + found_form(text_of(place.filename())));
        place = place.parent_path();
        if (const std::optional<FileNumber> number = file_number(text_of(place))) {
            return {*number, below};
        }
    }
    return {{}, below};
}

FileVersion version_of(const std::string& path) {
    FileVersion version;
    version.number = file_number(path).value_or(FileNumber());
    version.size_bytes = file_state(path).size_bytes;
    std::error_code missing;
    const fs::file_time_type changed = fs::last_write_time(native_path(path), missing);
    version.changed = missing ? fs::file_time_type() : changed;
    return version;
}

std::string canonical_path(const std::string& path) {
    std::error_code failure;
    const fs::path canonical = fs::canonical(native_path(path), failure);
    return failure ? path : text_of(canonical);
}

}  // namespace os
