#pragma once

#include <cstdint>
/// A path in the classic host's style (system/path_style.h). Owns its text: a terminated heap array of length
/// + 2 bytes.
class Filename {
  public:
    /// The empty path: no text, length 0.
    Filename() = default;

    /// Keeps a path without '/' as it is, because it is in the host's style already; converts any other from
    /// POSIX. The object stays empty when `path` is null, too long for a 32-bit length or cannot be
    /// converted, and when memory is short. Not explicit: the importer passes paths as plain strings
    /// throughout.
    Filename(const char* path);

    Filename(const Filename& other);
    Filename& operator=(const Filename& other);
    ~Filename();

    /// The stored path, terminated and owned by this object; null when the object is empty.
    [[nodiscard]] const char* GetString() const { return text_; }

    /// Length of the stored path in bytes, without the terminator.
    [[nodiscard]] std::int32_t GetLength() const { return length_; }

  private:
    void Store(const char* text);

    char* text_ = nullptr;
    std::int32_t length_ = 0;
};
