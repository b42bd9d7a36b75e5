#include "embedded/guarded_frame.h"

#include <algorithm>
#include <cstring>

namespace embedded {
namespace {

constexpr std::int64_t kBytesPerPixel = sizeof(PF_Pixel);
constexpr std::int64_t kMaxFrame_bytes = std::int64_t{1} << 30;

std::int64_t stride_of(const FrameShape& shape) {
    return shape.row_bytes == 0 ? shape.width_px * kBytesPerPixel : shape.row_bytes;
}

std::int64_t distance(std::int64_t stride) {
    return stride < 0 ? -stride : stride;
}

}  // namespace

std::string GuardedFrame::problem_with(const FrameShape& shape) {
    if (shape.width_px < 0 || shape.height_px < 0) {
        return "a frame of negative size";
    }
    if (distance(stride_of(shape)) < shape.width_px * kBytesPerPixel) {
        return "rows of " + std::to_string(shape.row_bytes) + " bytes do not hold " +
               std::to_string(shape.width_px) + " pixels";
    }
    if (shape.time.scale == 0) {
        return "a time on a scale of 0";
    }
    if (shape.resolution_divisor < 1) {
        return "a resolution that is not above 0";
    }
    // Both factors are below 2^32, and the stride is checked first, so the product stays within 64 bits.
    if (distance(stride_of(shape)) > kMaxFrame_bytes ||
        distance(stride_of(shape)) * shape.height_px > kMaxFrame_bytes) {
        return "a frame of more than 1 GiB";
    }
    return {};
}

GuardedFrame::GuardedFrame(const FrameShape& shape) {
    const std::int64_t stride = stride_of(shape);
    const std::int64_t rows = distance(stride) * shape.height_px;
    bytes_.resize(static_cast<std::size_t>(rows + 2 * kMargin_bytes));
    for (std::size_t i = 0; i < bytes_.size(); ++i) {
        bytes_[i] = guard_byte(i);
    }
    // With a negative row length the first row is the last in memory.
    first_row_ = kMargin_bytes + (stride < 0 && shape.height_px > 0 ? -stride * (shape.height_px - 1) : 0);
    world_.row_bytes = static_cast<A_long>(stride);
    world_.width = shape.width_px;
    world_.height = shape.height_px;
    world_.extent = {0, 0, shape.width_px, shape.height_px};
    world_.pixel_aspect = {1, 1};
    world_.origin_x = shape.origin_x;
    world_.origin_y = shape.origin_y;
    world_.data = reinterpret_cast<PF_Pixel*>(bytes_.data() + first_row_);
    for (A_long row = 0; row < shape.height_px; ++row) {
        std::fill_n(bytes_.begin() + row_offset(row), shape.width_px * kBytesPerPixel, shape.fill);
    }
}

std::int64_t GuardedFrame::row_offset(A_long row) const {
    return first_row_ + std::int64_t{world_.row_bytes} * row;
}

std::optional<std::string> GuardedFrame::damage() const {
    const auto row_length = static_cast<std::size_t>(world_.width * kBytesPerPixel);
    const bool upwards = world_.row_bytes < 0;
    std::size_t changed = 0;
    std::size_t first_changed = 0;
    std::size_t checked = 0;
    const auto check_until = [&](std::size_t end) {
        for (; checked < end; ++checked) {
            if (bytes_[checked] == guard_byte(checked)) {
                continue;
            }
            if (changed++ == 0) {
                first_changed = checked;
            }
        }
    };
    for (A_long i = 0; i < world_.height; ++i) {
        const auto row = static_cast<std::size_t>(row_offset(upwards ? world_.height - 1 - i : i));
        check_until(row);
        checked = row + row_length;
    }
    check_until(bytes_.size());
    if (changed == 0) {
        return std::nullopt;
    }
    return std::to_string(changed) + " bytes outside the frame were written, the first " +
           std::to_string(static_cast<std::int64_t>(first_changed) - first_row_) +
           " bytes from the start of row 0";
}

std::vector<PF_Pixel> GuardedFrame::pixels() const {
    std::vector<PF_Pixel> all(static_cast<std::size_t>(world_.width) *
                              static_cast<std::size_t>(world_.height));
    if (world_.width == 0) {
        return all;
    }
    for (A_long row = 0; row < world_.height; ++row) {
        std::memcpy(all.data() + static_cast<std::size_t>(row) * static_cast<std::size_t>(world_.width),
                    bytes_.data() + row_offset(row), static_cast<std::size_t>(world_.width * kBytesPerPixel));
    }
    return all;
}

}  // namespace embedded
