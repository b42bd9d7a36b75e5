#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "texture/txl/txl_image.h"

/// A picture to be saved: its place determines every colour and alpha byte, and neighbours differ.
class PaintedPicture final : public TXLImage {
  public:
    /// Colour mode 2 (grey) or 4 (RGB).
    PaintedPicture(std::int32_t width_px, std::int32_t height_px, std::int32_t mode, std::int32_t alphas)
        : width_(width_px), height_(height_px), mode_(mode), alphas_(alphas) {}

    /// Channel 0, 1 or 2 of the colour at a place; all three are equal when grey.
    [[nodiscard]] unsigned char ColourAt(std::int32_t x, std::int32_t y, std::int32_t channel) const;
    [[nodiscard]] static unsigned char AlphaAt(std::int32_t x, std::int32_t y, std::int32_t alpha);

    bool Init(std::int32_t, std::int32_t, std::int32_t) override { return false; }
    bool InitAlphaChannel(std::int32_t, std::int32_t, std::int32_t) override { return false; }
    bool SetPixelCount(std::int32_t, std::int32_t, std::int32_t, unsigned char*, std::int32_t) override {
        return false;
    }
    bool SetAlphaPixel(std::int32_t, std::int32_t, std::int32_t, std::int32_t, unsigned char*) override {
        return false;
    }
    std::int32_t GetBw() override { return width_; }
    std::int32_t GetBh() override { return height_; }
    std::int32_t GetColorMode() override { return mode_; }
    std::int32_t GetPixelCount(std::int32_t x, std::int32_t y, std::int32_t count,
                               unsigned char* data) override;
    std::int32_t GetAlphaCount() override { return alphas_; }
    std::int32_t GetAlphaPixel(std::int32_t channel, std::int32_t x, std::int32_t y, std::int32_t count,
                               unsigned char* data) override;

  private:
    std::int32_t width_;
    std::int32_t height_;
    std::int32_t mode_;
    std::int32_t alphas_;
};

/// A folder for texture files, removed with the object.
class TextureFiles {
  public:
    TextureFiles();
    ~TextureFiles();
    TextureFiles(const TextureFiles&) = delete;
    TextureFiles& operator=(const TextureFiles&) = delete;

    /// The path of a file with that name.
    [[nodiscard]] std::string Path(const std::string& name) const { return (folder_ / name).string(); }

    /// Saves the picture; returns its path.
    [[nodiscard]] std::string Save(const std::string& name, PaintedPicture picture) const;

    /// Copies the first `size_bytes` bytes of a file to a new file; returns its path.
    [[nodiscard]] std::string Cut(const std::string& path, std::size_t size_bytes) const;

    /// Saves a file with a header for an RGB texture of that size and without rows; returns its path.
    [[nodiscard]] std::string SaveHeaderOnly(const std::string& name, std::int32_t width_px,
                                             std::int32_t height_px) const;

  private:
    std::filesystem::path folder_;
};
