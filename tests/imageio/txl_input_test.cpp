#include "imageio/txl_input.h"

#include <OpenImageIO/filesystem.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cstdint>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "imageio/channel_plan.h"
#include "support/file_content.h"
#include "support/made_texture.h"
#include "support/temporary_folder.h"
#include "texture/txl_builder.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// The bytes of the file of `texture`.
std::string texture_bytes(const Texture& texture) {
    const TemporaryFolder folder;
    EXPECT_FALSE(write_texture(folder.path("t.txl"), texture).has_value());
    return content_of(folder.path("t.txl"));
}

std::vector<std::uint8_t> interleaved(const Texture& texture) {
    const std::size_t row_bytes = static_cast<std::size_t>(texture.width_px) *
                                  (static_cast<std::size_t>(texture.channels()) + texture.alphas.size());
    std::vector<std::uint8_t> all(row_bytes * static_cast<std::size_t>(texture.height_px));
    for (std::int32_t y = 0; y < texture.height_px; ++y) {
        imageio::copy_row_out(texture, y, all.data() + row_bytes * static_cast<std::size_t>(y));
    }
    return all;
}

// A program that reads images from memory hands the bytes over in an object. The file of that name must not
// be read instead.
TEST(TxlInput, refuses_to_read_from_memory) {
    const TemporaryFolder folder;
    const std::string path = folder.path("a.txl");
    ASSERT_FALSE(write_texture(path, made_texture(4, 3, Texture::kRgb, 1)).has_value());
    const std::string bytes = content_of(path);
    OIIO::Filesystem::IOMemReader memory(bytes.data(), bytes.size());
    OIIO::Filesystem::IOProxy* proxy = &memory;
    OIIO::ImageSpec config;
    config.attribute("oiio:ioproxy", OIIO::TypeDesc::PTR, &proxy);
    imageio::TxlInput input;
    OIIO::ImageSpec spec;
    EXPECT_EQ(input.supports("ioproxy"), 0);
    EXPECT_FALSE(input.open(path, spec, config));
    EXPECT_THAT(input.geterror(), HasSubstr("not in memory"));
    EXPECT_FALSE(input.set_ioproxy(proxy));
    EXPECT_THAT(input.geterror(), HasSubstr("not in memory"));
    // Without such an object, both are as if nothing had been asked for.
    proxy = nullptr;
    config.attribute("oiio:ioproxy", OIIO::TypeDesc::PTR, &proxy);
    EXPECT_TRUE(input.set_ioproxy(nullptr));
    EXPECT_TRUE(input.open(path, spec, config)) << input.geterror();
    EXPECT_TRUE(input.open(path, spec, OIIO::ImageSpec())) << input.geterror();
}

TEST(TxlInput, says_that_colour_is_srgb_and_grey_is_data) {
    const TemporaryFolder folder;
    for (const int alphas : {0, 2}) {
        imageio::TxlInput input;
        OIIO::ImageSpec spec;
        ASSERT_FALSE(
            write_texture(folder.path("c.txl"), made_texture(4, 3, Texture::kRgb, alphas)).has_value());
        ASSERT_TRUE(input.open(folder.path("c.txl"), spec));
        EXPECT_EQ(spec.get_string_attribute("oiio:ColorSpace"), "sRGB");
        ASSERT_FALSE(
            write_texture(folder.path("g.txl"), made_texture(4, 3, Texture::kGrey, alphas)).has_value());
        ASSERT_TRUE(input.open(folder.path("g.txl"), spec));
        EXPECT_EQ(spec.find_attribute("oiio:ColorSpace"), nullptr);
    }
}

TEST(TxlInput, reads_every_channel_as_stored) {
    const TemporaryFolder folder;
    for (const std::int32_t mode : {Texture::kGrey, Texture::kRgb}) {
        for (const int alphas : {0, 1, 3}) {
            const Texture texture = made_texture(33, 9, mode, alphas);
            ASSERT_FALSE(write_texture(folder.path("a.txl"), texture).has_value());
            imageio::TxlInput input;
            OIIO::ImageSpec spec;
            ASSERT_TRUE(input.open(folder.path("a.txl"), spec)) << input.geterror();
            EXPECT_EQ(spec.width, 33);
            EXPECT_EQ(spec.height, 9);
            EXPECT_EQ(spec.nchannels, texture.channels() + alphas);
            EXPECT_EQ(spec.format, OIIO::TypeUInt8);
            EXPECT_EQ(spec.alpha_channel, alphas > 0 ? texture.channels() : -1);
            EXPECT_EQ(spec.get_int_attribute("oiio:UnassociatedAlpha", 0), 0);
            std::vector<std::uint8_t> pixels(spec.image_bytes());
            ASSERT_TRUE(input.read_image(0, 0, 0, -1, OIIO::TypeUInt8, pixels.data())) << input.geterror();
            EXPECT_EQ(pixels, interleaved(texture));
            EXPECT_TRUE(input.close());
        }
    }
}

TEST(TxlInput, rows_come_in_any_order_and_from_several_threads) {
    const TemporaryFolder folder;
    const Texture texture = made_texture(64, 200, Texture::kRgb, 1);
    ASSERT_FALSE(write_texture(folder.path("a.txl"), texture).has_value());
    imageio::TxlInput input;
    OIIO::ImageSpec spec;
    ASSERT_TRUE(input.open(folder.path("a.txl"), spec));
    std::vector<std::uint8_t> pixels(spec.image_bytes());
    const auto read_rows = [&](int first) {
        for (int y = spec.height - 1 - first; y >= 0; y -= 2) {
            input.read_native_scanline(0, 0, y, 0,
                                       pixels.data() + static_cast<std::size_t>(y) * spec.scanline_bytes());
        }
    };
    std::thread odd(read_rows, 0);
    read_rows(1);
    odd.join();
    EXPECT_FALSE(input.has_error()) << input.geterror();
    EXPECT_EQ(pixels, interleaved(texture));
}

TEST(TxlInput, reports_mode_layers_and_attributes) {
    const TemporaryFolder folder;
    ASSERT_FALSE(write_texture(folder.path("a.txl"), made_texture(3, 3, Texture::kRgb, 2)).has_value());
    imageio::TxlInput input;
    OIIO::ImageSpec spec;
    ASSERT_TRUE(input.open(folder.path("a.txl"), spec));
    EXPECT_EQ(spec.get_int_attribute("txl:mode"), 4);
    EXPECT_EQ(spec.get_int_attribute("txl:alphas"), 2);
    EXPECT_EQ(spec.get_int_attribute("txl:layer1:mode"), 2);
    EXPECT_EQ(spec.get_string_attribute("txl:layer1:name"), "Alpha");
    const OIIO::ParamValue* attributes = spec.find_attribute("txl:layer1:attributes");
    ASSERT_NE(attributes, nullptr);
    EXPECT_EQ(attributes->type(), OIIO::TypeDesc(OIIO::TypeDesc::UINT8, 5));
    EXPECT_EQ(spec.get_string_attribute("txl:warnings"), "");
}

TEST(TxlInput, reports_what_it_skipped) {
    const TemporaryFolder folder;
    // An unknown chunk after the texture.
    const std::string path = folder.write(
        "a.txl", texture_bytes(made_texture(3, 3, Texture::kRgb, 0)) + std::string("\1ABCD\0\0\0\0\2", 10));
    imageio::TxlInput input;
    OIIO::ImageSpec spec;
    ASSERT_TRUE(input.open(path, spec)) << input.geterror();
    EXPECT_THAT(spec.get_string_attribute("txl:warnings"), HasSubstr("chunk-skipped x 1 from 0x"));
}

TEST(TxlInput, valid_file_checks_magic_and_ident) {
    const TemporaryFolder folder;
    const imageio::TxlInput input;
    EXPECT_TRUE(input.valid_file(folder.write("named.otherwise", "AVXRTexa")));
    EXPECT_FALSE(input.valid_file(folder.write("short.txl", "AVXRTex")));
    EXPECT_FALSE(input.valid_file(folder.write("ident.txl", "AVXRTexb........")));
    EXPECT_FALSE(input.valid_file(folder.write("magic.txl", "AVXQTexa........")));
    EXPECT_FALSE(input.valid_file(folder.write("empty.txl", "")));
    EXPECT_FALSE(input.valid_file(folder.path("missing.txl")));
    EXPECT_FALSE(input.valid_file(folder.folder().string()));
    // Nothing writes to this pipe: checking it must not wait.
    const std::string pipe = folder.path("pipe.txl");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(input.valid_file(pipe));
}

struct RefusedCase {
    const char* name;
    std::string bytes;
    const char* message;  // part of it

    friend std::ostream& operator<<(std::ostream& out, const RefusedCase& c) { return out << c.name; }
};

std::vector<RefusedCase> refused_cases() {
    const std::string whole = texture_bytes(made_texture(64, 8, Texture::kRgb, 0));
    TxlFile nothing;
    nothing.width = 0;
    nothing.height = 8;
    return {
        {"empty", "", "a.txl: "},
        {"other_magic", "II*\0................", "a.txl"},
        {"ends_in_a_block", whole.substr(0, 200), "a.txl@0x"},
        {"ends_in_a_block_says_where", whole.substr(0, 200), "(in 502 > TaVx)"},
        {"nothing_after_the_start", "AVXRTexa", "a.txl@0x8"},
        {"no_texture_header", "AVXRTexa" + std::string("\1ABCD\0\0\0\0\2", 10), "no texture header"},
        {"no_pixels", nothing.bytes(), "the picture has no pixels: its size is 0 x 8"},
    };
}

class TxlInputRefuses : public ::testing::TestWithParam<RefusedCase> {};

TEST_P(TxlInputRefuses, with_a_position_and_a_reason) {
    const TemporaryFolder folder;
    imageio::TxlInput input;
    OIIO::ImageSpec spec;
    EXPECT_FALSE(input.open(folder.write("a.txl", GetParam().bytes), spec));
    EXPECT_THAT(input.geterror(), HasSubstr(GetParam().message));
    // A refused file is closed: nothing can be read from it.
    std::vector<std::uint8_t> row(1024);
    EXPECT_FALSE(input.read_native_scanline(0, 0, 0, 0, row.data()));
    EXPECT_THAT(input.geterror(), HasSubstr("no texture is open"));
}

INSTANTIATE_TEST_SUITE_P(Table, TxlInputRefuses, ::testing::ValuesIn(refused_cases()),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(TxlInput, a_missing_file_is_an_error) {
    const TemporaryFolder folder;
    imageio::TxlInput input;
    OIIO::ImageSpec spec;
    EXPECT_FALSE(input.open(folder.path("missing.txl"), spec));
    EXPECT_THAT(input.geterror(), HasSubstr("missing.txl"));
}

TEST(TxlInput, wrong_use_is_an_error) {
    const TemporaryFolder folder;
    ASSERT_FALSE(write_texture(folder.path("a.txl"), made_texture(4, 4, Texture::kGrey, 0)).has_value());
    imageio::TxlInput input;
    OIIO::ImageSpec spec;
    ASSERT_TRUE(input.open(folder.path("a.txl"), spec));
    std::vector<std::uint8_t> row(4);
    EXPECT_FALSE(input.read_native_scanline(0, 0, 4, 0, row.data()));
    EXPECT_THAT(input.geterror(), HasSubstr("row 4 is outside the picture, which has 4 rows"));
    EXPECT_FALSE(input.read_native_scanline(0, 0, -1, 0, row.data()));
    EXPECT_TRUE(input.has_error());
    (void)input.geterror();
    EXPECT_FALSE(input.read_native_scanline(1, 0, 0, 0, row.data()));
    EXPECT_THAT(input.geterror(), HasSubstr("a texture has only one image"));
    EXPECT_FALSE(input.seek_subimage(0, 1));
    EXPECT_TRUE(input.read_native_scanline(0, 0, 3, 0, row.data()));
}

TEST(TxlInput, opening_another_file_closes_the_first) {
    const TemporaryFolder folder;
    ASSERT_FALSE(write_texture(folder.path("a.txl"), made_texture(4, 4, Texture::kGrey, 0)).has_value());
    ASSERT_FALSE(write_texture(folder.path("b.txl"), made_texture(2, 6, Texture::kRgb, 1)).has_value());
    imageio::TxlInput input;
    OIIO::ImageSpec spec;
    ASSERT_TRUE(input.open(folder.path("a.txl"), spec));
    ASSERT_TRUE(input.open(folder.path("b.txl"), spec));
    EXPECT_EQ(spec.height, 6);
    EXPECT_THAT(spec.channelnames, ElementsAre("R", "G", "B", "A"));
}

/// Sets a limit of OpenImageIO and restores it.
class LibraryLimit {
  public:
    LibraryLimit(const char* name, int value) : name_(name), before_(OIIO::get_int_attribute(name)) {
        OIIO::attribute(name, value);
    }
    ~LibraryLimit() { OIIO::attribute(name_, before_); }
    LibraryLimit(const LibraryLimit&) = delete;
    LibraryLimit& operator=(const LibraryLimit&) = delete;

  private:
    const char* name_;
    int before_;
};

TEST(TxlInput, respects_the_limits_of_openimageio) {
    const TemporaryFolder folder;
    const std::string path = folder.path("a.txl");
    ASSERT_FALSE(
        write_texture(path, made_texture(1024, 512, Texture::kRgb, 1)).has_value());  // 2 MiB decoded
    OIIO::ImageSpec spec;
    {
        const LibraryLimit limit("limits:imagesize_MB", 1);
        imageio::TxlInput input;
        EXPECT_FALSE(input.open(path, spec));
        EXPECT_THAT(input.geterror(), HasSubstr("a.txl@0x"));
    }
    {
        const LibraryLimit limit("limits:imagesize_MB", 2);
        imageio::TxlInput input;
        EXPECT_TRUE(input.open(path, spec)) << input.geterror();
    }
    {
        const LibraryLimit limit("limits:channels", 3);
        imageio::TxlInput input;
        EXPECT_FALSE(input.open(path, spec));
        EXPECT_THAT(input.geterror(), HasSubstr("4 channels exceed limits:channels, which is 3"));
    }
}

}  // namespace
