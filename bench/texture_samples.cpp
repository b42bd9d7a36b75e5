#include "texture_samples.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <utility>

#include "measuring.h"
#include "texture/txl/txl_image_filter.h"
#include "texture/value/texture_file.h"
#include "texture/value/texture_image.h"
#include "texture_peers.h"

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

constexpr std::uint32_t kSeed = 4096;
constexpr std::int32_t kOpaque = 255;

std::uint8_t to_byte(std::int64_t value) {
    return static_cast<std::uint8_t>(std::clamp<std::int64_t>(value, 0, 255));
}

/// A parabola from 0 at both ends to 255 in the middle of `size_px`.
std::int64_t bow(std::int64_t place, std::int64_t size_px) {
    constexpr std::int64_t kPeak = 255;
    return 4 * kPeak * place * (size_px - 1 - place) /
           std::max<std::int64_t>((size_px - 1) * (size_px - 1), 1);
}

/// Uses integers only: sines and roots differ in their last bits between machines.
void fill_photographic(Texture& picture) {
    std::mt19937 random(kSeed);
    const std::int64_t size_px = picture.width_px;
    const std::int64_t radius_squared = size_px * size_px / 6;  // about 0.4 of the width
    std::uint8_t* color = picture.pixels.data();
    std::uint8_t* alpha = picture.alphas[0].values.data();
    for (std::int64_t y = 0; y < size_px; ++y) {
        for (std::int64_t x = 0; x < size_px; ++x) {
            // Two bits of noise per channel, about as much as a camera sensor adds in daylight.
            const auto noise = static_cast<std::int64_t>(random());
            *color++ = to_byte(255 * x / size_px + (noise & 3) - 1);
            *color++ = to_byte(bow(y, size_px) + ((noise >> 2) & 3) - 1);
            *color++ = to_byte((bow(x, size_px) + 255 * y / size_px) / 2 + ((noise >> 4) & 3) - 1);
            const std::int64_t dx = 2 * x - size_px;
            const std::int64_t dy = 2 * y - size_px;
            *alpha++ = to_byte((4 * radius_squared - (dx * dx + dy * dy)) * 2048 / (size_px * size_px));
        }
    }
}

void fill_noise(Texture& picture) {
    std::mt19937 random(kSeed);
    for (PixelBuffer* buffer : {&picture.pixels, &picture.alphas[0].values}) {
        for (std::uint8_t& value : *buffer) {
            value = static_cast<std::uint8_t>(random() >> 24);
        }
    }
}

void fill_flat(Texture& picture) {
    static constexpr std::uint8_t kColor[] = {200, 120, 40};
    for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
        picture.pixels[i] = kColor[i % 3];
    }
    std::fill(picture.alphas[0].values.begin(), picture.alphas[0].values.end(), std::uint8_t{kOpaque});
}

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
        for (std::size_t plane = 0; plane < row.size(); ++plane) {
            std::copy_n(row[plane], width,
                        planes.data() + plane * picture.pixel_count() + static_cast<std::size_t>(y) * width);
        }
    }
    return planes;
}

void check(Sample& sample) {
    const std::string name = sample.name() + ": ";
    require(!write_texture(sample.txl, sample.picture), name + "the texture was not written");
    require(save_tiff(sample.tiff, sample.picture), name + "the TIFF was not written");
    require(std::filesystem::file_size(sample.txl) <= std::filesystem::file_size(sample.tiff),
            name + "the texture file is larger than the TIFF");
    require(read_texture(sample.txl).texture == sample.picture, name + "the texture reads back different");
    for (int time = 0; time < 2; ++time) {  // the second time into kept memory
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

const char* picture_name(PictureKind kind) {
    switch (kind) {
        case PictureKind::flat:
            return "flat";
        case PictureKind::photographic:
            return "photographic";
        case PictureKind::noise:
            return "noise";
    }
    return "";
}

Texture make_picture(PictureKind kind, std::int32_t size_px) {
    Texture picture;
    picture.width_px = size_px;
    picture.height_px = size_px;
    picture.mode = Texture::kRgb;
    picture.pixels = PixelBuffer(picture.pixel_count() * 3);
    picture.alphas.push_back({"Alpha", PixelBuffer(picture.pixel_count())});
    switch (kind) {
        case PictureKind::flat:
            fill_flat(picture);
            break;
        case PictureKind::photographic:
            fill_photographic(picture);
            break;
        case PictureKind::noise:
            fill_noise(picture);
            break;
    }
    return picture;
}

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
    if (sample == nullptr) {
        sample = std::make_unique<Sample>(kind, size_px);
    }
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
