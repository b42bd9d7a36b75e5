#pragma once

#include <cstdint>
#include <cstdio>

#include "texture/file/filename.h"

/// A byte file over a path object, for reading only: composition files, header peeks and tests of existence.
/// Opens regular files only (see open_regular_file.h); never writes.
class BaseFile {
  public:
    BaseFile() = default;
    ~BaseFile();
    BaseFile(const BaseFile&) = delete;
    BaseFile& operator=(const BaseFile&) = delete;

    /// Opens `name` for reading, closing what was open before. `mode` and `flags` are Deliberately ignored:
    /// callers pass the modes of the wider file interface, of which this class serves reading alone. Returns
    /// 1 on success; otherwise returns 0 and sets the error field to 1.
    int Open(const Filename& name, std::int32_t mode, int flags);

    /// Reads up to `count` bytes into `buffer`; `flags` is Deliberately ignored.
    /// Returns how many were read, at least 1; -1 when the file is closed, at its end, or nothing could be
    /// read. A failed read does not raise the error field.
    std::int32_t ReadBytes(void* buffer, std::int32_t count, int flags);

    /// Size of the file in bytes, the position being kept. -1 when the file is closed, cannot be measured, or
    /// has 2 GiB or more, which a 32-bit length cannot tell.
    std::int32_t GetLength();

    /// The error field: 1 after a failed Open, else 0.
    [[nodiscard]] std::int32_t GetError() const { return error_; }

    /// Closes the file and clears the error field. Returns 1 when closing succeeded or nothing was open, else
    /// 0.
    int Close();

  private:
    std::FILE* handle_ = nullptr;
    std::int32_t error_ = 0;
};

/// Makes a closed file; null when memory is short. Ended with FreeBaseFile.
[[nodiscard]] BaseFile* AllocBaseFile();

/// Closes and deletes `file` and sets the caller's pointer to null; null is allowed.
void FreeBaseFile(BaseFile*& file);

/// 1 when `path` (POSIX or in the host's style) names a regular file that opens for reading, else 0; null
/// gives 0.
int GeFExist(const char* path);
