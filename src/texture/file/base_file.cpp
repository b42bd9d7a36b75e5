#include "texture/file/base_file.h"

#include <stdio.h>

#include <limits>
#include <memory>
#include <new>

#include "system/open_regular_file.h"
#include "system/path_style.h"

BaseFile::~BaseFile() {
    Close();
}

int BaseFile::Open(const Filename& name, std::int32_t /*mode*/, int /*flags*/) {
    Close();
    const std::unique_ptr<char[]> path = os::posix_path_from_host(name.GetString());
    handle_ = path == nullptr ? nullptr : os::open_regular_file(path.get());
    error_ = handle_ == nullptr ? 1 : 0;
    return handle_ == nullptr ? 0 : 1;
}

std::int32_t BaseFile::ReadBytes(void* buffer, std::int32_t count, int /*flags*/) {
    if (handle_ == nullptr) {
        return -1;
    }
    const std::size_t read =
        count > 0 ? std::fread(buffer, 1, static_cast<std::size_t>(count), handle_) : std::size_t{0};
    if (read == 0) {
        error_ = 0;  // Deliberate: only the result reports a failed read; the error field is for Open.
        return -1;
    }
    return static_cast<std::int32_t>(read);
}

std::int32_t BaseFile::GetLength() {
    if (handle_ == nullptr) {
        return -1;
    }
    const std::int64_t position = ::ftello(handle_);
    if (position < 0 || ::fseeko(handle_, 0, SEEK_END) != 0) {
        return -1;
    }
    const std::int64_t size = ::ftello(handle_);
    if (::fseeko(handle_, position, SEEK_SET) != 0 || size < 0 ||
        size > std::numeric_limits<std::int32_t>::max()) {
        return -1;
    }
    return static_cast<std::int32_t>(size);
}

int BaseFile::Close() {
    const bool closed = handle_ == nullptr || std::fclose(handle_) == 0;
    handle_ = nullptr;
    error_ = 0;
    return closed ? 1 : 0;
}

BaseFile* AllocBaseFile() {
    return new (std::nothrow) BaseFile;
}

void FreeBaseFile(BaseFile*& file) {
    delete file;
    file = nullptr;
}

int GeFExist(const char* path) {
    BaseFile file;
    return file.Open(Filename(path), 1, 0);
}
