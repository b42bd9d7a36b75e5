// image.h with the image library behind it. `vxr texture convert` tests every format; here are the codes.

#include "image/image.h"

#include <gtest/gtest.h>

#include <string>

#include "image/functions.h"
#include "support/made_texture.h"
#include "support/special_files.h"
#include "support/temporary_folder.h"

namespace {

using image::AlphaBytes;
using image::Code;

TEST(Images, ComeBackAsTheyWereWritten) {
    const TemporaryFolder folder;
    const Texture texture = made_texture(13, 5, Texture::kRgb, 1);
    for (const char* const name : {"a.png", "a.tif", "a.tga"}) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(image::can_write(name));
        ASSERT_FALSE(image::write(folder.path(name), texture, AlphaBytes::kept).has_value());
        const image::Reading reading = image::read(folder.path(name), AlphaBytes::kept);
        ASSERT_TRUE(reading.texture.has_value());
        EXPECT_TRUE(reading.diagnostics.empty());
        EXPECT_EQ(reading.texture->pixels, texture.pixels);
        ASSERT_EQ(reading.texture->alphas.size(), 1U);
        EXPECT_EQ(reading.texture->alphas[0].values, texture.alphas[0].values);
    }
}

void ignore(void* /*reports*/, Code /*code*/, const char* /*reason*/) {}

TEST(Images, ThatAreWrittenWithoutTheLibraryAreReadByIt) {
    const TemporaryFolder folder;
    for (const std::int32_t mode : {Texture::kGrey, Texture::kRgb}) {
        for (const int alphas : {0, 1}) {
            SCOPED_TRACE(std::to_string(mode) + ' ' + std::to_string(alphas));
            const Texture texture = made_texture(13, 5, mode, alphas);
            const std::string path = folder.path("a.tga");
            ASSERT_TRUE(image::built_in_functions().write(path.c_str(), &texture, AlphaBytes::kept, &ignore,
                                                          nullptr));
            const image::Reading reading = image::read(path, AlphaBytes::kept);
            ASSERT_TRUE(reading.texture.has_value());
            EXPECT_EQ(reading.texture->pixels, texture.pixels);
            ASSERT_EQ(reading.texture->alphas.size(), texture.alphas.size());
            if (alphas > 0) {
                EXPECT_EQ(reading.texture->alphas[0].values, texture.alphas[0].values);
            }
        }
    }
}

TEST(Images, AreRefusedWithACodeAtTheirPath) {
    const TemporaryFolder folder;
    const std::string pipe = folder.path("pipe.png");
    make_pipe(pipe);
    const struct {
        const char* name;
        std::string path;
        Code code;
    } cases[] = {
        {"a missing file", folder.path("missing.png"), Code::cannot_open},
        {"a pipe, which nobody writes to", pipe, Code::cannot_open},
        {"a folder", folder.folder().string(), Code::cannot_open},
        {"a text", folder.write("text.png", "no picture"), Code::not_an_image},
        {"an empty file", folder.write("empty.tif", ""), Code::not_an_image},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const image::Probe probe = image::probe(c.path);
        EXPECT_FALSE(probe.header.has_value());
        ASSERT_TRUE(probe.error.has_value());
        EXPECT_EQ(probe.error->code, c.code);
        EXPECT_EQ(probe.error->at.file, c.path);
        const image::Reading reading = image::read(c.path, AlphaBytes::kept);
        EXPECT_FALSE(reading.texture.has_value());
        ASSERT_EQ(reading.diagnostics.size(), 1U);
        EXPECT_EQ(reading.diagnostics[0].code, c.code);
        EXPECT_EQ(reading.diagnostics[0].at.file, c.path);
        EXPECT_FALSE(reading.diagnostics[0].reason.empty());
    }
}

TEST(Images, AreNotWrittenWhereTheyDoNotFit) {
    const TemporaryFolder folder;
    const struct {
        const char* name;
        const char* file;
        int alphas;
        Code code;
    } cases[] = {
        {"a format without alpha", "a.jpg", 1, Code::channels_without_room},
        {"a format with one alpha", "a.png", 2, Code::channels_without_room},
        {"an unknown format", "a.zzz", 0, Code::no_format},
        {"a folder that does not exist", "missing/a.png", 0, Code::cannot_open},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto error =
            image::write(folder.path(c.file), made_texture(4, 3, Texture::kRgb, c.alphas), AlphaBytes::kept);
        ASSERT_TRUE(error.has_value());
        EXPECT_EQ(error->code, c.code);
        EXPECT_EQ(error->at.file, folder.path(c.file));
    }
    EXPECT_EQ(
        image::write(folder.path("a.png"), made_texture(0, 3, Texture::kRgb, 0), AlphaBytes::kept)->code,
        Code::unsupported);
    EXPECT_TRUE(std::filesystem::is_empty(folder.folder()));
    EXPECT_FALSE(image::can_write("a.zzz"));
    EXPECT_FALSE(image::can_write("a.null"));
}

TEST(Images, HaveTheirLibraryBesideTheProgram) {
    EXPECT_EQ(image::library_problem(), "");
    EXPECT_EQ(image::build_note(), "");
}

}  // namespace
