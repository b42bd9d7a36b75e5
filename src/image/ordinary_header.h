#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "image/built_in_header.h"

namespace image {

/// The header of a PNG, JPEG, TIFF, TGA or RLA file as programs usually write it, complete and with the
/// extension of its format. Null for every other file, damaged ones included: only the image library knows
/// what it makes of those. Where there is an answer, it is the library's, whose loading takes a quarter of a
/// second. `size_bytes` is the file's size, `name` gives its extension.
std::optional<Header> ordinary_header(const ReadAt& read_at, std::uint64_t size_bytes,
                                      const std::string& name);

/// The same for a regular file.
std::optional<Header> ordinary_header_of_file(const std::string& path);

}  // namespace image
