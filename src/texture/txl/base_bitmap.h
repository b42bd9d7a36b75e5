#pragma once

#include <cstdint>
#include <memory>

#include "texture/file/memory.h"

/// The flattened picture of a texture in memory: three unsigned 16-bit colour values per pixel and at most
/// one unsigned 16-bit alpha channel, both row-major from the top left. Owns its arrays. Operations return 0
/// for done, 1 for out of range and 2 for out of memory. A refused operation leaves the bitmap unchanged,
/// except that a failed `Init` leaves it empty.
///
/// New arrays are all zeros, but their pages are not touched: a file header that claims a large picture costs
/// nothing until rows arrive.
class BaseBitmap {
  public:
    /// Empty: all numbers 0, no arrays.
    BaseBitmap() = default;
    BaseBitmap(const BaseBitmap&) = delete;
    BaseBitmap& operator=(const BaseBitmap&) = delete;
    ~BaseBitmap() = default;

    /// Drops the old picture, including its alpha, and becomes a picture of `w` by `h` pixels with `depth`
    /// bits per pixel. Allocates w * h * depth / 8 values, but at least the three per pixel that `SetPixel`
    /// addresses. Returns 0 or 2; 2 also for negative arguments and for more pixels than
    /// limits::kTexturePixels.
    [[nodiscard]] std::int32_t Init(std::int32_t w, std::int32_t h, std::int32_t depth);

    /// Reads or stores one pixel. Returns 0, or 1 outside the picture, where nothing is changed.
    std::int32_t GetPixel(std::int32_t x, std::int32_t y, std::uint16_t* r, std::uint16_t* g,
                          std::uint16_t* b) const;
    std::int32_t SetPixel(std::int32_t x, std::int32_t y, std::uint16_t r, std::uint16_t g, std::uint16_t b);

    /// The values of row `y`, three per pixel, width() pixels; null outside the picture. For whole rows: one
    /// bounds check per row instead of one per pixel.
    [[nodiscard]] std::uint16_t* PixelRow(std::int32_t y);
    [[nodiscard]] const std::uint16_t* PixelRow(std::int32_t y) const;

    /// Adds the alpha channel; both arguments are ignored. Returns the number of the new channel, which is 1;
    /// 0 when a channel exists, which is kept; 2 when memory is short.
    [[nodiscard]] std::int32_t AddChannel(std::int32_t, int);

    [[nodiscard]] std::int32_t GetChannelCount() const { return channel_count_; }

    /// The number of the channel at `index`: for index 0 the channel count, which is 1 when the channel
    /// exists; for any other index 0.
    [[nodiscard]] std::int32_t GetChannelNum(std::int32_t index) const {
        return index == 0 ? channel_count_ : 0;
    }

    /// Reads or stores one alpha value. Returns 0, or 1 outside the picture, for any channel other than 1 and
    /// without an alpha channel; nothing is changed then.
    std::int32_t GetAlphaPixel(std::int32_t channel, std::int32_t x, std::int32_t y, std::uint16_t* a) const;
    std::int32_t SetAlphaPixel(std::int32_t channel, std::int32_t x, std::int32_t y, std::uint16_t a);

    /// The width() values of row `y` of a channel; null where the two operations above return 1.
    [[nodiscard]] std::uint16_t* AlphaRow(std::int32_t channel, std::int32_t y);
    [[nodiscard]] const std::uint16_t* AlphaRow(std::int32_t channel, std::int32_t y) const;

    /// Frees the arrays and becomes empty.
    void Destroy();

    /// In pixels.
    [[nodiscard]] std::int32_t width() const { return w_; }
    [[nodiscard]] std::int32_t height() const { return h_; }

    /// Bits per pixel, as given to `Init`.
    [[nodiscard]] std::int32_t depth() const { return depth_; }

  private:
    // The arrays behave as if made by array-new, but come from allocate_zeroed: it returns fresh pages that
    // are zero without being written, while a value-initialising new would write them all.
    using Array = std::unique_ptr<std::uint16_t[], MemRelease>;

    // Null when memory is short.
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
