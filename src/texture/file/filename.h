#pragma once

#include <cstdint>
#include <memory>

// Classic Macintosh hosts name files in the colon-separated HFS style, while the C library opens POSIX paths.
// Everywhere else both styles are the same. One source file per platform defines the two conversions:
// path_conversion_macos.cpp where CoreFoundation exists, path_conversion_identity.cpp everywhere else.

/// Converts a POSIX path to the host's style, as `Filename` stores it. Returns a new terminated array, or
/// null when `path` is null or cannot be converted, or when memory is short.
[[nodiscard]] std::unique_ptr<char[]> host_path_from_posix(const char* path);

/// Converts a path in the host's style to the POSIX path that the C library opens: the inverse of
/// host_path_from_posix. Returns a new terminated array, or null when `path` is null or cannot be converted,
/// or when memory is short.
[[nodiscard]] std::unique_ptr<char[]> posix_path_from_host(const char* path);

/// A path in the host's style. Owns its text: a terminated heap array of length + 2 bytes.
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
