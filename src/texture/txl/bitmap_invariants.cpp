#include "texture/txl/bitmap_invariants.h"

#include <algorithm>

#include "limit/limits.h"
#include "texture/txl/base_bitmap.h"

namespace {

using Violation = std::optional<std::string>;

constexpr std::int64_t kColourValues = 3;
constexpr std::int64_t kMostValuesRead = std::int64_t{1} << 22;
constexpr std::int32_t kAlphaChannel = 1;

/// The index of the first value with bits outside `allowed`; the last value is always among those read.
std::optional<std::int64_t> wrong_value(const std::uint16_t* values, std::int64_t count,
                                        std::uint16_t allowed) {
    const auto is_wrong = [&](std::int64_t i) { return (values[i] & ~allowed) != 0; };
    const std::int64_t step = 1 + count / kMostValuesRead;
    for (std::int64_t i = 0; i < count; i += step) {
        if (is_wrong(i)) {
            return i;
        }
    }
    return count > 0 && is_wrong(count - 1) ? std::optional(count - 1) : std::nullopt;
}

std::string place_text(std::int64_t pixel, std::int32_t width_px) {
    return "row " + std::to_string(pixel / width_px) + ", column " + std::to_string(pixel % width_px);
}

Violation validate_rows(const BaseBitmap& bitmap, const BitmapParts& parts) {
    const std::int32_t height = parts.height_px;
    if (bitmap.PixelRow(-1) != nullptr || bitmap.PixelRow(height) != nullptr ||
        bitmap.AlphaRow(kAlphaChannel, -1) != nullptr || bitmap.AlphaRow(kAlphaChannel, height) != nullptr) {
        return "there are rows outside the picture";
    }
    if (height == 0) {
        return std::nullopt;
    }
    const std::int64_t before = std::int64_t{parts.width_px} * (height - 1);
    if (bitmap.PixelRow(height - 1) != parts.pixels + kColourValues * before ||
        (parts.alpha != nullptr && bitmap.AlphaRow(kAlphaChannel, height - 1) != parts.alpha + before)) {
        return "the last row does not follow the others";
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::string> validate_bitmap(const BitmapParts& parts) {
    const std::int64_t pixel_count = std::int64_t{parts.width_px} * parts.height_px;
    if (parts.width_px < 0 || parts.height_px < 0 || pixel_count > limits::kTexturePixels.value) {
        return "no picture has " + std::to_string(parts.width_px) + " x " + std::to_string(parts.height_px) +
               " pixels";
    }
    if (parts.depth_bits < 0) {
        return "the depth is " + std::to_string(parts.depth_bits) + " bits";
    }
    if (parts.channel_count < 0 || parts.channel_count > 1 || parts.channel_number != parts.channel_count) {
        return std::to_string(parts.channel_count) + " alpha channels, the first with number " +
               std::to_string(parts.channel_number);
    }
    const bool has_rows = parts.height_px > 0;
    if ((parts.pixels != nullptr) != has_rows) {
        return "there are pixels without rows or rows without pixels";
    }
    if ((parts.alpha != nullptr) != (has_rows && parts.channel_count == 1)) {
        return "there is alpha without its channel or a channel without alpha";
    }
    if (!has_rows) {
        return std::nullopt;
    }
    if (const auto wrong = wrong_value(parts.pixels, kColourValues * pixel_count, 0xFF00)) {
        return place_text(*wrong / kColourValues, parts.width_px) + ": a colour is not a byte times 256";
    }
    if (parts.alpha != nullptr) {
        if (const auto wrong = wrong_value(parts.alpha, pixel_count, 0x00FF)) {
            return place_text(*wrong, parts.width_px) + ": the alpha is not a byte";
        }
    }
    return std::nullopt;
}

std::optional<std::string> validate_bitmap(const BaseBitmap& bitmap) {
    const BitmapParts parts = {bitmap.width(),
                               bitmap.height(),
                               bitmap.depth(),
                               bitmap.GetChannelCount(),
                               bitmap.GetChannelNum(0),
                               bitmap.PixelRow(0),
                               bitmap.AlphaRow(kAlphaChannel, 0)};
    if (Violation found = validate_bitmap(parts)) {
        return found;
    }
    return validate_rows(bitmap, parts);
}
