#pragma once

#include "texture/txl/base_bitmap.h"
#include "texture/txl/txl_image.h"

/// Lets the texture filter fill, and read, a `BaseBitmap`. The bitmap is not owned, outlives the adapter, and
/// may be null.
///
/// Deliberately asymmetric: a colour byte is stored times 256 (255 becomes 65280, not 65535) and what is read
/// back is the low byte of the stored value, so colour that was set here reads back as 0. Alpha is stored as
/// the byte that it is and reads back unchanged. The input module takes the high byte of a colour straight
/// from the bitmap.
class ExampleTXLImage final : public TXLImage {
  public:
    explicit ExampleTXLImage(BaseBitmap* bitmap) : bitmap_(bitmap) {}

    /// Without a bitmap true, else whether `BaseBitmap::Init(w, h, 24)` was done.
    bool Init(std::int32_t w, std::int32_t h, std::int32_t colorMode) override;

    /// Ignores its arguments and adds the bitmap's one alpha channel: true if the result of `AddChannel` is
    /// positive, so false for a second one. Deliberately "out of memory" (2) is positive as well; the values
    /// of such a channel are refused by the bitmap one by one. Without a bitmap false.
    bool InitAlphaChannel(std::int32_t channel, std::int32_t w, std::int32_t h) override;

    /// Stores grey (mode 2) or RGB (mode 4) bytes, nothing in other modes; what lies outside the picture is
    /// dropped. Always true.
    bool SetPixelCount(std::int32_t x, std::int32_t y, std::int32_t count, unsigned char* data,
                       std::int32_t stride) override;

    /// Stores alpha bytes in the channel that `InitAlphaChannel` added; `channel` is ignored. False without a
    /// bitmap or such a channel, else true; what lies outside the picture is dropped.
    bool SetAlphaPixel(std::int32_t channel, std::int32_t x, std::int32_t y, std::int32_t count,
                       unsigned char* data) override;

    std::int32_t GetBw() override;
    std::int32_t GetBh() override;

    /// 4 with a bitmap, else 0, whatever `Init` was told.
    std::int32_t GetColorMode() override;

    /// Three bytes a pixel, 0 outside the picture. Without a bitmap 0, for a count below 1 it is 1, else the
    /// result of the last `BaseBitmap::GetPixel` (0 inside, 1 outside the picture).
    std::int32_t GetPixelCount(std::int32_t x, std::int32_t y, std::int32_t count,
                               unsigned char* data) override;

    std::int32_t GetAlphaCount() override;

    /// One byte a pixel of the alpha channel at index `channel`, 0 outside the picture. Without a bitmap 0,
    /// for a count below 1 the number of that channel, else the result of the last
    /// `BaseBitmap::GetAlphaPixel`.
    std::int32_t GetAlphaPixel(std::int32_t channel, std::int32_t x, std::int32_t y, std::int32_t count,
                               unsigned char* data) override;

  private:
    BaseBitmap* bitmap_;
    std::int32_t color_mode_ = 0;
    std::int32_t alpha_channel_ = 0;
};
