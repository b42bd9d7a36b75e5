#include "imageio/replacement_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <random>
#include <system_error>
#include <utility>

namespace imageio {

namespace fs = std::filesystem;

namespace {

/// Whether a file was opened, and closed again. "x" in the mode makes a new one or fails.
bool opens(const fs::path& path, const char* mode) {
    std::FILE* file = std::fopen(path.c_str(), mode);
    if (file == nullptr) {
        return false;
    }
    return std::fclose(file) == 0;
}

std::string random_suffix() {
    constexpr char kDigits[] = "0123456789abcdefghijklmnopqrstuv";
    std::random_device random;
    std::string suffix;
    for (int i = 0; i < 8; ++i) {
        suffix += kDigits[random() % 32];
    }
    return suffix;
}

}  // namespace

std::optional<ReplacementFile> ReplacementFile::create(const std::string& path, std::string& error) {
    std::error_code failure;
    fs::path target = path;
    const fs::file_status status = fs::status(target, failure);
    if (fs::exists(status)) {
        if (!fs::is_regular_file(status)) {
            error = path + ": not a regular file";
            return std::nullopt;
        }
        // Appending nothing asks the system whether it may be written; replacing it would not ask.
        if (!opens(target, "ab")) {
            error = path + ": " + std::strerror(errno);
            return std::nullopt;
        }
        if (fs::is_symlink(target, failure)) {
            target = fs::canonical(target, failure);
        }
    }
    constexpr int kAttempts = 16;  // a name that is taken is tried again under another
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        fs::path name = ".";
        name += target.stem();
        name += "." + random_suffix();
        name += target.extension();
        const fs::path temporary = target.parent_path() / name;
        if (opens(temporary, "wbx")) {
            return ReplacementFile(target.string(), temporary.string());
        }
        if (errno != EEXIST) {
            break;
        }
    }
    error = path + ": " + std::strerror(errno);
    return std::nullopt;
}

ReplacementFile::ReplacementFile(ReplacementFile&& other) noexcept
    : path_(std::move(other.path_)), temporary_path_(std::exchange(other.temporary_path_, {})) {}

ReplacementFile& ReplacementFile::operator=(ReplacementFile&& other) noexcept {
    if (this != &other) {
        discard();
        path_ = std::move(other.path_);
        temporary_path_ = std::exchange(other.temporary_path_, {});
    }
    return *this;
}

ReplacementFile::~ReplacementFile() {
    discard();
}

bool ReplacementFile::put_in_place(std::string& error) {
    std::error_code failure;
    const fs::file_status replaced = fs::status(path_, failure);
    if (fs::exists(replaced)) {
        fs::permissions(temporary_path_, replaced.permissions(), failure);
    }
    fs::rename(temporary_path_, path_, failure);
    if (failure) {
        error = path_ + ": " + failure.message();
        return false;
    }
    temporary_path_.clear();
    return true;
}

void ReplacementFile::discard() {
    if (!temporary_path_.empty()) {
        std::error_code ignored;
        fs::remove(temporary_path_, ignored);
        temporary_path_.clear();
    }
}

}  // namespace imageio
