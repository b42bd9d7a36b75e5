// What builds without an image library can do: read headers, write TGA, and refuse the rest with a reason.

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "image/functions.h"
#include "support/file_content.h"
#include "support/made_texture.h"
#include "support/temporary_folder.h"

namespace {

using image::Code;
const image::WriteOptions kOptions;

using Reports = std::vector<std::pair<Code, std::string>>;

void add(void* reports, Code code, const char* reason) {
    static_cast<Reports*>(reports)->emplace_back(code, reason);
}

/// The single error that was reported, which must have a reason.
Code only_error(const Reports& reports) {
    EXPECT_EQ(reports.size(), 1U);
    EXPECT_FALSE(reports.at(0).second.empty());
    return reports.at(0).first;
}

Texture texture_of(std::int32_t mode, std::vector<std::uint8_t> pixels, std::vector<std::uint8_t> alpha) {
    Texture texture = made_texture(2, 1, mode, alpha.empty() ? 0 : 1);
    std::copy(pixels.begin(), pixels.end(), texture.pixels.begin());
    if (!alpha.empty()) {
        std::copy(alpha.begin(), alpha.end(), texture.alphas[0].values.begin());
    }
    return texture;
}

TEST(BuiltInFunctions, WriteTgaByteForByte) {
    struct Case {
        const char* name;
        Texture texture;
        std::string kind_depth_and_flags;  // bytes 2, 16 and 17 of the header
        std::string pixels;
    };
    const Case cases[] = {
        {"RGB is stored as blue, green, red",
         texture_of(Texture::kRgb, {1, 2, 3, 4, 5, 6}, {}),
         {2, 24, 0x20},
         {3, 2, 1, 6, 5, 4}},
        {"RGB with alpha",
         texture_of(Texture::kRgb, {1, 2, 3, 4, 5, 6}, {7, 8}),
         {2, 32, 0x28},
         {3, 2, 1, 7, 6, 5, 4, 8}},
        {"grey", texture_of(Texture::kGrey, {1, 2}, {}), {3, 8, 0x20}, {1, 2}},
        {"grey with alpha", texture_of(Texture::kGrey, {1, 2}, {7, 8}), {3, 16, 0x28}, {1, 7, 2, 8}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const TemporaryFolder folder;
        const std::string path = folder.path("a.tga");
        Reports reports;
        ASSERT_TRUE(image::built_in_functions().write(path.c_str(), &c.texture, &kOptions, &add, &reports));
        EXPECT_TRUE(reports.empty());
        std::string header(18, '\0');
        header[2] = c.kind_depth_and_flags[0];
        header[12] = 2;  // width
        header[14] = 1;  // height
        header[16] = c.kind_depth_and_flags[1];
        header[17] = c.kind_depth_and_flags[2];
        EXPECT_EQ(content_of(path), header + c.pixels);
    }
}

TEST(BuiltInFunctions, ProbeWhatTheyWrite) {
    const TemporaryFolder folder;
    const std::string path = folder.path("a.tga");
    const Texture texture = made_texture(300, 7, Texture::kRgb, 1);
    Reports reports;
    const image::Functions& functions = image::built_in_functions();
    ASSERT_TRUE(functions.write(path.c_str(), &texture, &kOptions, &add, &reports));
    image::Header header;
    ASSERT_TRUE(functions.probe(path.c_str(), &header, &add, &reports));
    EXPECT_EQ(header.width_px, 300);
    EXPECT_EQ(header.height_px, 7);
    EXPECT_EQ(header.channels, 4);
    EXPECT_EQ(header.bits_per_channel, 8);
    EXPECT_TRUE(header.has_alpha);
    EXPECT_FALSE(header.alpha_premultiplied);
    EXPECT_TRUE(reports.empty());
}

TEST(BuiltInFunctions, RefuseWithACode) {
    const TemporaryFolder folder;
    const image::Functions& functions = image::built_in_functions();
    const auto write_error = [&](const char* name, const Texture& texture) {
        Reports reports;
        EXPECT_FALSE(functions.write(folder.path(name).c_str(), &texture, &kOptions, &add, &reports));
        return only_error(reports);
    };
    EXPECT_EQ(write_error("a.tga", made_texture(0, 4, Texture::kRgb, 0)), Code::unsupported);
    EXPECT_EQ(write_error("a.tga", made_texture(0x10000, 1, Texture::kGrey, 0)), Code::unsupported);
    EXPECT_EQ(write_error("a.tga", made_texture(1, 0x10000, Texture::kGrey, 0)), Code::unsupported);
    EXPECT_EQ(write_error("a.tga", made_texture(2, 2, Texture::kRgb, 2)), Code::channels_without_room);
    EXPECT_EQ(write_error("missing/a.tga", made_texture(2, 2, Texture::kRgb, 0)), Code::cannot_open);

    Reports reports;
    image::Header header;
    EXPECT_FALSE(functions.probe(folder.path("missing.png").c_str(), &header, &add, &reports));
    EXPECT_EQ(only_error(reports), Code::cannot_open);
    reports.clear();
    EXPECT_FALSE(functions.probe(folder.write("a.png", "text").c_str(), &header, &add, &reports));
    EXPECT_EQ(only_error(reports), Code::not_an_image);
    reports.clear();
    Texture texture;
    EXPECT_FALSE(functions.read(folder.path("a.png").c_str(), &kOptions.alpha, &texture, &add, &reports));
    EXPECT_EQ(only_error(reports), Code::not_an_image);
}

TEST(BuiltInFunctions, WriteAPictureOfTheLargestSide) {
    const TemporaryFolder folder;
    const Texture texture = made_texture(0xFFFF, 1, Texture::kGrey, 0);
    Reports reports;
    EXPECT_TRUE(
        image::built_in_functions().write(folder.path("a.tga").c_str(), &texture, &kOptions, &add, &reports));
}

TEST(BuiltInFunctions, KnowTheExtensionOfTgaInEitherCase) {
    const image::Functions& functions = image::built_in_functions();
    EXPECT_TRUE(functions.can_write("a.tga"));
    EXPECT_TRUE(functions.can_write("folder.x/a.TgA"));
    EXPECT_FALSE(functions.can_write("a.png"));
    EXPECT_FALSE(functions.can_write("a.tgax"));
    EXPECT_FALSE(functions.can_write("tga"));
}

}  // namespace
