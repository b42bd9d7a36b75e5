#pragma once

#include <cstdint>
#include <string_view>

#include "render/picture.h"

namespace render {

/// What stands in for a picture that is not there: colour bars with `name` and `note` on black across the
/// middle, in letters that fit the picture, and opaque. Characters beyond ASCII are shown as question marks.
/// The picture has at least one pixel.
[[nodiscard]] Picture colour_bars(std::int32_t width_px, std::int32_t height_px, std::string_view name,
                                  std::string_view note);

}  // namespace render
