#pragma once

#include "texture/txl/base_bitmap.h"
#include "texture/txl/txl_image.h"

/// Lets the texture filter fill and read a `BaseBitmap`. The bitmap is not owned, outlives the adapter, and
/// may be null.
///
/// Deliberately asymmetric, because the input module relies on it: a colour byte is stored times 256 (255
/// becomes 65280, not 65535), but reading returns the low byte of the stored value, so colour that was set
/// here reads back as 0. Alpha bytes are stored and read back unchanged. The input module takes the high byte
/// of a colour directly from the bitmap.
class ExampleTXLImage final : public TXLImage {
  public:
    explicit ExampleTXLImage(BaseBitmap* bitmap) : bitmap_(bitmap) {}

    /// True without a bitmap; otherwise whether `BaseBitmap::Init(w, h, 24)` succeeded.
    bool Init(std::int32_t w, std::int32_t h, std::int32_t colorMode) override;

    /// Ignores its arguments and adds the bitmap's one alpha channel. True if the result of `AddChannel` is
    /// positive, so false for a second channel and without a bitmap. Deliberately, "out of memory" (2) counts
    /// as positive too, so that the load goes on; the bitmap then refuses the channel's values one by one.
    bool InitAlphaChannel(std::int32_t channel, std::int32_t w, std::int32_t h) override;

    /// Stores grey (mode 2) or RGB (mode 4) bytes and nothing in other modes. Pixels outside the picture are
    /// dropped. Always true.
    bool SetPixelCount(std::int32_t x, std::int32_t y, std::int32_t count, unsigned char* data,
                       std::int32_t stride) override;

    /// Stores alpha bytes in the channel that `InitAlphaChannel` added; `channel` is ignored. False without a
    /// bitmap or such a channel. Values outside the picture are dropped.
    bool SetAlphaPixel(std::int32_t channel, std::int32_t x, std::int32_t y, std::int32_t count,
                       unsigned char* data) override;

    std::int32_t GetBw() override;
    std::int32_t GetBh() override;

    /// 4 with a bitmap and 0 without one, regardless of the mode given to `Init`.
    std::int32_t GetColorMode() override;

    /// Writes three bytes per pixel, 0 outside the picture. Returns 0 without a bitmap, 1 for a count below
    /// 1, otherwise the result of the last `BaseBitmap::GetPixel` (0 inside the picture, 1 outside).
    std::int32_t GetPixelCount(std::int32_t x, std::int32_t y, std::int32_t count,
                               unsigned char* data) override;

    std::int32_t GetAlphaCount() override;

    /// Writes one byte per pixel of the alpha channel at index `channel`, 0 outside the picture. Returns 0
    /// without a bitmap, the number of that channel for a count below 1, otherwise the result of the last
    /// `BaseBitmap::GetAlphaPixel`.
    std::int32_t GetAlphaPixel(std::int32_t channel, std::int32_t x, std::int32_t y, std::int32_t count,
                               unsigned char* data) override;

  private:
    BaseBitmap* bitmap_;
    std::int32_t color_mode_ = 0;
    std::int32_t alpha_channel_ = 0;
};
