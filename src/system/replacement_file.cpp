#include "system/replacement_file.h"

#include <algorithm>
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

bool begins_character(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;  // anything but a later byte of UTF-8
}

std::size_t characters_of(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), begins_character));
}

/// `text` without its last `count` characters.
std::string_view without_last(std::string_view text, std::size_t count) {
    while (count > 0 && !text.empty()) {
        count -= begins_character(text.back()) ? 1 : 0;
        text.remove_suffix(1);
    }
    return text;
}

}  // namespace

std::string temporary_name(std::string_view name, std::string_view suffix) {
    // No extension of an image format is as long; the dot of a hidden file begins none.
    constexpr std::size_t kLongestExtension_bytes = 16;
    const std::size_t dot = name.rfind('.');
    const bool has_extension =
        dot != std::string_view::npos && dot > 0 && name.size() - dot <= kLongestExtension_bytes;
    const std::string_view extension = has_extension ? name.substr(dot) : std::string_view();
    std::string_view stem = name.substr(0, name.size() - extension.size());
    // Shorter names have room for the two dots and the suffix in every file system. Characters are replaced
    // by as many of one byte and one unit each, so the result is never longer than the name. A name of bytes
    // that begin no character has none.
    constexpr std::size_t kShort_characters = 50;
    constexpr std::size_t kCharacter_bytes = 4;
    if (characters_of(name) > kShort_characters || name.size() > kShort_characters * kCharacter_bytes) {
        stem = without_last(stem, suffix.size() + 2);
    }
    return std::string(".").append(stem).append(".").append(suffix).append(extension);
}

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
    ReplacementFile file;
    file.path_ = path;
    file.target_ = end;
    constexpr int kAttempts = 16;  // a taken name is replaced by another random one
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        const std::string name = temporary_name(text_of(target.filename()), random_suffix());
        const std::string temporary = text_of(target.parent_path() / path_of(name));
        // Known before it exists, so that there is no moment in which a signal leaves it behind.
        file.cleanup_ = RemovedOnSignal::file(temporary);
        failure = kind == FileKind::missing ? create_file(temporary)
                                            : create_replacement(temporary, end, file.notice_);
        if (!failure) {
            file.temporary_path_ = temporary;
            return file;
        }
        file.cleanup_ = {};
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
      temporary_path_(std::exchange(other.temporary_path_, {})),
      cleanup_(std::move(other.cleanup_)),
      notice_(std::move(other.notice_)) {}

ReplacementFile& ReplacementFile::operator=(ReplacementFile&& other) noexcept {
    if (this != &other) {
        discard();
        path_ = std::move(other.path_);
        target_ = std::move(other.target_);
        temporary_path_ = std::exchange(other.temporary_path_, {});
        cleanup_ = std::move(other.cleanup_);
        notice_ = std::move(other.notice_);
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

bool ReplacementFile::put_in_place(std::string& error, Flush flush) {
    std::error_code failure = flush == Flush::yes ? flush_file(temporary_path_) : std::error_code();
    if (!failure) {
        failure = replace_file(temporary_path_, target_);
    }
    if (failure) {
        error = path_ + ": " + failure.message();
        return false;
    }
    temporary_path_.clear();
    cleanup_ = {};
    if (!notice_.empty()) {
        keep_notice(path_ + ": " + notice_);
    }
    return true;
}

void ReplacementFile::discard() {
    if (!temporary_path_.empty()) {
        std::error_code ignored;
        fs::remove(native_path(temporary_path_), ignored);
        temporary_path_.clear();
        cleanup_ = {};
    }
}

}  // namespace os
