#include <cerrno>
#include <cstdio>
#include <system_error>

#include "system/files.h"

namespace os {

namespace fs = std::filesystem;

namespace {

FileKind kind_of(fs::file_type type) {
    switch (type) {
        case fs::file_type::regular:
            return FileKind::regular;
        case fs::file_type::directory:
            return FileKind::folder;
        case fs::file_type::fifo:
            return FileKind::pipe;
        case fs::file_type::character:
        case fs::file_type::block:
            return FileKind::device;
        case fs::file_type::socket:
            return FileKind::socket;
        default:
            return FileKind::other;
    }
}

/// Opens a file and closes it again.
std::error_code opened(const std::string& path, const char* mode) {
    std::FILE* file = std::fopen(path.c_str(), mode);
    if (file == nullptr || std::fclose(file) != 0) {
        return {errno, std::generic_category()};
    }
    return {};
}

}  // namespace

FileState file_state(const std::string& path) {
    FileState state;
    std::error_code failure;
    const fs::file_status status = fs::status(path, failure);
    if (!fs::status_known(status) || status.type() == fs::file_type::not_found) {
        state.error = failure ? failure.message() : "the file does not exist";
        return state;
    }
    state.kind = kind_of(status.type());
    if (state.kind == FileKind::regular) {
        const std::uintmax_t size = fs::file_size(path, failure);
        state.size_bytes = failure ? 0 : size;
    }
    return state;
}

std::vector<std::string> regular_files_in(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code failure;
    fs::directory_iterator entry(folder, failure);
    for (; !failure && entry != fs::directory_iterator(); entry.increment(failure)) {
        std::error_code not_readable;
        if (entry->is_regular_file(not_readable)) {
            names.push_back(entry->path().filename().string());
        }
    }
    return names;
}

std::string absolute_path(const std::string& path) {
    std::error_code failure;
    const fs::path absolute = fs::absolute(path, failure);
    return failure ? path : absolute.string();
}

std::error_code create_file(const std::string& path) {
    return opened(path, "wbx");
}

std::error_code may_write(const std::string& path) {
    return opened(path, "ab");  // and nothing appended
}

std::error_code replace_file(const std::string& from, const std::string& to) {
    std::error_code failure;
    const fs::file_status replaced = fs::status(to, failure);
    if (fs::exists(replaced)) {
        fs::permissions(from, replaced.permissions(), failure);
    }
    fs::rename(from, to, failure);
    return failure;
}

fs::path native_path(const std::string& path) {
    return path;
}

fs::path path_of(const std::string& text) {
    return text;
}

std::string text_of(const fs::path& path) {
    return path.string();
}

}  // namespace os
