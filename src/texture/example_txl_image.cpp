#include "texture/example_txl_image.h"

#include <algorithm>
#include <limits>

namespace {

constexpr std::int32_t kGrey = 2;
constexpr std::int32_t kRgb = 4;
constexpr std::int32_t kBitmapDepth = 24;

// The column `offset` pixels right of `x`. Columns past the end of 32 bits are held at it: no picture is that
// wide, so they stay outside.
std::int32_t Column(std::int32_t x, std::int32_t offset) {
    const std::int64_t column = std::int64_t{x} + offset;
    return static_cast<std::int32_t>(
        std::min<std::int64_t>(column, std::numeric_limits<std::int32_t>::max()));
}

std::uint16_t Scaled(unsigned char value) {
    return static_cast<std::uint16_t>(value * 256);
}

unsigned char LowByte(std::uint16_t value) {
    return static_cast<unsigned char>(value & 0xFF);
}

}  // namespace

bool ExampleTXLImage::Init(std::int32_t w, std::int32_t h, std::int32_t colorMode) {
    color_mode_ = colorMode;
    return bitmap_ == nullptr || bitmap_->Init(w, h, kBitmapDepth) == 0;
}

bool ExampleTXLImage::InitAlphaChannel(std::int32_t /*channel*/, std::int32_t /*w*/, std::int32_t /*h*/) {
    if (bitmap_ == nullptr)
        return false;
    alpha_channel_ = bitmap_->AddChannel(0, 0);
    return alpha_channel_ > 0;
}

bool ExampleTXLImage::SetPixelCount(std::int32_t x, std::int32_t y, std::int32_t count, unsigned char* data,
                                    std::int32_t stride) {
    const bool storable = color_mode_ == kGrey || color_mode_ == kRgb;
    if (bitmap_ == nullptr || !storable)
        return true;
    for (std::int32_t i = 0; i < count; ++i) {
        const unsigned char* pixel = data + std::int64_t{i} * stride;
        const std::uint16_t r = Scaled(pixel[0]);
        const std::uint16_t g = color_mode_ == kRgb ? Scaled(pixel[1]) : r;
        const std::uint16_t b = color_mode_ == kRgb ? Scaled(pixel[2]) : r;
        bitmap_->SetPixel(Column(x, i), y, r, g, b);
    }
    return true;
}

bool ExampleTXLImage::SetAlphaPixel(std::int32_t /*channel*/, std::int32_t x, std::int32_t y,
                                    std::int32_t count, unsigned char* data) {
    if (bitmap_ == nullptr || alpha_channel_ < 1)
        return false;
    for (std::int32_t i = 0; i < count; ++i)
        bitmap_->SetAlphaPixel(alpha_channel_, Column(x, i), y, data[i]);
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
    if (bitmap_ == nullptr)
        return 0;
    std::int32_t result = 1;
    for (std::int32_t i = 0; i < count; ++i) {
        std::uint16_t r = 0;
        std::uint16_t g = 0;
        std::uint16_t b = 0;
        result = bitmap_->GetPixel(Column(x, i), y, &r, &g, &b);
        unsigned char* pixel = data + std::int64_t{i} * 3;
        pixel[0] = LowByte(r);
        pixel[1] = LowByte(g);
        pixel[2] = LowByte(b);
    }
    return result;
}

std::int32_t ExampleTXLImage::GetAlphaCount() {
    return bitmap_ == nullptr ? 0 : bitmap_->GetChannelCount();
}

std::int32_t ExampleTXLImage::GetAlphaPixel(std::int32_t channel, std::int32_t x, std::int32_t y,
                                            std::int32_t count, unsigned char* data) {
    if (bitmap_ == nullptr)
        return 0;
    const std::int32_t number = bitmap_->GetChannelNum(channel);
    std::int32_t result = number;
    for (std::int32_t i = 0; i < count; ++i) {
        std::uint16_t alpha = 0;
        result = bitmap_->GetAlphaPixel(number, Column(x, i), y, &alpha);
        data[i] = LowByte(alpha);
    }
    return result;
}
