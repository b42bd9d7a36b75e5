#pragma once

#include <cstdint>

#include "image/header_bytes.h"

// Whether a file is of the usual form of its format. Each function looks at everything that decides whether
// the library opens a file, and refuses what it does not know, so that the library is asked.

namespace image {

/// Far below what any reader refuses, and more than footage has.
inline constexpr std::uint64_t kLargestUsualSide_px = 16384;

inline bool is_usual_side(std::uint64_t side_px) {
    return side_px >= 1 && side_px <= kLargestUsualSide_px;
}

[[nodiscard]] bool is_ordinary_jpeg(HeaderBytes& file);
[[nodiscard]] bool is_ordinary_tiff(HeaderBytes& file, std::uint64_t size_bytes);

}  // namespace image
