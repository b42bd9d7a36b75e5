#pragma once

// Headers of common image formats, for builds without an image library. The answers match the library's, so a
// project does not depend on how the host was built.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>

#include "image/image.h"

namespace image {

/// The formats that are read, for people.
inline constexpr const char* kBuiltInFormats = "PNG, JPEG, TIFF, TGA, BMP and RLA";

/// Reads `bytes` bytes at `offset_bytes` of a file into `data`; false when the file does not have them all.
using ReadAt = std::function<bool(std::uint64_t offset_bytes, char* data, std::size_t bytes)>;

/// Reads from an open file, which outlives the result.
ReadAt reads_from(std::FILE* file);

/// Reads the header of an image. The content decides the format, except for TGA, which has no signature and
/// is recognised by the extension of `name`. Null when no format fits, or when the header is cut off or
/// invalid; `error` then says why.
std::optional<Header> read_built_in_header(const ReadAt& read_at, const std::string& name,
                                           std::string& error);

}  // namespace image
