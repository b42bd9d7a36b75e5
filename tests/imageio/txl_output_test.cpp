#include "imageio/txl_output.h"

#include <OpenImageIO/filesystem.h>
#include <gmock/gmock.h>

#include <climits>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "imageio/txl_input.h"
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
    spec.x = spec.full_x = 10;
    spec.y = spec.full_y = -5;
    imageio::TxlOutput output;
    ASSERT_TRUE(output.open(folder.path("a.txl"), spec, kCreate));
    const std::vector<std::uint8_t> pixels = {1, 2, 3, 4};
    ASSERT_TRUE(output.write_image(OIIO::TypeUInt8, pixels.data())) << output.geterror();
    ASSERT_TRUE(output.close()) << output.geterror();
    EXPECT_THAT(colour_bytes(only_texture_in(folder)), ElementsAre(1, 2, 3, 4));
}

TEST(TxlOutput, the_texture_is_the_display_window) {
    struct WindowCase {
        const char* name;
        std::function<void(OIIO::ImageSpec&)> change;
        std::int32_t width_px, height_px;
        std::vector<int> pixels;
    };
    const WindowCase cases[] = {
        {"the same as the data window", [](OIIO::ImageSpec&) {}, 2, 2, {1, 2, 3, 4}},
        {"none at all",
         [](OIIO::ImageSpec& spec) {
             spec.x = 7;
             spec.full_width = spec.full_height = 0;
         },
         2,
         2,
         {1, 2, 3, 4}},
        {"larger to the right and below",
         [](OIIO::ImageSpec& spec) { spec.full_width = spec.full_height = 3; },
         3,
         3,
         {1, 2, 0, 3, 4, 0, 0, 0, 0}},
        {"larger to the left and above",
         [](OIIO::ImageSpec& spec) {
             spec.x = spec.y = -2;
             spec.full_x = spec.full_y = -3;
             spec.full_width = 3;
             spec.full_height = 4;
         },
         3,
         4,
         {0, 0, 0, 0, 1, 2, 0, 3, 4, 0, 0, 0}},
    };
    for (const WindowCase& c : cases) {
        for (const bool tiled : {false, true}) {
            SCOPED_TRACE(std::string(c.name) + (tiled ? ", in tiles" : ", in rows"));
            const TemporaryFolder folder;
            OIIO::ImageSpec spec(2, 2, 1, OIIO::TypeUInt8);
            c.change(spec);
            spec.tile_width = spec.tile_height = tiled ? 1 : 0;
            imageio::TxlOutput output;
            ASSERT_TRUE(output.open(folder.path("a.txl"), spec, kCreate)) << output.geterror();
            const std::vector<std::uint8_t> pixels = {1, 2, 3, 4};
            ASSERT_TRUE(output.write_image(OIIO::TypeUInt8, pixels.data())) << output.geterror();
            ASSERT_TRUE(output.close()) << output.geterror();
            const Texture texture = only_texture_in(folder);
            EXPECT_EQ(texture.width_px, c.width_px);
            EXPECT_EQ(texture.height_px, c.height_px);
            EXPECT_EQ(colour_bytes(texture), c.pixels);
        }
    }
}

TEST(TxlOutput, a_thousand_alphas_can_be_read_again) {
    const TemporaryFolder folder;
    const Texture texture = made_texture(3, 2, Texture::kRgb, 1000);
    imageio::TxlOutput output;
    ASSERT_TRUE(output.open(folder.path("a.txl"), spec_of(texture), kCreate)) << output.geterror();
    ASSERT_TRUE(output.write_image(OIIO::TypeUInt8, interleaved(texture).data()));
    ASSERT_TRUE(output.close()) << output.geterror();
    imageio::TxlInput input;
    OIIO::ImageSpec spec;
    ASSERT_TRUE(input.open(folder.path("a.txl"), spec)) << input.geterror();
    EXPECT_EQ(spec.nchannels, 1003);
    std::vector<std::uint8_t> pixels(spec.image_bytes());
    ASSERT_TRUE(input.read_image(0, 0, 0, -1, OIIO::TypeUInt8, pixels.data())) << input.geterror();
    EXPECT_EQ(pixels, interleaved(texture));
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
    for (const char* feature :
         {"alpha", "nchannels", "random_access", "displaywindow", "origin", "negativeorigin"}) {
        EXPECT_EQ(output.supports(feature), 1) << feature;
    }
    for (const char* feature : {"tiles", "multiimage", "mipmap", "volumes", "channelformats", "deepdata",
                                "arbitrary_metadata", "exif", "iptc", "ioproxy"}) {
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
    {"no_width", [](OIIO::ImageSpec& spec) { spec.width = 0; }, kCreate,
     "the picture has no pixels: its size is 0 x 4"},
    {"negative_height", [](OIIO::ImageSpec& spec) { spec.height = -1; }, kCreate,
     "the picture has no pixels"},
    {"no_channels", [](OIIO::ImageSpec& spec) { spec.nchannels = 0; }, kCreate,
     "the picture has no channels"},
    {"pixels_left_of_the_display_window", [](OIIO::ImageSpec& spec) { spec.x = -1; }, kCreate,
     "its pixels, 4 x 4 at -1, 0, extend beyond its display window, 4 x 4 at 0, 0; crop"},
    {"pixels_below_the_display_window", [](OIIO::ImageSpec& spec) { spec.full_height = 3; }, kCreate,
     "extend beyond its display window, 4 x 3 at 0, 0"},
    {"pixels_right_of_the_display_window", [](OIIO::ImageSpec& spec) { spec.x = INT_MAX; }, kCreate,
     "extend beyond its display window"},
    {"a_display_window_of_more_pixels_than_the_largest_texture",
     [](OIIO::ImageSpec& spec) { spec.full_width = spec.full_height = INT_MAX; }, kCreate,
     "2147483647 x 2147483647 pixels exceed the largest texture"},
    {"more_bytes_than_are_read_again",
     [](OIIO::ImageSpec& spec) {
         spec.width = spec.full_width = 1 << 15;
         spec.height = spec.full_height = 1 << 15;
         spec.nchannels = 5;
     },
     kCreate, "with 5 channels exceed the 4294967296 bytes that are read"},
    {"more_channels_than_are_read_again", [](OIIO::ImageSpec& spec) { spec.nchannels = 1025; }, kCreate,
     "1025 channels exceed limits:channels, which is 1024"},
    {"memory",
     [](OIIO::ImageSpec& spec) {
         static OIIO::Filesystem::IOVecOutput memory;
         OIIO::Filesystem::IOProxy* proxy = &memory;
         spec.attribute("oiio:ioproxy", OIIO::TypeDesc::PTR, &proxy);
     },
     kCreate, "a texture is read from a file and written to one, not in memory"},
    {"more_pixels_than_the_largest_texture",
     [](OIIO::ImageSpec& spec) {
         spec.width = spec.full_width = 1 << 16;
         spec.height = spec.full_height = (1 << 14) + 1;
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
