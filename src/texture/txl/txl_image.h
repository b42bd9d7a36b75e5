#pragma once

#include <cstdint>

/// The picture that the texture filter fills while loading and reads while saving, in runs of pixels along a
/// row. Pixel data has 8 bits per channel, interleaved, without padding between pixels unless a stride is
/// given. Colour modes: 2 is grey, one byte per pixel; 4 is RGB, three bytes per pixel (R, G, B).
///
/// Operations return true on success unless stated otherwise. The base class behaves as a picture that
/// accepts everything and holds nothing; derived classes override every operation. The order of the virtual
/// operations is fixed, and deliberately there is no destructor among them: it would take a place in their
/// table, and no picture is deleted through this class. Buffers belong to the caller and are not kept.
class TXLImage {
  public:
    // The sink, used while loading.

    /// Begins a picture of `w` by `h` pixels in colour mode `colorMode`. A second call starts over.
    virtual bool Init(std::int32_t /*w*/, std::int32_t /*h*/, std::int32_t /*colorMode*/) { return true; }

    /// Begins one more alpha channel, with its index and the picture's width and height.
    virtual bool InitAlphaChannel(std::int32_t /*channel*/, std::int32_t /*w*/, std::int32_t /*h*/) {
        return true;
    }

    /// Stores `count` pixels of row `y`, starting at column `x`; pixels are `stride` bytes apart.
    virtual bool SetPixelCount(std::int32_t /*x*/, std::int32_t /*y*/, std::int32_t /*count*/,
                               unsigned char* /*data*/, std::int32_t /*stride*/) {
        return true;
    }

    /// Stores `count` alpha values of row `y`, starting at column `x`, one byte per pixel.
    virtual bool SetAlphaPixel(std::int32_t /*channel*/, std::int32_t /*x*/, std::int32_t /*y*/,
                               std::int32_t /*count*/, unsigned char* /*data*/) {
        return true;
    }

    // The source, used while saving.

    /// Width in pixels.
    virtual std::int32_t GetBw() { return 0; }

    /// Height in pixels.
    virtual std::int32_t GetBh() { return 0; }

    virtual std::int32_t GetColorMode() { return 0; }

    /// Copies `count` pixels of row `y`, starting at column `x`, to `data`, with the bytes per pixel of the
    /// colour mode.
    virtual std::int32_t GetPixelCount(std::int32_t /*x*/, std::int32_t /*y*/, std::int32_t /*count*/,
                                       unsigned char* /*data*/) {
        return 0;
    }

    virtual std::int32_t GetAlphaCount() { return 0; }

    /// Copies `count` alpha values of row `y`, starting at column `x`, to `data`, one byte per pixel.
    virtual std::int32_t GetAlphaPixel(std::int32_t /*channel*/, std::int32_t /*x*/, std::int32_t /*y*/,
                                       std::int32_t /*count*/, unsigned char* /*data*/) {
        return 0;
    }

  protected:
    TXLImage() = default;
    TXLImage(const TXLImage&) = default;
    TXLImage& operator=(const TXLImage&) = default;
    ~TXLImage() = default;
};
