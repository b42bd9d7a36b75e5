#include "input_module/texture_files.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "texture/container/hyper_file.h"
#include "texture/txl/txl_ids.h"
#include "texture/txl/txl_image_filter.h"

unsigned char PaintedPicture::ColourAt(std::int32_t x, std::int32_t y, std::int32_t channel) const {
    const std::int32_t seen = mode_ == kModeGrey ? 0 : channel;
    return static_cast<unsigned char>(255 - 7 * x - 31 * y - 80 * seen);
}

unsigned char PaintedPicture::AlphaAt(std::int32_t x, std::int32_t y, std::int32_t alpha) {
    return static_cast<unsigned char>(11 * x + 53 * y + 100 * alpha);
}

std::int32_t PaintedPicture::GetPixelCount(std::int32_t x, std::int32_t y, std::int32_t count,
                                           unsigned char* data) {
    const std::int32_t channels = texture_channels(mode_);
    for (std::int32_t i = 0; i < count; ++i) {
        for (std::int32_t channel = 0; channel < channels; ++channel) {
            *data++ = ColourAt(x + i, y, channel);
        }
    }
    return 0;
}

std::int32_t PaintedPicture::GetAlphaPixel(std::int32_t channel, std::int32_t x, std::int32_t y,
                                           std::int32_t count, unsigned char* data) {
    for (std::int32_t i = 0; i < count; ++i) {
        data[i] = AlphaAt(x + i, y, channel);
    }
    return 0;
}

TextureFiles::TextureFiles()
    : folder_(std::filesystem::path(testing::TempDir()) / ("input_module_" + std::to_string(getpid()))) {
    std::filesystem::create_directories(folder_);
}

TextureFiles::~TextureFiles() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

std::string TextureFiles::Save(const std::string& name, PaintedPicture picture) const {
    TXLImageFilter filter;
    EXPECT_TRUE(filter.SaveImage(Path(name).c_str(), &picture));
    return Path(name);
}

std::string TextureFiles::Cut(const std::string& path, std::size_t size_bytes) const {
    const std::string cut = path + ".cut";
    EXPECT_LT(size_bytes, std::filesystem::file_size(path));
    std::filesystem::copy_file(path, cut, std::filesystem::copy_options::overwrite_existing);
    std::filesystem::resize_file(cut, size_bytes);
    return cut;
}

std::string TextureFiles::SaveHeaderOnly(const std::string& name, std::int32_t width_px,
                                         std::int32_t height_px) const {
    PrivateHyperFile file;
    EXPECT_EQ(file.Open(kTextureFileIdent, Path(name).c_str(), PrivateHyperFile::kWriting, 0, 1), 1);
    file.WriteChunkStart(kChunkTexture, 0);
    file.WriteChunkStart(kChunkTextureHeader, 1);
    file.WriteLong(width_px);
    file.WriteLong(height_px);
    file.WriteLong(kModeRgb);
    file.WriteChunkEnd();
    file.WriteChunkEnd();
    EXPECT_EQ(file.GetError(), 0);
    file.Close();
    return Path(name);
}
