// What Windows' imaging component can do for a build without an image library: its results and its codes.
// tests/windows/images_test.py compares it with other programs.

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "image/image.h"
#include "support/file_content.h"
#include "support/made_texture.h"
#include "support/temporary_folder.h"

namespace {

using image::Code;

TEST(SystemFunctions, WriteWhatTheyReadBackExactly) {
    const struct {
        const char* name;
        std::int32_t mode;
        int alphas;
        std::int32_t width_px;
        std::int32_t height_px;
    } cases[] = {
        {"grey.png", Texture::kGrey, 0, 13, 7},
        {"rgb.PNG", Texture::kRgb, 0, 13, 7},
        {"rgba.png", Texture::kRgb, 1, 13, 7},
        {"grey.tif", Texture::kGrey, 0, 13, 7},
        {"rgb.tiff", Texture::kRgb, 0, 13, 7},
        {"rgba.tif", Texture::kRgb, 1, 13, 7},
        {"rgb.bmp", Texture::kRgb, 0, 13, 7},
        {"one_pixel.png", Texture::kRgb, 1, 1, 1},
        {"more_rows_than_are_passed_at_a_time.png", Texture::kRgb, 0, 2048, 3001},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const TemporaryFolder folder;
        const Texture texture = made_texture(c.width_px, c.height_px, c.mode, c.alphas);
        ASSERT_FALSE(image::write(folder.path(c.name), texture).error.has_value());
        const image::Reading reading = image::read(folder.path(c.name));
        ASSERT_TRUE(reading.texture.has_value());
        EXPECT_TRUE(reading.diagnostics.empty());
        EXPECT_EQ(reading.texture->mode, texture.mode);
        EXPECT_EQ(reading.texture->width_px, texture.width_px);
        EXPECT_TRUE(reading.texture->pixels == texture.pixels);
        ASSERT_EQ(reading.texture->alphas.size(), texture.alphas.size());
        for (std::size_t i = 0; i < texture.alphas.size(); ++i) {
            EXPECT_TRUE(reading.texture->alphas[i].values == texture.alphas[i].values);
        }
    }
}

TEST(SystemFunctions, ProbeAsTheyRead) {
    const TemporaryFolder folder;
    ASSERT_FALSE(image::write(folder.path("a.tif"), made_texture(13, 7, Texture::kRgb, 1)).error);
    const image::Probe probe = image::probe(folder.path("a.tif"));
    ASSERT_TRUE(probe.header.has_value());
    EXPECT_EQ(probe.header->width_px, 13);
    EXPECT_EQ(probe.header->height_px, 7);
    EXPECT_EQ(probe.header->channels, 4);
    EXPECT_TRUE(probe.header->alpha_premultiplied);
}

TEST(SystemFunctions, RefuseWithACode) {
    const TemporaryFolder folder;
    const auto read_error = [](const std::string& path) {
        const image::Reading reading = image::read(path);
        EXPECT_FALSE(reading.texture.has_value());
        return reading.diagnostics.at(0);
    };
    EXPECT_EQ(read_error(folder.path("missing.png")).code, Code::cannot_open);
    EXPECT_EQ(read_error(folder.write("text.png", "no picture")).code, Code::not_an_image);
    EXPECT_EQ(read_error(folder.write("empty.png", "")).code, Code::not_an_image);
    ASSERT_FALSE(image::write(folder.path("a.tga"), made_texture(4, 3, Texture::kRgb, 1)).error);
    EXPECT_EQ(read_error(folder.path("a.tga")).code, Code::not_an_image);

    const auto write_error = [&folder](const char* name, const Texture& texture) {
        const auto error = image::write(folder.path(name), texture).error;
        EXPECT_TRUE(error.has_value());
        EXPECT_FALSE(std::filesystem::exists(folder.folder() / name));
        return error->code;
    };
    const Texture rgb = made_texture(4, 3, Texture::kRgb, 0);
    EXPECT_EQ(write_error("a.exr", rgb), Code::no_format);
    EXPECT_EQ(write_error("missing/a.png", rgb), Code::cannot_open);
    EXPECT_EQ(write_error("a.png", made_texture(0, 3, Texture::kRgb, 0)), Code::unsupported);
    EXPECT_EQ(write_error("a.png", made_texture(4, 3, Texture::kRgb, 2)), Code::channels_without_room);
    EXPECT_EQ(write_error("a.png", made_texture(4, 3, Texture::kGrey, 1)), Code::channels_without_room);
    EXPECT_EQ(write_error("a.jpg", made_texture(4, 3, Texture::kRgb, 1)), Code::channels_without_room);
    EXPECT_EQ(write_error("a.bmp", made_texture(4, 3, Texture::kRgb, 1)), Code::channels_without_room);
    EXPECT_TRUE(image::can_write("a.PNG"));
    EXPECT_TRUE(image::can_write("a.tga"));
    EXPECT_FALSE(image::can_write("a.exr"));
    EXPECT_FALSE(image::can_write("png"));
}

TEST(SystemFunctions, KeepTheOldFileWhenTheNewOneIsRefused) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a.jpg", "old");
    EXPECT_TRUE(image::write(path, made_texture(4, 3, Texture::kRgb, 1)).error.has_value());
    EXPECT_EQ(content_of(path), "old");
}

TEST(SystemFunctions, WorkOnSeveralThreads) {
    const TemporaryFolder folder;
    const Texture texture = made_texture(64, 64, Texture::kRgb, 1);
    std::vector<std::thread> threads;
    std::vector<int> same(4, 0);
    for (std::size_t i = 0; i < same.size(); ++i) {
        threads.emplace_back([&, i] {
            const std::string path = folder.path((std::to_string(i) + ".png").c_str());
            if (!image::write(path, texture).error) {
                const image::Reading reading = image::read(path);
                same[i] = reading.texture && reading.texture->pixels == texture.pixels ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(same, std::vector<int>(4, 1));
}

}  // namespace
