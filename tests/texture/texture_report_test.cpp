#include "texture/value/texture_report.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "support/temporary_folder.h"
#include "texture/txl_builder.h"
#include "texture/value/texture_file.h"

namespace {

using namespace std::string_literals;

struct NoticeCase {
    const char* name;
    std::function<void(TxlFile&)> change;
    TextureNotice notice;
    std::int64_t count;
    std::string within;
    bool with_missing_rows = false;  // which is a second notice
};

class Notices : public testing::TestWithParam<NoticeCase> {};

TEST_P(Notices, ReportRepairsAndSkippedParts) {
    TxlFile file;
    GetParam().change(file);
    const TemporaryFolder folder;
    const TextureReading reading = read_texture(folder.write("notice.txl", file.bytes()));
    ASSERT_TRUE(reading.texture.has_value()) << reading.error->reason;
    ASSERT_EQ(reading.warnings.size(), GetParam().with_missing_rows ? 2u : 1u);
    if (GetParam().with_missing_rows) {
        EXPECT_EQ(reading.warnings[1].code, TextureNotice::rows_missing);
    }
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
    {"RowsBelowThePicture", [](TxlFile& f) { f.rows.y = 1; }, TextureNotice::outside_picture, 1, "502 > TaVx",
     true},
    {"ASecondHeader", [](TxlFile& f) { f.before_rows = f.header_bytes(); }, TextureNotice::second_header, 1,
     "502 > TaTx"},
    {"AChunkWithoutItsEnd", [](TxlFile& f) { f.texture_ended = false; }, TextureNotice::cut_off, 1, "502"},
    {"APictureWithoutRows", [](TxlFile& f) { f.with_rows = false; }, TextureNotice::rows_missing, 1, ""},
    {"ARowThatIsNotThere",
     [](TxlFile& f) {
         f.rows.rows = 1;
         f.rows.blocks.resize(3);
     },
     TextureNotice::rows_missing, 1, ""},
    {"RowsOfTwoAlphaChannelsThatAreNotThere",
     [](TxlFile& f) {
         f.layers.resize(3);
         f.layers[1].rows.rows = 0;
         f.layers[1].rows.blocks.clear();
         f.layers[2].rows.rows = 1;
         f.layers[2].rows.blocks.resize(1);
     },
     TextureNotice::rows_missing, 2, ""},
};

INSTANTIATE_TEST_SUITE_P(TextureReport, Notices, testing::ValuesIn(kNotices),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(TextureReport, AnErrorNamesItsOffset) {
    const TemporaryFolder folder;
    TxlFile file;
    file.before_rows = HyperBytes().Long(1).bytes();
    const std::string bytes = file.bytes();
    const TextureReading reading = read_texture(folder.write("bad.txl", bytes));
    ASSERT_TRUE(reading.error.has_value());
    EXPECT_EQ(reading.error->at.offset_bytes, 8 + 9 + static_cast<std::int64_t>(file.header_bytes().size()));
    EXPECT_EQ(reading.error->reason, "expected the start or end of a chunk, found tag 15");
}

void expect_sound(const std::vector<ChunkOutline>& chunks, std::int64_t begin, std::int64_t end) {
    for (const ChunkOutline& chunk : chunks) {
        EXPECT_GE(chunk.offset_bytes, begin);
        EXPECT_LE(chunk.offset_bytes + chunk.size_bytes, end);
        begin = chunk.offset_bytes + chunk.size_bytes;
        expect_sound(chunk.children, chunk.offset_bytes + 9, begin - 1);
    }
}

TEST(TextureReport, TheOutlineListsEveryChunkAndRow) {
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
    EXPECT_TRUE(lean.chunks.empty()) << "only on request";
    ASSERT_EQ(lean.layers.size(), 1u) << "always present";
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

TEST(TextureReport, TheOutlineOfACutFileMarksChunksWithoutAnEnd) {
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

TEST(TextureReport, ChunksAreNamedByCharactersOrNumber) {
    EXPECT_EQ(chunk_name(kChunkPixelRows), "TaVx");
    EXPECT_EQ(chunk_name(502), "502");
    EXPECT_EQ(chunk_name(-1), "-1");
    EXPECT_EQ(chunk_name(four_characters("a_ 9")), "a_ 9");
    EXPECT_EQ(chunk_name(four_characters("\x1b[0m")), "458961005");
}

TEST(TextureReport, EveryFaultAndNoticeHasItsOwnName) {
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

TEST(TextureReport, OnlyCodesOfFaultsAreFaults) {
    for (const auto& row : texture_faults()) {
        EXPECT_EQ(texture_fault(row.code), row.code) << row.info.name;
        EXPECT_EQ(row.info.severity, diagnostic::Severity::error) << row.info.name;
    }
    for (const auto& row : texture_notices()) {
        EXPECT_EQ(texture_fault(row.code), std::nullopt) << row.info.name;
        EXPECT_NE(row.info.severity, diagnostic::Severity::error) << row.info.name;
    }
}

}  // namespace
