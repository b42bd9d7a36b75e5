// Textures as footage: the host opens, draws and disposes of them through the module that the bundle
// registers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "end_to_end/texture_scene.h"
#include "support/area_average.h"
#include "support/loaded_bundle.h"
#include "support/temporary_folder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kLoadingMessage = "There was an error loading the file in line %d.";

std::string write(const TemporaryFolder& folder, const std::string& name, const Texture& texture) {
    const std::string path = folder.path(name);
    if (const auto error = write_texture(path, texture)) {
        throw std::runtime_error(error->reason);
    }
    return path;
}

struct Kind {
    const char* name;
    std::int32_t mode;
    int alphas;
    A_short depth;
};

const Kind kKinds[] = {
    {"grey", Texture::kGrey, 0, 24},
    {"rgb", Texture::kRgb, 0, 24},
    {"grey_with_alpha", Texture::kGrey, 1, 32},
    {"rgb_with_alpha", Texture::kRgb, 1, 32},
    {"rgb_with_three_alphas", Texture::kRgb, 3, 32},
};

class TextureFootage : public testing::TestWithParam<Kind> {};

TEST_P(TextureFootage, DescribesTheFile) {
    const TemporaryFolder folder;
    const std::string path =
        write(folder, "a.txl", make_texture(640, 480, GetParam().mode, GetParam().alphas));
    LoadedBundle bundle;
    const embedded::OpenResult opened = bundle.host().open_with_module(path);
    ASSERT_EQ(opened.error, "");
    const embedded::InSpec& spec = bundle.host().project().in_spec(opened.in_spec);
    EXPECT_EQ(spec.width, 640);
    EXPECT_EQ(spec.height, 480);
    EXPECT_FALSE(spec.dimensions_from_module) << "answered with 'use the default'";
    EXPECT_FALSE(spec.duration_from_module);
    EXPECT_EQ(spec.depth, GetParam().depth);
    EXPECT_EQ(spec.duration.value, 0);
    EXPECT_EQ(spec.duration.scale, 30U);
    EXPECT_EQ(spec.size_bytes, 1843200);
    EXPECT_EQ(spec.native_fps, 0x1E0000);
    EXPECT_EQ(spec.type_text, "");
    EXPECT_EQ(spec.sub_type_text, "");
    ASSERT_EQ(spec.alpha_label.has_value(), GetParam().alphas != 0);
    if (spec.alpha_label) {
        unsigned char bytes[sizeof(AEIO_AlphaLabel)];
        std::memcpy(bytes, &*spec.alpha_label, sizeof bytes);
        if constexpr (std::endian::native == std::endian::little) {
            EXPECT_THAT(bytes, ElementsAre(1, 1, 1, 0, 0, 0, 0, 0, 0, 1));
        }
        EXPECT_EQ(A_short{spec.alpha_label->version}, 0x0101);
        EXPECT_EQ(AEIO_AlphaFlags{spec.alpha_label->flags}, 1U);
    }
    EXPECT_EQ(bundle.host().dispose(opened.in_spec).code, 0);
    EXPECT_TRUE(bundle.host().project().in_spec(opened.in_spec).disposed);
    EXPECT_THAT(bundle.message_texts(), IsEmpty());
    bundle.host().unload();
    EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
}

TEST_P(TextureFootage, HasNoAlphaLabelInAnOlderHost) {
    const TemporaryFolder folder;
    const std::string path = write(folder, "a.txl", make_texture(8, 8, GetParam().mode, GetParam().alphas));
    for (const auto& [minor, labelled] : {std::pair{31, false}, std::pair{32, GetParam().alphas != 0}}) {
        embedded::HostOptions options;
        options.version = {9, minor};
        LoadedBundle bundle(options);
        const embedded::OpenResult opened = bundle.host().open_with_module(path);
        ASSERT_EQ(opened.error, "");
        EXPECT_EQ(bundle.host().project().in_spec(opened.in_spec).alpha_label.has_value(), labelled);
        EXPECT_EQ(bundle.host().project().in_spec(opened.in_spec).depth, GetParam().depth);
    }
}

// What a current host gets: the whole picture in the size of the frame.
PF_Pixel scaled_pixel(const Texture& texture, A_long x, A_long y, const embedded::FrameShape& shape) {
    const auto mean = [&](A_u_char PF_Pixel::*channel) {
        return area_average(
            x, y, shape.width_px, shape.height_px, texture.width_px, texture.height_px,
            [&](A_long column, A_long row) { return frame_pixel(texture, column, row).*channel; });
    };
    return {mean(&PF_Pixel::alpha), mean(&PF_Pixel::red), mean(&PF_Pixel::green), mean(&PF_Pixel::blue)};
}

// A classic host gets the top left part of the picture; the rest of its frame stays as it was.
TEST_P(TextureFootage, IsDrawnIntoFramesOfEveryShape) {
    constexpr A_long kWidth = 5;
    constexpr A_long kHeight = 4;
    constexpr std::uint8_t kFill = 0x3C;
    const struct {
        const char* name;
        embedded::FrameShape shape;
    } frames[] = {
        {"its own size", {kWidth, kHeight, 0, 0, 0, {0, 1}, kFill}},
        {"smaller", {3, 2, 0, 0, 0, {0, 1}, kFill}},
        {"larger", {9, 7, 0, 0, 0, {0, 1}, kFill}},
        {"wider and lower", {8, 2, 0, 0, 0, {0, 1}, kFill}},
        {"rows with padding", {kWidth, kHeight, 4 * kWidth + 28, 0, 0, {0, 1}, kFill}},
        {"rows with padding that is not a multiple of a pixel",
         {kWidth, kHeight, 4 * kWidth + 3, 0, 0, {0, 1}, kFill}},
        {"rows that run upwards", {kWidth, kHeight, -4 * kWidth, 0, 0, {0, 1}, kFill}},
        {"another origin, which is ignored", {kWidth, kHeight, 0, 2, -3, {0, 1}, kFill}},
        {"another time, which is ignored", {kWidth, kHeight, 0, 0, 0, {77, 25}, kFill}},
        {"no columns", {0, 4, 0, 0, 0, {0, 1}, kFill}},
        {"no rows", {4, 0, 0, 0, 0, {0, 1}, kFill}},
    };
    const TemporaryFolder folder;
    const Texture texture = make_texture(kWidth, kHeight, GetParam().mode, GetParam().alphas);
    const std::string path = write(folder, "a.txl", texture);
    LoadedBundle bundle;
    const embedded::OpenResult opened = bundle.host().open_with_module(path);
    ASSERT_EQ(opened.error, "");
    for (const auto& frame : frames) {
        SCOPED_TRACE(frame.name);
        const embedded::DrawResult drawn = bundle.host().draw(opened.in_spec, frame.shape);
        ASSERT_EQ(drawn.error, "");
        EXPECT_EQ(drawn.callback.code, 0);
        ASSERT_EQ(drawn.pixels.size(), static_cast<std::size_t>(frame.shape.width_px) *
                                           static_cast<std::size_t>(frame.shape.height_px));
        std::size_t at = 0;
        for (A_long y = 0; y < frame.shape.height_px; ++y) {
            for (A_long x = 0; x < frame.shape.width_px; ++x) {
                const PF_Pixel expected = tests_today() ? scaled_pixel(texture, x, y, frame.shape)
                                          : x < kWidth && y < kHeight ? frame_pixel(texture, x, y)
                                                                      : PF_Pixel{kFill, kFill, kFill, kFill};
                EXPECT_EQ(std::memcmp(&drawn.pixels[at++], &expected, sizeof expected), 0) << x << ", " << y;
            }
        }
    }
    EXPECT_EQ(bundle.host().dispose(opened.in_spec).code, 0);
    EXPECT_THAT(bundle.message_texts(), IsEmpty());
    EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
}

INSTANTIATE_TEST_SUITE_P(Kinds, TextureFootage, testing::ValuesIn(kKinds),
                         [](const auto& kind) { return std::string(kind.param.name); });

PF_Pixel first_pixel(LoadedBundle& bundle, embedded::Id in_spec) {
    const embedded::InSpec& spec = bundle.host().project().in_spec(in_spec);
    const embedded::DrawResult drawn =
        bundle.host().draw(in_spec, {spec.width, spec.height, 0, 0, 0, {0, 1}, 0});
    EXPECT_EQ(drawn.error, "");
    return drawn.pixels.at(0);
}

TEST(TexturesSideBySide, KeepTheirOwnPictures) {
    const TemporaryFolder folder;
    const Texture first = make_texture(3, 3, Texture::kRgb, 0, 10);
    const Texture second = make_texture(7, 2, Texture::kGrey, 1, 100);
    LoadedBundle bundle;
    const auto a = bundle.host().open_with_module(write(folder, "a.txl", first));
    const auto b = bundle.host().open_with_module(write(folder, "b.TXL", second));
    const auto again = bundle.host().open_with_module(folder.path("a.txl"));
    ASSERT_EQ(a.error + b.error + again.error, "");
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(first_pixel(bundle, a.in_spec).red, frame_pixel(first, 0, 0).red);
        EXPECT_EQ(first_pixel(bundle, b.in_spec).alpha, frame_pixel(second, 0, 0).alpha);
        EXPECT_EQ(first_pixel(bundle, b.in_spec).blue, frame_pixel(second, 0, 0).blue);
        EXPECT_EQ(first_pixel(bundle, again.in_spec).green, frame_pixel(first, 0, 0).green);
    }
    EXPECT_EQ(bundle.host().dispose(a.in_spec).code, 0);
    EXPECT_EQ(first_pixel(bundle, again.in_spec).red, frame_pixel(first, 0, 0).red);
    EXPECT_EQ(bundle.host().dispose(b.in_spec).code, 0);
    bundle.host().unload();  // the host disposes of the third
    EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
}

// The module reads the image when the file is opened.
TEST(TexturesSideBySide, AreDrawnWithoutTheirFile) {
    const TemporaryFolder folder;
    const Texture texture = make_texture(3, 3, Texture::kRgb, 1);
    const std::string path = write(folder, "a.txl", texture);
    LoadedBundle bundle;
    const auto opened = bundle.host().open_with_module(path);
    ASSERT_EQ(opened.error, "");
    std::filesystem::remove(path);
    EXPECT_EQ(first_pixel(bundle, opened.in_spec).red, frame_pixel(texture, 0, 0).red);
}

TEST(BrokenTextures, AreReportedTwiceAndLeaveTheirHandle) {
    const TemporaryFolder folder;
    const std::string whole = write(folder, "whole.txl", make_texture(6, 5, Texture::kRgb, 1));
    std::string bytes(static_cast<std::size_t>(std::filesystem::file_size(whole)), '\0');
    std::ifstream(whole, std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    std::string other_magic = bytes;
    other_magic[0] = 'X';
    std::filesystem::create_directory(folder.path("folder.txl"));
    const std::pair<const char*, std::string> broken[] = {
        {"not there", folder.path("missing.txl")},
        {"empty", folder.write("empty.txl", "")},
        {"text", folder.write("text.txl", "VORTAN XR COMPOSITION")},
        {"another magic number", folder.write("magic.txl", other_magic)},
        {"cut in the middle", folder.write("cut.txl", bytes.substr(0, bytes.size() / 2))},
        // Five chunks end after it.
        {"the last byte of its last row missing",
         folder.write("short.txl", bytes.substr(0, bytes.size() - 6))},
        {"a folder", folder.path("folder.txl")},
    };
    for (const auto& [name, path] : broken) {
        SCOPED_TRACE(name);
        LoadedBundle bundle;
        const auto opened = bundle.host().open_with_module(path);
        EXPECT_EQ(opened.in_spec, 0);
        EXPECT_EQ(opened.callback.code, 3);
        EXPECT_FALSE(opened.callback.missing_suite);
        EXPECT_THAT(bundle.message_texts(), ElementsAre(kLoadingMessage, kLoadingMessage));
        EXPECT_EQ(bundle.host().conformance().violations().size(), 1U)
            << bundle.host().conformance().to_text();
        EXPECT_EQ(bundle.host().conformance().count(embedded::RuleViolation::memory_left_alive), 1U);
        // The next file is not affected.
        const auto sound = bundle.host().open_with_module(whole);
        EXPECT_EQ(sound.error, "");
    }

    // The end of the file ends chunks just as an end tag does.
    for (const std::size_t missing : {1U, 5U}) {
        LoadedBundle bundle;
        const std::string path = folder.write("open.txl", bytes.substr(0, bytes.size() - missing));
        EXPECT_EQ(bundle.host().open_with_module(path).error, "");
        EXPECT_THAT(bundle.message_texts(), IsEmpty());
    }
}

// Classic hosts draw only what they have opened. In a current host the bridge has the module load the file
// again (reopened_textures_test.cpp), and this file does not exist.
TEST(TexturesInAFailingHost, WithoutAnOptionsHandleNothingIsDrawnOrFreed) {
    LoadedBundle bundle;
    const embedded::Id spec = bundle.host().new_in_spec("never_opened.txl");
    const auto drawn = bundle.host().draw(spec, {2, 2, 0, 0, 0, {0, 1}, 0x11});
    EXPECT_EQ(drawn.error, "");
    EXPECT_EQ(drawn.callback.code, tests_today() ? 3 : 0);
    for (const PF_Pixel& pixel : drawn.pixels) {
        EXPECT_EQ(pixel.red, 0x11);
    }
    EXPECT_EQ(bundle.host().dispose(spec).code, 0);
    EXPECT_EQ(bundle.message_texts().size(), tests_today() ? 1U : 0U);
    // The handle with the path, which a current host lends.
    EXPECT_EQ(bundle.host().call_counts()["AEGP_FreeMemHandle"], tests_today() ? 1 : 0);
    EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
}

TEST(TexturesInAFailingHost, WithoutAWorldDrawingIsAnError) {
    const TemporaryFolder folder;
    LoadedBundle bundle;
    const auto opened =
        bundle.host().open_with_module(write(folder, "a.txl", make_texture(2, 2, Texture::kRgb, 0)));
    ASSERT_EQ(opened.error, "");
    const auto result = bundle.host().run("AEIO_DrawSparseFrame", [&] {
        return bundle.host().modules()[0].with_functions([&](const auto& functions) {
            return functions.AEIO_DrawSparseFrame(bundle.host().basic_data(),
                                                  bundle.host().in_spec_handle(opened.in_spec), nullptr,
                                                  nullptr, nullptr);
        });
    });
    EXPECT_EQ(result.code, 3);
    EXPECT_THAT(bundle.message_texts(), ElementsAre("There was an error drawing the frame."));
}

TEST(TexturesInCompositions, AreFootageWithTheSizeDepthAndAlphaOfTheirFile) {
    const TemporaryFolder folder;
    write(folder, "cloth.txl", make_texture(31, 17, Texture::kRgb, 1));
    write(folder, "wall.txl", make_texture(5, 6, Texture::kGrey, 0));
    const std::string path = folder.write("shot.aec", R"(VORTAN XR COMPOSITION
RESOLUTION 64 48 FROM 0 TO 3 RANGE 4 FPS 25
COMPOSITION NRM "Main" {
  FILE NRM STRAIGHT "C:\textures\cloth.txl"
}
FILE <-> PREMUL "C:\textures\wall.txl"
)");
    LoadedBundle bundle;
    ASSERT_EQ(bundle.host().import_file(path).code, 0);
    const embedded::Project& project = bundle.host().project();
    ASSERT_EQ(project.footage.size(), 2U);

    const embedded::Footage& cloth = project.footage[0];
    EXPECT_EQ(cloth.kind, embedded::FootageKind::module_file);
    EXPECT_EQ(cloth.width, 31);
    EXPECT_EQ(cloth.height, 17);
    EXPECT_EQ(cloth.bits_per_channel, 8);
    EXPECT_TRUE(cloth.has_alpha);
    // The composition file decides how alpha is interpreted.
    EXPECT_EQ(cloth.interpretation.alpha.flags, 0U);
    EXPECT_EQ(project.in_spec(cloth.in_spec).depth, 32);

    const embedded::Footage& wall = project.footage[1];
    EXPECT_EQ(wall.kind, embedded::FootageKind::module_file);
    EXPECT_EQ(wall.width, 5);
    EXPECT_EQ(wall.height, 6);
    EXPECT_FALSE(wall.has_alpha);
    EXPECT_EQ(wall.interpretation.alpha.flags, kAlphaFlagPremultiplied);
    EXPECT_EQ(project.in_spec(wall.in_spec).depth, 24);

    ASSERT_EQ(project.layers.size(), 1U);
    EXPECT_EQ(project.item(project.layers[0].source_item).content, cloth.id);
    EXPECT_THAT(bundle.message_texts(), IsEmpty());
    bundle.host().unload();
    EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
}

TEST(TexturesInCompositions, ThatAreBrokenEndTheImport) {
    const TemporaryFolder folder;
    folder.write("cloth.txl", "no texture");
    const std::string path = folder.write("shot.aec", R"(VORTAN XR COMPOSITION
RESOLUTION 64 48 FROM 0 TO 3 RANGE 4 FPS 25
COMPOSITION NRM "Main" {
  FILE NRM STRAIGHT "C:\textures\cloth.txl"
}
)");
    LoadedBundle bundle;
    EXPECT_EQ(bundle.host().import_file(path).code, 3);
    // Two messages of the module, whose text is shown unformatted, then those of the composition and the
    // import.
    EXPECT_THAT(bundle.message_texts(),
                ElementsAre(kLoadingMessage, kLoadingMessage, "Unable to create composition.",
                            "There was an error loading the file in line 7."));
    EXPECT_EQ(bundle.host().project().items.size(), 3U);
    ASSERT_EQ(bundle.host().project().undo_steps.size(), 1U);
    EXPECT_TRUE(bundle.host().project().undo_steps[0].closed);
    EXPECT_EQ(bundle.host().conformance().violations().size(), 1U) << bundle.host().conformance().to_text();
    EXPECT_EQ(bundle.host().conformance().count(embedded::RuleViolation::memory_left_alive), 1U);
}

}  // namespace
