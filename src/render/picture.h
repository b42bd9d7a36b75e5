#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace render {

/// A decoded picture as its file has it: 8 bits each of red, green, blue and alpha, rows top to bottom, no
/// padding. Without an alpha channel of its own every alpha is 255.
struct Picture {
    std::int32_t width_px = 0;
    std::int32_t height_px = 0;
    bool has_alpha = false;
    std::vector<std::uint8_t> bytes;

    [[nodiscard]] std::size_t row_bytes() const { return static_cast<std::size_t>(width_px) * 4; }
};

/// Shared by the cache and the frame that shows it; nobody changes it.
using SharedPicture = std::shared_ptr<const Picture>;

}  // namespace render
