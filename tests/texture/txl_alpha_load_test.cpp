#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "texture/txl_load_cases.h"

namespace {

using namespace std::string_literals;

TxlLayer layer_with(const std::function<void(TxlLayer&)>& change) {
    TxlLayer layer;
    change(layer);
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

class TxlAlphaLoad : public testing::TestWithParam<LoadCase> {};

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
    {"SixtyFourDeepTwiceSideBySide",
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
    {"NegativeRowsOfALayerCountAsNone",
     [](TxlFile& f) { f.layers = {layer_with([](TxlLayer& l) { l.rows.rows = -1; })}; },
     kSoundPixels,
     {"\0\0\0\0"s}},
    {"NegativeCountOfALayerCountsAsNone",
     [](TxlFile& f) { f.layers = {layer_with([](TxlLayer& l) { l.rows.count = -1; })}; },
     kSoundPixels,
     {"\0\0\0\0"s}},
    {"RowsOfALayerWithoutChannelsCountAsNone",
     [](TxlFile& f) { f.layers = {layer_with([](TxlLayer& l) { l.rows.channels = 0; })}; },
     kSoundPixels,
     {"\0\0\0\0"s}},
    {"NegativeChannelsOfALayerCountAsNone",
     [](TxlFile& f) { f.layers = {layer_with([](TxlLayer& l) { l.rows.channels = -3; })}; },
     kSoundPixels,
     {"\0\0\0\0"s}},
    {"RowsOfVersionZeroInALayerAreSkipped",
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
    {"RowsWithoutALayerHeaderGoToThePreviousChannel",
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
    {"BytesBeyondThoseOfTheModeAreIgnored",
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
     // The first row leaves 3 6 3 6 6 6 in the buffer; the second makes (3 + 6 + 3) / 3 and (6 + 6 + 6) / 3
     // of it.
     kSoundPixels,
     {"\x03\x06\x04\x06"}},
    {"LayerRowsOutsideThePictureAreDropped",
     [](TxlFile& f) {
         f.layers.resize(1);
         f.layers[0].rows.x = 1;
         f.layers[0].rows.y = 1;
     },
     kSoundPixels,
     {"\0\0\0\x10"s}},
};

TEST_P(TxlAlphaLoad, GivesThePicture) {
    expect_picture(GetParam());
}

INSTANTIATE_TEST_SUITE_P(, TxlAlphaLoad, testing::ValuesIn(kAlphaCases),
                         [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
