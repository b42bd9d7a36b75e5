#include "system/replacement_file.h"

#include <filesystem>
#include <random>
#include <system_error>
#include <utility>

#include "system/files.h"

namespace os {

namespace fs = std::filesystem;

namespace {

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
    const std::string end = link_target(path, failure);
    if (failure) {
        error = path + ": " + failure.message();
        return std::nullopt;
    }
    const FileKind kind = file_state(end).kind;
    if (kind != FileKind::missing) {
        if (kind != FileKind::regular) {
            error = path + ": not a regular file";
            return std::nullopt;
        }
        // Renaming over a file does not check whether the file itself is writable.
        failure = may_write(end);
        if (failure) {
            error = path + ": " + failure.message();
            return std::nullopt;
        }
    }
    const fs::path target = path_of(end);
    constexpr int kAttempts = 16;  // a taken name is replaced by another random one
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        fs::path name = ".";
        name += target.stem();
        name += "." + random_suffix();
        name += target.extension();
        std::string temporary = text_of(target.parent_path() / name);
        failure = create_file(temporary);
        if (!failure) {
            return ReplacementFile(path, end, std::move(temporary));
        }
        if (failure != std::errc::file_exists) {
            break;
        }
    }
    error = path + ": " + failure.message();
    return std::nullopt;
}

ReplacementFile::ReplacementFile(ReplacementFile&& other) noexcept
    : path_(std::move(other.path_)),
      target_(std::move(other.target_)),
      temporary_path_(std::exchange(other.temporary_path_, {})) {}

ReplacementFile& ReplacementFile::operator=(ReplacementFile&& other) noexcept {
    if (this != &other) {
        discard();
        path_ = std::move(other.path_);
        target_ = std::move(other.target_);
        temporary_path_ = std::exchange(other.temporary_path_, {});
    }
    return *this;
}

ReplacementFile::~ReplacementFile() {
    discard();
}

bool ReplacementFile::fill(std::string_view bytes, std::string& error) {
    const std::error_code failure = fill_file(temporary_path_, bytes);
    if (failure) {
        error = path_ + ": " + failure.message();
    }
    return !failure;
}

bool ReplacementFile::put_in_place(std::string& error) {
    std::error_code failure = flush_file(temporary_path_);
    if (!failure) {
        failure = replace_file(temporary_path_, target_);
    }
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
        fs::remove(native_path(temporary_path_), ignored);
        temporary_path_.clear();
    }
}

}  // namespace os
