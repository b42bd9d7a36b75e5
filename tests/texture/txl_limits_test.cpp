#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "limit/limits.h"
#include "support/temporary_folder.h"
#include "texture/both_loads.h"
#include "texture/txl/example_txl_image.h"
#include "texture/txl/txl_image_filter.h"
#include "texture/txl_builder.h"

namespace {

TEST(TxlLimits, AlphaChunksNestUpTo64Deep) {
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
        EXPECT_EQ(both.reading.error->within.size(), 67u) << "502, 599 and 65 chunks 110100";
    }
}

#if !defined(_WIN32)  // where untouched memory counts as used
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

TEST(TxlLimits, AHeaderThatClaimsTheLargestPictureCostsNothing) {
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

/// Rows of 2^20 pixels that only repeat the previous row, in a file that could hold one such row.
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

TEST(TxlLimits, EmptyRowsAreRepairedUpToALimit) {
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

// The file is so short that 64 bytes of row for each of its bytes end at 640.
TEST(TxlLimits, OneRowIsRepairedUpTo2To24BytesWhateverTheLengthOfTheFile) {
    const TemporaryFolder folder;
    for (const std::int32_t width : {640, 641, 1 << 24}) {
        for (const int flag : {0, 1}) {
            TxlFile file;
            file.width = width;
            file.height = 1;
            file.mode = 2;
            file.rows.channels = 1;
            file.rows.count = width;
            file.rows.rows = 1;
            file.rows.blocks = {{flag, ""}};
            const BothLoads both(folder.write("empty_block.txl", file.bytes()));
            EXPECT_TRUE(both.loaded) << width << " pixels, flag " << flag;
            ASSERT_TRUE(both.reading.texture.has_value()) << both.reading.error->reason;
            EXPECT_EQ(std::count(both.reading.texture->pixels.begin(), both.reading.texture->pixels.end(), 0),
                      width);
            ASSERT_FALSE(both.reading.warnings.empty());
            EXPECT_EQ(both.reading.warnings.front().code, TextureNotice::row_cleared);
        }
    }
}

TEST(TxlLimits, TheLimitOfRepairedRowsCoversAllChunksTogether) {
    const TemporaryFolder folder;
    TxlFile file = rows_without_bytes(12);
    file.before_rows = file.rows.bytes() + file.rows.bytes();
    EXPECT_FALSE(BothLoads(folder.write("three.txl", file.bytes())).loaded);
}

TEST(TxlLimits, SixteenTextureHeadersAreRead) {
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

}  // namespace
