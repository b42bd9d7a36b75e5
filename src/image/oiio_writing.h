#pragma once

#include "image/oiio_report.h"

// Writes images through OpenImageIO. May throw.

namespace image {

/// The functions `write` and `can_write` of the table.
[[nodiscard]] bool write_with_library(const char* path, const Texture& texture, const WriteOptions& options,
                                      const Reporter& reporter);
[[nodiscard]] bool library_has_writer(const char* path);

}  // namespace image
