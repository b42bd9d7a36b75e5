#include "texture_samples.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <utility>

#include "measuring.h"
#include "planar_work.h"
#include "texture/txl/txl_image_filter.h"
#include "texture/value/texture_file.h"
#include "texture/value/texture_image.h"
#include "tiff_peer.h"

bool WarmPicture::Init(std::int32_t w, std::int32_t h, std::int32_t mode) {
    const bool same = w == bitmap_.width() && h == bitmap_.height() && mode == mode_;
    mode_ = mode;
    return same || image_.Init(w, h, mode);
}

bool WarmPicture::InitAlphaChannel(std::int32_t channel, std::int32_t w, std::int32_t h) {
    return bitmap_.GetChannelCount() == 1 || image_.InitAlphaChannel(channel, w, h);
}

bool WarmPicture::SetPixelCount(std::int32_t x, std::int32_t y, std::int32_t count, unsigned char* data,
                                std::int32_t stride) {
    return image_.SetPixelCount(x, y, count, data, stride);
}

bool WarmPicture::SetAlphaPixel(std::int32_t channel, std::int32_t x, std::int32_t y, std::int32_t count,
                                unsigned char* data) {
    return image_.SetAlphaPixel(channel, x, y, count, data);
}

namespace {

void clear(BaseBitmap& bitmap) {
    for (std::int32_t y = 0; y < bitmap.height(); ++y) {
        std::fill_n(bitmap.PixelRow(y), 3 * std::int64_t{bitmap.width()}, std::uint16_t{1});
        std::fill_n(bitmap.AlphaRow(1, y), bitmap.width(), std::uint16_t{1});
    }
}

std::vector<std::uint8_t> planes_of(const Texture& picture) {
    const auto width = static_cast<std::size_t>(picture.width_px);
    std::vector<std::uint8_t> colour(3 * width);
    std::vector<std::uint8_t> planes(4 * picture.pixel_count());
    for (std::int32_t y = 0; y < picture.height_px; ++y) {
        const PlaneRow row = split_row(picture, y, colour.data());
        for (std::size_t plane = 0; plane < row.size(); ++plane)
            std::copy_n(row[plane], width,
                        planes.data() + plane * picture.pixel_count() + static_cast<std::size_t>(y) * width);
    }
    return planes;
}

void check(Sample& sample) {
    const std::string name = sample.name() + ": ";
    require(!write_texture(sample.txl, sample.picture), name + "the texture was not written");
    require(save_tiff(sample.tiff, sample.picture), name + "the TIFF was not written");
    require(std::filesystem::file_size(sample.txl) <= std::filesystem::file_size(sample.tiff),
            name + "the texture's file is larger than the TIFF's");
    require(read_texture(sample.txl).texture == sample.picture, name + "the texture reads back different");
    for (int time = 0; time < 2; ++time) {  // the second time into memory that is kept
        require(load_texture(sample.txl, sample.warm), name + "the texture does not load");
        require(holds(sample.warm.bitmap(), sample.picture), name + "the bitmap holds different pixels");
        clear(sample.warm.bitmap());
    }
    require(load_tiff(sample.tiff, sample.warm.bitmap()), name + "the TIFF does not load");
    require(holds(sample.warm.bitmap(), sample.picture), name + "the TIFF reads back different");
    BaseBitmap fresh;
    require(load_bitmap(sample.txl, fresh) && holds(fresh, sample.picture), name + "the module's load");
    const std::string again = sample.folder.path("again.txl");
    require(save_texture(again, sample.picture) && read_texture(again).texture == sample.picture,
            name + "what the filter saves reads back different");
}

}  // namespace

Sample::Sample(PictureKind kind_wanted, std::int32_t size_wanted_px)
    : kind(kind_wanted),
      size_px(size_wanted_px),
      picture(make_picture(kind_wanted, size_wanted_px)),
      planes(planes_of(picture)) {
    check(*this);
}

std::string Sample::name() const {
    return std::string(picture_name(kind)) + "/" + std::to_string(size_px);
}

Sample& sample_of(PictureKind kind, std::int32_t size_px) {
    static std::map<std::pair<PictureKind, std::int32_t>, std::unique_ptr<Sample>> known;
    std::unique_ptr<Sample>& sample = known[{kind, size_px}];
    if (sample == nullptr)
        sample = std::make_unique<Sample>(kind, size_px);
    return *sample;
}

bool load_bitmap(const std::string& path, BaseBitmap& bitmap) {
    ExampleTXLImage image(&bitmap);
    return load_texture(path, image);
}

bool load_texture(const std::string& path, TXLImage& picture) {
    return TXLImageFilter().LoadImage(path.c_str(), &picture);
}

bool save_texture(const std::string& path, const Texture& texture) {
    TextureSource source(texture);
    return TXLImageFilter().SaveImage(path.c_str(), &source);
}
