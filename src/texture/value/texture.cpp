#include "texture/value/texture.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

PixelBuffer::PixelBuffer(std::size_t size) {
    if (size == 0) {
        return;
    }
    if (size > static_cast<std::size_t>(std::numeric_limits<std::int64_t>::max())) {
        throw std::bad_alloc();
    }
    bytes_.reset(static_cast<unsigned char*>(allocate_zeroed(static_cast<std::int64_t>(size))));
    if (bytes_ == nullptr) {
        throw std::bad_alloc();
    }
    size_ = size;
}

PixelBuffer::PixelBuffer(const PixelBuffer& other) : PixelBuffer(other.size_) {
    std::copy(other.begin(), other.end(), begin());
}

PixelBuffer::PixelBuffer(PixelBuffer&& other) noexcept
    : bytes_(std::move(other.bytes_)), size_(std::exchange(other.size_, 0)) {}

PixelBuffer& PixelBuffer::operator=(const PixelBuffer& other) {
    if (this != &other) {
        *this = PixelBuffer(other);
    }
    return *this;
}

PixelBuffer& PixelBuffer::operator=(PixelBuffer&& other) noexcept {
    bytes_ = std::move(other.bytes_);
    size_ = std::exchange(other.size_, 0);
    return *this;
}

bool operator==(const PixelBuffer& a, const PixelBuffer& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

std::string no_pixels_text(std::int64_t width_px, std::int64_t height_px) {
    return "the picture has no pixels: its size is " + std::to_string(width_px) + " x " +
           std::to_string(height_px);
}
