#pragma once

#include <algorithm>
#include <cstdint>

#include "host/host_interface.h"

// The pixels of a scaled frame, straight from the definition: each is the mean of the area of the picture
// that it covers, summed over every pixel of the picture. Slow and exact, in whole numbers.

/// How many units of pixel `at` of the frame lie on pixel `of` of the picture. The side that both cover is
/// `frame_px` times `picture_px` units long.
inline std::int64_t common_units(std::int64_t at, std::int64_t frame_px, std::int64_t of,
                                 std::int64_t picture_px) {
    const std::int64_t begin = std::max(at * picture_px, of * frame_px);
    const std::int64_t end = std::min((at + 1) * picture_px, (of + 1) * frame_px);
    return std::max<std::int64_t>(end - begin, 0);
}

/// One channel of pixel (x, y) of a frame; `value(column, row)` is that channel of the picture.
template <typename Value>
std::uint8_t area_average(A_long x, A_long y, A_long frame_width_px, A_long frame_height_px,
                          A_long picture_width_px, A_long picture_height_px, const Value& value) {
    std::int64_t sum = 0;
    std::int64_t area = 0;
    for (A_long row = 0; row < picture_height_px; ++row) {
        const std::int64_t height = common_units(y, frame_height_px, row, picture_height_px);
        for (A_long column = 0; height > 0 && column < picture_width_px; ++column) {
            const std::int64_t units = height * common_units(x, frame_width_px, column, picture_width_px);
            // Pixels outside the area may be missing.
            if (units > 0) {
                sum += units * value(column, row);
                area += units;
            }
        }
    }
    return static_cast<std::uint8_t>((2 * sum + area) / (2 * area));
}
