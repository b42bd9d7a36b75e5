#include "imageio/txl_output.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "support/made_texture.h"
#include "support/temporary_folder.h"
#include "texture/value/texture_file.h"

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr auto kCreate = OIIO::ImageOutput::Create;

OIIO::ImageSpec spec_of(const Texture& texture) {
    OIIO::ImageSpec spec(texture.width_px, texture.height_px,
                         texture.channels() + static_cast<int>(texture.alphas.size()), OIIO::TypeUInt8);
    spec.channelnames = imageio::channel_names(texture);
    spec.alpha_channel = texture.alphas.empty() ? -1 : texture.channels();
    return spec;
}

std::vector<std::uint8_t> interleaved(const Texture& texture) {
    const std::size_t row_bytes = spec_of(texture).scanline_bytes();
    std::vector<std::uint8_t> all(row_bytes * static_cast<std::size_t>(texture.height_px));
    for (std::int32_t y = 0; y < texture.height_px; ++y) {
        imageio::copy_row_out(texture, y, all.data() + row_bytes * static_cast<std::size_t>(y));
    }
    return all;
}

/// Reads back the texture, which must be the only file in the folder.
Texture only_texture_in(const TemporaryFolder& folder) {
    const std::vector<fs::path> files(fs::directory_iterator(folder.folder()), fs::directory_iterator());
    EXPECT_EQ(files.size(), 1U);
    TextureReading reading = read_texture(files.at(0).string());
    EXPECT_FALSE(reading.error.has_value());
    return reading.texture.value_or(Texture{});
}

std::vector<int> colour_bytes(const Texture& texture) {
    return {texture.pixels.begin(), texture.pixels.end()};
}

TEST(TxlOutput, writes_every_channel_as_given) {
    for (const std::int32_t mode : {Texture::kGrey, Texture::kRgb}) {
        for (const int alphas : {0, 1, 3}) {
            const TemporaryFolder folder;
            const Texture texture = made_texture(33, 9, mode, alphas);
            imageio::TxlOutput output;
            ASSERT_TRUE(output.open(folder.path("a.txl"), spec_of(texture), kCreate)) << output.geterror();
            ASSERT_TRUE(output.write_image(OIIO::TypeUInt8, interleaved(texture).data()));
            ASSERT_TRUE(output.close()) << output.geterror();
            EXPECT_TRUE(only_texture_in(folder) == texture) << "mode " << mode << ", " << alphas << " alphas";
        }
    }
}

TEST(TxlOutput, other_depths_are_converted) {
    const TemporaryFolder folder;
    OIIO::ImageSpec spec(3, 1, 1, OIIO::TypeFloat);
    imageio::TxlOutput output;
    ASSERT_TRUE(output.open(folder.path("a.txl"), spec, kCreate));
    EXPECT_EQ(output.spec().format, OIIO::TypeUInt8);
    const std::vector<float> row = {0.0F, 0.5F, 2.0F};
    ASSERT_TRUE(output.write_scanline(0, 0, OIIO::TypeFloat, row.data(), OIIO::AutoStride));
    ASSERT_TRUE(output.close());
    EXPECT_THAT(colour_bytes(only_texture_in(folder)), ElementsAre(0, 128, 255));
}

TEST(TxlOutput, rows_come_in_any_order) {
    const TemporaryFolder folder;
    const Texture texture = made_texture(6, 5, Texture::kRgb, 1);
    const std::vector<std::uint8_t> pixels = interleaved(texture);
    imageio::TxlOutput output;
    ASSERT_TRUE(output.open(folder.path("a.txl"), spec_of(texture), kCreate));
    for (const int y : {4, 0, 2, 3, 1}) {
        ASSERT_TRUE(
            output.write_scanline(y, 0, OIIO::TypeUInt8, pixels.data() + y * 6 * 4, OIIO::AutoStride));
    }
    ASSERT_TRUE(output.close());
    EXPECT_TRUE(only_texture_in(folder) == texture);
}

TEST(TxlOutput, tiles_become_rows) {
    const TemporaryFolder folder;
    const Texture texture = made_texture(50, 21, Texture::kRgb, 2);
    OIIO::ImageSpec spec = spec_of(texture);
    spec.tile_width = 16;
    spec.tile_height = 8;
    imageio::TxlOutput output;
    ASSERT_TRUE(output.open(folder.path("a.txl"), spec, kCreate));
    ASSERT_TRUE(output.write_image(OIIO::TypeUInt8, interleaved(texture).data())) << output.geterror();
    ASSERT_TRUE(output.close()) << output.geterror();
    EXPECT_TRUE(only_texture_in(folder) == texture);
}

TEST(TxlOutput, rows_are_counted_from_the_origin_of_the_image) {
    const TemporaryFolder folder;
    OIIO::ImageSpec spec(2, 2, 1, OIIO::TypeUInt8);
    spec.x = 10;
    spec.y = -5;
    imageio::TxlOutput output;
    ASSERT_TRUE(output.open(folder.path("a.txl"), spec, kCreate));
    const std::vector<std::uint8_t> pixels = {1, 2, 3, 4};
    ASSERT_TRUE(output.write_image(OIIO::TypeUInt8, pixels.data())) << output.geterror();
    ASSERT_TRUE(output.close()) << output.geterror();
    EXPECT_THAT(colour_bytes(only_texture_in(folder)), ElementsAre(1, 2, 3, 4));
}

TEST(TxlOutput, unassociated_values_are_stored_as_given) {
    const TemporaryFolder folder;
    const Texture texture = made_texture(8, 8, Texture::kRgb, 1);
    OIIO::ImageSpec spec = spec_of(texture);
    spec.attribute("oiio:UnassociatedAlpha", 1);
    imageio::TxlOutput output;
    ASSERT_TRUE(output.open(folder.path("a.txl"), spec, kCreate));
    ASSERT_TRUE(output.write_image(OIIO::TypeUInt8, interleaved(texture).data()));
    ASSERT_TRUE(output.close());
    EXPECT_TRUE(only_texture_in(folder) == texture);
}

TEST(TxlOutput, closed_too_early_keeps_the_existing_file) {
    const TemporaryFolder folder;
    const Texture before = made_texture(2, 2, Texture::kGrey, 0);
    ASSERT_FALSE(write_texture(folder.path("a.txl"), before).has_value());
    const Texture texture = made_texture(4, 4, Texture::kGrey, 0);
    imageio::TxlOutput output;
    ASSERT_TRUE(output.open(folder.path("a.txl"), spec_of(texture), kCreate));
    for (const int y : {0, 1, 3, 3}) {
        ASSERT_TRUE(output.write_scanline(y, 0, OIIO::TypeUInt8, texture.pixels.data(), OIIO::AutoStride));
    }
    EXPECT_FALSE(output.close());
    EXPECT_THAT(output.geterror(), HasSubstr("closed before row 2 of 4 was written; no file is created"));
    EXPECT_TRUE(only_texture_in(folder) == before);
}

TEST(TxlOutput, abandoned_leaves_nothing) {
    const TemporaryFolder folder;
    {
        imageio::TxlOutput output;
        ASSERT_TRUE(output.open(folder.path("a.txl"), OIIO::ImageSpec(4, 4, 3), kCreate));
    }
    EXPECT_TRUE(fs::is_empty(folder.folder()));
}

TEST(TxlOutput, opening_again_drops_an_image_that_was_not_closed) {
    const TemporaryFolder folder;
    const Texture texture = made_texture(4, 4, Texture::kGrey, 0);
    imageio::TxlOutput output;
    ASSERT_TRUE(output.open(folder.path("a.txl"), OIIO::ImageSpec(8, 8, 3), kCreate));
    ASSERT_TRUE(output.open(folder.path("b.txl"), spec_of(texture), kCreate));
    ASSERT_TRUE(output.write_image(OIIO::TypeUInt8, texture.pixels.data()));
    ASSERT_TRUE(output.close()) << output.geterror();
    EXPECT_TRUE(only_texture_in(folder) == texture);
}

TEST(TxlOutput, reports_what_it_supports) {
    const imageio::TxlOutput output;
    for (const char* feature : {"alpha", "nchannels", "random_access"}) {
        EXPECT_EQ(output.supports(feature), 1) << feature;
    }
    for (const char* feature : {"tiles", "multiimage", "mipmap", "volumes", "channelformats", "displaywindow",
                                "origin", "deepdata", "arbitrary_metadata", "exif", "iptc", "ioproxy"}) {
        EXPECT_EQ(output.supports(feature), 0) << feature;
    }
}

struct RefusedCase {
    const char* name;
    std::function<void(OIIO::ImageSpec&)> change;
    OIIO::ImageOutput::OpenMode mode;
    const char* message;

    friend std::ostream& operator<<(std::ostream& out, const RefusedCase& c) { return out << c.name; }
};

const RefusedCase kRefused[] = {
    {"second_image", [](OIIO::ImageSpec&) {}, OIIO::ImageOutput::AppendSubimage,
     "a texture has only one image"},
    {"smaller_level", [](OIIO::ImageSpec&) {}, OIIO::ImageOutput::AppendMIPLevel,
     "a texture has only one image"},
    {"deep", [](OIIO::ImageSpec& spec) { spec.deep = true; }, kCreate, "deep images"},
    {"volume", [](OIIO::ImageSpec& spec) { spec.depth = 2; }, kCreate, "volumes"},
    {"no_width", [](OIIO::ImageSpec& spec) { spec.width = 0; }, kCreate, "0 x 4 pixels with 3 channels"},
    {"negative_height", [](OIIO::ImageSpec& spec) { spec.height = -1; }, kCreate, "nothing to store"},
    {"no_channels", [](OIIO::ImageSpec& spec) { spec.nchannels = 0; }, kCreate, "nothing to store"},
    {"more_pixels_than_the_largest_texture",
     [](OIIO::ImageSpec& spec) {
         spec.width = 1 << 16;
         spec.height = (1 << 14) + 1;
     },
     kCreate, "exceed the largest texture, which has 2^30"},
};

class TxlOutputRefuses : public ::testing::TestWithParam<RefusedCase> {};

TEST_P(TxlOutputRefuses, and_creates_no_file) {
    const TemporaryFolder folder;
    OIIO::ImageSpec spec(4, 4, 3, OIIO::TypeUInt8);
    GetParam().change(spec);
    imageio::TxlOutput output;
    EXPECT_FALSE(output.open(folder.path("a.txl"), spec, GetParam().mode));
    EXPECT_THAT(output.geterror(), HasSubstr(GetParam().message));
    EXPECT_TRUE(fs::is_empty(folder.folder()));
}

INSTANTIATE_TEST_SUITE_P(Table, TxlOutputRefuses, ::testing::ValuesIn(kRefused),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(TxlOutput, accepts_as_many_pixels_as_the_largest_texture) {
    const TemporaryFolder folder;
    imageio::TxlOutput output;
    EXPECT_TRUE(output.open(folder.path("a.txl"), OIIO::ImageSpec(1 << 16, 1 << 14, 1), kCreate))
        << output.geterror();
}

TEST(TxlOutput, a_path_that_cannot_be_written_is_an_error_at_once) {
    const TemporaryFolder folder;
    imageio::TxlOutput output;
    EXPECT_FALSE(output.open(folder.path("missing/a.txl"), OIIO::ImageSpec(4, 4, 3), kCreate));
    EXPECT_THAT(output.geterror(), HasSubstr("No such file or directory"));
    EXPECT_FALSE(output.open(folder.folder().string(), OIIO::ImageSpec(4, 4, 3), kCreate));
    EXPECT_THAT(output.geterror(), HasSubstr("not a regular file"));
}

TEST(TxlOutput, wrong_use_is_an_error) {
    const TemporaryFolder folder;
    const std::vector<std::uint8_t> pixels(64);
    imageio::TxlOutput output;
    EXPECT_FALSE(output.write_scanline(0, 0, OIIO::TypeUInt8, pixels.data(), OIIO::AutoStride));
    EXPECT_THAT(output.geterror(), HasSubstr("no texture is open"));
    EXPECT_FALSE(output.write_tile(0, 0, 0, OIIO::TypeUInt8, pixels.data(), OIIO::AutoStride,
                                   OIIO::AutoStride, OIIO::AutoStride));
    EXPECT_THAT(output.geterror(), HasSubstr("no texture is open"));
    ASSERT_TRUE(output.open(folder.path("a.txl"), OIIO::ImageSpec(4, 4, 1, OIIO::TypeUInt8), kCreate));
    EXPECT_FALSE(output.write_scanline(4, 0, OIIO::TypeUInt8, pixels.data(), OIIO::AutoStride));
    EXPECT_THAT(output.geterror(), HasSubstr("row 4 is outside the picture, which has 4 rows"));
    EXPECT_FALSE(output.write_tile(0, 0, 0, OIIO::TypeUInt8, pixels.data(), OIIO::AutoStride,
                                   OIIO::AutoStride, OIIO::AutoStride));
    EXPECT_THAT(output.geterror(), HasSubstr("no tile starts at 0, 0"));
    EXPECT_TRUE(imageio::TxlOutput().close());
}

}  // namespace
