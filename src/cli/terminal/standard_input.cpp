#include "cli/terminal/standard_input.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "system/file_content.h"
#include "system/files.h"
#include "system/open_regular_file.h"

namespace cli {
namespace {

std::string reason_of(int error) {
    return std::error_code(error, std::generic_category()).message();
}

/// Copies the standard input to `to`. Empty on success, or why it failed.
std::string copy_input(std::FILE* to, std::uint64_t most_bytes) {
    constexpr std::size_t kPart_bytes = std::size_t{1} << 16U;
    std::vector<char> part(kPart_bytes);
    for (std::uint64_t total = 0; total <= most_bytes;) {
        errno = 0;
        const std::size_t count = std::fread(part.data(), 1, part.size(), stdin);
        if (count == 0) {
            return std::ferror(stdin) != 0 ? reason_of(errno) : std::string();
        }
        if (std::fwrite(part.data(), 1, count, to) != count) {
            return reason_of(errno);
        }
        total += count;
    }
    return {};
}

}  // namespace

bool is_standard_input(const std::string& path) {
    return path == "-" || path == "/dev/stdin";
}

bool names_standard_input_twice(const std::vector<std::string>& paths) {
    return std::count_if(paths.begin(), paths.end(), is_standard_input) > 1;
}

std::optional<std::string> standard_input_text(std::uint64_t most_bytes) {
    return os::read_all(stdin, most_bytes);
}

std::optional<StandardInputFile> StandardInputFile::read(std::uint64_t most_bytes, std::string& error) {
    constexpr const char* kName = "standard-input.aec";
    std::optional<os::ReplacementFile> file = os::ReplacementFile::create(os::absolute_path(kName), error);
    if (!file) {
        std::error_code none;
        const std::filesystem::path folder = std::filesystem::temp_directory_path(none);
        file = os::ReplacementFile::create(os::text_of(folder / kName), error);
    }
    if (!file) {
        return std::nullopt;
    }
    const os::InputFile to(os::open_file_to_write(file->temporary_path().c_str()));
    error = to == nullptr ? reason_of(errno) : copy_input(to.get(), most_bytes);
    if (error.empty() && std::fflush(to.get()) != 0) {
        error = reason_of(errno);
    }
    return error.empty() ? std::optional(StandardInputFile(std::move(*file))) : std::nullopt;
}

}  // namespace cli
