#include "texture/txl/example_txl_image.h"

#include <algorithm>
#include <iterator>

#include "texture/kernel/expand_to_16_bits.h"

namespace {

constexpr std::int32_t kGrey = 2;
constexpr std::int32_t kRgb = 4;
constexpr std::int32_t kBitmapDepth = 24;

// Which of `count` pixels starting at column `x` lie in a picture of that width: [begin, end), relative to
// `x`.
struct Inside {
    std::int32_t begin;
    std::int32_t end;
};

Inside inside_of(std::int32_t width, std::int32_t x, std::int32_t count) {
    const std::int64_t most = std::max(count, 0);
    const std::int64_t begin = std::clamp<std::int64_t>(-std::int64_t{x}, 0, most);
    const std::int64_t end = std::clamp<std::int64_t>(std::int64_t{width} - x, begin, most);
    return {static_cast<std::int32_t>(begin), static_cast<std::int32_t>(end)};
}

std::uint16_t scaled(unsigned char value) {
    return static_cast<std::uint16_t>(value * 256);
}

unsigned char low_byte(std::uint16_t value) {
    return static_cast<unsigned char>(value & 0xFF);
}

// Stores a row of colour or alpha. `last` is true for the bottom row, which has no next row to prefetch.
void store_row(const BaseBitmap& bitmap, std::int64_t channels, ExpandInto to, const unsigned char* data,
               std::int64_t count, std::uint16_t* place, bool last) {
    const std::int64_t row_values = channels * bitmap.width();
    const std::int64_t picture_bytes = row_values * bitmap.height() * std::int64_t{sizeof(std::uint16_t)};
    if (picture_bytes >= kStreamedPictureBytes) {
        stream_to_16_bits(to, data, count, place);
    } else {
        expand_to_16_bits(to, data, count, place, last ? place : place + row_values);
    }
}

void store_pixels(const unsigned char* data, std::int32_t stride, bool grey, std::int32_t count,
                  std::uint16_t* row) {
    for (std::int64_t i = 0; i < count; ++i) {
        const unsigned char* const pixel = data + i * stride;
        row[3 * i] = scaled(pixel[0]);
        row[3 * i + 1] = scaled(pixel[grey ? 0 : 1]);
        row[3 * i + 2] = scaled(pixel[grey ? 0 : 2]);
    }
}

// Writes the low bytes of `values` values per pixel: from `row` for pixels inside its `width`, zeros for all
// others and when there is no row. Returns the result for the last pixel, 0 inside and 1 outside; `none` when
// there are no pixels.
std::int32_t take_low_bytes(const std::uint16_t* row, std::int32_t width, std::int32_t x, std::int32_t count,
                            std::int32_t values, std::int32_t none, unsigned char* data) {
    if (count < 1) {
        return none;
    }
    const Inside inside = row == nullptr ? Inside{0, 0} : inside_of(width, x, count);
    const std::int64_t begin = std::int64_t{inside.begin} * values;
    const std::int64_t end = std::int64_t{inside.end} * values;
    std::fill(data, data + begin, static_cast<unsigned char>(0));
    if (begin < end) {
        std::transform(row + std::int64_t{x} * values + begin, row + std::int64_t{x} * values + end,
                       data + begin, low_byte);
    }
    std::fill(data + end, data + std::int64_t{count} * values, static_cast<unsigned char>(0));
    return begin < end && inside.end == count ? 0 : 1;
}

}  // namespace

bool ExampleTXLImage::Init(std::int32_t w, std::int32_t h, std::int32_t colorMode) {
    color_mode_ = colorMode;
    return bitmap_ == nullptr || bitmap_->Init(w, h, kBitmapDepth) == 0;
}

bool ExampleTXLImage::InitAlphaChannel(std::int32_t /*channel*/, std::int32_t /*w*/, std::int32_t /*h*/) {
    if (bitmap_ == nullptr) {
        return false;
    }
    alpha_channel_ = bitmap_->AddChannel(0, 0);
    return alpha_channel_ > 0;
}

bool ExampleTXLImage::SetPixelCount(std::int32_t x, std::int32_t y, std::int32_t count, unsigned char* data,
                                    std::int32_t stride) {
    const bool storable = color_mode_ == kGrey || color_mode_ == kRgb;
    if (bitmap_ == nullptr || !storable) {
        return true;
    }
    std::uint16_t* const row = bitmap_->PixelRow(y);
    const Inside inside = inside_of(bitmap_->width(), x, count);
    if (row == nullptr || inside.begin == inside.end) {
        return true;
    }
    const unsigned char* const first = std::next(data, std::int64_t{inside.begin} * stride);
    std::uint16_t* const place = row + 3 * (std::int64_t{x} + inside.begin);
    const std::int32_t inside_count = inside.end - inside.begin;
    if (color_mode_ == kRgb && stride == 3) {
        store_row(*bitmap_, 3, ExpandInto::high_byte, first, 3 * std::int64_t{inside_count}, place,
                  y + 1 == bitmap_->height());
    } else {
        store_pixels(first, stride, color_mode_ == kGrey, inside_count, place);
    }
    return true;
}

bool ExampleTXLImage::SetAlphaPixel(std::int32_t /*channel*/, std::int32_t x, std::int32_t y,
                                    std::int32_t count, unsigned char* data) {
    if (bitmap_ == nullptr || alpha_channel_ < 1) {
        return false;
    }
    std::uint16_t* const row = bitmap_->AlphaRow(alpha_channel_, y);
    const Inside inside = inside_of(bitmap_->width(), x, count);
    if (row == nullptr || inside.begin == inside.end) {
        return true;
    }
    std::uint16_t* const place = row + std::int64_t{x} + inside.begin;
    store_row(*bitmap_, 1, ExpandInto::low_byte, data + inside.begin, inside.end - inside.begin, place,
              y + 1 == bitmap_->height());
    return true;
}

std::int32_t ExampleTXLImage::GetBw() {
    return bitmap_ == nullptr ? 0 : bitmap_->width();
}

std::int32_t ExampleTXLImage::GetBh() {
    return bitmap_ == nullptr ? 0 : bitmap_->height();
}

std::int32_t ExampleTXLImage::GetColorMode() {
    return bitmap_ == nullptr ? 0 : kRgb;
}

std::int32_t ExampleTXLImage::GetPixelCount(std::int32_t x, std::int32_t y, std::int32_t count,
                                            unsigned char* data) {
    if (bitmap_ == nullptr) {
        return 0;
    }
    return take_low_bytes(bitmap_->PixelRow(y), bitmap_->width(), x, count, 3, 1, data);
}

std::int32_t ExampleTXLImage::GetAlphaCount() {
    return bitmap_ == nullptr ? 0 : bitmap_->GetChannelCount();
}

std::int32_t ExampleTXLImage::GetAlphaPixel(std::int32_t channel, std::int32_t x, std::int32_t y,
                                            std::int32_t count, unsigned char* data) {
    if (bitmap_ == nullptr) {
        return 0;
    }
    const std::int32_t number = bitmap_->GetChannelNum(channel);
    return take_low_bytes(bitmap_->AlphaRow(number, y), bitmap_->width(), x, count, 1, number, data);
}
