#pragma once

#include "image/oiio_report.h"

// Probes and reads images through OpenImageIO. May throw.

namespace image {

/// The functions `probe` and `read` of the table.
[[nodiscard]] bool probe_with_library(const char* path, Header& header, const Reporter& reporter);
[[nodiscard]] bool read_with_library(const char* path, const AlphaOptions& alpha, Texture& texture,
                                     const Reporter& reporter);

}  // namespace image
