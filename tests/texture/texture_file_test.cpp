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

TEST(TextureFile, EveryByteOfEveryChannelComesBack) {
    const TemporaryFolder folder;
    const std::string path = folder.path("round.txl");
    for (const std::int32_t mode : {Texture::kGrey, Texture::kRgb}) {
        for (const std::size_t alphas : {0u, 1u, 3u}) {
            for (const Content content : {Content::flat, Content::noisy, Content::runs}) {
                for (const auto& [width, height] :
                     {std::pair{1, 1}, std::pair{2, 3}, std::pair{127, 2}, std::pair{128, 2},
                      std::pair{129, 2}, std::pair{300, 5}, std::pair{1, 50}, std::pair{0, 4},
                      std::pair{4, 0}, std::pair{0, 0}}) {
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

TEST(TextureFile, BytesThatBeginATexture) {
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

TEST(TextureFile, NamesAreMadeDifferent) {
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

TEST(TextureFile, NamesAreForgottenWhenTheTextureStartsOver) {
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

TEST(TextureFile, NamesThatAreWrittenAreNotStored) {
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

struct NoticeCase {
    const char* name;
    std::function<void(TxlFile&)> change;
    TextureNotice notice;
    std::int64_t count;
    std::string within;
};

class Notices : public testing::TestWithParam<NoticeCase> {};

TEST_P(Notices, TellWhatWasRepairedOrPassedOver) {
    TxlFile file;
    GetParam().change(file);
    const TemporaryFolder folder;
    const TextureReading reading = read_texture(folder.write("notice.txl", file.bytes()));
    ASSERT_TRUE(reading.texture.has_value()) << reading.error->reason;
    ASSERT_EQ(reading.warnings.size(), 1u);
    const diagnostic::Diagnostic& warning = reading.warnings[0];
    EXPECT_STREQ(warning.code.name(), code_info(GetParam().notice).name);
    EXPECT_EQ(warning.count, GetParam().count);
    EXPECT_EQ(chunk_path(warning.within), GetParam().within);
    EXPECT_FALSE(warning.reason.empty());
}

const std::vector<NoticeCase> kNotices = {
    {"APackedRowThatDoesNotFit",
     [](TxlFile& f) {
         f.rows.blocks[1] = {1, "\x00"s};
     },
     TextureNotice::row_cleared, 1, "502 > TaVx"},
    {"RawRowsThatAreShort",
     [](TxlFile& f) {
         f.rows.blocks.assign(6, {0, ""});
     },
     TextureNotice::row_cleared, 6, "502 > TaVx"},
    {"AnUnknownFlag", [](TxlFile& f) { f.rows.blocks[5].first = 3; }, TextureNotice::row_repeated, 1,
     "502 > TaVx"},
    {"AnUnknownChunk", [](TxlFile& f) { f.before_rows = unknown_chunk() + unknown_chunk(); },
     TextureNotice::chunk_skipped, 2, "502 > 777"},
    {"ALayerModeWithoutAlpha",
     [](TxlFile& f) {
         f.layers.resize(2);
         f.layers[1].mode = 1;
     },
     TextureNotice::layer_without_alpha, 1, "502 > 599 > 110100 > 501 > TaLy"},
    {"RowsBelowThePicture", [](TxlFile& f) { f.rows.y = 1; }, TextureNotice::outside_picture, 1,
     "502 > TaVx"},
    {"ASecondHeader", [](TxlFile& f) { f.before_rows = f.header_bytes(); }, TextureNotice::second_header, 1,
     "502 > TaTx"},
    {"AChunkWithoutItsEnd", [](TxlFile& f) { f.texture_ended = false; }, TextureNotice::cut_off, 1, "502"},
};

INSTANTIATE_TEST_SUITE_P(TextureFile, Notices, testing::ValuesIn(kNotices),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(TextureFile, AnErrorTellsTheByteWhereItIs) {
    const TemporaryFolder folder;
    TxlFile file;
    file.before_rows = HyperBytes().Long(1).bytes();
    const std::string bytes = file.bytes();
    const TextureReading reading = read_texture(folder.write("bad.txl", bytes));
    ASSERT_TRUE(reading.error.has_value());
    EXPECT_EQ(reading.error->at.offset_bytes, 8 + 9 + static_cast<std::int64_t>(file.header_bytes().size()));
    EXPECT_EQ(reading.error->reason, "a chunk must begin or end here, found tag 15");
}

void expect_sound(const std::vector<ChunkOutline>& chunks, std::int64_t begin, std::int64_t end) {
    for (const ChunkOutline& chunk : chunks) {
        EXPECT_GE(chunk.offset_bytes, begin);
        EXPECT_LE(chunk.offset_bytes + chunk.size_bytes, end);
        begin = chunk.offset_bytes + chunk.size_bytes;
        expect_sound(chunk.children, chunk.offset_bytes + 9, begin - 1);
    }
}

TEST(TextureFile, TheOutlineHasEveryChunkAndRow) {
    TxlFile file;
    file.before_rows = unknown_chunk();
    file.rows.blocks[1] = {1, "\xFF\x55"};
    file.rows.blocks[2] = {2, "\x01"};
    file.rows.blocks[3] = {0, "\x01"};
    file.rows.blocks[4] = {1, "\x01"};
    file.layers.resize(1);
    file.layers[0].name = u"Mask";
    file.layers[0].attributes = "\x05\x06";
    const TemporaryFolder folder;
    const std::string path = folder.write("outline.txl", file.bytes());
    const TextureReading lean = read_texture(path);
    EXPECT_TRUE(lean.chunks.empty()) << "only when asked for";
    ASSERT_EQ(lean.layers.size(), 1u) << "always there";
    EXPECT_EQ(lean.layers[0].color_mode, 2);
    EXPECT_EQ(lean.layers[0].name, "Mask");
    EXPECT_EQ(lean.layers[0].attributes, (std::vector<std::uint8_t>{5, 6, 0, 0, 0}));
    const TextureReading reading = read_texture(path, {.limits = {}, .outline = true});
    ASSERT_EQ(reading.chunks.size(), 1u);
    const ChunkOutline& texture = reading.chunks[0];
    EXPECT_EQ(texture.id, 502);
    EXPECT_EQ(texture.offset_bytes, 8);
    EXPECT_EQ(texture.size_bytes, static_cast<std::int64_t>(file.bytes().size()) - 8);
    EXPECT_TRUE(texture.handled);
    expect_sound(reading.chunks, 8, static_cast<std::int64_t>(file.bytes().size()));

    ASSERT_EQ(texture.children.size(), 4u);
    EXPECT_EQ(chunk_name(texture.children[0].id), "TaTx");
    EXPECT_EQ(texture.children[0].version, 1);
    EXPECT_EQ(texture.children[1].id, 777);
    EXPECT_FALSE(texture.children[1].handled);
    const ChunkOutline& rows = texture.children[2];
    ASSERT_TRUE(rows.rows.has_value());
    EXPECT_EQ(rows.rows->count, 2);
    EXPECT_EQ(rows.rows->channels, 3);
    ASSERT_EQ(rows.blocks.size(), 6u);
    using Outcome = TextureObserver::RowOutcome;
    const std::vector<Outcome> outcomes = {Outcome::raw,       Outcome::packed,     Outcome::unknown_flag,
                                           Outcome::raw_short, Outcome::packed_bad, Outcome::raw};
    std::int64_t last = rows.offset_bytes;
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(rows.blocks[i].outcome, outcomes[i]) << i;
        EXPECT_EQ(rows.blocks[i].row, static_cast<std::int64_t>(i / 3));
        EXPECT_EQ(rows.blocks[i].channel, static_cast<std::int32_t>(i % 3));
        EXPECT_EQ(file.bytes()[static_cast<std::size_t>(rows.blocks[i].offset_bytes)], '\x80')
            << "a block's tag";
        EXPECT_GT(rows.blocks[i].offset_bytes, last);
        last = rows.blocks[i].offset_bytes;
    }
    EXPECT_EQ(rows.blocks[4].coded_bytes, 1);

    const ChunkOutline& layer = texture.children[3].children.at(0).children.at(0);
    EXPECT_EQ(layer.id, 501);
    ASSERT_TRUE(layer.children.at(0).layer.has_value());
    EXPECT_EQ(layer.children[0].layer->color_mode, 2);
    EXPECT_EQ(layer.children[0].layer->name, "Mask");
    EXPECT_EQ(layer.children[0].layer->attributes, (std::vector<std::uint8_t>{5, 6, 0, 0, 0}));
    EXPECT_EQ(layer.children.at(1).rows->channels, 1);
}

TEST(TextureFile, TheOutlineOfACutFileSaysWhichChunksNeverEnded) {
    const TemporaryFolder folder;
    const std::string bytes = TxlFile().bytes();
    const TextureReading reading = read_texture(folder.write("cut.txl", bytes.substr(0, bytes.size() - 10)),
                                                {.limits = {}, .outline = true});
    ASSERT_TRUE(reading.error.has_value());
    ASSERT_EQ(reading.chunks.size(), 1u);
    EXPECT_EQ(reading.chunks[0].size_bytes, -1);
    EXPECT_GT(reading.chunks[0].children.at(0).size_bytes, 0);
    EXPECT_EQ(reading.chunks[0].children.at(1).size_bytes, -1);
}

struct LimitCase {
    const char* name;
    std::uint64_t decoded_bytes;
    bool accepted;
};

class Limits : public testing::TestWithParam<LimitCase> {};

TEST_P(Limits, HoldPictureAndAlphasTogether) {
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

TEST(TextureFile, AReadAfterARefusalKeepsTheFirstReason) {
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

TEST(TextureFile, WhatCannotBeWrittenSaysWhy) {
    const TemporaryFolder folder;
    const Texture small = made(2, 2, Texture::kRgb, 1, Content::noisy);
    const std::optional<diagnostic::Diagnostic> onto_a_folder =
        write_texture(folder.folder().string(), small);
    ASSERT_TRUE(onto_a_folder.has_value());
    EXPECT_EQ(onto_a_folder->code, TextureFault::cannot_open);
    EXPECT_EQ(onto_a_folder->at.file, folder.folder().string());
#if !defined(_WIN32)  // where no file stands for a full disk
    for (const std::int32_t size : {2, 400}) {
        const Texture texture = made(size, size, Texture::kRgb, 1, Content::noisy);
        const std::optional<diagnostic::Diagnostic> on_a_full_disk = write_texture("/dev/full", texture);
        ASSERT_TRUE(on_a_full_disk.has_value());
        EXPECT_EQ(on_a_full_disk->code, TextureFault::short_transfer);
    }
#endif
}

#if !defined(_WIN32)  // where no process can be kept from taking more memory
TEST(TextureFileDeathTest, WithoutMemoryThereIsAnError) {
    const TemporaryFolder folder;
    TxlFile file;
    file.width = 1 << 14;
    file.height = 1 << 14;
    const std::string path = folder.write("large.txl", file.bytes());
    const std::string small = folder.write("small.txl", TxlFile().bytes());
    EXPECT_EXIT(
        {
            // Once before: what the libraries set up at the first read and the first throw is then there.
            const bool sound = read_texture(small).texture.has_value();
            EXPECT_THROW(PixelBuffer{SIZE_MAX}, std::bad_alloc);
            RefuseFurtherMemory();
            const TextureReading reading = read_texture(path);
            _exit(sound && reading.error.has_value() && reading.error->code == TextureFault::out_of_memory
                      ? 0
                      : 1);
        },
        testing::ExitedWithCode(0), "");
}
#endif

TEST(TextureFile, ChunksAreNamedByTheirCharactersOrTheirNumber) {
    EXPECT_EQ(chunk_name(kChunkPixelRows), "TaVx");
    EXPECT_EQ(chunk_name(502), "502");
    EXPECT_EQ(chunk_name(-1), "-1");
    EXPECT_EQ(chunk_name(four_characters("a_ 9")), "a_ 9");
    EXPECT_EQ(chunk_name(four_characters("\x1b[0m")), "458961005");
}

TEST(TextureFile, UnitsBecomeUtf8) {
    using Units = std::vector<std::uint16_t>;
    EXPECT_EQ(utf8_from_units(Units{}), "");
    EXPECT_EQ(utf8_from_units(Units{'A', 0x7F, 0x80, 0x7FF, 0x800}), "A\x7f\xC2\x80\xDF\xBF\xE0\xA0\x80");
    EXPECT_EQ(utf8_from_units(Units{0xD83D, 0xDE00}), "\xF0\x9F\x98\x80");
    EXPECT_EQ(utf8_from_units(Units{0xD83D}), "\xEF\xBF\xBD") << "half a pair";
    EXPECT_EQ(utf8_from_units(Units{0xD83D, '!', 0xDE00}), "\xEF\xBF\xBD!\xEF\xBF\xBD");
    EXPECT_EQ(utf8_from_units(Units{0xFF80, 0xFFFF}), "\xEF\xBE\x80\xEF\xBF\xBF") << "widened bytes are kept";
}

TEST(TextureFile, EveryFaultAndNoticeHasItsOwnName) {
    std::vector<std::string> names;
    for (const auto& row : texture_faults()) {
        names.emplace_back(row.info.name);
    }
    for (const auto& row : texture_notices()) {
        names.emplace_back(row.info.name);
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end());
    EXPECT_FALSE(names.front().empty());
}

TEST(TextureFile, OnlyCodesOfFaultsAreFaults) {
    for (const auto& row : texture_faults()) {
        EXPECT_EQ(texture_fault(row.code), row.code) << row.info.name;
        EXPECT_EQ(row.info.severity, diagnostic::Severity::error) << row.info.name;
    }
    for (const auto& row : texture_notices()) {
        EXPECT_EQ(texture_fault(row.code), std::nullopt) << row.info.name;
        EXPECT_EQ(row.info.severity, diagnostic::Severity::warning) << row.info.name;
    }
}

TEST(PixelBuffer, IsAValue) {
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
