#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "limit/limits.h"
#include "support/temporary_folder.h"
#include "texture/both_loads.h"
#include "texture/txl/example_txl_image.h"
#include "texture/txl/pack_bits.h"
#include "texture/txl/txl_image_filter.h"
#include "texture/txl_builder.h"

namespace {

using namespace std::string_literals;

const std::string kSoundPixels = "\x01\x11\x21\x02\x12\x22\x03\x13\x23\x04\x14\x24"s;
const std::string kNoPixels(12, '\0');

std::string text(const PixelBuffer& buffer) {
    return {reinterpret_cast<const char*>(buffer.data()), buffer.size()};
}

/// A sound file with one change, and what must become of it.
struct LoadCase {
    const char* name;
    std::function<void(TxlFile&)> change;
    std::string pixels;               // of the texture
    std::vector<std::string> alphas;  // values of each channel
};

void PrintTo(const LoadCase& load, std::ostream* out) {
    *out << load.name;
}

TxlLayer layer_with(const std::function<void(TxlLayer&)>& change) {
    TxlLayer layer;
    change(layer);
    return layer;
}

TxlLayer layer_of_mode(std::int32_t mode, std::int32_t channels, const std::vector<std::string>& planes) {
    TxlLayer layer;
    layer.mode = mode;
    layer.rows.channels = channels;
    layer.rows.rows = static_cast<std::int32_t>(planes.size()) / channels;
    layer.rows.blocks.clear();
    for (const std::string& plane : planes) {
        layer.rows.blocks.emplace_back(0, plane);
    }
    return layer;
}

std::string nested_alphas(int depth) {
    HyperBytes out;
    for (int i = 0; i < depth; ++i) {
        out.Start(kChunkAlphaChannels, 0);
    }
    for (int i = 0; i < depth; ++i) {
        out.End();
    }
    return out.bytes();
}

class Loads : public testing::TestWithParam<LoadCase> {};

TEST_P(Loads, GiveThePicture) {
    TxlFile file;
    GetParam().change(file);
    const TemporaryFolder folder;
    const BothLoads both(folder.write("case.txl", file.bytes()));
    ASSERT_TRUE(both.reading.texture.has_value()) << both.reading.error->reason;
    EXPECT_EQ(text(both.reading.texture->pixels), GetParam().pixels);
    std::vector<std::string> alphas;
    for (const AlphaChannel& alpha : both.reading.texture->alphas) {
        alphas.push_back(text(alpha.values));
    }
    EXPECT_EQ(alphas, GetParam().alphas);
}

const std::vector<LoadCase> kColourCases = {
    {"SoundAsItStands", [](TxlFile&) {}, kSoundPixels, {}},
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
    {"ValuesBehindTheKnownOnesAreSkipped",
     [](TxlFile& f) {
         f.header_trailing = HyperBytes().Long(7).Block("\x02").bytes();
         f.rows.trailing = HyperBytes().Long(7).Raw(unknown_chunk()).bytes();
     },
     kSoundPixels,
     {}},
    {"UnknownChunksAnywhereAreSkippedWhole",
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
    {"NoRowsIsFewerThanThePictureHas",
     [](TxlFile& f) {
         f.rows.rows = 0;
         f.rows.blocks.clear();
     },
     kNoPixels,
     {}},
    {"RowsOfNoPixelsStillHaveBlocks",
     [](TxlFile& f) {
         f.rows.count = 0;
         f.rows.blocks.assign(6, {0, ""});
         f.rows.blocks[1] = {1, ""};
         f.rows.blocks[2] = {1, "\x01"};
     },
     kNoPixels,
     {}},
    {"FewerRowsLeaveTheRestZero",
     [](TxlFile& f) {
         f.rows.rows = 1;
         f.rows.blocks.resize(3);
     },
     kSoundPixels.substr(0, 6) + "\0\0\0\0\0\0"s,
     {}},
    {"RowsFartherDownArriveThere",
     [](TxlFile& f) {
         f.rows.y = 1;
         f.rows.rows = 1;
         f.rows.blocks.resize(3);
     },
     "\0\0\0\0\0\0"s + kSoundPixels.substr(0, 6),
     {}},
    {"WhatReachesOutIsDropped",
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
    {"RowsAtTheEndOfThirtyTwoBitsAreDropped",
     [](TxlFile& f) {
         f.rows.x = INT32_MAX;
         f.rows.y = INT32_MAX;
     },
     kNoPixels,
     {}},
    {"RowsAtTheOtherEndAreDroppedToo",
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
    {"ATrailingRunTakesTheGuardByteForItsValue",
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
    {"APackedRunThatIsCutIsNot",
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
    {"AZeroedRowClearsItsOwnChannelOnly",
     [](TxlFile& f) {
         f.rows.blocks[4] = {1, ""};
     },
     "\x01\x11\x21\x02\x12\x22\x03\0\x23\x04\0\x24"s,
     {}},
    {"ARawRowTooShortIsZeroThroughout",
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
    {"AnUnknownFlagKeepsTheRowBefore",
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
    {"ASecondRowsChunkBeginsWithZerosAgain",
     [](TxlFile& f) {
         TxlRows more = f.rows;
         more.y = 1;
         more.rows = 1;
         more.blocks = {{9, ""}, {9, ""}, {0, "\x77\x77"}};
         f.before_layers = more.bytes();
     },
     kSoundPixels.substr(0, 6) + "\0\0\x77\0\0\x77"s,
     {}},
    {"AnEmptyPictureTakesRowsAndDeliversNothing",
     [](TxlFile& f) {
         f.width = 0;
         f.rows.count = -5;
         f.rows.rows = -5;
     },
     "",
     {}},
    {"APictureOfNoRowsToo", [](TxlFile& f) { f.height = 0; }, "", {}},
    {"ASecondHeaderStartsOver",
     [](TxlFile& f) {
         f.layers.resize(1);
         TxlFile again;
         again.height = 1;
         f.after_layers = again.header_bytes();
     },
     std::string(6, '\0'),
     {}},
    {"AHeaderOfVersionZeroKeepsTheModeBefore",
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

const std::vector<LoadCase> kAlphaCases = {
    {"OneLayer", [](TxlFile& f) { f.layers.resize(1); }, kSoundPixels, {"\x10\x20\x30\x40"}},
    {"EveryLayerIsKept",
     [](TxlFile& f) {
         f.layers = {TxlLayer(), layer_of_mode(2, 1, {"\x05\x06", "\x07\x08"}), TxlLayer()};
     },
     kSoundPixels,
     {"\x10\x20\x30\x40", "\x05\x06\x07\x08", "\x10\x20\x30\x40"}},
    {"LayersDirectlyInTheList",
     [](TxlFile& f) {
         f.layers.resize(1);
         f.alphas_nesting = 0;
     },
     kSoundPixels,
     {"\x10\x20\x30\x40"}},
    {"LayersSixtyFourDeep",
     [](TxlFile& f) {
         f.layers.resize(1);
         f.alphas_nesting = 64;
     },
     kSoundPixels,
     {"\x10\x20\x30\x40"}},
    {"SixtyFourDeepTwiceBesideEachOther",
     [](TxlFile& f) {
         f.layers.resize(1);
         f.in_alphas = nested_alphas(63) + nested_alphas(63);
     },
     kSoundPixels,
     {"\x10\x20\x30\x40"}},
    {"UnknownChunksBetweenLayersAreSkipped",
     [](TxlFile& f) {
         f.layers.resize(1);
         f.layers[0].trailing = HyperBytes().Long(3).bytes();
         f.layers[0].rows.trailing = unknown_chunk();
         f.in_alphas = unknown_chunk() + TxlLayer().bytes();
     },
     kSoundPixels,
     {"\x10\x20\x30\x40", "\x10\x20\x30\x40"}},
    {"ALayerWithoutRowsIsZero",
     [](TxlFile& f) {
         f.layers = {layer_with([](TxlLayer& l) {
             l.rows.rows = 0;
             l.rows.blocks.clear();
         })};
     },
     kSoundPixels,
     {"\0\0\0\0"s}},
    {"NegativeRowsUnderALayerAreNone",
     [](TxlFile& f) { f.layers = {layer_with([](TxlLayer& l) { l.rows.rows = -1; })}; },
     kSoundPixels,
     {"\0\0\0\0"s}},
    {"NegativeCountUnderALayerIsNone",
     [](TxlFile& f) { f.layers = {layer_with([](TxlLayer& l) { l.rows.count = -1; })}; },
     kSoundPixels,
     {"\0\0\0\0"s}},
    {"NoChannelUnderALayerIsNone",
     [](TxlFile& f) { f.layers = {layer_with([](TxlLayer& l) { l.rows.channels = 0; })}; },
     kSoundPixels,
     {"\0\0\0\0"s}},
    {"NegativeChannelsUnderALayerAreNone",
     [](TxlFile& f) { f.layers = {layer_with([](TxlLayer& l) { l.rows.channels = -3; })}; },
     kSoundPixels,
     {"\0\0\0\0"s}},
    {"RowsOfVersionZeroUnderALayerAreSkipped",
     [](TxlFile& f) { f.layers = {layer_with([](TxlLayer& l) { l.rows.version = 0; })}; },
     kSoundPixels,
     {"\0\0\0\0"s}},
    {"ALayerHeaderOfNegativeVersionIsSkipped",
     [](TxlFile& f) { f.layers = {layer_with([](TxlLayer& l) { l.header_version = -1; })}; },
     kSoundPixels,
     {}},
    {"RowsWithoutALayerHeaderAreDropped",
     [](TxlFile& f) { f.layers = {layer_with([](TxlLayer& l) { l.with_header = false; })}; },
     kSoundPixels,
     {}},
    {"RowsWithoutALayerHeaderGoToTheChannelBefore",
     [](TxlFile& f) {
         f.layers = {TxlLayer(), layer_of_mode(2, 1, {"\x05\x06"})};
         f.layers[1].with_header = false;
     },
     kSoundPixels,
     {"\x05\x06\x30\x40"}},
    {"AfterASecondHeaderAlphaIsRefusedUntilALayerHeader",
     [](TxlFile& f) {
         f.layers.resize(1);
         TxlFile again;
         again.layers = {layer_of_mode(2, 1, {"\x01\x01", "\x01\x01"}), TxlLayer()};
         again.layers[0].with_header = false;
         f.after_layers = again.header_bytes() + again.layers_bytes();
     },
     kNoPixels,
     {"\x10\x20\x30\x40"}},
    {"AttributesMayBeAbsentOrLong",
     [](TxlFile& f) {
         f.layers.resize(2);
         f.layers[0].attributes = "";
         f.layers[1].attributes = "123456789";
     },
     kSoundPixels,
     {"\x10\x20\x30\x40", "\x10\x20\x30\x40"}},
    {"ModeThreeTakesTheSecondByte",
     [](TxlFile& f) {
         f.layers = {layer_of_mode(3, 2, {"\x01\x02", "\x0A\x0B", "\x03\x04", "\x0C\x0D"})};
     },
     kSoundPixels,
     {"\x0A\x0B\x0C\x0D"}},
    {"ModeFourTakesTheAverageRoundedDown",
     [](TxlFile& f) {
         f.layers = {layer_of_mode(4, 3, {"\xFF\x01", "\xFF\x01", "\xFF\x03"})};
     },
     kSoundPixels,
     {"\xFF\x01\0\0"s}},
    {"ModeFiveIgnoresTheFirstByte",
     [](TxlFile& f) {
         f.layers = {layer_of_mode(5, 4, {"\xFF\xFF", "\x03\x01", "\x03\x01", "\x04\x01"})};
     },
     kSoundPixels,
     {"\x03\x01\0\0"s}},
    {"OtherModesDeliverNothing",
     [](TxlFile& f) {
         f.layers = {layer_of_mode(1, 1, {"\x01\x02"}), layer_of_mode(6, 1, {"\x01\x02"}),
                     layer_of_mode(-1, 1, {"\x01\x02"})};
     },
     kSoundPixels,
     {"\0\0\0\0"s, "\0\0\0\0"s, "\0\0\0\0"s}},
    {"MissingBytesOfAPixelAreZero",
     [](TxlFile& f) {
         f.layers = {layer_of_mode(3, 1, {"\x55\x66"}), layer_of_mode(4, 1, {"\x09\x06"}),
                     layer_of_mode(5, 2, {"\x09\x06", "\x0C\x03"}), layer_of_mode(5, 1, {"\x09\x06"})};
     },
     kSoundPixels,
     {"\0\0\0\0"s, "\x03\x02\0\0"s, "\x04\x01\0\0"s, "\0\0\0\0"s}},
    {"BytesThatTheModeDoesNotHaveAreIgnored",
     [](TxlFile& f) {
         f.layers = {layer_of_mode(2, 3, {"\x01\x02", "\xFF\xFF", "\xFF\xFF"})};
     },
     kSoundPixels,
     {"\x01\x02\0\0"s}},
    {"AnUnknownFlagKeepsTheReducedRow",
     [](TxlFile& f) {
         f.layers = {layer_of_mode(4, 3, {"\x03\x06", "\x03\x06", "\x03\x06", "", "", ""})};
         for (std::size_t i = 3; i < 6; ++i) {
             f.layers[0].rows.blocks[i].first = 7;
         }
     },
     // The first row leaves 3 6 3 6 6 6 behind; of that the second makes (3 + 6 + 3) / 3 and (6 + 6 + 6) / 3.
     kSoundPixels,
     {"\x03\x06\x04\x06"}},
    {"LayerRowsReachingOutAreDropped",
     [](TxlFile& f) {
         f.layers.resize(1);
         f.layers[0].rows.x = 1;
         f.layers[0].rows.y = 1;
     },
     kSoundPixels,
     {"\0\0\0\x10"s}},
};

std::string name_of(const testing::TestParamInfo<LoadCase>& tested) {
    return tested.param.name;
}
INSTANTIATE_TEST_SUITE_P(Colour, Loads, testing::ValuesIn(kColourCases), name_of);
INSTANTIATE_TEST_SUITE_P(Alpha, Loads, testing::ValuesIn(kAlphaCases), name_of);

struct RefusalCase {
    const char* name;
    std::function<void(TxlFile&)> change;
    TextureFault fault;
    std::string within;
};

void PrintTo(const RefusalCase& refusal, std::ostream* out) {
    *out << refusal.name;
}

class Refusals : public testing::TestWithParam<RefusalCase> {};

TEST_P(Refusals, HaveACodeAndAPlace) {
    TxlFile file;
    GetParam().change(file);
    const TemporaryFolder folder;
    const BothLoads both(folder.write("case.txl", file.bytes()));
    ASSERT_TRUE(both.reading.error.has_value());
    EXPECT_STREQ(both.reading.error->code.name(), code_info(GetParam().fault).name)
        << both.reading.error->reason;
    EXPECT_EQ(chunk_path(both.reading.error->within), GetParam().within);
    EXPECT_EQ(texture_fault(both.reading.error->code), GetParam().fault);
    EXPECT_LT(both.reading.error->at.offset_bytes.value_or(0),
              static_cast<std::int64_t>(file.bytes().size()));
}

const std::vector<RefusalCase> kRefusals = {
    {"NoTextureChunk", [](TxlFile& f) { f.texture_id = 503; }, TextureFault::no_picture, ""},
    {"WrongMagic", [](TxlFile& f) { f.magic = "AVXQ"; }, TextureFault::not_a_texture, ""},
    {"WrongIdent", [](TxlFile& f) { f.ident = "Texb"; }, TextureFault::not_a_texture, ""},
    {"NoHeader",
     [](TxlFile& f) {
         f.before_header = HyperBytes().Start(777, 0).bytes();
         f.header_trailing = HyperBytes().Long(0).bytes();
         f.with_rows = false;
     },
     TextureFault::no_picture, ""},
    {"RowsBeforeTheHeader", [](TxlFile& f) { f.before_header = f.rows.bytes(); }, TextureFault::unsupported,
     "502 > TaVx"},
    {"RowsOfVersionOneUnderTheTexture", [](TxlFile& f) { f.rows.version = 1; }, TextureFault::unsupported,
     "502 > TaVx"},
    {"AHeaderOfVersionZeroHasNoMode", [](TxlFile& f) { f.header_version = 0; }, TextureFault::unsupported,
     "502 > TaVx"},
    {"AHeaderOfVersionZeroWithoutRows",
     [](TxlFile& f) {
         f.header_version = 0;
         f.with_rows = false;
     },
     TextureFault::unsupported, ""},
    {"ModeThree", [](TxlFile& f) { f.mode = 3; }, TextureFault::unsupported, "502 > TaVx"},
    {"ModeFive", [](TxlFile& f) { f.mode = 5; }, TextureFault::unsupported, "502 > TaVx"},
    {"GreyWithThreeChannels", [](TxlFile& f) { f.mode = 2; }, TextureFault::unsupported, "502 > TaVx"},
    {"RgbWithOneChannel", [](TxlFile& f) { f.rows.channels = 1; }, TextureFault::unsupported, "502 > TaVx"},
    {"RgbWithoutChannels", [](TxlFile& f) { f.rows.channels = 0; }, TextureFault::unsupported, "502 > TaVx"},
    {"WrongChannelsInAnEmptyPicture",
     [](TxlFile& f) {
         f.width = 0;
         f.rows.channels = 1;
     },
     TextureFault::unsupported, "502 > TaVx"},
    {"NegativeWidth", [](TxlFile& f) { f.width = -1; }, TextureFault::over_limit, "502 > TaTx"},
    {"NegativeHeight", [](TxlFile& f) { f.height = -2; }, TextureFault::over_limit, "502 > TaTx"},
    {"OnePixelRowTooMany",
     [](TxlFile& f) {
         f.width = 1 << 15;
         f.height = (1 << 15) + 1;
     },
     TextureFault::over_limit, "502 > TaTx"},
    {"NegativeCount", [](TxlFile& f) { f.rows.count = -1; }, TextureFault::negative_size, "502 > TaVx"},
    {"NegativeRows", [](TxlFile& f) { f.rows.rows = INT32_MIN; }, TextureFault::negative_size, "502 > TaVx"},
    {"RowsAboveOneGigabyte", [](TxlFile& f) { f.rows.count = (1 << 30) / 3 + 1; }, TextureFault::over_limit,
     "502 > TaVx"},
    {"RowsOfOneGigabyteThatTheFileCannotHold", [](TxlFile& f) { f.rows.count = (1 << 30) / 3; },
     TextureFault::block_too_long, "502 > TaVx"},
    {"MoreRowsThanThereAre", [](TxlFile& f) { f.rows.rows = 3; }, TextureFault::wrong_tag, "502 > TaVx"},
    {"TwoThousandMillionRows", [](TxlFile& f) { f.rows.rows = INT32_MAX; }, TextureFault::wrong_tag,
     "502 > TaVx"},
    {"AValueBetweenChunks", [](TxlFile& f) { f.before_rows = HyperBytes().Long(1).bytes(); },
     TextureFault::stray_value, "502"},
    {"AValueAtTheTop", [](TxlFile& f) { f.before_texture = HyperBytes().Long(1).bytes(); },
     TextureFault::stray_value, ""},
    {"AnUnknownTagBetweenChunks", [](TxlFile& f) { f.before_rows = "\x05"; }, TextureFault::stray_value,
     "502"},
    {"AWordForTheWidth",
     [](TxlFile& f) {
         f.before_header = HyperBytes().Start(kChunkTextureHeader, 1).Byte(13).Be16(2).End().bytes();
     },
     TextureFault::wrong_tag, "502 > TaTx"},
    {"ABlockInsteadOfTheFlag",
     [](TxlFile& f) {
         f.rows.blocks.clear();
         f.rows.trailing = HyperBytes().Block("\x01\x02").bytes();
     },
     TextureFault::wrong_tag, "502 > TaVx"},
    {"ABlockOfNegativeLength",
     [](TxlFile& f) {
         f.rows.blocks.clear();
         f.rows.trailing = HyperBytes().UChar(0).Byte(128).Be32(-1).Raw(std::string(40, 'x')).bytes();
     },
     TextureFault::negative_size, "502 > TaVx"},
    {"ABlockBeyondTheFile",
     [](TxlFile& f) {
         f.rows.blocks.clear();
         f.rows.trailing = HyperBytes().UChar(0).Byte(128).Be32(1000).Raw(std::string(40, 'x')).bytes();
     },
     TextureFault::block_too_long, "502 > TaVx"},
    {"ASkippedChunkCutInsideAnItem",
     [](TxlFile& f) { f.after_texture = HyperBytes().Start(777, 0).Byte(26).Raw("xx").bytes(); },
     TextureFault::truncated, "777"},
    {"ALayerWithoutItsName",
     [](TxlFile& f) {
         f.layers.resize(1);
         f.in_alphas = HyperBytes()
                           .Start(kChunkLayer, 0)
                           .Start(kChunkLayerHeader, 0)
                           .Long(2)
                           .Block("x")
                           .Long(0)
                           .Real1()
                           .Bool(0)
                           .Long(0)
                           .Long(0)
                           .Block("Alpha")
                           .bytes();
     },
     TextureFault::wrong_tag, "502 > 599 > 110100 > 501 > TaLy"},
    {"ALayerWithoutItsAttributes",
     [](TxlFile& f) {
         f.in_alphas = HyperBytes().Start(kChunkLayer, 0).Start(kChunkLayerHeader, 0).Long(2).Long(0).bytes();
     },
     TextureFault::wrong_tag, "502 > 599 > 110100 > 501 > TaLy"},
    {"LayerRowsAboveOneGigabyte",
     [](TxlFile& f) {
         f.layers.resize(1);
         f.layers[0].rows.channels = 1 << 30;
     },
     TextureFault::over_limit, "502 > 599 > 110100 > 501 > TaVx"},
    {"LayerRowsOfOneGigabyteThatTheFileCannotHold",
     [](TxlFile& f) {
         f.layers.resize(1);
         f.layers[0].rows.channels = 1 << 29;
     },
     TextureFault::block_too_long, "502 > 599 > 110100 > 501 > TaVx"},
    {"FewerLayerRowsThanAnnounced",
     [](TxlFile& f) {
         f.layers.resize(1);
         f.layers[0].rows.rows = 3;
     },
     TextureFault::wrong_tag, "502 > 599 > 110100 > 501 > TaVx"},
    {"AnErrorInTheRowsOfALayerThatTheBitmapRefused",
     [](TxlFile& f) {
         f.layers.resize(2);
         f.layers[1].rows.rows = 3;
     },
     TextureFault::wrong_tag, "502 > 599 > 110100 > 501 > TaVx"},
    {"ALayerHeaderCutByTheNextChunk",
     [](TxlFile& f) {
         f.layers.resize(1);
         f.in_alphas = HyperBytes().Long(1).bytes();
     },
     TextureFault::stray_value, "502 > 599 > 110100"},
};

INSTANTIATE_TEST_SUITE_P(Texture, Refusals, testing::ValuesIn(kRefusals),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(TxlLoad, AlphaChunksAreFollowedSixtyFourDeep) {
    const TemporaryFolder folder;
    TxlFile file;
    file.layers.resize(1);
    for (const int depth : {65, 66, 100000}) {
        file.alphas_nesting = depth;
        const BothLoads both(folder.write("deep.txl", file.bytes()));
        ASSERT_TRUE(both.reading.error.has_value());
        EXPECT_EQ(both.reading.error->code, TextureFault::over_limit);
        EXPECT_EQ(both.error, -7);
        EXPECT_EQ(both.reading.error->limit, &limits::kAlphaNesting);
        EXPECT_EQ(both.reading.error->within.size(), 67u) << "502, 599 and the 65 that were begun";
    }
}

TEST(TxlLoad, WhatCannotBeOpenedSaysSo) {
    const TemporaryFolder folder;
    for (const std::string& path : {folder.path("missing"), folder.folder().string()}) {
        const BothLoads both(path);
        ASSERT_TRUE(both.reading.error.has_value());
        EXPECT_EQ(both.reading.error->code, TextureFault::cannot_open);
        EXPECT_EQ(both.error, 1);
    }
    const BothLoads both(folder.write("empty.txl", ""));
    ASSERT_TRUE(both.reading.error.has_value());
    EXPECT_EQ(both.reading.error->code, TextureFault::empty_file);
    EXPECT_EQ(both.error, 0);
}

TEST(TxlLoad, WithoutATargetNothingIsLoaded) {
    const TemporaryFolder folder;
    const std::string path = folder.write("sound.txl", TxlFile().bytes());
    TXLImageFilter filter;
    EXPECT_FALSE(filter.LoadImage(path.c_str(), nullptr));
    EXPECT_FALSE(filter.SaveImage(path.c_str(), nullptr));
}

TEST(TxlLoad, AFilterThatFailedStaysFailed) {
    const TemporaryFolder folder;
    const std::string bad = folder.write("bad.txl", "AVXRNope");
    const std::string sound = folder.write("sound.txl", TxlFile().bytes());
    BaseBitmap bitmap;
    ExampleTXLImage image(&bitmap);
    TXLImageFilter filter;
    EXPECT_FALSE(filter.LoadImage(bad.c_str(), &image));
    EXPECT_FALSE(filter.LoadImage(sound.c_str(), &image));
    EXPECT_EQ(filter.GetError(), -100);
}

TEST(TxlLoad, RowsDeliveredBeforeAnErrorStay) {
    const TemporaryFolder folder;
    TxlFile file;
    file.rows.blocks.resize(3);
    file.rows.trailing = HyperBytes().Long(1).bytes();
    const BothLoads both(folder.write("cut.txl", file.bytes()));
    EXPECT_FALSE(both.loaded);
    std::uint16_t r = 0;
    std::uint16_t g = 0;
    std::uint16_t b = 0;
    ASSERT_EQ(both.bitmap.GetPixel(1, 0, &r, &g, &b), 0);
    EXPECT_EQ(r, 0x0200);
}

TEST(TxlLoad, TheFiltersRowCodingIsTheFormats) {
    unsigned char row[] = {7, 7, 7, 7};
    unsigned char packed[8];
    unsigned char unpacked[4] = {};
    ASSERT_EQ(TXLImageFilter::PackBitsEncode(row, 4, packed, 8), 2);
    EXPECT_TRUE(TXLImageFilter::PackBitsDecode(packed, 2, unpacked, 4));
    EXPECT_TRUE(std::equal(row, row + 4, unpacked));
}

TEST(TxlLoad, HandlersWithoutAFilterDoNothing) {
    PrivateHyperFile hf;
    TXLTexture texture;
    TXLAlpha alpha;
    TXLPaintLayer layer;
    unsigned char byte = 0;
    for (Chunk* chunk :
         {static_cast<Chunk*>(&texture), static_cast<Chunk*>(&alpha), static_cast<Chunk*>(&layer)}) {
        for (const std::int32_t id : {kChunkTextureHeader, kChunkPixelRows, kChunkLayerList,
                                      kChunkAlphaChannels, kChunkLayer, kChunkLayerHeader}) {
            EXPECT_FALSE(chunk->HandleSubChunk(&hf, id, 2));
        }
        chunk->Write(&hf);
    }
    EXPECT_FALSE(alpha.Init(&hf, 1, 1, 2));
    EXPECT_FALSE(alpha.SetPixelCount(&hf, 0, 0, 1, &byte, 1));
    EXPECT_EQ(alpha.GetColorMode(&hf), 0);
    EXPECT_EQ(alpha.GetPixelCount(&hf, 0, 0, 1, &byte), 0);
    layer.SetOwner(nullptr);
    EXPECT_FALSE(layer.Init(&hf, 1, 1, 2));
    EXPECT_FALSE(layer.SetPixelCount(&hf, 0, 0, 1, &byte, 1));
    EXPECT_EQ(layer.GetColorMode(&hf), 0);
    EXPECT_EQ(layer.GetPixelCount(&hf, 0, 0, 1, &byte), 0);
    EXPECT_EQ(hf.GetError(), 0);
}

TEST(TxlLoad, AChunkThatHandlesNothingIsSkippedThrough) {
    class Nothing final : public Chunk {};
    const TemporaryFolder folder;
    const std::string path =
        folder.write("chunks", HyperBytes().Header().Raw(unknown_chunk()).End().UChar(1).bytes());
    PrivateHyperFile hf;
    ASSERT_EQ(hf.Open(kTextureFileIdent, path.c_str(), 1, 0, 0), 1);
    Nothing nothing;
    EXPECT_TRUE(nothing.ReadChunk(&hf));
    unsigned char value = 0;
    EXPECT_EQ(hf.ReadUChar(&value), 1);
    hf.SetError(-7);
    EXPECT_FALSE(nothing.ReadChunk(&hf));

    PrivateHyperFile out;
    ASSERT_EQ(out.Open(kTextureFileIdent, folder.path("empty_chunk").c_str(), 2, 0, 1), 1);
    nothing.WriteObject(&out, 7);
    EXPECT_EQ(out.GetPosition(), 8 + 9 + 1);
}

#if !defined(_WIN32)  // where memory that is not touched counts as taken
/// Resident memory of this process in bytes.
std::int64_t resident_bytes() {
    std::FILE* statm = std::fopen("/proc/self/statm", "r");
    long long total = 0;
    long long resident = 0;
    const int read = statm == nullptr ? 0 : std::fscanf(statm, "%lld %lld", &total, &resident);
    if (statm != nullptr) {
        std::fclose(statm);
    }
    EXPECT_EQ(read, 2);
    return resident * 4096;
}

TEST(TxlLoad, AHeaderThatClaimsTheMostPixelsCostsNothing) {
    const TemporaryFolder folder;
    TxlFile file;
    file.width = 1 << 15;
    file.height = 1 << 15;
    const std::string path = folder.write("claim.txl", file.bytes());
    const std::int64_t before = resident_bytes();
    const TextureReading reading = read_texture(path);
    BaseBitmap bitmap;
    ExampleTXLImage image(&bitmap);
    TXLImageFilter filter;
    ASSERT_TRUE(filter.LoadImage(path.c_str(), &image));
    ASSERT_TRUE(reading.texture.has_value());
    EXPECT_EQ(reading.texture->pixels.size(), std::size_t{3} << 30);
    EXPECT_LT(resident_bytes() - before, std::int64_t{64} << 20);
}
#endif

/// Rows of 2^20 pixels that only repeat the row before, in a file that could hold one such row.
TxlFile rows_without_bytes(std::int32_t rows) {
    TxlFile file;
    file.mode = 2;
    file.rows.channels = 1;
    file.rows.count = 1 << 20;
    file.rows.rows = rows;
    file.rows.blocks.assign(static_cast<std::size_t>(rows), {9, ""});
    file.rows.trailing = HyperBytes().Block(std::string(std::size_t{1} << 15, 'x')).bytes();
    return file;
}

TEST(TxlLoad, RowsThatHoldNothingAreRepairedUpToALimit) {
    const TemporaryFolder folder;
    const BothLoads repaired(folder.write("repaired.txl", rows_without_bytes(16).bytes()));
    EXPECT_TRUE(repaired.loaded);
    EXPECT_FALSE(repaired.reading.error.has_value());

    const BothLoads refused(folder.write("refused.txl", rows_without_bytes(64).bytes()));
    EXPECT_FALSE(refused.loaded);
    ASSERT_TRUE(refused.reading.error.has_value());
    EXPECT_EQ(refused.reading.error->code, TextureFault::over_limit);
    EXPECT_EQ(chunk_path(refused.reading.error->within), "502 > TaVx");
}

TEST(TxlLoad, TheLimitOfRepairedRowsHoldsForAllChunksTogether) {
    const TemporaryFolder folder;
    TxlFile file = rows_without_bytes(12);
    file.before_rows = file.rows.bytes() + file.rows.bytes();
    EXPECT_FALSE(BothLoads(folder.write("three.txl", file.bytes())).loaded);
}

TEST(TxlLoad, SixteenHeadersAreFollowed) {
    const TemporaryFolder folder;
    TxlFile file;
    for (std::int32_t i = 1; i < limits::kTextureHeaders.value; ++i) {
        file.before_header += file.header_bytes();
    }
    EXPECT_TRUE(BothLoads(folder.write("sixteen.txl", file.bytes())).loaded);

    file.before_header += file.header_bytes();
    const BothLoads refused(folder.write("seventeen.txl", file.bytes()));
    EXPECT_FALSE(refused.loaded);
    ASSERT_TRUE(refused.reading.error.has_value());
    EXPECT_EQ(refused.reading.error->code, TextureFault::over_limit);
    EXPECT_EQ(chunk_path(refused.reading.error->within), "502 > TaTx");
}

TxlFile full_file() {
    TxlFile file;
    file.before_rows = HyperBytes().Start(777, 3).Block("\x01\x02").Start(778, 0).End().End().bytes();
    file.rows.blocks[1] = {1, "\xFF\x55"};
    file.rows.blocks[2] = {2, "\x01"};
    file.layers = {TxlLayer(), layer_of_mode(4, 3, {"\x01\x02", "\x03\x04", "\x05\x06"})};
    return file;
}

TEST(TxlLadder, CutAtEveryLengthNeverCrashes) {
    const TemporaryFolder folder;
    const std::string whole = full_file().bytes();
    int loaded = 0;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        SCOPED_TRACE("cut to " + std::to_string(length));
        const BothLoads both(folder.write("cut.txl", whole.substr(0, length)));
        loaded += both.loaded ? 1 : 0;
    }
    EXPECT_GT(loaded, 1) << "cuts between two chunks load what came before";
}

TEST(TxlLadder, EveryByteChangedNeverCrashes) {
    const TemporaryFolder folder;
    const std::string whole = full_file().bytes();
    for (const int change : {0x01, 0x03, 0x40, 0xFF}) {
        for (std::size_t i = 0; i < whole.size(); ++i) {
            SCOPED_TRACE("byte " + std::to_string(i) + " changed by " + std::to_string(change));
            std::string changed = whole;
            changed[i] = static_cast<char>(changed[i] ^ change);
            const BothLoads both(folder.write("changed.txl", changed));
        }
    }
}

}  // namespace
