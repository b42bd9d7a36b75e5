#pragma once

#include <cstdint>
#include <memory>

#include "texture/file/memory.h"

/// The flattened picture of a texture in memory: three unsigned 16-bit colour values a pixel and at most one
/// unsigned 16-bit alpha channel, both row-major from the top left. Owns its arrays. Results are the system's
/// own: 0 for done, 1 for out of range, 2 for out of memory. What is refused leaves the bitmap as it was,
/// except that a failed `Init` leaves it empty.
///
/// Arrays are zero when they begin, without their pages having been touched: a file header that claims a
/// large picture costs nothing until rows arrive.
class BaseBitmap {
  public:
    /// Empty: all numbers 0, no arrays.
    BaseBitmap() = default;
    BaseBitmap(const BaseBitmap&) = delete;
    BaseBitmap& operator=(const BaseBitmap&) = delete;
    ~BaseBitmap() = default;

    /// Drops what was there, alpha included, and becomes a picture of `w` by `h` pixels with `depth` bits a
    /// pixel. The pixels take w * h * depth / 8 values, but never less than the three a pixel that `SetPixel`
    /// addresses. 0 or 2; 2 also for negative arguments and more pixels than limits::kTexturePixels.
    [[nodiscard]] std::int32_t Init(std::int32_t w, std::int32_t h, std::int32_t depth);

    /// 0, or 1 outside the picture with the outputs left alone.
    std::int32_t GetPixel(std::int32_t x, std::int32_t y, std::uint16_t* r, std::uint16_t* g,
                          std::uint16_t* b) const;
    std::int32_t SetPixel(std::int32_t x, std::int32_t y, std::uint16_t r, std::uint16_t g, std::uint16_t b);

    /// The values of row `y`, three a pixel, width() pixels; null outside the picture. For those who bring or
    /// take whole rows: one test of the bounds instead of one a pixel.
    [[nodiscard]] std::uint16_t* PixelRow(std::int32_t y);
    [[nodiscard]] const std::uint16_t* PixelRow(std::int32_t y) const;

    /// Adds the alpha channel; both arguments are ignored. Returns the number of the new channel, which is 1;
    /// 0 when there is one already, which is kept; 2 when memory is out.
    [[nodiscard]] std::int32_t AddChannel(std::int32_t, int);

    [[nodiscard]] std::int32_t GetChannelCount() const { return channel_count_; }

    /// The number of the channel at `index`: for index 0 the channel count, which is 1 when the channel
    /// exists; else 0.
    [[nodiscard]] std::int32_t GetChannelNum(std::int32_t index) const {
        return index == 0 ? channel_count_ : 0;
    }

    /// 0, or 1 outside the picture, for any channel but 1, and when there is no alpha channel; outputs are
    /// then left alone.
    std::int32_t GetAlphaPixel(std::int32_t channel, std::int32_t x, std::int32_t y, std::uint16_t* a) const;
    std::int32_t SetAlphaPixel(std::int32_t channel, std::int32_t x, std::int32_t y, std::uint16_t a);

    /// The values of row `y` of a channel, width() of them; null where the two operations above give 1.
    [[nodiscard]] std::uint16_t* AlphaRow(std::int32_t channel, std::int32_t y);
    [[nodiscard]] const std::uint16_t* AlphaRow(std::int32_t channel, std::int32_t y) const;

    /// Frees the arrays and becomes empty.
    void Destroy();

    /// Pixels.
    [[nodiscard]] std::int32_t width() const { return w_; }
    [[nodiscard]] std::int32_t height() const { return h_; }

    /// Bits a pixel as given to `Init`.
    [[nodiscard]] std::int32_t depth() const { return depth_; }

  private:
    // Arrays behave as if array-new and array-delete made them, but come from the plain memory pair: only a
    // cleared allocation hands out fresh pages that are zero without being written, where a
    // value-initialising new writes them all.
    using Array = std::unique_ptr<std::uint16_t[], MemRelease>;

    // Null when memory is out.
    static Array AllocateArray(std::int64_t count);

    // Index of pixel (x, y), or -1 outside the picture.
    [[nodiscard]] std::int64_t PixelIndex(std::int32_t x, std::int32_t y) const;
    [[nodiscard]] std::int64_t AlphaIndex(std::int32_t channel, std::int32_t x, std::int32_t y) const;

    std::int32_t w_ = 0;
    std::int32_t h_ = 0;
    std::int32_t depth_ = 0;
    std::int32_t channel_count_ = 0;
    Array pixels_;
    Array alpha_;
};
