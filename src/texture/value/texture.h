#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "texture/file/memory.h"

/// A fixed number of bytes with value semantics: copies are deep, equality compares bytes. A new buffer is
/// all zeros, but its pages are not touched until they are used, so a large picture that a file merely claims
/// costs nothing.
class PixelBuffer {
  public:
    PixelBuffer() = default;
    /// `size` zeros. Throws std::bad_alloc when memory is short.
    explicit PixelBuffer(std::size_t size);
    PixelBuffer(const PixelBuffer& other);
    PixelBuffer(PixelBuffer&& other) noexcept;
    PixelBuffer& operator=(const PixelBuffer& other);
    PixelBuffer& operator=(PixelBuffer&& other) noexcept;
    ~PixelBuffer() = default;

    [[nodiscard]] std::size_t size() const { return size_; }
    [[nodiscard]] bool empty() const { return size_ == 0; }
    [[nodiscard]] std::uint8_t* data() { return bytes_.get(); }
    [[nodiscard]] const std::uint8_t* data() const { return bytes_.get(); }
    [[nodiscard]] std::uint8_t* begin() { return data(); }
    [[nodiscard]] std::uint8_t* end() { return data() + size_; }
    [[nodiscard]] const std::uint8_t* begin() const { return data(); }
    [[nodiscard]] const std::uint8_t* end() const { return data() + size_; }
    [[nodiscard]] std::uint8_t& operator[](std::size_t i) { return data()[i]; }
    [[nodiscard]] const std::uint8_t& operator[](std::size_t i) const { return data()[i]; }

    friend bool operator==(const PixelBuffer& a, const PixelBuffer& b);

  private:
    MemBlock bytes_;
    std::size_t size_ = 0;
};

/// One alpha channel: one value per pixel, rows top to bottom, no padding; 0 is transparent.
struct AlphaChannel {
    std::string name;  // UTF-8
    PixelBuffer values;

    friend bool operator==(const AlphaChannel&, const AlphaChannel&) = default;
};

/// A layered texture as a plain value: 8-bit colour and any number of alpha channels, exactly as stored.
/// Neither reading nor writing multiplies or divides colour by alpha.
struct Texture {
    static constexpr std::int32_t kGrey = 2;  // one byte per pixel
    static constexpr std::int32_t kRgb = 4;   // three bytes per pixel: R, G, B

    std::int32_t width_px = 0;
    std::int32_t height_px = 0;
    std::int32_t mode = kRgb;
    PixelBuffer pixels;  // height * width * channels(), rows top to bottom, channels interleaved, no padding
    std::vector<AlphaChannel> alphas;  // height * width values each

    /// Bytes per pixel in `pixels`.
    [[nodiscard]] std::int32_t channels() const { return mode == kGrey ? 1 : 3; }
    [[nodiscard]] std::size_t pixel_count() const {
        return static_cast<std::size_t>(width_px) * static_cast<std::size_t>(height_px);
    }

    friend bool operator==(const Texture&, const Texture&) = default;
};

/// Why a picture without pixels is refused, in the one wording of all tools: "the picture has no pixels: its
/// size is 0 x 64".
[[nodiscard]] std::string no_pixels_text(std::int64_t width_px, std::int64_t height_px);
