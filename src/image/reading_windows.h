#pragma once

#include "image/reporter.h"

// Reads images through Windows' own imaging component.

namespace image {

/// Reads the first picture of a file and reports warnings. Throws a Refusal, or a std::exception.
void read_with_windows(const char* path, AlphaBytes alpha_bytes, Texture& texture, const Reporter& reporter);

}  // namespace image
