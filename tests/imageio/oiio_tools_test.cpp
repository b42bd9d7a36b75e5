// The plug-in inside oiiotool, iinfo and idiff, which find it through OIIO_LIBRARY_PATH.

#include <gmock/gmock.h>

#include <cstddef>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/file_content.h"
#include "support/made_texture.h"
#include "support/temporary_folder.h"
#include "texture/value/texture_file.h"

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;

ProcessResult tool(const std::vector<std::string>& arguments) {
    std::vector<std::pair<std::string, std::string>> environment = {{"OIIO_LIBRARY_PATH", VXR_PLUGIN_DIR}};
    if (const std::string runtime = VXR_SANITIZER_RUNTIME; !runtime.empty()) {
        environment.emplace_back("LD_PRELOAD", runtime);
    }
    return run_process(arguments, environment);
}

::testing::AssertionResult succeeds(const std::vector<std::string>& arguments) {
    const ProcessResult result = tool(arguments);
    if (result.exit_code == 0) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << arguments.front() << " ended with " << result.exit_code << ":\n"
                                         << result.out << result.err;
}

Texture read_back(const std::string& path) {
    TextureReading reading = read_texture(path);
    EXPECT_FALSE(reading.error.has_value()) << path;
    EXPECT_TRUE(reading.warnings.empty()) << path;
    return reading.texture.value_or(Texture{});
}

struct TripCase {
    const char* name;
    std::int32_t mode;
    int alphas;
    const char* extension;

    friend std::ostream& operator<<(std::ostream& out, const TripCase& c) { return out << c.name; }
};

const TripCase kTrips[] = {
    {"grey_tif", Texture::kGrey, 0, "tif"},
    {"grey_alpha_tif", Texture::kGrey, 1, "tif"},
    {"rgb_tif", Texture::kRgb, 0, "tif"},
    {"rgb_alpha_tif", Texture::kRgb, 1, "tif"},
    {"rgb_three_alphas_tif", Texture::kRgb, 3, "tif"},
    {"grey_exr", Texture::kGrey, 0, "exr"},
    {"grey_alpha_exr", Texture::kGrey, 1, "exr"},
    {"grey_three_alphas_exr", Texture::kGrey, 3, "exr"},
    {"rgb_exr", Texture::kRgb, 0, "exr"},
    {"rgb_alpha_exr", Texture::kRgb, 1, "exr"},
    {"rgb_three_alphas_exr", Texture::kRgb, 3, "exr"},
    {"grey_png", Texture::kGrey, 0, "png"},
    {"rgb_png", Texture::kRgb, 0, "png"},
};

class RoundTrip : public ::testing::TestWithParam<TripCase> {};

TEST_P(RoundTrip, keeps_every_byte) {
    const TemporaryFolder folder;
    const std::string first = folder.path("first.txl");
    const std::string between = folder.path(std::string("between.") + GetParam().extension);
    const std::string second = folder.path("second.txl");
    const Texture texture = made_texture(67, 31, GetParam().mode, GetParam().alphas);
    ASSERT_FALSE(write_texture(first, texture).has_value());

    EXPECT_TRUE(succeeds({"oiiotool", first, "-o", between}));
    EXPECT_TRUE(succeeds({"oiiotool", between, "-o", second}));
    // OpenEXR stores halves, which are close to n / 255 and round back to n, so only the whole round trip is
    // exact.
    const bool halves = GetParam().extension == std::string("exr");
    EXPECT_TRUE(succeeds({"idiff", "-fail", "0", first, halves ? second : between}));
    EXPECT_TRUE(read_back(second) == texture);
}

INSTANTIATE_TEST_SUITE_P(Table, RoundTrip, ::testing::ValuesIn(kTrips),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(PngWithAlpha, keeps_every_byte_when_conversion_is_switched_off) {
    // PNG stores unassociated alpha, so by default OpenImageIO divides on writing and multiplies on reading.
    for (const std::int32_t mode : {Texture::kGrey, Texture::kRgb}) {
        const TemporaryFolder folder;
        const Texture texture = made_texture(67, 31, mode, 1);
        ASSERT_FALSE(write_texture(folder.path("first.txl"), texture).has_value());
        EXPECT_TRUE(succeeds({"oiiotool", folder.path("first.txl"), "--attrib", "oiio:UnassociatedAlpha", "1",
                              "-o", folder.path("between.png")}));
        EXPECT_TRUE(succeeds(
            {"oiiotool", "--no-autopremult", folder.path("between.png"), "-o", folder.path("second.txl")}));
        EXPECT_TRUE(read_back(folder.path("second.txl")) == texture);
    }
}

TEST(PngWithAlpha, is_divided_and_multiplied_by_default) {
    const TemporaryFolder folder;
    Texture texture = made_texture(3, 1, Texture::kGrey, 1);
    texture.pixels[0] = 64;  // associated: 64 of 128 is half of full brightness
    texture.alphas[0].values[0] = 128;
    texture.pixels[1] = 200;  // opaque: unchanged
    texture.alphas[0].values[1] = 255;
    texture.pixels[2] = 0;
    texture.alphas[0].values[2] = 0;
    ASSERT_FALSE(write_texture(folder.path("first.txl"), texture).has_value());
    ASSERT_TRUE(succeeds({"oiiotool", folder.path("first.txl"), "-o", folder.path("between.png")}));
    ASSERT_TRUE(succeeds(
        {"oiiotool", "--no-autopremult", folder.path("between.png"), "-o", folder.path("stored.txl")}));
    const Texture stored = read_back(folder.path("stored.txl"));
    EXPECT_NEAR(stored.pixels[0], 128, 1);
    EXPECT_EQ(stored.pixels[1], 200);
    EXPECT_EQ(stored.pixels[2], 0);
    EXPECT_TRUE(stored.alphas == texture.alphas);
    ASSERT_TRUE(succeeds({"oiiotool", folder.path("between.png"), "-o", folder.path("second.txl")}));
    // Rounded down in both directions.
    const Texture second = read_back(folder.path("second.txl"));
    EXPECT_NEAR(second.pixels[0], 64, 1);
    EXPECT_EQ(second.pixels[1], 200);
    EXPECT_EQ(second.pixels[2], 0);
    EXPECT_TRUE(second.alphas == texture.alphas);
}

TEST(Oiiotool, a_png_gets_the_first_of_many_alphas_and_a_message) {
    const TemporaryFolder folder;
    const Texture texture = made_texture(16, 16, Texture::kRgb, 3);
    ASSERT_FALSE(write_texture(folder.path("a.txl"), texture).has_value());
    const ProcessResult result = tool({"oiiotool", folder.path("a.txl"), "--attrib", "oiio:UnassociatedAlpha",
                                       "1", "-o", folder.path("a.png")});
    EXPECT_EQ(result.exit_code, 0) << result.err;
    EXPECT_THAT(result.out + result.err, HasSubstr("channels"));
    ASSERT_TRUE(succeeds({"oiiotool", "--no-autopremult", folder.path("a.png"), "-o", folder.path("b.txl")}));
    Texture expected = texture;
    expected.alphas.resize(1);
    EXPECT_TRUE(read_back(folder.path("b.txl")) == expected);
}

TEST(Oiiotool, other_depths_become_8_bits) {
    const TemporaryFolder folder;
    ASSERT_TRUE(succeeds({"oiiotool", "--pattern", "constant:color=0,0.5,1", "8x8", "3", "-d", "float", "-o",
                          folder.path("a.tif")}));
    ASSERT_TRUE(succeeds({"oiiotool", folder.path("a.tif"), "-o", folder.path("a.txl")}));
    const Texture texture = read_back(folder.path("a.txl"));
    EXPECT_EQ(texture.pixels[0], 0);
    EXPECT_EQ(texture.pixels[1], 128);
    EXPECT_EQ(texture.pixels[2], 255);
}

TEST(Oiiotool, a_texture_gets_the_first_image_of_many) {
    const TemporaryFolder folder;
    ASSERT_TRUE(succeeds({"oiiotool", "--create", "8x8", "3", "-d", "uint8", "-o", folder.path("a.tif")}));
    ASSERT_TRUE(succeeds({"oiiotool", "--create", "4x4", "3", "-d", "uint8", "-o", folder.path("b.tif")}));
    const ProcessResult result = tool(
        {"oiiotool", folder.path("a.tif"), folder.path("b.tif"), "--siappend", "-o", folder.path("a.txl")});
    EXPECT_EQ(result.exit_code, 0) << result.err;
    EXPECT_THAT(result.out + result.err, HasSubstr("does not support multiple subimages"));
    EXPECT_EQ(read_back(folder.path("a.txl")).width_px, 8);
}

TEST(Oiiotool, tiled_images_and_crops_become_rows) {
    const TemporaryFolder folder;
    ASSERT_TRUE(succeeds({"oiiotool", "--pattern", "fill:topleft=0,0,0:bottomright=1,1,1", "70x50", "3", "-d",
                          "uint8", "--tile", "16", "16", "-o", folder.path("a.tif")}));
    ASSERT_TRUE(succeeds({"oiiotool", folder.path("a.tif"), "-o", folder.path("a.txl")}));
    EXPECT_TRUE(succeeds({"idiff", "-fail", "0", folder.path("a.tif"), folder.path("a.txl")}));
    ASSERT_TRUE(
        succeeds({"oiiotool", folder.path("a.tif"), "--cut", "20x10+5+7", "-o", folder.path("c.txl")}));
    EXPECT_EQ(read_back(folder.path("c.txl")).width_px, 20);
}

TEST(Iinfo, shows_channels_alpha_and_metadata) {
    const TemporaryFolder folder;
    ASSERT_FALSE(write_texture(folder.path("a.txl"), made_texture(16, 9, Texture::kRgb, 2)).has_value());
    const ProcessResult result = tool({"iinfo", "-v", folder.path("a.txl")});
    EXPECT_EQ(result.exit_code, 0) << result.err;
    for (const char* line :
         {"  16 x    9, 5 channel, uint8 txl", "channel list: R, G, B, A, Alpha.2", "txl:mode: 4",
          "txl:alphas: 2", "txl:layer0:name: \"Alpha\"", "txl:layer1:attributes: 0, 0, 0, 0, 0"}) {
        EXPECT_THAT(result.out, HasSubstr(line));
    }
    EXPECT_THAT(result.out, Not(HasSubstr("UnassociatedAlpha")));
}

TEST(Iinfo, lists_the_format_with_its_extension) {
    const ProcessResult result = tool({"oiiotool", "--list-formats"});
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_THAT(result.out, HasSubstr("txl"));
}

TEST(Oiiotool, a_texture_is_recognised_by_its_first_bytes_under_any_name) {
    const TemporaryFolder folder;
    const Texture texture = made_texture(8, 8, Texture::kRgb, 0);
    ASSERT_FALSE(write_texture(folder.path("a.tex"), texture).has_value());
    ASSERT_TRUE(succeeds({"oiiotool", folder.path("a.tex"), "-o", folder.path("b.txl")}));
    EXPECT_TRUE(read_back(folder.path("b.txl")) == texture);
}

std::string first_bytes(const std::string& path, std::size_t count) {
    return content_of(path).substr(0, count);
}

TEST(WrongInput, is_an_error_with_a_position_and_leaves_no_output) {
    const TemporaryFolder folder;
    ASSERT_FALSE(write_texture(folder.path("whole.txl"), made_texture(64, 64, Texture::kRgb, 1)).has_value());
    const struct {
        const char* name;
        std::string path;
        const char* message;
    } cases[] = {
        {"cut", folder.write("cut.txl", first_bytes(folder.path("whole.txl"), 1000)), "(in 502 > TaVx)"},
        {"empty", folder.write("empty.txl", ""), "empty.txl"},
        {"not a texture", folder.write("text.txl", "this is no texture, it is text"), "text.txl"},
        {"missing", folder.path("missing.txl"), "missing.txl"},
    };
    for (const auto& c : cases) {
        const ProcessResult result = tool({"oiiotool", c.path, "-o", folder.path("out.txl")});
        EXPECT_EQ(result.exit_code, 1) << c.name;
        EXPECT_THAT(result.out + result.err, HasSubstr(c.message)) << c.name;
        EXPECT_FALSE(fs::exists(folder.path("out.txl"))) << c.name;
        EXPECT_NE(tool({"iinfo", "-v", c.path}).exit_code, 0) << c.name;
    }
}

TEST(WrongOutput, is_an_error_and_keeps_the_existing_file) {
    const TemporaryFolder folder;
    const std::string path = folder.write("there.txl", "what was there");
    ASSERT_TRUE(succeeds({"oiiotool", "--create", "32x32", "3", "-d", "uint8", "-o", folder.path("a.tif")}));
    const ProcessResult missing = tool({"oiiotool", folder.path("a.tif"), "-o", folder.path("no/a.txl")});
    EXPECT_EQ(missing.exit_code, 1);
    EXPECT_THAT(missing.out + missing.err, HasSubstr("No such file or directory"));
    EXPECT_THAT(
        tool({"oiiotool", folder.path("a.tif"), folder.path("missing.tif"), "--add", "-o", path}).exit_code,
        1);
    EXPECT_EQ(first_bytes(path, 100), "what was there");
}

}  // namespace
