#include "texture/txl/chunk.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "support/temporary_folder.h"
#include "texture/txl/example_txl_image.h"
#include "texture/txl/txl_image_filter.h"
#include "texture/txl_builder.h"

namespace {

TEST(TXLImageFilter, NeedsATargetOrASource) {
    const TemporaryFolder folder;
    const std::string path = folder.write("sound.txl", TxlFile().bytes());
    TXLImageFilter filter;
    EXPECT_FALSE(filter.LoadImage(path.c_str(), nullptr));
    EXPECT_FALSE(filter.SaveImage(path.c_str(), nullptr));
}

TEST(TXLImageFilter, StaysFailedAfterAFailure) {
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

TEST(TXLImageFilter, OffersTheRowCodingOfTheFormat) {
    unsigned char row[] = {7, 7, 7, 7};
    unsigned char packed[8];
    unsigned char unpacked[4] = {};
    ASSERT_EQ(TXLImageFilter::PackBitsEncode(row, 4, packed, 8), 2);
    EXPECT_TRUE(TXLImageFilter::PackBitsDecode(packed, 2, unpacked, 4));
    EXPECT_TRUE(std::equal(row, row + 4, unpacked));
}

TEST(Chunk, HandlersWithoutAFilterDoNothing) {
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

TEST(Chunk, ChunksThatAreNotHandledAreSkipped) {
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

}  // namespace
