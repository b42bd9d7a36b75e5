#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <string>

#include "support/file_content.h"
#include "texture/file/memory.h"
#include "texture/hyper_file_fixture.h"
#if !defined(_WIN32)
#include "texture/out_of_memory.h"
#endif

namespace {

TEST_F(HyperFile, BlocksOfManyLengthsReadBackWithAGuardByte) {
    for (const std::size_t length : {0u, 1u, 2u, 3u, 255u, 4096u, 100001u}) {
        SCOPED_TRACE(length);
        std::string data(length, '\0');
        for (std::size_t i = 0; i < length; ++i) {
            data[i] = static_cast<char>(i * 7 + 1);
        }
        const std::string path = folder_.path("block");
        TestedFile out;
        ASSERT_EQ(out.OpenToWrite(path), 1);
        ASSERT_EQ(out.WriteMemory(data.data(), static_cast<std::int32_t>(length)), 1);
        out.Close();
        EXPECT_EQ(content_of(path), header().Block(data).bytes());
        TestedFile in;
        ASSERT_EQ(in.OpenToRead(path), 1);
        void* block = &in;
        std::int32_t count = -1;
        ASSERT_EQ(in.ReadMemory(&block, &count), 1);
        ASSERT_EQ(count, static_cast<std::int32_t>(length));
        EXPECT_EQ(block == nullptr, length == 0) << "an empty block is null";
        EXPECT_EQ(in.counter(), length == 0 ? 0u : 1u) << "an empty block is not counted";
        if (block != nullptr) {
            EXPECT_EQ(std::string(static_cast<char*>(block), length), data);
            EXPECT_EQ(static_cast<char*>(block)[length], 0);
        }
        MemFree(block);
    }
}

TEST_F(HyperFile, StringsOfManyLengthsReadBack) {
    for (const std::int32_t length : {0, 1, 2, 3, 255, 4097, 50000}) {
        SCOPED_TRACE(length);
        PrivateString string;
        ASSERT_EQ(string.Init(length), 1);
        for (std::int32_t i = 0; i < length; ++i) {
            string[i] = static_cast<std::uint16_t>(i * 257 + 1);
        }
        const std::string path = folder_.path("string");
        TestedFile out;
        ASSERT_EQ(out.OpenToWrite(path), 1);
        ASSERT_EQ(out.WriteString(string), 1);
        out.Close();
        EXPECT_EQ(std::filesystem::file_size(path), 13u + 2u * static_cast<unsigned>(length));
        TestedFile in;
        ASSERT_EQ(in.OpenToRead(path), 1);
        PrivateString read;
        ASSERT_EQ(in.ReadString(&read), 1);
        EXPECT_EQ(in.counter(), 1u);
        ASSERT_EQ(read.GetLength(), length);
        for (std::int32_t i = 0; i < length; ++i) {
            ASSERT_EQ(read[i], static_cast<std::uint16_t>(string[i])) << "unit " << i;
        }
    }
}

TEST_F(HyperFile, AnOddLastByteOfAStringIsDropped) {
    open(header().Byte(130).Be32(3).Raw("\x12\x34\x56").Byte(130).Be32(1).Raw("\x77").UChar(1));
    PrivateString string("before");
    EXPECT_EQ(file_.ReadString(&string), 1);
    ASSERT_EQ(string.GetLength(), 1);
    EXPECT_EQ(string[0], 0x1234);
    EXPECT_EQ(file_.ReadString(&string), 1);
    EXPECT_EQ(string.GetLength(), 0);
    unsigned char next = 0;
    EXPECT_EQ(file_.ReadUChar(&next), 1);
}

TEST_F(HyperFile, AnEmptyStringDoesNotReleaseTheOldBuffer) {
    class SharedString : public PrivateString {
      public:
        using PrivateString::PrivateString;
        [[nodiscard]] std::uint16_t* units() const { return units_; }
    };
    open(header().String(u""));
    SharedString string("shared");
    std::uint16_t* shared = string.units();
    EXPECT_EQ(file_.ReadString(&string), 1);
    EXPECT_EQ(string.GetLength(), 0);
    EXPECT_EQ(string.units(), nullptr);
    EXPECT_EQ(shared[0], 's');
    MemFree(shared);
}

struct BadBlock {
    const char* name;
    std::int32_t count;
    int error;
};

class BlockCounts : public HyperFile, public testing::WithParamInterface<BadBlock> {};

TEST_P(BlockCounts, AreRefusedBeforeAnythingIsAllocated) {
    for (const int tag : {128, 130}) {
        TestedFile file;
        ASSERT_EQ(file.OpenToRead(write(header().Byte(tag).Be32(GetParam().count).Raw("xxxxxxxx"))), 1);
        void* data = &file;
        std::int32_t count = 5;
        PrivateString string("kept");
        if (tag == 128) {
            EXPECT_EQ(file.ReadMemory(&data, &count), 0);
            EXPECT_EQ(data, nullptr);
            EXPECT_EQ(count, 0);
        } else {
            EXPECT_EQ(file.ReadString(&string), 0);
            EXPECT_EQ(string.GetLength(), 4);
        }
        EXPECT_EQ(file.GetError(), GetParam().error);
    }
}

INSTANTIATE_TEST_SUITE_P(HyperFile, BlockCounts,
                         testing::Values(BadBlock{"MinusOne", -1, -7},
                                         BadBlock{"MostNegative", INT32_MIN, -7},
                                         BadBlock{"OneMoreThanTheFileHasLeft", 9, 1},
                                         BadBlock{"TwoGigabytes", INT32_MAX, 1}),
                         [](const auto& tested) { return tested.param.name; });

TEST_F(HyperFile, ABlockThatEndsWithTheFileIsRead) {
    open(header().Block("xxxxxxxx"));
    void* data = nullptr;
    std::int32_t count = 0;
    EXPECT_EQ(file_.ReadMemory(&data, &count), 1);
    MemFree(data);
}

TEST_F(HyperFile, NegativeBlocksAreNotWritten) {
    const std::string path = folder_.path("out");
    ASSERT_EQ(file_.OpenToWrite(path), 1);
    EXPECT_EQ(file_.WriteMemory("x", -1), 0);
    EXPECT_EQ(file_.GetError(), -7);
    file_.Close();
    EXPECT_EQ(content_of(path), header().bytes());
}

#if !defined(_WIN32)  // where the memory of a process cannot be limited
using HyperFileDeathTest = HyperFile;

TEST_F(HyperFileDeathTest, WithoutMemoryABlockAndAStringAreRefused) {
    constexpr std::int32_t kLarge = 1 << 28;
    for (const int tag : {128, 130}) {
        const std::string path = write(header().Byte(tag).Be32(kLarge));
        std::filesystem::resize_file(path, kLarge + 100);
        EXPECT_EXIT(
            {
                TestedFile file;
                const bool opened = file.OpenToRead(path) != 0;
                std::uint8_t byte = 0;
                refuse_further_memory();
                void* data = &byte;
                std::int32_t count = 0;
                PrivateString string;
                const int read = tag == 128 ? file.ReadMemory(&data, &count) : file.ReadString(&string);
                _exit(opened && read == 0 && file.GetError() == -7 ? 0 : 1);
            },
            testing::ExitedWithCode(0), "");
    }
}
#endif

}  // namespace
