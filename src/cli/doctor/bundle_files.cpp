#include "cli/doctor/bundle_files.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

#include "system/file_content.h"
#include "system/files.h"
#include "system/open_regular_file.h"
#include "text/ascii.h"

namespace cli::doctor {
namespace {

namespace fs = std::filesystem;

/// Separates the components of a path; Windows accepts either.
constexpr const char* kSeparators = fs::path::preferred_separator == '/' ? "/" : "/\\";

}  // namespace

ReadFile read_file(const std::string& path) {
    ReadFile file{path, std::nullopt, {}};
    std::error_code failure;
    const fs::file_status status = fs::status(os::native_path(path), failure);
    if (!fs::exists(status)) {
        file.error = failure ? failure.message() : "No such file or directory";
        return file;
    }
    if (!fs::is_regular_file(status)) {
        file.error = "not a regular file";
        return file;
    }
    if (const std::uintmax_t size = fs::file_size(os::native_path(path), failure);
        failure || size > kLargestFile) {
        file.error = failure ? failure.message()
                             : std::to_string(size) + " bytes; more than " + std::to_string(kLargestFile) +
                                   " are not read";
        return file;
    }
    // The path may name another file or a pipe by now; only a regular file is opened.
    const os::InputFile in = os::open_input_file(path);
    if (in == nullptr) {
        file.error = "it cannot be read";
        return file;
    }
    file.bytes = os::read_all(in.get(), kLargestFile);
    if (!file.bytes) {
        file.error = std::ferror(in.get()) != 0 ? "it cannot be read" : "it grows while it is being read";
    }
    return file;
}

PathKind path_kind(const std::string& path) {
    std::error_code failure;
    const fs::file_status status = fs::status(os::native_path(path), failure);
    return !fs::exists(status)           ? PathKind::missing
           : fs::is_regular_file(status) ? PathKind::file
           : fs::is_directory(status)    ? PathKind::folder
                                         : PathKind::other;
}

std::string last_name(const std::string& path) {
    const std::size_t end = path.find_last_not_of(kSeparators);
    const std::string whole = path.substr(0, end == std::string::npos ? 0 : end + 1);
    return std::string(text::last_component(whole, kSeparators));
}

std::string folder_of(const std::string& path) {
    const std::size_t slash = path.find_last_of(kSeparators);
    return slash == std::string::npos ? "." : path.substr(0, std::max<std::size_t>(slash, 1));
}

bool has_ending(const std::string& name, const std::string& ending) {
    return name.size() > ending.size() && text::ends_with_ignoring_case(name, ending);
}

std::optional<std::string> only_file(const std::string& folder, const std::string& ending) {
    std::optional<std::string> only;
    std::error_code failure;
    for (fs::directory_iterator entry(os::native_path(folder), failure);
         !failure && entry != fs::directory_iterator(); entry.increment(failure)) {
        const std::string name = os::text_of(entry->path().filename());
        if (has_ending(name, ending)) {
            if (only) {
                return std::nullopt;
            }
            only = name;
        }
    }
    return only;
}

}  // namespace cli::doctor
