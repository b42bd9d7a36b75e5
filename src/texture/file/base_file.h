#pragma once

#include <cstdint>
#include <cstdio>

#include "texture/file/filename.h"

/// A read-only byte file that is opened by a path object: for composition files, for looking at the first
/// bytes of a file, and for checking that a file exists. Opens only regular files (see open_regular_file.h).
class BaseFile {
  public:
    BaseFile() = default;
    ~BaseFile();
    BaseFile(const BaseFile&) = delete;
    BaseFile& operator=(const BaseFile&) = delete;

    /// Closes any open file and opens `name` for reading. `mode` and `flags` are deliberately ignored:
    /// callers pass the modes of a wider file interface, and this class only reads. Returns 1 on success;
    /// otherwise returns 0 and sets the error field to 1.
    int Open(const Filename& name, std::int32_t mode, int flags);

    /// Reads up to `count` bytes into `buffer`; `flags` is deliberately ignored, as in Open. Returns the
    /// number of bytes read, at least 1; -1 when the file is closed or at its end, or when nothing could be
    /// read. A failed read does not set the error field.
    std::int32_t ReadBytes(void* buffer, std::int32_t count, int flags);

    /// Size of the file in bytes; keeps the position. -1 when the file is closed, cannot be measured, or has
    /// 2 GiB or more, which does not fit a 32-bit length.
    std::int32_t GetLength();

    /// The error field: 1 after a failed Open, otherwise 0.
    [[nodiscard]] std::int32_t GetError() const { return error_; }

    /// Closes the file and clears the error field. Returns 0 when closing failed, otherwise 1, also when no
    /// file was open.
    int Close();

  private:
    std::FILE* handle_ = nullptr;
    std::int32_t error_ = 0;
};

/// Creates a closed file, to be released with FreeBaseFile; null when memory is short.
[[nodiscard]] BaseFile* AllocBaseFile();

/// Closes and deletes `file` and sets the caller's pointer to null; null is allowed.
void FreeBaseFile(BaseFile*& file);

/// 1 when `path` (POSIX or in the host's style) names a regular file that can be opened for reading,
/// otherwise 0; null gives 0.
int GeFExist(const char* path);
