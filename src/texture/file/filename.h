#pragma once

#include <cstdint>

/// A path in the host's own style. Without CoreFoundation that is the path as it was given; see
/// path_conversion.h. Owns its text: a heap array of length + 2 bytes, terminated.
class Filename {
  public:
    /// The empty path: no text, length 0.
    Filename() = default;

    /// Keeps a path without '/' as it is (it is in the host's style already) and converts any other from
    /// POSIX. The object stays empty when `path` is null or too long for a 32-bit length, when the conversion
    /// fails and when memory is short. Not explicit: paths are passed as plain strings throughout the
    /// importer.
    Filename(const char* path);

    Filename(const Filename& other);
    Filename& operator=(const Filename& other);
    ~Filename();

    /// The stored path, terminated; null for an empty object. Owned by this object.
    [[nodiscard]] const char* GetString() const { return text_; }

    /// Length of the stored path in bytes, without the terminator.
    [[nodiscard]] std::int32_t GetLength() const { return length_; }

  private:
    void Store(const char* text);

    char* text_ = nullptr;
    std::int32_t length_ = 0;
};
