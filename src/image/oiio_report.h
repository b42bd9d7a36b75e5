#pragma once

#include <string>

#include "image/reporter.h"

// What reading and writing through OpenImageIO share.

namespace image {

/// The attribute by which OpenImageIO is told that colour is not multiplied by alpha, and that it is to be
/// left as it is.
inline constexpr const char* kUnassociated = "oiio:UnassociatedAlpha";

/// OpenImageIO's text for what went wrong, on one line.
[[nodiscard]] std::string library_reason(std::string text);

}  // namespace image
