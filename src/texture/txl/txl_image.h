#pragma once

#include <cstdint>

/// The picture that the texture filter fills while it loads and reads while it saves, line by line in runs of
/// pixels. Pixel data that crosses it has 8 bits a channel, channels interleaved, no padding between pixels
/// unless a stride says so. Colour modes: 2 is grey, one byte a pixel; 4 is RGB, three bytes a pixel (R, G,
/// B).
///
/// Operations return true for done unless said otherwise; what the base class does itself is the answer of a
/// picture that takes everything and holds nothing. Derived classes override all of it. The order of the
/// virtual operations is fixed and there is deliberately no destructor among them: nobody deletes a picture
/// through this class. Buffers belong to the caller and are not kept.
class TXLImage {
  public:
    // The sink while a file is loaded.

    /// The picture is `w` by `h` pixels of colour mode `colorMode`. Called again, it starts over.
    virtual bool Init(std::int32_t /*w*/, std::int32_t /*h*/, std::int32_t /*colorMode*/) { return true; }

    /// One more alpha channel begins: its index and the picture's width and height.
    virtual bool InitAlphaChannel(std::int32_t /*channel*/, std::int32_t /*w*/, std::int32_t /*h*/) {
        return true;
    }

    /// `count` pixels of row `y` from column `x` on; each pixel begins `stride` bytes after the one before.
    virtual bool SetPixelCount(std::int32_t /*x*/, std::int32_t /*y*/, std::int32_t /*count*/,
                               unsigned char* /*data*/, std::int32_t /*stride*/) {
        return true;
    }

    /// `count` alpha values of row `y` from column `x` on, one byte a pixel.
    virtual bool SetAlphaPixel(std::int32_t /*channel*/, std::int32_t /*x*/, std::int32_t /*y*/,
                               std::int32_t /*count*/, unsigned char* /*data*/) {
        return true;
    }

    // The source while a file is saved.

    /// Width in pixels.
    virtual std::int32_t GetBw() { return 0; }

    /// Height in pixels.
    virtual std::int32_t GetBh() { return 0; }

    virtual std::int32_t GetColorMode() { return 0; }

    /// Writes `count` pixels of row `y` from column `x` on to `data`, as many bytes each as the colour mode
    /// has.
    virtual std::int32_t GetPixelCount(std::int32_t /*x*/, std::int32_t /*y*/, std::int32_t /*count*/,
                                       unsigned char* /*data*/) {
        return 0;
    }

    virtual std::int32_t GetAlphaCount() { return 0; }

    /// Writes `count` alpha values of row `y` from column `x` on to `data`, one byte a pixel.
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
