// `vxr texture convert`, with real files in every direction.

#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
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

void write(const TemporaryFolder& folder, const char* name, const Texture& texture) {
    ASSERT_FALSE(write_texture(folder.path(name), texture).has_value());
}

Texture read(const TemporaryFolder& folder, const char* name) {
    TextureReading reading = read_texture(folder.path(name));
    EXPECT_FALSE(reading.error.has_value()) << name;
    return reading.texture.value_or(Texture{});
}

std::vector<std::string> names_in(const fs::path& folder) {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
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
        {Texture::kRgb, 3, "tif"},  {Texture::kGrey, 3, "exr"}, {Texture::kRgb, 3, "exr"},
        {Texture::kRgb, 1, "tga"},  {Texture::kRgb, 0, "bmp"},  {Texture::kRgb, 0, "ppm"},
        {Texture::kRgb, 2, "txl"},
    };
    for (const TripCase& one : cases) {
        const TemporaryFolder folder;
        const Texture texture = made_texture(23, 17, one.mode, one.alphas);
        write(folder, "a.txl", texture);
        const std::string between = std::string("b.") + one.extension;
        const ProcessResult out = convert(folder, {"a.txl", "-o", between});
        EXPECT_EQ(out.exit_code, 0) << between << out.err;
        EXPECT_EQ(out.err, "") << between;
        EXPECT_EQ(convert(folder, {between, "-o", "c.txl"}).exit_code, 0) << between;
        EXPECT_TRUE(read(folder, "c.txl") == texture)
            << between << ", mode " << one.mode << ", " << one.alphas << " alphas";
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
              "deep.tif: warning: its values are uint16; a texture has 8 bits per channel [depth-reduced]\n");
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
        {"onto itself", {"a.txl", "-o", "./a.txl"}, "would be overwritten by its own conversion"},
        {"two of one name", {"a.txl", "sub/a.txl", "--to", "png", "--out-dir", "."}, "would both become"},
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
