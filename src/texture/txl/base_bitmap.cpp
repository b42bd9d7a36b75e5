#include "texture/txl/base_bitmap.h"

#include <algorithm>

#include "limit/limits.h"

namespace {

constexpr std::int32_t kDone = 0;
constexpr std::int32_t kOutOfRange = 1;
constexpr std::int32_t kOutOfMemory = 2;

constexpr std::int32_t kNoNewChannel = 0;
constexpr std::int32_t kAlphaChannel = 1;
constexpr std::int64_t kColourValues = 3;
constexpr std::int64_t kBytesPerValue = sizeof(std::uint16_t);

}  // namespace

BaseBitmap::Array BaseBitmap::AllocateArray(std::int64_t count) {
    // At least one value: null means failure here, and the C library may return null for an empty request.
    const std::int64_t size_bytes = std::max<std::int64_t>(count, 1) * kBytesPerValue;
    return Array(static_cast<std::uint16_t*>(allocate_zeroed(size_bytes)));
}

std::int32_t BaseBitmap::Init(std::int32_t w, std::int32_t h, std::int32_t depth) {
    Destroy();
    if (w < 0 || h < 0 || depth < 0) {
        return kOutOfMemory;
    }
    const std::int64_t pixel_count = std::int64_t{w} * h;
    if (pixel_count > limits::kTexturePixels.value) {
        return kOutOfMemory;
    }
    // At most 2^30 * 2^31 / 8, which fits 64 bits easily.
    const std::int64_t value_count = std::max(pixel_count * depth / 8, pixel_count * kColourValues);
    pixels_ = AllocateArray(value_count);
    if (pixels_ == nullptr) {
        return kOutOfMemory;
    }
    w_ = w;
    h_ = h;
    depth_ = depth;
    return kDone;
}

std::int64_t BaseBitmap::PixelIndex(std::int32_t x, std::int32_t y) const {
    if (x < 0 || y < 0 || x >= w_ || y >= h_) {
        return -1;
    }
    return x + std::int64_t{y} * w_;
}

std::int32_t BaseBitmap::GetPixel(std::int32_t x, std::int32_t y, std::uint16_t* r, std::uint16_t* g,
                                  std::uint16_t* b) const {
    const std::int64_t index = PixelIndex(x, y);
    if (index < 0) {
        return kOutOfRange;
    }
    const std::uint16_t* pixel = pixels_.get() + kColourValues * index;
    *r = pixel[0];
    *g = pixel[1];
    *b = pixel[2];
    return kDone;
}

std::int32_t BaseBitmap::SetPixel(std::int32_t x, std::int32_t y, std::uint16_t r, std::uint16_t g,
                                  std::uint16_t b) {
    const std::int64_t index = PixelIndex(x, y);
    if (index < 0) {
        return kOutOfRange;
    }
    std::uint16_t* pixel = pixels_.get() + kColourValues * index;
    pixel[0] = r;
    pixel[1] = g;
    pixel[2] = b;
    return kDone;
}

const std::uint16_t* BaseBitmap::PixelRow(std::int32_t y) const {
    return y < 0 || y >= h_ ? nullptr : pixels_.get() + kColourValues * w_ * y;
}

std::uint16_t* BaseBitmap::PixelRow(std::int32_t y) {
    return y < 0 || y >= h_ ? nullptr : pixels_.get() + kColourValues * w_ * y;
}

std::int32_t BaseBitmap::AddChannel(std::int32_t /*unused*/, int /*unused*/) {
    if (alpha_ != nullptr) {
        return kNoNewChannel;
    }
    alpha_ = AllocateArray(std::int64_t{w_} * h_);
    if (alpha_ == nullptr) {
        return kOutOfMemory;
    }
    channel_count_ = 1;
    return kAlphaChannel;
}

std::int64_t BaseBitmap::AlphaIndex(std::int32_t channel, std::int32_t x, std::int32_t y) const {
    // Channel 1 is refused as well while it does not exist: a second `Init` removes it, and a writer may
    // still hold its number.
    if (channel != kAlphaChannel || alpha_ == nullptr) {
        return -1;
    }
    return PixelIndex(x, y);
}

std::int32_t BaseBitmap::GetAlphaPixel(std::int32_t channel, std::int32_t x, std::int32_t y,
                                       std::uint16_t* a) const {
    const std::int64_t index = AlphaIndex(channel, x, y);
    if (index < 0) {
        return kOutOfRange;
    }
    *a = alpha_.get()[index];
    return kDone;
}

std::int32_t BaseBitmap::SetAlphaPixel(std::int32_t channel, std::int32_t x, std::int32_t y,
                                       std::uint16_t a) {
    const std::int64_t index = AlphaIndex(channel, x, y);
    if (index < 0) {
        return kOutOfRange;
    }
    alpha_.get()[index] = a;
    return kDone;
}

const std::uint16_t* BaseBitmap::AlphaRow(std::int32_t channel, std::int32_t y) const {
    return channel != kAlphaChannel || alpha_ == nullptr || y < 0 || y >= h_
               ? nullptr
               : alpha_.get() + std::int64_t{w_} * y;
}

std::uint16_t* BaseBitmap::AlphaRow(std::int32_t channel, std::int32_t y) {
    return channel != kAlphaChannel || alpha_ == nullptr || y < 0 || y >= h_
               ? nullptr
               : alpha_.get() + std::int64_t{w_} * y;
}

void BaseBitmap::Destroy() {
    pixels_.reset();
    alpha_.reset();
    w_ = 0;
    h_ = 0;
    depth_ = 0;
    channel_count_ = 0;
}
