// Blocks that are read in place, and the buffer that holds them.

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "support/temporary_folder.h"
#include "texture/container/hyper_file.h"
#include "texture/txl_builder.h"

namespace {

constexpr std::int32_t kIdent = four_characters("Test");
constexpr std::size_t kBuffer = PrivateFile::kBufferBytes;

std::string random_bytes(std::mt19937& random, std::size_t count) {
    std::string bytes(count, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random() >> 24);
    }
    return bytes;
}

std::string as_text(const unsigned char* bytes, std::size_t count) {
    return {bytes, bytes + count};
}

TEST(InPlaceBlocks, OfAnySizeHoldTheStoredBytes) {
    std::mt19937 random(11);
    std::vector<std::string> blocks;
    for (const std::size_t size :
         {std::size_t{1}, std::size_t{0}, kBuffer - 1, kBuffer, kBuffer + 1, std::size_t{5}, 3 * kBuffer,
          2 * kBuffer, std::size_t{0}, std::size_t{4096}}) {
        blocks.push_back(random_bytes(random, size));
    }
    for (int i = 0; i < 200; ++i) {
        blocks.push_back(random_bytes(random, random() % 5000));
    }
    HyperBytes file = HyperBytes().Header("AVXR", "Test");
    for (const std::string& block : blocks) {
        file.Block(block).Byte(PrivateHyperFile::kTagUChar).Byte(7);
    }
    const TemporaryFolder folder;
    PrivateHyperFile read;
    ASSERT_EQ(read.Open(kIdent, folder.write("blocks", file.bytes()).c_str(), 1, 0, 0), 1);
    for (const std::string& block : blocks) {
        const unsigned char* data = nullptr;
        std::int32_t count = -1;
        ASSERT_EQ(read.ReadMemoryInPlace(&data, &count), 1);
        ASSERT_EQ(static_cast<std::size_t>(count), block.size());
        ASSERT_EQ(data == nullptr, block.empty());
        ASSERT_EQ(as_text(data, block.size()), block);
        unsigned char next = 0;
        ASSERT_EQ(read.ReadUChar(&next), 1);
        ASSERT_EQ(next, 7);
    }
    EXPECT_EQ(read.GetPosition(), read.GetLength());
}

struct BadBlock {
    const char* name;
    int tag;
    std::int32_t count;
    int error;
};

const BadBlock kBadBlocks[] = {
    {"a string instead of a block", 130, 4, -100},
    {"a negative count", 128, -1, -7},
    {"one byte more than the file has left", 128, 9, 1},
    {"two gigabytes", 128, INT32_MAX, 1},
};

TEST(InPlaceBlocks, AreRefusedLikeCopiedBlocks) {
    const TemporaryFolder folder;
    for (const BadBlock& bad : kBadBlocks) {
        const HyperBytes file =
            HyperBytes().Header("AVXR", "Test").Byte(bad.tag).Be32(bad.count).Raw("xxxxxxxx");
        PrivateHyperFile read;
        ASSERT_EQ(read.Open(kIdent, folder.write("bad", file.bytes()).c_str(), 1, 0, 0), 1);
        const unsigned char byte = 0;
        const unsigned char* data = &byte;
        std::int32_t count = 5;
        EXPECT_EQ(read.ReadMemoryInPlace(&data, &count), 0) << bad.name;
        EXPECT_EQ(data, nullptr) << bad.name;
        EXPECT_EQ(count, 0) << bad.name;
        EXPECT_EQ(read.GetError(), bad.error) << bad.name;
    }
}

TEST(PrivateFileBuffer, TransfersCrossItsBoundaries) {
    std::mt19937 random(5);
    const std::size_t sizes[] = {1, 2, 7, 100, 4096, kBuffer - 1, kBuffer, kBuffer + 1, 2 * kBuffer + 3};
    std::vector<std::string> pieces;
    for (int i = 0; i < 120; ++i) {
        pieces.push_back(random_bytes(random, sizes[random() % std::size(sizes)]));
    }
    const TemporaryFolder folder;
    const std::string path = folder.path("pieces");
    PrivateFile file;
    ASSERT_EQ(file.Open(path.c_str(), 1), 1);
    std::size_t position = 0;
    for (const std::string& piece : pieces) {
        ASSERT_EQ(file.WriteBytes(piece.data(), static_cast<std::int32_t>(piece.size())), 1);
        position += piece.size();
        ASSERT_EQ(static_cast<std::size_t>(file.GetPosition()), position);
    }
    EXPECT_EQ(static_cast<std::size_t>(file.GetLength()), position) << "includes the bytes in the buffer";
    ASSERT_EQ(file.Close(), 1);
    EXPECT_EQ(file.GetError(), 0);

    ASSERT_EQ(file.Open(path.c_str(), 0), 1);
    position = 0;
    for (const std::string& piece : pieces) {
        std::string read(piece.size(), '\0');
        if (random() % 2 == 0 && piece.size() <= kBuffer) {
            const unsigned char* bytes = file.ReadInPlace(static_cast<std::int32_t>(piece.size()));
            ASSERT_NE(bytes, nullptr);
            read = as_text(bytes, piece.size());
        } else {
            ASSERT_EQ(file.ReadBytes(read.data(), static_cast<std::int32_t>(read.size())), 1);
        }
        ASSERT_EQ(read, piece);
        position += piece.size();
        ASSERT_EQ(static_cast<std::size_t>(file.GetPosition()), position);
    }
    EXPECT_EQ(file.ReadInPlace(1), nullptr) << "at the end";
    EXPECT_EQ(file.GetError(), 1);
    EXPECT_EQ(file.ReadInPlace(0), nullptr) << "after a failure";
}

TEST(PrivateFileBuffer, RefusesOperationsThatTheFileIsNotOpenFor) {
    const TemporaryFolder folder;
    const std::string path = folder.write("one", "a");
    char byte = 0;
    PrivateFile in;
    ASSERT_EQ(in.Open(path.c_str(), 0), 1);
    EXPECT_EQ(in.WriteBytes(&byte, 1), 0);
    EXPECT_EQ(in.GetError(), 1);
    PrivateFile out;
    ASSERT_EQ(out.Open(folder.path("out").c_str(), 1), 1);
    EXPECT_EQ(out.ReadBytes(&byte, 1), 0);
    EXPECT_EQ(out.GetError(), 1);
    PrivateFile large;
    ASSERT_EQ(large.Open(path.c_str(), 0), 1);
    EXPECT_EQ(large.ReadInPlace(PrivateFile::kBufferBytes + 1), nullptr);
    EXPECT_EQ(large.GetError(), 1);
    PrivateFile closed;
    EXPECT_EQ(closed.ReadInPlace(0), nullptr);
}

}  // namespace
