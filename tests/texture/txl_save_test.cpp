#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "support/file_content.h"
#include "support/temporary_folder.h"
#include "texture/both_loads.h"
#include "texture/txl/example_txl_image.h"
#include "texture/txl/txl_image_filter.h"
#include "texture/txl_builder.h"

namespace {

using namespace std::string_literals;

/// A source whose properties are set by the test; pixel values increase along a row.
class AnySource final : public TXLImage {
  public:
    std::int32_t width = 2;
    std::int32_t height = 1;
    std::int32_t mode = 4;
    std::int32_t alpha_count = 0;

    std::int32_t GetBw() override { return width; }
    std::int32_t GetBh() override { return height; }
    std::int32_t GetColorMode() override { return mode; }
    std::int32_t GetAlphaCount() override { return alpha_count; }
    std::int32_t GetPixelCount(std::int32_t x, std::int32_t y, std::int32_t count,
                               unsigned char* data) override {
        EXPECT_EQ(x, 0);
        EXPECT_EQ(count, width);
        const int bytes = (mode & ~1) == 2 ? 1 : 3;
        for (std::int32_t i = 0; i < count * bytes; ++i) {
            data[i] = static_cast<unsigned char>(i + 16 * y);
        }
        return 0;
    }
    std::int32_t GetAlphaPixel(std::int32_t channel, std::int32_t x, std::int32_t y, std::int32_t count,
                               unsigned char* data) override {
        EXPECT_EQ(x, 0);
        for (std::int32_t i = 0; i < count; ++i) {
            data[i] = static_cast<unsigned char>(0xA0 + 16 * channel + i + y);
        }
        return 0;
    }
};

std::string saved(TXLImage& source) {
    const TemporaryFolder folder;
    const std::string path = folder.path("saved.txl");
    TXLImageFilter filter;
    EXPECT_TRUE(filter.SaveImage(path.c_str(), &source));
    EXPECT_EQ(filter.GetError(), 0);
    return content_of(path);
}

TxlFile expected_file(std::int32_t width, std::int32_t height, std::int32_t mode) {
    TxlFile file;
    file.width = width;
    file.height = height;
    file.mode = mode;
    file.rows.count = width;
    file.rows.rows = height;
    file.rows.channels = mode == 2 ? 1 : 3;
    file.rows.blocks.clear();
    return file;
}

TxlLayer expected_layer(std::int32_t width, std::int32_t height, const std::vector<std::string>& rows) {
    TxlLayer layer;
    layer.rows.count = width;
    layer.rows.rows = height;
    layer.rows.blocks.clear();
    for (const std::string& row : rows) {
        layer.rows.blocks.emplace_back(0, row);
    }
    return layer;
}

TEST(TxlSave, RgbWithoutAlphaIsHeaderAndRows) {
    AnySource source;
    TxlFile expected = expected_file(2, 1, 4);
    expected.rows.blocks = {{0, "\x00\x03"s}, {0, "\x01\x04"}, {0, "\x02\x05"}};
    EXPECT_EQ(saved(source), expected.bytes());
}

TEST(TxlSave, GreyHasOneChannel) {
    AnySource source;
    source.mode = 2;
    source.height = 2;
    TxlFile expected = expected_file(2, 2, 2);
    expected.rows.blocks = {{0, "\x00\x01"s}, {0, "\x10\x11"}};
    EXPECT_EQ(saved(source), expected.bytes());
}

TEST(TxlSave, EveryAlphaChannelBecomesALayer) {
    AnySource source;
    source.mode = 2;
    source.height = 2;
    source.alpha_count = 2;
    TxlFile expected = expected_file(2, 2, 2);
    expected.rows.blocks = {{0, "\x00\x01"s}, {0, "\x10\x11"}};
    expected.layers = {expected_layer(2, 2, {"\xA0\xA1", "\xA1\xA2"}),
                       expected_layer(2, 2, {"\xB0\xB1", "\xB1\xB2"})};
    EXPECT_EQ(saved(source), expected.bytes());
}

TEST(TxlSave, BitZeroOfTheModeIsCleared) {
    for (const std::int32_t mode : {3, 5}) {
        AnySource with_bit;
        with_bit.mode = mode;
        AnySource without_bit;
        without_bit.mode = mode - 1;
        EXPECT_EQ(saved(with_bit), saved(without_bit)) << mode;
    }
}

TEST(TxlSave, OtherModesEndInAnUnterminatedRowsChunk) {
    for (const std::int32_t mode : {0, 1, 6, 7, -1, 8}) {
        SCOPED_TRACE(mode);
        AnySource source;
        source.mode = mode;
        source.alpha_count = 3;
        const std::string expected = HyperBytes()
                                         .Header()
                                         .Start(502, 0)
                                         .Start(kChunkTextureHeader, 1)
                                         .Long(2)
                                         .Long(1)
                                         .Long(mode & ~1)
                                         .End()
                                         .Start(kChunkPixelRows, 2)
                                         .End()
                                         .bytes();
        EXPECT_EQ(saved(source), expected);
        const TemporaryFolder folder;
        const BothLoads both(folder.write("open.txl", expected));
        EXPECT_EQ(both.error, -100) << "an end tag stands in place of the values of the rows chunk";
    }
}

TEST(TxlSave, AnEmptyPictureHasRowsWithoutData) {
    for (const auto& [width, height] :
         {std::pair{0, 3}, std::pair{3, 0}, std::pair{0, 0}, std::pair{-1, 5}}) {
        AnySource source;
        source.width = width;
        source.height = height;
        source.alpha_count = 1;
        TxlFile expected = expected_file(width, height, 4);
        expected.layers = {expected_layer(width, height, {})};
        EXPECT_EQ(saved(source), expected.bytes()) << width << " x " << height;
    }
}

TEST(TxlSave, ARowIsPackedOnlyIfThatIsShorter) {
    struct Row {
        const char* name;
        std::string pixels;
        int flag;
        std::string block;
    };
    const std::vector<Row> rows = {
        {"one pixel", "\x05", 0, "\x05"},
        {"two equal pixels", "\x05\x05", 0, "\x05\x05"},
        {"three equal pixels are shorter", "\x05\x05\x05", 1, "\xFE\x05"},
        {"equally long when packed", "\x05\x05\x05\x06", 0, "\x05\x05\x05\x06"},
        {"one byte shorter when packed", "\x05\x05\x05\x05\x06", 1, "\xFD\x05\x00\x06"s},
        {"128 pixels, packed in two packets", std::string(128, 'x').replace(1, 1, "y"), 1, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Texture texture;
        texture.width_px = static_cast<std::int32_t>(row.pixels.size());
        texture.height_px = 1;
        texture.mode = Texture::kGrey;
        texture.pixels = PixelBuffer(row.pixels.size());
        std::copy(row.pixels.begin(), row.pixels.end(), texture.pixels.begin());
        const TemporaryFolder folder;
        const std::string path = folder.path("row.txl");
        ASSERT_FALSE(write_texture(path, texture).has_value());
        const TextureReading reading = read_texture(path, {.limits = {}, .outline = true});
        ASSERT_TRUE(reading.texture.has_value());
        EXPECT_EQ(*reading.texture, texture);
        const TextureObserver::RowBlock& block = reading.chunks.at(0).children.at(1).blocks.at(0);
        EXPECT_EQ(block.flag, row.flag);
        if (!row.block.empty()) {
            TxlFile expected = expected_file(texture.width_px, 1, 2);
            expected.rows.blocks = {{row.flag, row.block}};
            EXPECT_EQ(content_of(path), expected.bytes());
        }
    }
}

TEST(TxlSave, ABitmapIsSavedWithTheLowBytesOfItsColourAndItsAlpha) {
    const TemporaryFolder folder;
    TxlFile file;
    file.layers.resize(1);
    BaseBitmap bitmap;
    ExampleTXLImage image(&bitmap);
    TXLImageFilter loader;
    ASSERT_TRUE(loader.LoadImage(folder.write("in.txl", file.bytes()).c_str(), &image));
    TxlFile expected = expected_file(2, 2, 4);
    expected.rows.blocks.assign(6, {0, "\0\0"s});
    expected.layers.resize(1);
    EXPECT_EQ(saved(image), expected.bytes());
}

TEST(TxlSave, FailingToWriteIsAnError) {
    AnySource source;
    const TemporaryFolder folder;
    TXLImageFilter onto_a_folder;
    EXPECT_FALSE(onto_a_folder.SaveImage(folder.folder().string().c_str(), &source));
    EXPECT_EQ(onto_a_folder.GetError(), 1);
#if !defined(_WIN32)  // where no device simulates a full disk
    TXLImageFilter small_on_a_full_disk;
    EXPECT_FALSE(small_on_a_full_disk.SaveImage("/dev/full", &source));
    EXPECT_EQ(small_on_a_full_disk.GetError(), 1);
    AnySource large;
    large.width = 300;
    large.height = 300;
    large.alpha_count = 2;
    TXLImageFilter large_on_a_full_disk;
    EXPECT_FALSE(large_on_a_full_disk.SaveImage("/dev/full", &large));
    EXPECT_EQ(large_on_a_full_disk.GetError(), 1);
#endif
}

TEST(TxlSave, RowsAboveOneGigabyteAreRefused) {
    AnySource source;
    source.width = (1 << 30) / 3 + 1;
    const TemporaryFolder folder;
    TXLImageFilter filter;
    EXPECT_FALSE(filter.SaveImage(folder.path("wide.txl").c_str(), &source));
    EXPECT_EQ(filter.GetError(), -7);
}

}  // namespace
