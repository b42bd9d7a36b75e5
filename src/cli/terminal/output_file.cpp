#include "cli/terminal/output_file.h"

#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "system/files.h"
#include "system/open_regular_file.h"

namespace cli {

namespace {

/// Whether the target cannot be replaced: a device, a pipe, or a link like /dev/stdout to a file that is
/// already open, where following links has stopped.
bool is_written_directly(const std::string& target) {
    switch (os::file_state(target).kind) {
        case os::FileKind::pipe:
        case os::FileKind::device:
        case os::FileKind::socket:
            return true;
        default: {
            std::error_code none;
            return std::filesystem::is_symlink(os::native_path(target), none);
        }
    }
}

}  // namespace

OutputFile::OutputFile(std::string path) : path_(std::move(path)) {
    const std::string target = os::link_target(path_, failure_);
    if (failure_) {
        give_up();
    }
    if (is_written_directly(target)) {
        stream_.reset(os::open_device(target, failure_));
    } else {
        std::string reason;
        replacement_ = os::ReplacementFile::create(path_, reason);
        if (!replacement_) {
            throw std::runtime_error("cannot write " + reason);
        }
        errno = 0;
        stream_.reset(os::open_file_to_write(replacement_->temporary_path().c_str()));
        if (stream_ == nullptr) {
            keep_error();
        }
    }
    if (stream_ == nullptr) {
        give_up();
    }
}

void OutputFile::write(std::string_view text) {
    errno = 0;
    if (std::fwrite(text.data(), 1, text.size(), stream_.get()) != text.size()) {
        keep_error();
    }
}

void OutputFile::close() {
    errno = 0;
    if (std::fclose(stream_.release()) != 0) {
        keep_error();
    }
    if (failure_) {
        give_up();
    }
    std::string reason;
    if (replacement_ && !replacement_->put_in_place(reason)) {
        throw std::runtime_error("cannot write " + reason);
    }
}

void OutputFile::keep_error() {
    if (!failure_) {
        failure_ = {errno, std::generic_category()};
    }
}

void OutputFile::give_up() const {
    throw std::runtime_error("cannot write " + path_ + ": " + failure_.message());
}

}  // namespace cli
