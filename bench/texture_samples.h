#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/temporary_folder.h"
#include "texture/txl/base_bitmap.h"
#include "texture/txl/example_txl_image.h"
#include "texture/value/texture.h"

enum class PictureKind {
    flat,          ///< one colour, opaque: the best case of a row coding
    photographic,  ///< smooth gradients under mild noise, and a disc with a soft rim as alpha
    noise,         ///< random bytes: the worst case
};

[[nodiscard]] const char* picture_name(PictureKind kind);

/// A square RGB texture with one alpha channel. The same arguments give the same bytes on every machine.
[[nodiscard]] Texture make_picture(PictureKind kind, std::int32_t size_px);

/// The host's bitmap and its adapter as in the input module, except that loading another picture of the same
/// size keeps the arrays: fresh pages cost more than decoding.
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

/// One picture, its files, and warm memory to load them into.
struct Sample {
    PictureKind kind;
    std::int32_t size_px;
    TemporaryFolder folder;
    Texture picture;
    std::string txl = folder.path("picture.txl");
    std::string tiff = folder.path("picture.tif");
    std::vector<std::uint8_t> planes;  // all four, one after the other
    WarmPicture warm;                  // loaded at least once

    Sample(PictureKind kind_wanted, std::int32_t size_wanted_px);

    [[nodiscard]] std::string name() const;
};

/// The sample for these arguments, made on the first call and checked: every way of loading restores the
/// picture, and the texture file is no larger than the TIFF.
[[nodiscard]] Sample& sample_of(PictureKind kind, std::int32_t size_px);

/// Loads a texture into a bitmap without arrays, as the input module does.
[[nodiscard]] bool load_bitmap(const std::string& path, BaseBitmap& bitmap);

/// Loads a texture into any image sink.
[[nodiscard]] bool load_texture(const std::string& path, TXLImage& picture);

/// Saves `texture` like write_texture, but without checking the file afterwards, so that `path` may be a
/// device.
[[nodiscard]] bool save_texture(const std::string& path, const Texture& texture);
