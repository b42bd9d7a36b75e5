#pragma once

// The headers of common image formats, for builds without an image library: PNG, JPEG, TIFF, TGA, BMP and
// RLA. Answers as the library does, so that a project does not depend on how the host was built.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "embedded/image_probe.h"

namespace embedded {

/// The formats that are read, for people: "PNG, JPEG, ...".
inline constexpr const char* kImageHeaderFormats = "PNG, JPEG, TIFF, TGA, BMP and RLA";

/// Reads `bytes` bytes at `offset_bytes` of a file into `data`; false when the file does not have them all.
using ReadAt = std::function<bool(std::uint64_t offset_bytes, char* data, std::size_t bytes)>;

/// Reads the header of an image. The format is told by the content; for TGA, which does not tell, by the
/// extension of `name`. Nothing when no format fits or the header is cut off or makes no sense; `error` then
/// says why.
std::optional<ImageFacts> read_image_header(const ReadAt& read_at, const std::string& name,
                                            std::string& error);

}  // namespace embedded
