#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/temporary_folder.h"
#include "texture/txl_load_cases.h"

namespace {

using namespace std::string_literals;

class TxlColourLoad : public testing::TestWithParam<LoadCase> {};

const std::vector<LoadCase> kColourCases = {
    {"SoundFile", [](TxlFile&) {}, kSoundPixels, {}},
    {"GreyHasOneChannel",
     [](TxlFile& f) {
         f.mode = 2;
         f.rows.channels = 1;
         f.rows.blocks = {{0, "\x01\x02"}, {0, "\x03\x04"}};
     },
     "\x01\x02\x03\x04",
     {}},
    {"LaterVersionsAreRead",
     [](TxlFile& f) {
         f.header_version = 9;
         f.rows.version = 9;
     },
     kSoundPixels,
     {}},
    {"ValuesAfterTheKnownOnesAreSkipped",
     [](TxlFile& f) {
         f.header_trailing = HyperBytes().Long(7).Block("\x02").bytes();
         f.rows.trailing = HyperBytes().Long(7).Raw(unknown_chunk()).bytes();
     },
     kSoundPixels,
     {}},
    {"UnknownChunksAreSkippedAnywhere",
     [](TxlFile& f) {
         f.before_texture = unknown_chunk();
         f.before_header = unknown_chunk();
         f.before_rows = unknown_chunk();
         f.before_layers = unknown_chunk();
         f.after_layers = unknown_chunk();
         f.after_texture = unknown_chunk();
     },
     kSoundPixels,
     {}},
    {"ATextureChunkMayBeLeftOpen", [](TxlFile& f) { f.texture_ended = false; }, kSoundPixels, {}},
    {"WithoutRowsThePictureIsZero", [](TxlFile& f) { f.with_rows = false; }, kNoPixels, {}},
    {"ARowsChunkMayHaveNoRows",
     [](TxlFile& f) {
         f.rows.rows = 0;
         f.rows.blocks.clear();
     },
     kNoPixels,
     {}},
    {"ANegativeNumberOfRowsIsNoRows",
     [](TxlFile& f) {
         f.rows.rows = -1;
         f.rows.blocks.clear();
     },
     kNoPixels,
     {}},
    {"WhatFollowsTheSmallestNumberOfRowsIsSkipped",
     [](TxlFile& f) { f.rows.rows = INT32_MIN; },
     kNoPixels,
     {}},
    {"RowsAfterANegativeNumberOfRowsAreRead",
     [](TxlFile& f) {
         TxlRows negative = f.rows;
         negative.rows = -2;
         f.before_rows = negative.bytes();
     },
     kSoundPixels,
     {}},
    {"RowsWithoutPixelsStillHaveBlocks",
     [](TxlFile& f) {
         f.rows.count = 0;
         f.rows.blocks.assign(6, {0, ""});
         f.rows.blocks[1] = {1, ""};
         f.rows.blocks[2] = {1, "\x01"};
     },
     kNoPixels,
     {}},
    {"MissingRowsAreZero",
     [](TxlFile& f) {
         f.rows.rows = 1;
         f.rows.blocks.resize(3);
     },
     kSoundPixels.substr(0, 6) + "\0\0\0\0\0\0"s,
     {}},
    {"RowsStartAtTheirOwnY",
     [](TxlFile& f) {
         f.rows.y = 1;
         f.rows.rows = 1;
         f.rows.blocks.resize(3);
     },
     "\0\0\0\0\0\0"s + kSoundPixels.substr(0, 6),
     {}},
    {"PixelsOutsideThePictureAreDropped",
     [](TxlFile& f) {
         f.rows.x = 1;
         f.rows.y = -1;
     },
     "\0\0\0\x03\x13\x23\0\0\0\0\0\0"s,
     {}},
    {"ANegativeColumnIsClippedOnTheLeft",
     [](TxlFile& f) { f.rows.x = -1; },
     "\x02\x12\x22\0\0\0\x04\x14\x24\0\0\0"s,
     {}},
    {"RowsAtTheLargestPlaceAreDropped",
     [](TxlFile& f) {
         f.rows.x = INT32_MAX;
         f.rows.y = INT32_MAX;
     },
     kNoPixels,
     {}},
    {"RowsAtTheSmallestPlaceAreDropped",
     [](TxlFile& f) {
         f.rows.x = INT32_MIN;
         f.rows.y = INT32_MIN;
     },
     kNoPixels,
     {}},
    {"APackedRowIsDecoded",
     [](TxlFile& f) {
         f.rows.blocks[0] = {1, "\xFF\x55"};
         f.rows.blocks[4] = {1, "\x01\x66\x77"};
     },
     "\x55\x11\x21\x55\x12\x22\x03\x66\x23\x04\x77\x24",
     {}},
    {"ATrailingRunTakesTheValueZero",
     [](TxlFile& f) {
         f.rows.blocks[0] = {1, "\xFF"};
     },
     "\0\x11\x21\0\x12\x22\x03\x13\x23\x04\x14\x24"s,
     {}},
    {"APackedRowTooShortIsZero",
     [](TxlFile& f) {
         f.rows.blocks[0] = {1, "\x00\x55"s};
     },
     "\0\x11\x21\0\x12\x22\x03\x13\x23\x04\x14\x24"s,
     {}},
    {"APackedRowTooLongIsZero",
     [](TxlFile& f) {
         f.rows.blocks[0] = {1, "\x01\x55\x66\x00\x77"s};
     },
     "\0\x11\x21\0\x12\x22\x03\x13\x23\x04\x14\x24"s,
     {}},
    {"APackedRunThatIsCutIsAccepted",
     [](TxlFile& f) {
         f.rows.blocks[0] = {1, "\xFE\x55"};
     },
     "\x55\x11\x21\x55\x12\x22\x03\x13\x23\x04\x14\x24",
     {}},
    {"AnEmptyPackedRowIsZero",
     [](TxlFile& f) {
         f.rows.blocks[0] = {1, ""};
     },
     "\0\x11\x21\0\x12\x22\x03\x13\x23\x04\x14\x24"s,
     {}},
    {"AZeroedRowClearsOnlyItsOwnChannel",
     [](TxlFile& f) {
         f.rows.blocks[4] = {1, ""};
     },
     "\x01\x11\x21\x02\x12\x22\x03\0\x23\x04\0\x24"s,
     {}},
    {"ARawRowTooShortIsZero",
     [](TxlFile& f) {
         f.rows.blocks[0] = {0, "\x55"};
     },
     "\0\x11\x21\0\x12\x22\x03\x13\x23\x04\x14\x24"s,
     {}},
    {"ARawRowTooLongGivesItsFirstBytes",
     [](TxlFile& f) {
         f.rows.blocks[0] = {0, "\x55\x66\x77"};
     },
     "\x55\x11\x21\x66\x12\x22\x03\x13\x23\x04\x14\x24",
     {}},
    {"AnUnknownFlagKeepsThePreviousRow",
     [](TxlFile& f) {
         f.rows.blocks[3] = {2, "\x55\x66"};
         f.rows.blocks[4] = {255, ""};
     },
     "\x01\x11\x21\x02\x12\x22\x01\x11\x23\x02\x12\x24",
     {}},
    {"AnUnknownFlagInTheFirstRowIsZero",
     [](TxlFile& f) {
         f.rows.blocks[0] = {7, "\x55\x66"};
     },
     "\0\x11\x21\0\x12\x22\x03\x13\x23\x04\x14\x24"s,
     {}},
    {"ASecondRowsChunkStartsWithZeros",
     [](TxlFile& f) {
         TxlRows more = f.rows;
         more.y = 1;
         more.rows = 1;
         more.blocks = {{9, ""}, {9, ""}, {0, "\x77\x77"}};
         f.before_layers = more.bytes();
     },
     kSoundPixels.substr(0, 6) + "\0\0\x77\0\0\x77"s,
     {}},
    {"ASecondHeaderStartsOver",
     [](TxlFile& f) {
         f.layers.resize(1);
         TxlFile again;
         again.height = 1;
         f.after_layers = again.header_bytes();
     },
     std::string(6, '\0'),
     {}},
    {"AHeaderOfVersionZeroKeepsTheEarlierMode",
     [](TxlFile& f) {
         TxlFile again;
         again.header_version = 0;
         f.before_rows = again.header_bytes();
     },
     kSoundPixels,
     {}},
    {"ASecondTextureStartsOver",
     [](TxlFile& f) {
         TxlFile again;
         again.rows.blocks.assign(6, {0, "\x09\x08"});
         f.layers.resize(1);
         f.after_texture = again.bytes().substr(8);
     },
     "\x09\x09\x09\x08\x08\x08\x09\x09\x09\x08\x08\x08",
     {}},
    {"AHeaderOfNegativeVersionIsSkipped",
     [](TxlFile& f) {
         f.before_rows = HyperBytes().Start(kChunkTextureHeader, -1).Long(9).Long(9).Long(2).End().bytes();
     },
     kSoundPixels,
     {}},
};

TEST_P(TxlColourLoad, GivesThePicture) {
    expect_picture(GetParam());
}

INSTANTIATE_TEST_SUITE_P(, TxlColourLoad, testing::ValuesIn(kColourCases),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(TxlEmptyPicture, TakesAnyRowsAndDeliversNothing) {
    const TemporaryFolder folder;
    TxlFile file;
    file.width = 0;
    file.rows.count = -5;
    file.rows.rows = -5;
    const BothLoads both(folder.write("empty.txl", file.bytes()));
    EXPECT_TRUE(both.loaded);
    ASSERT_TRUE(both.reading.error.has_value());
    EXPECT_EQ(both.reading.error->code, TextureFault::no_picture);
}

}  // namespace
