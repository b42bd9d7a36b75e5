#pragma once

#include <cstdint>
#include <optional>
#include <string>

class BaseBitmap;

/// The numbers of a bitmap and the addresses of its arrays.
struct BitmapParts {
    std::int32_t width_px = 0;
    std::int32_t height_px = 0;
    std::int32_t depth_bits = 0;
    std::int32_t channel_count = 0;
    std::int32_t channel_number = 0;        ///< of the first channel; 0 without one
    const std::uint16_t* pixels = nullptr;  ///< first row, three values per pixel; null without rows
    const std::uint16_t* alpha = nullptr;   ///< first row of the alpha channel; null without rows or channel
};

/// Describes the first invariant that these parts violate; nullopt when loading a texture can have produced
/// them. Colour is a byte in the upper half of each value, alpha a byte in the lower half. Reads every value,
/// or evenly spaced ones where there are more than 2^22, so the work is bounded.
[[nodiscard]] std::optional<std::string> validate_bitmap(const BitmapParts& parts);

/// Does the same for a bitmap that a texture was loaded into. In addition, its rows must be contiguous and
/// end where the picture ends. Finding arrays that are too short is left to AddressSanitizer.
[[nodiscard]] std::optional<std::string> validate_bitmap(const BaseBitmap& bitmap);
