#include "texture/value/texture_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/temporary_folder.h"
#include "texture/both_loads.h"
#if !defined(_WIN32)
#include "texture/out_of_memory.h"
#endif
#include "texture/txl_builder.h"

namespace {

using namespace std::string_literals;

enum class Content { flat, noisy, runs };

PixelBuffer content_of(std::size_t size, Content content, std::mt19937& random) {
    PixelBuffer bytes(size);
    std::uint8_t value = 7;
    for (std::uint8_t& byte : bytes) {
        if (content == Content::noisy || (content == Content::runs && random() % 9 == 0)) {
            value = static_cast<std::uint8_t>(random());
        }
        byte = value;
    }
    return bytes;
}

Texture made(std::int32_t width, std::int32_t height, std::int32_t mode, std::size_t alphas,
             Content content) {
    std::mt19937 random(20u);
    Texture texture;
    texture.width_px = width;
    texture.height_px = height;
    texture.mode = mode;
    texture.pixels =
        content_of(texture.pixel_count() * static_cast<std::size_t>(texture.channels()), content, random);
    for (std::size_t i = 0; i < alphas; ++i) {
        const std::string name = i == 0 ? "Alpha" : "Alpha." + std::to_string(i + 1);
        texture.alphas.push_back({name, content_of(texture.pixel_count(), content, random)});
    }
    return texture;
}

TEST(TextureFile, EveryByteOfEveryChannelReadsBack) {
    const TemporaryFolder folder;
    const std::string path = folder.path("round.txl");
    for (const std::int32_t mode : {Texture::kGrey, Texture::kRgb}) {
        for (const std::size_t alphas : {0u, 1u, 3u}) {
            for (const Content content : {Content::flat, Content::noisy, Content::runs}) {
                for (const auto& [width, height] :
                     {std::pair{1, 1}, std::pair{2, 3}, std::pair{127, 2}, std::pair{128, 2},
                      std::pair{129, 2}, std::pair{300, 5}, std::pair{1, 50}}) {
                    const Texture texture = made(width, height, mode, alphas, content);
                    ASSERT_FALSE(write_texture(path, texture).has_value());
                    const BothLoads both(path);
                    ASSERT_TRUE(both.reading.texture.has_value()) << both.reading.error->reason;
                    ASSERT_EQ(*both.reading.texture, texture)
                        << width << " x " << height << ", mode " << mode << ", " << alphas << " alphas";
                    ASSERT_TRUE(both.reading.warnings.empty());
                }
            }
        }
    }
}

// The plug-in loads them, because the format has them. To the tools they are no pictures.
TEST(TextureFile, APictureWithoutPixelsIsNeitherReadNorWritten) {
    const TemporaryFolder folder;
    for (const auto& [width, height] : {std::pair{0, 4}, std::pair{4, 0}, std::pair{0, 0}}) {
        const std::string reason = "the picture has no pixels: its size is " + std::to_string(width) + " x " +
                                   std::to_string(height);
        for (const std::size_t alphas : {0u, 2u}) {
            const auto error = write_texture(folder.path("none.txl"),
                                             made(width, height, Texture::kRgb, alphas, Content::flat));
            ASSERT_TRUE(error.has_value()) << reason;
            EXPECT_EQ(error->code, TextureFault::no_picture);
            EXPECT_EQ(error->reason, reason);
            TxlFile file;
            file.width = width;
            file.height = height;
            file.layers.resize(alphas);
            const BothLoads both(folder.write("empty.txl", file.bytes()));
            EXPECT_TRUE(both.loaded) << reason;
            ASSERT_TRUE(both.reading.error.has_value()) << reason;
            EXPECT_EQ(both.reading.error->code, TextureFault::no_picture);
            EXPECT_EQ(both.reading.error->reason, reason);
        }
    }
}

TEST(TextureFile, TheRowsThatAFileHoldsAreCounted) {
    const TemporaryFolder folder;
    TxlFile file;
    file.height = 1 << 20;
    TxlRows below = file.rows;
    below.y = 7;
    file.before_layers = below.bytes();
    const TextureReading reading = read_texture(folder.write("rows.txl", file.bytes()));
    ASSERT_TRUE(reading.texture.has_value());
    EXPECT_EQ(reading.colour_rows.count(), 4);
    EXPECT_EQ(reading.colour_rows.ranges(), (std::vector<RowSet::Range>{{0, 2}, {7, 9}}));
    ASSERT_EQ(reading.warnings.size(), 1u);
    EXPECT_EQ(reading.warnings[0].code, TextureNotice::rows_missing);
    EXPECT_EQ(reading.warnings[0].reason, "the picture has 1048576 rows, of which the file holds 4");
    EXPECT_EQ(reading.warnings[0].at.offset_bytes, 17) << "the texture header";
}

TEST(TextureFile, AnErrorInRowsSaysHowManyThereAre) {
    const TemporaryFolder folder;
    TxlFile file;
    file.rows.rows = 1000;
    file.rows.ended = false;
    file.texture_ended = false;
    const TextureReading cut = read_texture(folder.write("cut.txl", file.bytes()));
    ASSERT_TRUE(cut.error.has_value());
    EXPECT_EQ(cut.error->code, TextureFault::short_transfer);
    EXPECT_EQ(cut.error->effects,
              std::vector<std::string>{"the file holds 2 of the 1000 rows that the chunk announces"});
    file.rows.blocks.clear();
    const TextureReading none = read_texture(folder.write("none.txl", file.bytes()));
    ASSERT_TRUE(none.error.has_value());
    EXPECT_EQ(none.error->effects,
              std::vector<std::string>{"the file holds 0 of the 1000 rows that the chunk announces"});
    // An error elsewhere has nothing to do with rows.
    file.rows.rows = 2;
    file.rows.channels = 1;
    const TextureReading other = read_texture(folder.write("other.txl", file.bytes()));
    ASSERT_TRUE(other.error.has_value());
    EXPECT_EQ(other.error->effects, std::vector<std::string>{});
}

struct RowSetCase {
    const char* name;
    std::vector<std::int32_t> added;
    std::vector<RowSet::Range> ranges;
};

TEST(RowSet, JoinsWhatTouches) {
    const RowSetCase cases[] = {
        {"nothing", {}, {}},
        {"from the top down", {0, 1, 2}, {{0, 3}}},
        {"the same row again", {5, 5}, {{5, 6}}},
        {"from the bottom up", {3, 2, 1}, {{1, 4}}},
        {"a gap", {0, 2}, {{0, 1}, {2, 3}}},
        {"a gap that is filled", {0, 2, 1}, {{0, 3}}},
        {"the same rows twice", {0, 1, 2, 0, 1, 2}, {{0, 3}}},
        {"a row inside the range before", {0, 1, 2, 1, 3}, {{0, 4}}},
        {"the last row of all", {2147483646}, {{2147483646, 2147483647}}},
    };
    for (const RowSetCase& c : cases) {
        RowSet rows;
        std::int64_t count = 0;
        for (const std::int32_t row : c.added) {
            rows.add(row);
        }
        for (const RowSet::Range& range : c.ranges) {
            count += range.end - range.begin;
        }
        EXPECT_EQ(rows.ranges(), c.ranges) << c.name;
        EXPECT_EQ(rows.count(), count) << c.name;
    }
}

TEST(TextureFile, TexturesAreRecognisedByTheirFirstBytes) {
    const std::string bytes = TxlFile().bytes();
    const auto begins = [](const std::string& first) {
        return begins_as_texture({reinterpret_cast<const std::uint8_t*>(first.data()), first.size()});
    };
    EXPECT_TRUE(begins(bytes));
    EXPECT_TRUE(begins(bytes.substr(0, 8)));
    EXPECT_FALSE(begins(bytes.substr(0, 7)));
    EXPECT_FALSE(begins(""));
    EXPECT_FALSE(begins("AVXRTexb"));
    EXPECT_FALSE(begins("TFF\0Texa"s));
}

TEST(TextureFile, NamesAreMadeUnique) {
    const std::vector<std::pair<std::u16string, std::string>> names = {
        {u"Alpha", "Alpha"},   {u"Alpha", "Alpha.2"}, {u"", "Alpha.3"},    {u"Alpha.2", "Alpha.2.2"},
        {u"Alpha", "Alpha.4"}, {u"Fell", "Fell"},     {u"Fell", "Fell.2"}, {u"\u00e9\uFF80", "\u00e9\uFF80"},
    };
    TxlFile file;
    for (const auto& [stored, given] : names) {
        file.layers.emplace_back().name = stored;
    }
    const TemporaryFolder folder;
    const TextureReading reading = read_texture(folder.write("names.txl", file.bytes()));
    ASSERT_TRUE(reading.texture.has_value());
    ASSERT_EQ(reading.texture->alphas.size(), names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(reading.texture->alphas[i].name, names[i].second);
    }
}

TEST(TextureFile, ASecondTextureReusesNames) {
    TxlFile file;
    file.layers.resize(1);
    TxlFile again = file;
    file.after_texture = again.bytes().substr(8);
    const TemporaryFolder folder;
    const TextureReading reading = read_texture(folder.write("again.txl", file.bytes()));
    ASSERT_TRUE(reading.texture.has_value());
    ASSERT_EQ(reading.texture->alphas.size(), 1u);
    EXPECT_EQ(reading.texture->alphas[0].name, "Alpha");
}

TEST(TextureFile, WritingDoesNotStoreNames) {
    const TemporaryFolder folder;
    Texture texture = made(2, 2, Texture::kRgb, 2, Content::noisy);
    texture.alphas[0].name = "Mask";
    texture.alphas[1].name = "Glow";
    const std::string path = folder.path("names.txl");
    ASSERT_FALSE(write_texture(path, texture).has_value());
    const TextureReading reading = read_texture(path);
    ASSERT_TRUE(reading.texture.has_value());
    EXPECT_EQ(reading.texture->alphas[0].name, "Alpha");
    EXPECT_EQ(reading.texture->alphas[1].name, "Alpha.2");
    EXPECT_EQ(reading.texture->alphas[1].values, texture.alphas[1].values);
}

struct LimitCase {
    const char* name;
    std::uint64_t decoded_bytes;
    bool accepted;
};

class Limits : public testing::TestWithParam<LimitCase> {};

TEST_P(Limits, CoverThePictureAndItsAlphas) {
    TxlFile file;
    file.layers.resize(2);
    const TemporaryFolder folder;
    const TextureReading reading = read_texture(folder.write("limit.txl", file.bytes()),
                                                {.limits = {.decoded_bytes = GetParam().decoded_bytes}});
    EXPECT_EQ(reading.texture.has_value(), GetParam().accepted);
    if (!GetParam().accepted) {
        ASSERT_TRUE(reading.error.has_value());
        EXPECT_EQ(reading.error->code, TextureFault::over_limit);
        EXPECT_NE(reading.error->reason.find(std::to_string(GetParam().decoded_bytes)), std::string::npos)
            << "a refusal names its limit";
    }
}

INSTANTIATE_TEST_SUITE_P(TextureFile, Limits,
                         testing::Values(LimitCase{"ExactlyAll", 12 + 4 + 4, true},
                                         LimitCase{"OneByteLessThanTheLastAlpha", 19, false},
                                         LimitCase{"ThePictureAlone", 12, false},
                                         LimitCase{"LessThanThePicture", 11, false}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(TextureFile, TheFirstRefusalIsReported) {
    TxlFile file;
    file.layers.resize(1);
    file.after_layers = HyperBytes().Long(1).bytes();
    const TemporaryFolder folder;
    const TextureReading reading =
        read_texture(folder.write("two.txl", file.bytes()), {.limits = {.decoded_bytes = 12}});
    ASSERT_TRUE(reading.error.has_value());
    EXPECT_EQ(reading.error->code, TextureFault::over_limit);
    EXPECT_EQ(chunk_path(reading.error->within), "502 > 599 > 110100 > 501 > TaLy");
}

struct BadTexture {
    const char* name;
    std::function<void(Texture&)> change;
};

class BadTextures : public testing::TestWithParam<BadTexture> {};

TEST_P(BadTextures, AreNotWritten) {
    Texture texture = made(2, 2, Texture::kRgb, 1, Content::noisy);
    ASSERT_EQ(validate_for_writing(texture), std::nullopt);
    GetParam().change(texture);
    EXPECT_NE(validate_for_writing(texture), std::nullopt);
    const TemporaryFolder folder;
    const std::optional<diagnostic::Diagnostic> error = write_texture(folder.path("bad.txl"), texture);
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->code, TextureFault::bad_value);
    EXPECT_FALSE(std::filesystem::exists(folder.path("bad.txl")));
}

const std::vector<BadTexture> kBadTextures = {
    {"ModeThree", [](Texture& t) { t.mode = 3; }},
    {"NegativeSize",
     [](Texture& t) {
         t.width_px = -2;
         t.height_px = -2;
     }},
    {"TooManyPixels",
     [](Texture& t) {
         t.width_px = INT32_MAX;
         t.height_px = INT32_MAX;
     }},
    {"TooFewBytes", [](Texture& t) { t.pixels = PixelBuffer(11); }},
    {"GreyBytesInRgb", [](Texture& t) { t.pixels = PixelBuffer(4); }},
    {"TooManyAlphaValues", [](Texture& t) { t.alphas[0].values = PixelBuffer(5); }},
};

INSTANTIATE_TEST_SUITE_P(TextureFile, BadTextures, testing::ValuesIn(kBadTextures),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(TextureFile, FailingToWriteSaysWhy) {
    const TemporaryFolder folder;
    const Texture small = made(2, 2, Texture::kRgb, 1, Content::noisy);
    const std::optional<diagnostic::Diagnostic> onto_a_folder =
        write_texture(folder.folder().string(), small);
    ASSERT_TRUE(onto_a_folder.has_value());
    EXPECT_EQ(onto_a_folder->code, TextureFault::cannot_open);
    EXPECT_EQ(onto_a_folder->at.file, folder.folder().string());
#if !defined(_WIN32)  // where no device simulates a full disk
    for (const std::int32_t size : {2, 400}) {
        const Texture texture = made(size, size, Texture::kRgb, 1, Content::noisy);
        const std::optional<diagnostic::Diagnostic> on_a_full_disk = write_texture("/dev/full", texture);
        ASSERT_TRUE(on_a_full_disk.has_value());
        EXPECT_EQ(on_a_full_disk->code, TextureFault::short_transfer);
    }
#endif
}

#if !defined(_WIN32)  // where the memory of a process cannot be limited
TEST(TextureFileDeathTest, ShortMemoryIsAnError) {
    const TemporaryFolder folder;
    TxlFile file;
    file.width = 1 << 14;
    file.height = 1 << 14;
    const std::string path = folder.write("large.txl", file.bytes());
    const std::string small = folder.write("small.txl", TxlFile().bytes());
    EXPECT_EXIT(
        {
            // The first read and the first throw let the libraries allocate what they keep.
            const bool sound = read_texture(small).texture.has_value();
            EXPECT_THROW(PixelBuffer{SIZE_MAX}, std::bad_alloc);
            refuse_further_memory();
            const TextureReading reading = read_texture(path);
            _exit(sound && reading.error.has_value() && reading.error->code == TextureFault::out_of_memory
                      ? 0
                      : 1);
        },
        testing::ExitedWithCode(0), "");
}
#endif

TEST(PixelBuffer, HasValueSemantics) {
    PixelBuffer a(3);
    a[1] = 5;
    PixelBuffer b = a;
    EXPECT_EQ(a, b);
    b[1] = 6;
    EXPECT_NE(a, b);
    EXPECT_EQ(a[1], 5);
    b = a;
    EXPECT_EQ(a, b);
    const PixelBuffer moved = std::move(b);
    EXPECT_EQ(moved, a);
    const PixelBuffer& same = a;
    a = same;
    EXPECT_EQ(a.size(), 3u);
    EXPECT_NE(PixelBuffer(2), PixelBuffer(3));
    EXPECT_TRUE(PixelBuffer().empty());
    EXPECT_THROW(PixelBuffer{SIZE_MAX}, std::bad_alloc);
}

}  // namespace
