#pragma once

#include <cstdint>
#include <optional>
#include <string>

class BaseBitmap;

/// What a bitmap says about itself and where its arrays are.
struct BitmapParts {
    std::int32_t width_px = 0;
    std::int32_t height_px = 0;
    std::int32_t depth_bits = 0;
    std::int32_t channel_count = 0;
    std::int32_t channel_number = 0;        ///< of the first channel; 0 without one
    const std::uint16_t* pixels = nullptr;  ///< first row, three values a pixel; null without rows
    const std::uint16_t* alpha = nullptr;   ///< first row of the alpha channel; null without rows or channel
};

/// The first thing about these parts that loading a texture cannot have brought about; nothing for sound
/// ones. Colours are bytes in the upper half of a value, alpha is bytes in the lower half; rows are read
/// whole, or where there are more than 2^22 values at evenly spaced places, so that the work has a bound.
[[nodiscard]] std::optional<std::string> validate_bitmap(const BitmapParts& parts);

/// The same for a bitmap that a texture was loaded into. Its rows must also be one behind the other and end
/// where the picture does. Arrays that are too short are for AddressSanitizer to find.
[[nodiscard]] std::optional<std::string> validate_bitmap(const BaseBitmap& bitmap);
