#pragma once

// The headers of common image formats, for builds without an image library: PNG, JPEG, TIFF, TGA, BMP and
// RLA. Answers as the library does, so that a project does not depend on how the host was built.

#include <iosfwd>
#include <optional>
#include <string>

#include "embedded/image_probe.h"

namespace embedded {

/// The formats that are read, for people: "PNG, JPEG, ...".
inline constexpr const char* kImageHeaderFormats = "PNG, JPEG, TIFF, TGA, BMP and RLA";

/// Reads the header from the beginning of `file`, which can be sought in. The format is told by the content;
/// for TGA, which does not tell, by the extension of `name`. Nothing when no format fits or the header is cut
/// off or makes no sense; `error` then says why.
std::optional<ImageFacts> read_image_header(std::istream& file, const std::string& name, std::string& error);

}  // namespace embedded
