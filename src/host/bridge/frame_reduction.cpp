#include "host/bridge/frame_reduction.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

namespace bridge {
namespace {

constexpr std::size_t kChannels = sizeof(PF_Pixel);

// What one pixel of the frame covers of the picture along one axis. In units in which a pixel of the picture
// is as long as the frame has pixels, and a pixel of the frame as long as the picture has, both ends are
// whole numbers.
struct Covered {
    std::int64_t first = 0;  // pixels of the picture, both included
    std::int64_t last = 0;
    std::uint64_t first_units = 0;  // of the first and of the last; those between are covered whole
    std::uint64_t last_units = 0;   // 0 if the first is also the last
};

Covered covered_by(A_long at, A_long frame_px, A_long picture_px) {
    const std::int64_t begin = std::int64_t{at} * picture_px;
    const std::int64_t end = begin + picture_px;
    Covered covered;
    covered.first = begin / frame_px;
    covered.last = (end - 1) / frame_px;
    covered.first_units = static_cast<std::uint64_t>(std::min((covered.first + 1) * frame_px, end) - begin);
    if (covered.last != covered.first) {
        covered.last_units = static_cast<std::uint64_t>(end - covered.last * frame_px);
    }
    return covered;
}

// Adds up what each pixel of a row of the frame covers of one row of the picture, channel by channel.
void add_up_columns(const unsigned char* row, const std::vector<Covered>& columns, A_long frame_px,
                    std::uint64_t* sums) {
    const auto whole_units = static_cast<std::uint64_t>(frame_px);
    for (const Covered& column : columns) {
        const unsigned char* const first = row + static_cast<std::size_t>(column.first) * kChannels;
        const unsigned char* const last = row + static_cast<std::size_t>(column.last) * kChannels;
        std::uint64_t whole[kChannels] = {};
        for (const unsigned char* pixel = first + kChannels; pixel < last; pixel += kChannels) {
            for (std::size_t channel = 0; channel < kChannels; ++channel) {
                whole[channel] += pixel[channel];
            }
        }
        for (std::size_t channel = 0; channel < kChannels; ++channel) {
            *sums++ = column.first_units * first[channel] + whole_units * whole[channel] +
                      column.last_units * last[channel];
        }
    }
}

// Divides by one number, rounding to the nearest. The quotient is a byte, so an estimate in floating point is
// off by less than one; the factor makes it never too large, and the remainder shows when it is too small.
class Average {
  public:
    explicit Average(std::uint64_t area)
        : area_(area), estimate_((1.0 - 1.0 / (std::uint64_t{1} << 40U)) / static_cast<double>(area)) {}

    [[nodiscard]] unsigned char of(std::uint64_t sum) const {
        const std::uint64_t rounded = sum + area_ / 2;
        const auto quotient =
            static_cast<std::uint64_t>(static_cast<double>(static_cast<std::int64_t>(rounded)) * estimate_);
        return static_cast<unsigned char>(quotient + (rounded - quotient * area_ >= area_ ? 1 : 0));
    }

  private:
    std::uint64_t area_;
    double estimate_;
};

unsigned char* frame_pixel(const PF_LayerDef& frame, A_long x, A_long y) {
    const std::int64_t offset =
        std::int64_t{y} * frame.row_bytes + std::int64_t{x} * static_cast<std::int64_t>(kChannels);
    auto* const bytes = reinterpret_cast<unsigned char*>(frame.data);
    return bytes + offset;
}

const unsigned char* picture_row(const PictureRows& rows, std::int64_t y) {
    return reinterpret_cast<const unsigned char*>(rows.pixels + static_cast<std::size_t>(y) * rows.row_px);
}

}  // namespace

A_long picture_end(A_long end, A_long frame_px, A_long picture_px) {
    return static_cast<A_long>((std::int64_t{end} * picture_px + frame_px - 1) / frame_px);
}

void reduce_picture(const PictureRows& rows, const A_LRect& region, const PF_LayerDef& frame) {
    const auto width = static_cast<std::size_t>(region.right - region.left);
    std::vector<Covered> columns(width);
    for (std::size_t x = 0; x < width; ++x) {
        columns[x] = covered_by(region.left + static_cast<A_long>(x), frame.width, rows.picture.width_px);
    }
    const Average average(static_cast<std::uint64_t>(rows.picture.width_px) *
                          static_cast<std::uint64_t>(rows.picture.height_px));
    std::vector<std::uint64_t> row_sums(width * kChannels);
    std::vector<std::uint64_t> sums(width * kChannels);
    std::int64_t added_up = -1;  // the row of the picture that row_sums holds; two rows may share it
    for (A_long y = region.top; y < region.bottom; ++y) {
        std::fill(sums.begin(), sums.end(), 0);
        const Covered covered = covered_by(y, frame.height, rows.picture.height_px);
        for (std::int64_t row = covered.first; row <= covered.last; ++row) {
            if (row != added_up) {
                add_up_columns(picture_row(rows, row), columns, frame.width, row_sums.data());
                added_up = row;
            }
            const std::uint64_t units = row == covered.first  ? covered.first_units
                                        : row == covered.last ? covered.last_units
                                                              : static_cast<std::uint64_t>(frame.height);
            for (std::size_t i = 0; i < sums.size(); ++i) {
                sums[i] += units * row_sums[i];
            }
        }
        std::transform(sums.begin(), sums.end(), frame_pixel(frame, region.left, y),
                       [&average](std::uint64_t sum) { return average.of(sum); });
    }
}

void copy_picture(const PictureRows& rows, const A_LRect& region, const PF_LayerDef& frame) {
    const std::size_t row_bytes = static_cast<std::size_t>(region.right - region.left) * kChannels;
    for (A_long y = region.top; y < region.bottom; ++y) {
        std::memcpy(frame_pixel(frame, region.left, y),
                    picture_row(rows, y) + static_cast<std::size_t>(region.left) * kChannels, row_bytes);
    }
}

}  // namespace bridge
