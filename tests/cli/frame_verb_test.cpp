// `vxr modules` and `vxr frame`: the plug-in's input module as a host sees it, with the bundle as
// built.

#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/area_average.h"
#include "support/child_process.h"
#include "support/made_texture.h"
#include "support/temporary_folder.h"
#include "texture/value/texture_file.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

const std::string kTextures = VXR_EXAMPLES_DIR "/textures";

ProcessResult vxr(const TemporaryFolder& folder, const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"env", "-C", folder.folder().string(), VXR_PROGRAM};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return run_process(command);
}

/// The bytes of the image, read through the converter, which keeps them as stored.
Texture picture(const TemporaryFolder& folder, const std::string& image) {
    const ProcessResult run = vxr(folder, {"texture", "convert", image, "-o", "picture.txl"});
    EXPECT_EQ(run.exit_code, 0) << run.err;
    return read_texture(folder.path("picture.txl")).texture.value_or(Texture{});
}

TEST(ModulesVerb, ListsTheTextureModule) {
    const TemporaryFolder folder;
    const ProcessResult run = vxr(folder, {"modules"});
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out,
              "Texalon 3D\n"
              "  signature    'TXL '\n"
              "  extensions   .txl\n"
              "  flags        input, file, still, no time, no options, no user interface\n"
              "  creates      type 'TXL ', creator 'VXR1'\n"
              "  announces    at most 320 x 240 pixels\n");
    const json document = json::parse(vxr(folder, {"modules", "--json"}).out);
    EXPECT_EQ(document.at("schema"), 1);
    EXPECT_EQ(document.at("modules").size(), 1U);
    EXPECT_EQ(document.at("modules").at(0).at("flags"), 33620045);
    EXPECT_EQ(document.at("modules").at(0).at("signature"), "TXL ");
}

TEST(ModulesVerb, WithoutABundleIsAnErrorInEveryForm) {
    const TemporaryFolder folder;
    const ProcessResult text = vxr(folder, {"modules", "--bundle", "missing.so"});
    EXPECT_EQ(text.exit_code, 3);
    EXPECT_NE(text.err.find("the plug-in was not loaded"), std::string::npos) << text.err;
    const ProcessResult document = vxr(folder, {"modules", "--json", "--bundle", "missing.so"});
    EXPECT_EQ(document.exit_code, 3);
    EXPECT_EQ(json::parse(document.out).at("exit_code"), 3);
}

TEST(FrameVerb, IsThePictureThatTheReaderReads) {
    for (const char* name : {"flat_rgb", "flat_grey_alpha", "noisy_grey", "photo_rgb_alpha",
                             "photo_grey_three_alphas", "every_flag", "tiny"}) {
        const TemporaryFolder folder;
        const std::string file = kTextures + "/" + name + ".txl";
        const ProcessResult run = vxr(folder, {"frame", file, "-o", "frame.png"});
        ASSERT_EQ(run.exit_code, 0) << name << run.err;
        const Texture drawn = picture(folder, "frame.png");
        const Texture stored = read_texture(file).texture.value();
        ASSERT_EQ(drawn.width_px, stored.width_px) << name;
        ASSERT_EQ(drawn.height_px, stored.height_px) << name;
        ASSERT_EQ(drawn.alphas.size(), 1U) << name;
        std::size_t different = 0;
        for (std::size_t i = 0; i < stored.pixel_count(); ++i) {
            for (std::size_t channel = 0; channel < 3; ++channel) {
                const std::uint8_t expected =
                    stored.mode == Texture::kGrey ? stored.pixels[i] : stored.pixels[3 * i + channel];
                different += drawn.pixels[3 * i + channel] == expected ? 0 : 1;
            }
            // The host receives the first alpha channel, or 255 if there is none.
            const std::uint8_t alpha = stored.alphas.empty() ? 255 : stored.alphas[0].values[i];
            different += drawn.alphas[0].values[i] == alpha ? 0 : 1;
        }
        EXPECT_EQ(different, 0U) << name;
    }
}

TEST(FrameVerb, SaysWhatTheHostWasTold) {
    const TemporaryFolder folder;
    const std::string file = kTextures + "/photo_rgb_alpha.txl";
    const ProcessResult run = vxr(folder, {"frame", file, "-o", "frame.png"});
    EXPECT_EQ(run.out, file +
                           ": 160 x 120, 32 bits, alpha premultiplied, still at 30 frames a second\n"
                           "frame of 160 x 120 -> frame.png\n");
    EXPECT_EQ(run.err, "");
    const ProcessResult old_host = vxr(folder, {"frame", file, "-o", "frame.png", "--host", "9.31"});
    EXPECT_NE(old_host.out.find("32 bits, no alpha label"), std::string::npos) << old_host.out;

    const json document = json::parse(vxr(folder, {"frame", file, "-o", "frame.png", "--json"}).out);
    EXPECT_EQ(document.at("schema"), 2);
    EXPECT_EQ(document.at("in_specs").at(0).at("depth"), 32);
    EXPECT_EQ(document.at("frame").at("draw_result"), 0);
    EXPECT_EQ(document.at("discipline").at("clean"), true);
}

TEST(FrameVerb, EveryKindOfHostDrawsTheSame) {
    const TemporaryFolder folder;
    const std::string file = kTextures + "/photo_rgb_alpha.txl";
    const ProcessResult usual = vxr(folder, {"frame", file, "-o", "frame.png", "--json"});
    const Texture drawn = picture(folder, "frame.png");
    for (const char* kind : {"classic", "today", "12.5", "25.3"}) {
        const ProcessResult run = vxr(folder, {"frame", file, "-o", "frame.png", "--json", "--host", kind});
        EXPECT_EQ(run.exit_code, 0) << kind << run.err;
        EXPECT_EQ(run.out, usual.out) << kind;
        const Texture again = picture(folder, "frame.png");
        EXPECT_TRUE(
            std::equal(drawn.pixels.begin(), drawn.pixels.end(), again.pixels.begin(), again.pixels.end()))
            << kind;
        EXPECT_EQ(vxr(folder, {"modules", "--host", kind}).out, vxr(folder, {"modules"}).out) << kind;
    }
}

TEST(FrameVerb, FileNamesThatAreNotUtf8NeedAClassicHost) {
    const TemporaryFolder folder;
    const std::string file = "caf\xE9.txl";
    ASSERT_FALSE(write_texture(folder.path(file), made_texture(8, 6, Texture::kRgb, 1)).has_value());
    const ProcessResult today = vxr(folder, {"frame", file, "-o", "f.png"});
    EXPECT_EQ(today.exit_code, 1);
    EXPECT_EQ(today.out, "");
    EXPECT_NE(today.err.find("caf\\xe9.txl: the path is not UTF-8 (byte 0xE9 at offset "), std::string::npos)
        << today.err;
    EXPECT_FALSE(fs::exists(folder.path("f.png")));
    EXPECT_EQ(vxr(folder, {"frame", file, "-o", "f.png", "--host", "classic"}).exit_code, 0);
    EXPECT_TRUE(fs::exists(folder.path("f.png")));
}

TEST(FrameVerb, AClassicHostsFrameOfAnotherSizeGetsTheTopLeftPart) {
    const TemporaryFolder folder;
    ASSERT_FALSE(write_texture(folder.path("a.txl"), made_texture(8, 6, Texture::kRgb, 1)).has_value());
    const Texture stored = read_texture(folder.path("a.txl")).texture.value();
    ASSERT_EQ(
        vxr(folder, {"frame", "a.txl", "-o", "f.png", "--size", "10x4", "--fill", "77", "--host", "classic"})
            .exit_code,
        0);
    const Texture drawn = picture(folder, "f.png");
    ASSERT_EQ(drawn.width_px, 10);
    ASSERT_EQ(drawn.height_px, 4);
    EXPECT_EQ(drawn.pixels[3], stored.pixels[3]);
    EXPECT_EQ(drawn.pixels[(3 * 10 + 7) * 3], stored.pixels[(3 * 8 + 7) * 3]);
    EXPECT_EQ(drawn.pixels[(3 * 10 + 8) * 3], 77);
    EXPECT_EQ(drawn.alphas[0].values[9], 77);
}

TEST(FrameVerb, AResolutionShowsTheWholeTextureWithFewerPixels) {
    const TemporaryFolder folder;
    const Texture stored = made_texture(9, 7, Texture::kRgb, 1);
    ASSERT_FALSE(write_texture(folder.path("a.txl"), stored).has_value());
    const struct {
        const char* name;
        std::vector<std::string> options;
        A_long width_px;
        A_long height_px;
    } cases[] = {
        {"full is the default", {}, 9, 7},
        {"full", {"--resolution", "full"}, 9, 7},
        {"half, rounded up", {"--resolution", "half"}, 5, 4},
        {"a third", {"--resolution", "third"}, 3, 3},
        {"a quarter", {"--resolution", "quarter"}, 3, 2},
        {"a given size at a resolution", {"--resolution", "half", "--size", "4x3"}, 4, 3},
        {"from a copy, on another thread", {"--resolution", "half", "--host", "25.3"}, 5, 4},
        {"a size larger than the texture", {"--size", "11x8"}, 11, 8},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.name);
        std::vector<std::string> arguments = {"frame", "a.txl", "-o", "f.png"};
        arguments.insert(arguments.end(), one.options.begin(), one.options.end());
        const ProcessResult run = vxr(folder, arguments);
        ASSERT_EQ(run.exit_code, 0) << run.err;
        const Texture drawn = picture(folder, "f.png");
        ASSERT_EQ(drawn.width_px, one.width_px);
        ASSERT_EQ(drawn.height_px, one.height_px);
        for (A_long y = 0; y < one.height_px; ++y) {
            for (A_long x = 0; x < one.width_px; ++x) {
                const std::size_t at = static_cast<std::size_t>(y * one.width_px + x);
                const auto green = [&stored](A_long column, A_long row) {
                    return stored.pixels[3 * static_cast<std::size_t>(row * 9 + column) + 1];
                };
                EXPECT_EQ(drawn.pixels[3 * at + 1],
                          area_average(x, y, one.width_px, one.height_px, 9, 7, green));
                const auto alpha = [&stored](A_long column, A_long row) {
                    return stored.alphas[0].values[static_cast<std::size_t>(row * 9 + column)];
                };
                EXPECT_EQ(drawn.alphas[0].values[at],
                          area_average(x, y, one.width_px, one.height_px, 9, 7, alpha));
            }
        }
    }
}

TEST(FrameVerb, ARefusedTextureLeavesNoImage) {
    const TemporaryFolder folder;
    folder.write("cut.txl", "AVXRTexa");
    folder.write("frame.png", "what was there");
    const ProcessResult run = vxr(folder, {"frame", "cut.txl", "-o", "frame.png"});
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_NE(run.err.find("the module did not open the file and ended with host error 3"),
              std::string::npos);
    EXPECT_NE(run.out.find("There was an error loading the file in line %d."), std::string::npos);
    const ProcessResult document = vxr(folder, {"frame", "cut.txl", "-o", "frame.png", "--json"});
    EXPECT_EQ(document.exit_code, 1);
    EXPECT_EQ(json::parse(document.out).at("frame").at("open_result"), 3);
    std::vector<fs::path> files(fs::directory_iterator(folder.folder()), fs::directory_iterator());
    EXPECT_EQ(files.size(), 2U);
    EXPECT_EQ(fs::file_size(folder.path("frame.png")), 14U);
}

TEST(FrameVerb, ExitCodes) {
    const TemporaryFolder folder;
    ASSERT_FALSE(write_texture(folder.path("a.txl"), made_texture(8, 6, Texture::kRgb, 1)).has_value());
    ASSERT_FALSE(write_texture(folder.path("a.tif"), made_texture(8, 6, Texture::kRgb, 1)).has_value());
    const struct {
        const char* name;
        std::vector<std::string> arguments;
        int exit_code;
    } cases[] = {
        {"missing", {"frame", "missing.txl", "-o", "f.png"}, 3},
        {"a folder", {"frame", ".", "-o", "f.png"}, 3},
        {"an extension without a module", {"frame", "a.tif", "-o", "f.png"}, 1},
        {"a place that cannot be written", {"frame", "a.txl", "-o", "missing/f.png"}, 3},
        {"a format without room for alpha", {"frame", "a.txl", "-o", "f.jpg"}, 1},
        {"no bundle", {"frame", "a.txl", "-o", "f.png", "--bundle", "missing.so"}, 3},
        {"no output", {"frame", "a.txl"}, 2},
        {"unknown format", {"frame", "a.txl", "-o", "f.doc"}, 2},
        {"size without a height", {"frame", "a.txl", "-o", "f.png", "--size", "10"}, 2},
        {"size 0", {"frame", "a.txl", "-o", "f.png", "--size", "0x4"}, 2},
        {"a resolution that is not in the menu",
         {"frame", "a.txl", "-o", "f.png", "--resolution", "fifth"},
         2},
        {"fill that is not a byte", {"frame", "a.txl", "-o", "f.png", "--fill", "256"}, 2},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(vxr(folder, one.arguments).exit_code, one.exit_code) << one.name;
    }
    EXPECT_FALSE(fs::exists(folder.path("f.png")));
}

TEST(ImportVerb, TexturesAreFootage) {
    const TemporaryFolder folder;
    const ProcessResult run = vxr(folder, {"import", VXR_EXAMPLES_DIR "/textured/shelf_040.aec", "--json"});
    ASSERT_EQ(run.exit_code, 0) << run.err;
    const json document = json::parse(run.out);
    EXPECT_EQ(document.at("discipline").at("clean"), true);
    EXPECT_EQ(document.at("messages").size(), 0U);
    EXPECT_EQ(document.at("footage").size(), 3U);
    EXPECT_EQ(document.at("in_specs").size(), 3U);
    for (const json& footage : document.at("footage")) {
        EXPECT_EQ(footage.at("kind"), "module_file") << footage;
    }
}

}  // namespace
