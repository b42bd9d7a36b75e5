// `vxr texture convert`, with real files in every direction.

#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/file_content.h"
#include "support/made_texture.h"
#include "support/temporary_folder.h"
#include "texture/txl_builder.h"
#include "texture/value/texture_file.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

std::vector<std::string> command_in(const TemporaryFolder& folder,
                                    const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"env",       "-C",      folder.folder().string(),
                                     VXR_PROGRAM, "texture", "convert"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

ProcessResult convert(const TemporaryFolder& folder, const std::vector<std::string>& arguments) {
    return run_process(command_in(folder, arguments));
}

void write(const TemporaryFolder& folder, const std::string& name, const Texture& texture) {
    ASSERT_FALSE(write_texture(folder.path(name), texture).has_value());
}

Texture read(const TemporaryFolder& folder, const std::string& name) {
    TextureReading reading = read_texture(folder.path(name));
    EXPECT_FALSE(reading.error.has_value()) << name;
    return reading.texture.value_or(Texture{});
}

/// Runs a command with a terminal for all its streams, and returns what it wrote there.
std::string in_terminal(const std::vector<std::string>& arguments) {
    int terminal = -1;
    std::vector<char*> pointers;
    for (const std::string& argument : arguments) {
        pointers.push_back(const_cast<char*>(argument.c_str()));  // execvp does not change them
    }
    pointers.push_back(nullptr);
    const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        ::setenv("TERM", "dumb", 1);
        ::execvp(pointers.front(), pointers.data());
        ::_exit(127);
    }
    std::string text;
    char buffer[4096];
    // Reading fails once the last process that uses the terminal has ended.
    for (ssize_t count = 0; (count = ::read(terminal, buffer, sizeof buffer)) > 0;) {
        text.append(buffer, static_cast<std::size_t>(count));
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    ::close(terminal);
    EXPECT_TRUE(WIFEXITED(status));
    return text;
}

struct TripCase {
    std::int32_t mode;
    int alphas;
    const char* extension;
};

TEST(TextureConvert, ThereAndBackAgainKeepsEveryByte) {
    const TripCase cases[] = {
        {Texture::kGrey, 0, "png"}, {Texture::kGrey, 1, "png"}, {Texture::kRgb, 0, "png"},
        {Texture::kRgb, 1, "png"},  {Texture::kGrey, 1, "tif"}, {Texture::kRgb, 1, "tif"},
        {Texture::kGrey, 2, "tif"}, {Texture::kGrey, 3, "tif"}, {Texture::kRgb, 3, "tif"},
        {Texture::kGrey, 3, "exr"}, {Texture::kRgb, 3, "exr"},  {Texture::kRgb, 1, "tga"},
        {Texture::kRgb, 0, "bmp"},  {Texture::kRgb, 0, "ppm"},  {Texture::kRgb, 2, "txl"},
    };
    // One process for all files of a format, and one for all on the way back: each loads the image library.
    const TemporaryFolder folder;
    std::vector<Texture> textures;
    std::map<std::string, std::vector<std::string>> files;
    std::vector<std::string> back{"--to", "txl", "--out-dir", "back"};
    for (const TripCase& one : cases) {
        const std::string name = std::to_string(textures.size());
        textures.push_back(made_texture(23, 17, one.mode, one.alphas));
        write(folder, name + ".txl", textures.back());
        files[one.extension].push_back(name + ".txl");
        back.push_back("there/" + name + '.' + one.extension);
    }
    for (const auto& [extension, names] : files) {
        std::vector<std::string> there{"--to", extension, "--out-dir", "there"};
        there.insert(there.end(), names.begin(), names.end());
        const ProcessResult out = convert(folder, there);
        EXPECT_EQ(out.exit_code, 0) << extension << out.err;
        EXPECT_EQ(out.err, "") << extension;
    }
    const ProcessResult returned = convert(folder, back);
    EXPECT_EQ(returned.exit_code, 0) << returned.err;
    EXPECT_EQ(returned.err.find("[channels-guessed]"), std::string::npos) << returned.err;
    EXPECT_EQ(returned.err.find("[names-left-out]"), std::string::npos) << returned.err;
    for (std::size_t i = 0; i < textures.size(); ++i) {
        EXPECT_TRUE(read(folder, "back/" + std::to_string(i) + ".txl") == textures[i])
            << cases[i].extension << ", mode " << cases[i].mode << ", " << cases[i].alphas << " alphas";
    }
}

TEST(TextureConvert, ReportsEveryFileInTheOrderNamed) {
    const TemporaryFolder folder;
    write(folder, "large.txl", made_texture(600, 400, Texture::kRgb, 1));
    write(folder, "small.txl", made_texture(4, 4, Texture::kGrey, 0));
    folder.write("broken.txl", "AVXRTexa");
    const ProcessResult run = convert(folder, {"large.txl", "broken.txl", "small.txl", "--to", "png",
                                               "--out-dir", "out/put", "--jobs", "3"});
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.out,
              "large.txl -> out/put/large.png: 600 x 400, RGB, 1 alpha channel\n"
              "broken.txl: not converted\n"
              "small.txl -> out/put/small.png: 4 x 4, grey, no alpha\n");
    EXPECT_EQ(run.err, "broken.txl@0x8: error: the file ends inside this value [short-transfer]\n");
    EXPECT_EQ(names_in(folder.folder() / "out/put"), (std::vector<std::string>{"large.png", "small.png"}));
}

TEST(TextureConvert, WithoutAFolderTheOutputIsBesideTheInput) {
    const TemporaryFolder folder;
    fs::create_directory(folder.folder() / "sub");
    write(folder, "sub/a.b.txl", made_texture(4, 4, Texture::kRgb, 0));
    EXPECT_EQ(convert(folder, {"sub/a.b.txl", "--to", ".tif"}).exit_code, 0);
    EXPECT_EQ(names_in(folder.folder() / "sub"), (std::vector<std::string>{"a.b.tif", "a.b.txl"}));
}

TEST(TextureConvert, AlphaChoosesTheChannelsToKeep) {
    const TemporaryFolder folder;
    const Texture texture = made_texture(9, 7, Texture::kRgb, 3);
    write(folder, "a.txl", texture);
    Texture expected = texture;
    expected.alphas.erase(expected.alphas.begin());
    expected.alphas.pop_back();
    expected.alphas[0].name = "Alpha";  // names are not stored
    EXPECT_EQ(convert(folder, {"a.txl", "--alpha", "2", "-o", "second.txl"}).exit_code, 0);
    EXPECT_TRUE(read(folder, "second.txl") == expected);
    EXPECT_EQ(convert(folder, {"a.txl", "--alpha", "2", "-o", "second.png"}).exit_code, 0);
    EXPECT_EQ(convert(folder, {"second.png", "-o", "second.txl"}).exit_code, 0);
    EXPECT_TRUE(read(folder, "second.txl") == expected);
    EXPECT_EQ(convert(folder, {"a.txl", "--alpha", "none", "-o", "none.txl"}).exit_code, 0);
    EXPECT_TRUE(read(folder, "none.txl").alphas.empty());
    EXPECT_EQ(convert(folder, {"a.txl", "--alpha", "all", "-o", "all.txl"}).exit_code, 0);
    EXPECT_TRUE(read(folder, "all.txl") == texture);

    const ProcessResult fourth = convert(folder, {"a.txl", "--alpha", "4", "-o", "x.png"});
    EXPECT_EQ(fourth.exit_code, 1);
    EXPECT_EQ(fourth.err, "a.txl: error: there is no alpha channel 4: the texture has 3 [no-such-alpha]\n");
    for (const char* wrong : {"0", "-1", "some", "1x", ""}) {
        EXPECT_EQ(convert(folder, {"a.txl", "--alpha", wrong, "-o", "x.png"}).exit_code, 2) << wrong;
    }
    EXPECT_FALSE(fs::exists(folder.path("x.png")));
}

TEST(TextureConvert, ChannelsWithoutRoomAreAnErrorInsteadOfDropped) {
    const TemporaryFolder folder;
    write(folder, "a.txl", made_texture(9, 7, Texture::kRgb, 3));
    folder.write("a.png", "what was there");
    const ProcessResult png = convert(folder, {"a.txl", "--to", "png"});
    EXPECT_EQ(png.exit_code, 1);
    EXPECT_EQ(png.err,
              "a.png: error: png files have only one alpha channel, the texture has 3; --alpha N chooses one "
              "[channels-without-room]\n");
    const ProcessResult jpeg = convert(folder, {"a.txl", "--to", "jpg"});
    EXPECT_EQ(jpeg.exit_code, 1);
    EXPECT_EQ(jpeg.err,
              "a.jpg: error: jpeg files have no alpha channel; --alpha none leaves it out "
              "[channels-without-room]\n");
    EXPECT_EQ(content_of(folder.path("a.png")), "what was there");
    EXPECT_EQ(names_in(folder.folder()), (std::vector<std::string>{"a.png", "a.txl"}));
    EXPECT_EQ(convert(folder, {"a.txl", "--to", "jpg", "--alpha", "none"}).exit_code, 0);
}

TEST(TextureConvert, ConvertAlphaMultipliesAndDivides) {
    const TemporaryFolder folder;
    Texture texture = made_texture(2, 1, Texture::kGrey, 1);
    texture.pixels[0] = 60;
    texture.alphas[0].values[0] = 120;  // associated: half of full brightness
    texture.pixels[1] = 77;
    texture.alphas[0].values[1] = 255;
    write(folder, "a.txl", texture);
    ASSERT_EQ(convert(folder, {"a.txl", "-o", "a.png", "--convert-alpha"}).exit_code, 0);
    ASSERT_EQ(convert(folder, {"a.png", "-o", "stored.txl"}).exit_code, 0);
    EXPECT_NEAR(read(folder, "stored.txl").pixels[0], 127, 1);
    EXPECT_EQ(read(folder, "stored.txl").pixels[1], 77);
    ASSERT_EQ(convert(folder, {"a.png", "-o", "back.txl", "--convert-alpha"}).exit_code, 0);
    EXPECT_NEAR(read(folder, "back.txl").pixels[0], 60, 1);
}

TEST(TextureConvert, TiffsAreMarkedAsAssociated) {
    // The bytes of a marked TIFF need no conversion, so every program reads the same values.
    const TemporaryFolder folder;
    write(folder, "a.txl", made_texture(9, 7, Texture::kRgb, 1));
    ASSERT_EQ(convert(folder, {"a.txl", "-o", "a.tif"}).exit_code, 0);
    const ProcessResult info = run_process({"tiffinfo", folder.path("a.tif")});
    EXPECT_NE(info.out.find("Extra Samples: 1<assoc-alpha>"), std::string::npos) << info.out;
}

/// How the TIFF's extra samples are marked, in tiffinfo's words.
std::string extra_samples(const TemporaryFolder& folder, const char* name) {
    const ProcessResult info = run_process({"tiffinfo", folder.path(name)});
    const std::size_t at = info.out.find("Extra Samples: ");
    return at == std::string::npos ? info.out : info.out.substr(at, info.out.find('\n', at) - at);
}

TEST(TextureConvert, GreyWithSeveralAlphasIsGreyInTiff) {
    const TemporaryFolder folder;
    write(folder, "a.txl", made_texture(9, 7, Texture::kGrey, 3));
    ASSERT_EQ(convert(folder, {"a.txl", "-o", "a.tif"}).exit_code, 0);
    const ProcessResult info = run_process({"tiffinfo", folder.path("a.tif")});
    EXPECT_NE(info.out.find("Photometric Interpretation: min-is-black"), std::string::npos) << info.out;
    EXPECT_NE(info.out.find("Samples/Pixel: 4"), std::string::npos) << info.out;
    EXPECT_EQ(extra_samples(folder, "a.tif"), "Extra Samples: 3<assoc-alpha, unspecified, unspecified>");
    for (const char* const extension : {"png", "tga"}) {
        const ProcessResult run = convert(folder, {"a.txl", "--to", extension});
        EXPECT_EQ(run.exit_code, 1) << extension;
        EXPECT_NE(run.err.find("[channels-without-room]"), std::string::npos) << run.err;
    }
}

/// One pixel with colour above its alpha, which is 100, and one without.
Texture straight_texture(std::int32_t mode, int alphas) {
    Texture texture = made_texture(2, 1, mode, alphas);
    std::fill(texture.pixels.begin(), texture.pixels.end(), std::uint8_t{0});
    texture.pixels[0] = 200;
    texture.alphas[0].values[0] = 100;
    texture.alphas[0].values[1] = 255;
    return texture;
}

TEST(TextureConvert, TheAlphaLabelDecidesWhatAFileSays) {
    const struct {
        const char* label;
        const char* said_of_premultiplied;
        const char* said_of_straight;
    } cases[] = {
        {"premultiplied", "assoc-alpha", "assoc-alpha"},
        {"straight", "unassoc-alpha", "unassoc-alpha"},
        {"auto", "assoc-alpha", "unassoc-alpha"},
    };
    const struct {
        const char* name;
        std::int32_t mode;
        int alphas;
        bool straight_pixels;
    } kinds[] = {
        {"rgb", Texture::kRgb, 1, false},
        {"rgb_straight", Texture::kRgb, 1, true},
        {"grey", Texture::kGrey, 2, false},
        {"grey_straight", Texture::kGrey, 2, true},
    };
    for (const auto& c : cases) {
        const TemporaryFolder folder;
        std::vector<std::string> there{"--to", "tif", "--alpha-label", c.label};
        std::vector<std::string> back{"--to", "txl", "--out-dir", "back"};
        std::map<std::string, Texture> textures;
        for (const auto& kind : kinds) {
            Texture& texture = textures[kind.name] = straight_texture(kind.mode, kind.alphas);
            texture.pixels[0] = kind.straight_pixels ? 200 : 90;
            write(folder, std::string(kind.name) + ".txl", texture);
            there.push_back(std::string(kind.name) + ".txl");
            back.push_back(std::string(kind.name) + ".tif");
        }
        ASSERT_EQ(convert(folder, there).exit_code, 0);
        ASSERT_EQ(convert(folder, back).exit_code, 0);
        for (const auto& kind : kinds) {
            SCOPED_TRACE(std::string(c.label) + ", " + kind.name);
            const std::string name = kind.name;
            const std::string said = extra_samples(folder, (name + ".tif").c_str());
            const std::string expected = kind.straight_pixels ? c.said_of_straight : c.said_of_premultiplied;
            EXPECT_EQ(said.find('<' + expected), said.find('<')) << said;
            // The bytes are the same, whatever the file says about them.
            EXPECT_TRUE(read(folder, "back/" + name + ".txl") == textures[name]);
            if (kind.mode == Texture::kRgb) {
                ASSERT_EQ(run_process({VXR_PROGRAM, "frame", folder.path(name + ".txl"), "-o",
                                       folder.path("f.tif"), "--alpha-label", c.label})
                              .exit_code,
                          0);
                EXPECT_EQ(extra_samples(folder, "f.tif"), said) << "both verbs say the same";
            }
        }
    }
    const TemporaryFolder folder;
    write(folder, "a.txl", straight_texture(Texture::kRgb, 1));
    EXPECT_EQ(convert(folder, {"a.txl", "-o", "a.tif", "--alpha-label", "matte"}).exit_code, 2);
}

TEST(TextureConvert, ConvertAlphaOfStraightPixelsConvertsForOpenExrOnly) {
    const TemporaryFolder folder;
    write(folder, "a.txl", straight_texture(Texture::kRgb, 1));
    const std::vector<std::string> straight{"--convert-alpha", "--alpha-label", "straight"};
    const auto converted = [&](const char* from, const char* to, bool as_straight) {
        std::vector<std::string> arguments{from, "-o", to};
        if (as_straight) {
            arguments.insert(arguments.end(), straight.begin(), straight.end());
        }
        const ProcessResult run = convert(folder, arguments);
        EXPECT_EQ(run.exit_code, 0) << run.err;
    };
    converted("a.txl", "a.png", true);
    converted("a.png", "png.txl", false);
    EXPECT_EQ(read(folder, "png.txl").pixels[0], 200) << "a PNG is straight, too";
    converted("a.png", "png.txl", true);
    EXPECT_EQ(read(folder, "png.txl").pixels[0], 200);
    converted("a.txl", "a.exr", true);
    converted("a.exr", "exr.txl", false);
    EXPECT_EQ(read(folder, "exr.txl").pixels[0], 78) << "200 * 100 / 255";
    converted("a.exr", "exr.txl", true);
    EXPECT_EQ(read(folder, "exr.txl").pixels[0], 199) << "78 * 255 / 100";
}

std::string attribute_in(const TemporaryFolder& folder, const char* name, const std::string& attribute) {
    const ProcessResult info = run_process({"iinfo", "-v", folder.path(name)});
    const std::size_t at = info.out.find(attribute + ": ");
    return at == std::string::npos ? "" : info.out.substr(at, info.out.find('\n', at) - at);
}

TEST(TextureConvert, AnExrOfColourIsNotLinear) {
    const TemporaryFolder folder;
    write(folder, "a.txl", made_texture(4, 4, Texture::kRgb, 1));
    ASSERT_EQ(convert(folder, {"a.txl", "-o", "a.exr"}).exit_code, 0);
    EXPECT_EQ(attribute_in(folder, "a.exr", "oiio:ColorSpace"), "oiio:ColorSpace: \"sRGB\"");
    const ProcessResult back = convert(folder, {"a.exr", "-o", "back.txl"});
    EXPECT_EQ(back.err.find("[colour-not-converted]"), std::string::npos) << back.err;

    ASSERT_EQ(run_process({"oiiotool", "--create", "8x8", "3", "-d", "half", "-o", folder.path("linear.exr")})
                  .exit_code,
              0);
    const ProcessResult linear = convert(folder, {"linear.exr", "-o", "linear.txl"});
    EXPECT_EQ(linear.exit_code, 0);
    EXPECT_NE(linear.err.find("linear.exr: loss: its colour is linear; a texture's is taken as sRGB, and "
                              "values are kept as they are [colour-not-converted]\n"),
              std::string::npos)
        << linear.err;
}

TEST(TextureConvert, ATextureIsTheDisplayWindow) {
    const TemporaryFolder folder;
    ASSERT_EQ(run_process({"oiiotool", "--pattern", "constant:color=1,1,1", "2x2", "3", "-d", "half",
                           "--origin", "+1+2", "--fullsize", "4x5+0+0", "-o", folder.path("part.exr")})
                  .exit_code,
              0);
    ASSERT_EQ(convert(folder, {"part.exr", "-o", "part.txl"}).exit_code, 0);
    const Texture part = read(folder, "part.txl");
    ASSERT_EQ(part.width_px, 4);
    ASSERT_EQ(part.height_px, 5);
    for (std::int32_t y = 0; y < 5; ++y) {
        for (std::int32_t x = 0; x < 4; ++x) {
            const bool inside = x >= 1 && x < 3 && y >= 2 && y < 4;
            EXPECT_EQ(part.pixels[static_cast<std::size_t>(3 * (4 * y + x))], inside ? 255 : 0)
                << x << ", " << y;
        }
    }
    ASSERT_EQ(run_process({"oiiotool", "--pattern", "constant:color=1,1,1", "6x2", "3", "-d", "half",
                           "--origin", "-1+0", "--fullsize", "4x2+0+0", "-o", folder.path("over.exr")})
                  .exit_code,
              0);
    const ProcessResult over = convert(folder, {"over.exr", "-o", "over.txl"});
    EXPECT_EQ(over.exit_code, 1);
    EXPECT_EQ(over.err,
              "over.exr: error: its pixels, 6 x 2 at -1, 0, extend beyond its display window, 4 x 2 at 0, 0; "
              "crop the image to that window first [unsupported]\n");
    EXPECT_FALSE(fs::exists(folder.path("over.txl")));
}

TEST(TextureConvert, NamesWhatHasNoRoom) {
    const TemporaryFolder folder;
    ASSERT_EQ(run_process({"oiiotool", "--create", "4x4", "3", "--chnames", "X,Y,Z", "--attrib", "Copyright",
                           "somebody", "-d", "uint8", "-o", folder.path("xyz.exr")})
                  .exit_code,
              0);
    const ProcessResult image = convert(folder, {"xyz.exr", "-o", "xyz.txl"});
    EXPECT_EQ(image.exit_code, 0);
    for (const char* const line :
         {"xyz.exr: warning: its channels do not say what they are: grey from \"Y\", alpha from \"X\", \"Z\" "
          "[channels-guessed]\n",
          "xyz.exr: note: a texture has no room for \"Copyright\" [metadata-left-out]\n",
          "xyz.txl: note: a texture calls every alpha channel Alpha; this drops the name \"X\" and 1 more "
          "[names-left-out]\n"}) {
        EXPECT_NE(image.err.find(line), std::string::npos) << line << "in\n" << image.err;
    }

    TxlFile named;
    named.layers.resize(2);
    named.layers[0].name = u"mask";
    named.layers[1].name = u"glow";
    folder.write("named.txl", named.bytes());
    const auto left_out = [&](const char* output) {
        const ProcessResult run = convert(folder, {"named.txl", "-o", output});
        EXPECT_EQ(run.exit_code, 0) << run.err;
        return run.err;
    };
    EXPECT_EQ(left_out("named.tif"),
              "named.tif: note: the file has no room for the alpha names \"mask\", \"glow\" "
              "[names-left-out]\n");
    EXPECT_EQ(left_out("named.exr"),
              "named.exr: note: the file has no room for the alpha names \"mask\" [names-left-out]\n");
    EXPECT_EQ(left_out("copy.txl"),
              "copy.txl: note: a texture calls every alpha channel Alpha; this drops the name \"mask\" "
              "and 1 more [names-left-out]\n");
}

TEST(TextureConvert, SaysBeforeItBeginsThatRowsAreMissing) {
    const TemporaryFolder folder;
    TxlFile claim;
    claim.width = 64;
    claim.height = 3000;
    folder.write("claim.txl", claim.bytes());
    const char* const warning =
        "claim.txl@0x11: loss: the picture has 3000 rows, of which the file holds 2 [rows-missing]";
    const ProcessResult run = convert(folder, {"claim.txl", "--to", "tga"});
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_EQ(run.err, warning + std::string("\n      = the missing rows are 0\n"));
    EXPECT_EQ(run.out, "claim.txl -> claim.tga: 64 x 3000, RGB, no alpha\n");
    // On a terminal the warning comes first, then the bar, then the line.
    const std::string shown = in_terminal(command_in(folder, {"claim.txl", "--to", "tga"}));
    const std::size_t warned = shown.find(warning);
    const std::size_t bar = shown.find("] 1/3000");
    const std::size_t line = shown.find("claim.txl -> claim.tga");
    ASSERT_NE(bar, std::string::npos) << shown;
    EXPECT_LT(warned, bar);
    EXPECT_LT(bar, line);
    EXPECT_NE(line, std::string::npos);
    // In JSON it is one of the diagnostics.
    const json document = json::parse(convert(folder, {"--json", "claim.txl", "--to", "tga"}).out);
    EXPECT_EQ(document.at("files").at(0).at("diagnostics").at(0).at("code"), "rows-missing");
}

TEST(TextureConvert, EveryVerbRefusesAPictureWithoutPixelsForTheSameReason) {
    const TemporaryFolder folder;
    TxlFile nothing;
    nothing.width = 0;
    nothing.height = 64;
    const std::string file = folder.write("nothing.txl", nothing.bytes());
    const std::string output = folder.path("a.png");
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"texture", "check", file},
          {"texture", "info", file},
          {"texture", "convert", file, "-o", output},
          {"texture", "convert", file, "-o", folder.path("a.txl")},
          {"frame", file, "-o", output},
          {"frame", file, "-o", output, "--size", "8x8"}}) {
        std::vector<std::string> command{VXR_PROGRAM};
        command.insert(command.end(), arguments.begin(), arguments.end());
        const ProcessResult run = run_process(command);
        EXPECT_EQ(run.exit_code, 1) << arguments[0] << ' ' << arguments[1];
        EXPECT_NE(run.err.find("the picture has no pixels: its size is 0 x 64"), std::string::npos)
            << arguments[0] << ' ' << arguments[1] << ": " << run.err;
        EXPECT_EQ(names_in(folder.folder()), std::vector<std::string>{"nothing.txl"});
    }
}

TEST(TextureConvert, WarnsAboutWhatAnImageLoses) {
    const TemporaryFolder folder;
    ASSERT_EQ(run_process({"oiiotool", "--create", "8x8", "3", "-d", "uint16", "-o", folder.path("deep.tif")})
                  .exit_code,
              0);
    ASSERT_EQ(run_process({"oiiotool", "--create", "8x8", "3", "--create", "4x4", "3", "--siappend", "-d",
                           "uint8", "-o", folder.path("two.tif")})
                  .exit_code,
              0);
    const ProcessResult depth = convert(folder, {"deep.tif", "--to", "txl"});
    EXPECT_EQ(depth.exit_code, 0);
    EXPECT_EQ(depth.err,
              "deep.tif: loss: its values are uint16; a texture has 8 bits per channel [depth-reduced]\n");
    const ProcessResult images = convert(folder, {"two.tif", "--to", "txl"});
    EXPECT_EQ(images.exit_code, 0);
    EXPECT_EQ(images.err,
              "two.tif: warning: the file holds more images; a texture has only one [images-left-out]\n");
    EXPECT_EQ(read(folder, "two.txl").width_px, 8);
}

TEST(TextureConvert, WarnsAboutWhatWasRepaired) {
    const TemporaryFolder folder;
    const ProcessResult run = convert(folder, {VXR_EXAMPLES_DIR "/textures/every_flag.txl", "-o", "a.tif"});
    EXPECT_EQ(run.exit_code, 0);
    for (const char* code : {"[chunk-skipped]", "[row-repeated]", "[row-cleared]"}) {
        EXPECT_NE(run.err.find(code), std::string::npos) << code;
    }
}

TEST(TextureConvert, ARefusedFileLeavesTheOldOutput) {
    const TemporaryFolder folder;
    folder.write("text.tif", "this is no image");
    folder.write("text.txl", "what was there");
    write(folder, "whole.txl", made_texture(64, 64, Texture::kRgb, 0));
    folder.write("cut.txl", content_of(folder.path("whole.txl")).substr(0, 3000));
    folder.write("cut.png", "what was there");
    TxlFile nothing;
    nothing.height = 0;
    folder.write("nothing.txl", nothing.bytes());

    EXPECT_EQ(convert(folder, {"text.tif", "--to", "txl"}).exit_code, 1);
    EXPECT_EQ(convert(folder, {"cut.txl", "--to", "png"}).exit_code, 1);
    EXPECT_EQ(content_of(folder.path("text.txl")), "what was there");
    EXPECT_EQ(content_of(folder.path("cut.png")), "what was there");
    const ProcessResult empty = convert(folder, {"nothing.txl", "--to", "png"});
    EXPECT_EQ(empty.exit_code, 1);
    EXPECT_EQ(empty.err, "nothing.txl: error: the picture has no pixels: its size is 2 x 0 [no-picture]\n");
    EXPECT_EQ(names_in(folder.folder()), (std::vector<std::string>{"cut.png", "cut.txl", "nothing.txl",
                                                                   "text.tif", "text.txl", "whole.txl"}));
}

TEST(TextureConvert, ExitCodeSaysWhetherFilesCouldBeReadAndWritten) {
    const TemporaryFolder folder;
    write(folder, "a.txl", made_texture(4, 4, Texture::kRgb, 0));
    fs::create_directory(folder.folder() / "taken.png");
    EXPECT_EQ(convert(folder, {"missing.txl", "--to", "png"}).exit_code, 3);
    EXPECT_EQ(convert(folder, {"missing.png", "--to", "txl"}).exit_code, 3);
    EXPECT_EQ(convert(folder, {"a.txl", "-o", "missing/a.png"}).exit_code, 3);
    EXPECT_EQ(convert(folder, {"a.txl", "-o", "missing/a.txl"}).exit_code, 3);
    EXPECT_EQ(convert(folder, {"a.txl", "-o", "taken.png"}).exit_code, 3);
    EXPECT_EQ(convert(folder, {"a.txl", "--to", "png", "--out-dir", "a.txl/below"}).exit_code, 3);
    EXPECT_EQ(convert(folder, {"a.txl", "missing.txl", "--to", "tif"}).exit_code, 3);
    EXPECT_TRUE(fs::exists(folder.path("a.tif")));
}

TEST(TextureConvert, RefusedWhenNeitherSideIsATexture) {
    const TemporaryFolder folder;
    ASSERT_EQ(run_process({"oiiotool", "--create", "8x8", "3", "-o", folder.path("a.tif")}).exit_code, 0);
    const ProcessResult run = convert(folder, {"a.tif", "--to", "png"});
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.err, "a.tif: error: neither this file nor a.png is a texture [no-texture]\n");
}

TEST(TextureConvert, ATextureIsRecognisedByItsFirstBytes) {
    const TemporaryFolder folder;
    const Texture texture = made_texture(4, 4, Texture::kRgb, 1);
    write(folder, "a.tex", texture);
    EXPECT_EQ(convert(folder, {"a.tex", "-o", "a.TXL"}).exit_code, 0);
    EXPECT_TRUE(read(folder, "a.TXL") == texture);
}

struct UsageCase {
    const char* name;
    std::vector<std::string> arguments;
    const char* message;
};

TEST(TextureConvert, WrongUsageReadsAndWritesNothing) {
    const UsageCase cases[] = {
        {"no input", {"--to", "png"}, "IN is required"},
        {"no output", {"a.txl"}, "either -o FILE or --to EXT is required"},
        {"both outputs", {"a.txl", "-o", "a.png", "--to", "png"}, "either -o FILE or --to EXT is required"},
        {"one output for two", {"a.txl", "b.txl", "-o", "x.png"}, "-o is for one input"},
        {"folder without extension",
         {"a.txl", "-o", "x.png", "--out-dir", "out"},
         "--out-dir needs --to EXT"},
        {"unknown format", {"a.txl", "--to", "doc"}, "no image format has the extension of a.doc"},
        {"no extension", {"a.txl", "-o", "a"}, "no image format has the extension of a"},
        {"onto itself", {"a.txl", "-o", "./a.txl"}, "a.txl would be overwritten by the output ./a.txl"},
        {"two of one name",
         {"a.txl", "sub/a.txl", "--to", "png", "--out-dir", "."},
         "a.txl and sub/a.txl would both be written to ./a.png"},
        {"jobs", {"a.txl", "--to", "png", "--jobs", "-1"}, "is not a number from 0 to 256"},
    };
    const TemporaryFolder folder;
    fs::create_directory(folder.folder() / "sub");
    for (const char* name : {"a.txl", "b.txl", "sub/a.txl"}) {
        write(folder, name, made_texture(4, 4, Texture::kRgb, 0));
    }
    for (const UsageCase& one : cases) {
        const ProcessResult run = convert(folder, one.arguments);
        EXPECT_EQ(run.exit_code, 2) << one.name;
        EXPECT_NE(run.err.find(one.message), std::string::npos) << one.name << ": " << run.err;
    }
    EXPECT_EQ(names_in(folder.folder()), (std::vector<std::string>{"a.txl", "b.txl", "sub"}));
}

TEST(TextureConvert, JsonSaysTheSame) {
    const TemporaryFolder folder;
    write(folder, "a.txl", made_texture(4, 4, Texture::kRgb, 0));
    const ProcessResult run = convert(folder, {"--json", "a.txl", "missing.txl", "--to", "png"});
    EXPECT_EQ(run.exit_code, 3);
    EXPECT_EQ(run.err, "");
    const json document = json::parse(run.out);
    EXPECT_EQ(document.at("schema"), 1);
    EXPECT_EQ(document.at("exit_code"), 3);
    EXPECT_EQ(document.at("files").at(0), json({{"file", "a.txl"},
                                                {"output", "a.png"},
                                                {"converted", true},
                                                {"exit_code", 0},
                                                {"diagnostics", json::array()}}));
    EXPECT_EQ(document.at("files").at(1).at("diagnostics").at(0).at("code"), "cannot-open");
}

TEST(TextureConvert, ShowsABarOnATerminal) {
    const TemporaryFolder folder;
    write(folder, "a.txl", made_texture(4, 4, Texture::kRgb, 0));
    write(folder, "b.txl", made_texture(4, 4, Texture::kRgb, 0));
    const std::string two = in_terminal(command_in(folder, {"a.txl", "b.txl", "--to", "png", "--jobs", "1"}));
    EXPECT_NE(two.find("[########################################] 2/2"), std::string::npos) << two;
    EXPECT_NE(two.find("\r\x1b[K2 of 2 converted\r\n"), std::string::npos) << two;
    EXPECT_EQ(two.find(" -> "), std::string::npos) << two;
    // A single file shows no bar.
    const std::string one = in_terminal(command_in(folder, {"a.txl", "--to", "tif"}));
    EXPECT_EQ(one, "a.txl -> a.tif: 4 x 4, RGB, no alpha\r\n");
}

}  // namespace
