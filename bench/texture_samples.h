#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pictures.h"
#include "support/temporary_folder.h"
#include "texture/txl/base_bitmap.h"
#include "texture/txl/example_txl_image.h"
#include "texture/value/texture.h"

/// The host's bitmap and its adapter, as the input module has them, but loaded again and again: for a picture
/// of the size that it has, the arrays are kept. Fresh pages cost more than decoding.
class WarmPicture final : public TXLImage {
  public:
    bool Init(std::int32_t w, std::int32_t h, std::int32_t mode) override;
    bool InitAlphaChannel(std::int32_t channel, std::int32_t w, std::int32_t h) override;
    bool SetPixelCount(std::int32_t x, std::int32_t y, std::int32_t count, unsigned char* data,
                       std::int32_t stride) override;
    bool SetAlphaPixel(std::int32_t channel, std::int32_t x, std::int32_t y, std::int32_t count,
                       unsigned char* data) override;

    [[nodiscard]] BaseBitmap& bitmap() { return bitmap_; }

  private:
    BaseBitmap bitmap_;
    ExampleTXLImage image_{&bitmap_};
    std::int32_t mode_ = 0;
};

/// One picture, its files and warm memory for what is made of it.
struct Sample {
    PictureKind kind;
    std::int32_t size_px;
    TemporaryFolder folder;
    Texture picture;
    std::string txl = folder.path("picture.txl");
    std::string tiff = folder.path("picture.tif");
    std::vector<std::uint8_t> planes;  // the four, one after the other
    WarmPicture warm;                  // has been loaded

    Sample(PictureKind kind_wanted, std::int32_t size_wanted_px);

    [[nodiscard]] std::string name() const;
};

/// The sample of these arguments, made once. Checked when it is made: every way of loading gives the picture
/// back, and the texture's file is no larger than the TIFF's.
[[nodiscard]] Sample& sample_of(PictureKind kind, std::int32_t size_px);

/// Loads a texture into a bitmap as the input module does; fresh arrays, the bitmap's first.
[[nodiscard]] bool load_bitmap(const std::string& path, BaseBitmap& bitmap);

/// Loads a texture into any picture.
[[nodiscard]] bool load_texture(const std::string& path, TXLImage& picture);

/// Saves `texture` without looking at the file afterwards, as write_texture does, so that devices are files.
[[nodiscard]] bool save_texture(const std::string& path, const Texture& texture);
