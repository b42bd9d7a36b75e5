// image.h with the image library behind it. `vxr texture convert` tests every format; here are the codes.

#include "image/image.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "image/functions.h"
#include "support/made_texture.h"
#include "support/special_files.h"
#include "support/temporary_folder.h"

namespace {

using image::Code;

TEST(Images, ComeBackAsTheyWereWritten) {
    const TemporaryFolder folder;
    const Texture texture = made_texture(13, 5, Texture::kRgb, 1);
    for (const char* const name : {"a.png", "a.tif", "a.tga"}) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(image::can_write(name));
        const image::Writing writing = image::write(folder.path(name), texture);
        ASSERT_FALSE(writing.error.has_value());
        EXPECT_TRUE(writing.warnings.empty());
        const image::Reading reading = image::read(folder.path(name));
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
            const image::WriteOptions options;
            ASSERT_TRUE(
                image::built_in_functions().write(path.c_str(), &texture, &options, &ignore, nullptr));
            const image::Reading reading = image::read(path);
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
        const image::Reading reading = image::read(c.path);
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
        std::int32_t mode;
        int alphas;
        Code code;
    } cases[] = {
        {"a format without alpha", "a.jpg", Texture::kRgb, 1, Code::channels_without_room},
        {"a format with one alpha", "a.png", Texture::kRgb, 2, Code::channels_without_room},
        {"as many channels as RGB, but two are alphas", "a.png", Texture::kGrey, 2,
         Code::channels_without_room},
        {"as many channels as RGB and alpha", "a.tga", Texture::kGrey, 3, Code::channels_without_room},
        {"more channels than the library reads", "a.exr", Texture::kRgb, 1100, Code::channels_without_room},
        {"the same in TIFF", "a.tif", Texture::kGrey, 1100, Code::channels_without_room},
        {"an unknown format", "a.zzz", Texture::kRgb, 0, Code::no_format},
        {"a folder that does not exist", "missing/a.png", Texture::kRgb, 0, Code::cannot_open},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto error = image::write(folder.path(c.file), made_texture(4, 3, c.mode, c.alphas)).error;
        ASSERT_TRUE(error.has_value());
        EXPECT_EQ(error->code, c.code);
        EXPECT_EQ(error->at.file, folder.path(c.file));
    }
    for (const char* const name : {"a.png", "a.tif", "a.exr"}) {
        const auto none = image::write(folder.path(name), made_texture(0, 3, Texture::kRgb, 0)).error;
        ASSERT_TRUE(none.has_value()) << name;
        EXPECT_EQ(none->code, Code::unsupported);
        EXPECT_EQ(none->reason, "the picture has no pixels: its size is 0 x 3");
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder.folder()));
    EXPECT_FALSE(image::can_write("a.zzz"));
    EXPECT_FALSE(image::can_write("a.null"));
}

/// Extensions by which OpenImageIO writes, one for each format that it also reads back without mistakes.
std::vector<std::string> written_extensions() {
    return {"bmp", "dpx", "exr", "fits", "gif", "hdr", "ico", "jpg",
            "png", "ppm", "rla", "sgi",  "tga", "tif", "webp"};
}

/// Formats that change bytes, add an alpha channel, or hold colour as planes without names.
bool is_exact(const std::string& extension) {
    static const std::set<std::string> kInexact{"gif", "hdr", "ico", "jpg", "webp", "dpx", "fits"};
    return kInexact.count(extension) == 0;
}

// What a format has no room for is refused; what is written comes back with the same mode and alphas.
TEST(Images, AreRefusedOrComeBackWithAllChannels) {
    int refused = 0;
    int compared = 0;
    for (const std::string& extension : written_extensions()) {
        for (const std::int32_t mode : {Texture::kGrey, Texture::kRgb}) {
            for (const int alphas : {0, 1, 2, 3}) {
                SCOPED_TRACE(extension + ", mode " + std::to_string(mode) + ", alphas " +
                             std::to_string(alphas));
                const TemporaryFolder folder;
                const std::string path = folder.path("a." + extension);
                if (!image::can_write(path)) {
                    continue;
                }
                const Texture texture = made_texture(13, 7, mode, alphas);
                if (const image::Writing writing = image::write(path, texture); writing.error.has_value()) {
                    EXPECT_EQ(writing.error->code, Code::channels_without_room) << writing.error->reason;
                    EXPECT_FALSE(std::filesystem::exists(path));
                    ++refused;
                    continue;
                }
                const image::Reading reading = image::read(path);
                ASSERT_TRUE(reading.texture.has_value()) << reading.diagnostics.front().reason;
                if (!is_exact(extension)) {
                    continue;
                }
                EXPECT_EQ(reading.texture->mode, mode);
                EXPECT_EQ(reading.texture->pixels, texture.pixels);
                ASSERT_EQ(reading.texture->alphas.size(), texture.alphas.size());
                for (std::size_t i = 0; i < texture.alphas.size(); ++i) {
                    EXPECT_EQ(reading.texture->alphas[i].values, texture.alphas[i].values) << i;
                }
                ++compared;
            }
        }
    }
    EXPECT_GT(refused, 20);
    EXPECT_GT(compared, 20);
}

TEST(Images, WithAThousandAlphasCanBeReadAgain) {
    const TemporaryFolder folder;
    for (const std::int32_t mode : {Texture::kGrey, Texture::kRgb}) {
        const Texture texture = made_texture(3, 2, mode, 1000);
        for (const char* const name : {"a.tif", "a.exr"}) {
            SCOPED_TRACE(name);
            const image::Writing writing = image::write(folder.path(name), texture);
            ASSERT_FALSE(writing.error.has_value()) << writing.error->reason;
            const image::Reading reading = image::read(folder.path(name));
            ASSERT_TRUE(reading.texture.has_value()) << reading.diagnostics.front().reason;
            EXPECT_EQ(reading.texture->mode, mode);
            EXPECT_EQ(reading.texture->pixels, texture.pixels);
            ASSERT_EQ(reading.texture->alphas.size(), 1000U);
            EXPECT_EQ(reading.texture->alphas.back().values, texture.alphas.back().values);
        }
    }
}

TEST(Images, HaveTheirLibraryBesideTheProgram) {
    EXPECT_EQ(image::library_problem(), "");
    EXPECT_EQ(image::build_note(), "");
}

}  // namespace
