#pragma once

#include "image/imaging_windows.h"

// Writes images through Windows' own imaging component.

namespace image {

/// Writes a picture in the format of `container`. An existing file at `path` stays until the new one is
/// complete. Throws a Refusal, or a std::exception.
void write_with_windows(const char* path, const Container& container, const Texture& texture,
                        AlphaBytes alpha_bytes);

}  // namespace image
