#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "support/temporary_folder.h"
#include "texture/both_loads.h"
#include "texture/txl_builder.h"

namespace {

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
    {"RowsOfVersionOneInTheTexture", [](TxlFile& f) { f.rows.version = 1; }, TextureFault::unsupported,
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
    {"NegativeCountOfNoRows",
     [](TxlFile& f) {
         f.rows.count = -1;
         f.rows.rows = -1;
     },
     TextureFault::negative_size, "502 > TaVx"},
    {"RowsAboveOneGigabyte", [](TxlFile& f) { f.rows.count = (1 << 30) / 3 + 1; }, TextureFault::over_limit,
     "502 > TaVx"},
    {"RowsOfOneGigabyteThatTheFileCannotHold", [](TxlFile& f) { f.rows.count = (1 << 30) / 3; },
     TextureFault::block_too_long, "502 > TaVx"},
    {"FewerRowsThanAnnounced", [](TxlFile& f) { f.rows.rows = 3; }, TextureFault::wrong_tag, "502 > TaVx"},
    {"TwoBillionRowsAnnounced", [](TxlFile& f) { f.rows.rows = INT32_MAX; }, TextureFault::wrong_tag,
     "502 > TaVx"},
    {"AValueBetweenChunks", [](TxlFile& f) { f.before_rows = HyperBytes().Long(1).bytes(); },
     TextureFault::stray_value, "502"},
    {"AValueAtTheTopLevel", [](TxlFile& f) { f.before_texture = HyperBytes().Long(1).bytes(); },
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
    {"AnErrorInTheRowsOfALayerThatTheBitmapRefuses",
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

TEST(TxlRefusal, FilesThatCannotBeOpened) {
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

TEST(TxlRefusal, RowsDeliveredBeforeAnErrorStay) {
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

}  // namespace
