#include "texture/file/private_file.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <string>

#include "support/file_content.h"
#include "support/special_files.h"
#include "support/temporary_folder.h"
#include "texture/file/byte_order.h"
#include "texture/file/memory.h"

namespace {

TEST(Memory, ANegativeSizeIsRefused) {
    EXPECT_EQ(MemAlloc(-1), nullptr);
    EXPECT_EQ(allocate_zeroed(-1), nullptr);
}

TEST(Memory, APetabyteIsRefused) {
    EXPECT_EQ(MemAlloc(std::int64_t{1} << 50), nullptr);
    EXPECT_EQ(allocate_zeroed(std::int64_t{1} << 50), nullptr);
}

TEST(Memory, ZeroedMemoryIsZero) {
    const MemBlock block(static_cast<unsigned char*>(allocate_zeroed(100)));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(block.get()), 100), std::string(100, '\0'));
}

TEST(Memory, MemCopyTakesTheSourceFirst) {
    const std::array<char, 4> source = {'a', 'b', 'c', 'd'};
    std::array<char, 4> destination = {'w', 'x', 'y', 'z'};
    MemCopy(source.data(), destination.data(), 2);
    EXPECT_EQ(std::string(destination.data(), 4), "abyz");
    MemCopy(source.data(), destination.data(), 0);
    MemCopy(source.data(), destination.data(), -3);
    EXPECT_EQ(std::string(destination.data(), 4), "abyz");
}

TEST(ByteOrder, ConvertsEveryValueInPlace) {
    std::array<std::uint32_t, 2> longs = {0x01020304, 0xA0B0C0D0};
    LMotor(longs.data(), 2);
    std::array<unsigned char, 8> bytes{};
    std::memcpy(bytes.data(), longs.data(), 8);
    EXPECT_EQ(bytes, (std::array<unsigned char, 8>{1, 2, 3, 4, 0xA0, 0xB0, 0xC0, 0xD0}));

    std::array<std::uint16_t, 2> words = {0x0102, 0xA0B0};
    WMotor(words.data(), 2);
    std::memcpy(bytes.data(), words.data(), 4);
    EXPECT_EQ(bytes, (std::array<unsigned char, 8>{1, 2, 0xA0, 0xB0, 0xA0, 0xB0, 0xC0, 0xD0}));
}

TEST(ByteOrder, ConvertingTwiceRestoresTheValue) {
    double value = 1234.5;
    convert_big_endian<8>(&value, 1);
    convert_big_endian<8>(&value, 1);
    EXPECT_EQ(value, 1234.5);
}

TEST(ByteOrder, ACountBelowOneChangesNothing) {
    std::uint32_t value = 0x01020304;
    LMotor(&value, 0);
    LMotor(&value, -1);
    WMotor(&value, -1);
    EXPECT_EQ(value, 0x01020304u);
}

TEST(PrivateFile, StoresEveryTypeBigEndian) {
    const TemporaryFolder folder;
    const std::string path = folder.path("values");
    PrivateFile file;
    ASSERT_EQ(file.Open(path.c_str(), 1), 1);
    EXPECT_EQ(file.WriteChar(-2), 1);
    EXPECT_EQ(file.WriteUChar(0xFE), 1);
    EXPECT_EQ(file.WriteWord(-2), 1);
    EXPECT_EQ(file.WriteUWord(0x0102), 1);
    EXPECT_EQ(file.WriteLong(-2), 1);
    EXPECT_EQ(file.WriteULong(0x01020304), 1);
    EXPECT_EQ(file.WriteReal(1.0F), 1);
    EXPECT_EQ(file.WriteLReal(-2.0), 1);
    EXPECT_EQ(file.GetPosition(), 26);
    EXPECT_EQ(file.Close(), 1);
    using namespace std::string_literals;
    EXPECT_EQ(content_of(path),
              "\xFE\xFE\xFF\xFE\x01\x02\xFF\xFF\xFF\xFE\x01\x02\x03\x04"
              "\x3F\x80\x00\x00\xC0\x00\x00\x00\x00\x00\x00\x00"s);
}

TEST(PrivateFile, ReadsBackEveryType) {
    const TemporaryFolder folder;
    using namespace std::string_literals;
    const std::string path = folder.write("values",
                                          "\xFE\xFE\xFF\xFE\x01\x02\xFF\xFF\xFF\xFE\x01\x02\x03\x04"
                                          "\x3F\x80\x00\x00\xC0\x00\x00\x00\x00\x00\x00\x00"s);
    PrivateFile file;
    ASSERT_EQ(file.Open(path.c_str(), 0), 1);
    char signed_byte = 0;
    unsigned char byte = 0;
    std::int16_t word = 0;
    std::uint16_t uword = 0;
    std::int32_t longer = 0;
    std::uint32_t ulonger = 0;
    float real = 0;
    double lreal = 0;
    EXPECT_EQ(file.ReadChar(&signed_byte), 1);
    EXPECT_EQ(file.ReadUChar(&byte), 1);
    EXPECT_EQ(file.ReadWord(&word), 1);
    EXPECT_EQ(file.ReadUWord(&uword), 1);
    EXPECT_EQ(file.ReadLong(&longer), 1);
    EXPECT_EQ(file.ReadULong(&ulonger), 1);
    EXPECT_EQ(file.ReadReal(&real), 1);
    EXPECT_EQ(file.ReadLReal(&lreal), 1);
    EXPECT_EQ(static_cast<signed char>(signed_byte), -2);
    EXPECT_EQ(byte, 0xFE);
    EXPECT_EQ(word, -2);
    EXPECT_EQ(uword, 0x0102);
    EXPECT_EQ(longer, -2);
    EXPECT_EQ(ulonger, 0x01020304u);
    EXPECT_EQ(real, 1.0F);
    EXPECT_EQ(lreal, -2.0);
}

TEST(PrivateFile, AShortReadIsSticky) {
    const TemporaryFolder folder;
    const std::string path = folder.write("three", "abc");
    PrivateFile file;
    ASSERT_EQ(file.Open(path.c_str(), 0), 1);
    std::int32_t value = 7;
    EXPECT_EQ(file.ReadLong(&value), 0);
    EXPECT_EQ(value, 7) << "a failed read leaves the value unchanged";
    EXPECT_EQ(file.GetError(), 1);
    unsigned char byte = 0;
    EXPECT_EQ(file.ReadUChar(&byte), 0);
    EXPECT_EQ(file.ReadBytes(&byte, 0), 0);
    EXPECT_EQ(file.GetLength(), 0);
    EXPECT_EQ(file.GetPosition(), 0);
    EXPECT_EQ(file.Flush(), 0);
    EXPECT_EQ(file.Close(), 1);
    ASSERT_EQ(file.Open(path.c_str(), 0), 1) << "opening again clears the flag";
    EXPECT_EQ(file.GetError(), 0);
    EXPECT_EQ(file.ReadUChar(&byte), 1);
    EXPECT_EQ(byte, 'a');
}

TEST(PrivateFile, ANegativeCountFails) {
    const TemporaryFolder folder;
    char byte = 0;
    PrivateFile in;
    ASSERT_EQ(in.Open(folder.write("one", "a").c_str(), 0), 1);
    EXPECT_EQ(in.ReadBytes(&byte, -1), 0);
    EXPECT_EQ(in.GetError(), 1);
    PrivateFile out;
    ASSERT_EQ(out.Open(folder.path("out").c_str(), 1), 1);
    EXPECT_EQ(out.WriteBytes(&byte, -1), 0);
    EXPECT_EQ(out.GetError(), 1);
    EXPECT_EQ(out.WriteBytes(&byte, 1), 0);
}

TEST(PrivateFile, NoBytesSucceedAtTheEndToo) {
    const TemporaryFolder folder;
    PrivateFile file;
    ASSERT_EQ(file.Open(folder.write("empty", "").c_str(), 0), 1);
    EXPECT_EQ(file.ReadBytes(nullptr, 0), 1);
    EXPECT_EQ(file.GetError(), 0);
}

TEST(PrivateFile, AClosedFileDoesNothing) {
    PrivateFile file;
    char byte = 0;
    EXPECT_EQ(file.ReadBytes(&byte, 1), 0);
    EXPECT_EQ(file.WriteBytes(&byte, 1), 0);
    EXPECT_EQ(file.GetError(), 0);
    EXPECT_EQ(file.GetLength(), 0);
    EXPECT_EQ(file.GetPosition(), 0);
    EXPECT_EQ(file.Close(), 0);
}

TEST(PrivateFile, LengthKeepsThePosition) {
    const TemporaryFolder folder;
    PrivateFile file;
    ASSERT_EQ(file.Open(folder.write("five", "abcde").c_str(), 0), 1);
    char byte = 0;
    ASSERT_EQ(file.ReadChar(&byte), 1);
    EXPECT_EQ(file.GetLength(), 5);
    EXPECT_EQ(file.GetPosition(), 1);
    ASSERT_EQ(file.ReadChar(&byte), 1);
    EXPECT_EQ(byte, 'b');
}

TEST(PrivateFile, ALengthBeyond32BitsIsCapped) {
    const TemporaryFolder folder;
    const std::string path = folder.write("huge", "");
    std::filesystem::resize_file(path, std::uintmax_t{5} << 30);
    PrivateFile file;
    ASSERT_EQ(file.Open(path.c_str(), 0), 1);
    EXPECT_EQ(file.GetLength(), 0x7FFFFFFF);
}

TEST(PrivateFile, OnlyRegularFilesOpenForReading) {
    const TemporaryFolder folder;
    const std::string pipe = folder.path("pipe");
    make_pipe(pipe);
    for (const std::string& path :
         {folder.folder().string(), pipe, folder.path("missing"), std::string("/dev/null")}) {
        PrivateFile file;
        EXPECT_EQ(file.Open(path.c_str(), 0), 0) << path;
        EXPECT_EQ(file.Close(), 0) << path;
    }
}

TEST(PrivateFile, WithoutAPathNothingOpens) {
    PrivateFile file;
    EXPECT_EQ(file.Open(nullptr, 0), 0);
    EXPECT_EQ(file.Open(nullptr, 1), 0);
}

#if !defined(_WIN32)  // where no device simulates a full disk
TEST(PrivateFile, AFullDiskIsNoticedWhenTheBufferIsWritten) {
    PrivateFile file;
    ASSERT_EQ(file.Open("/dev/full", 1), 1);
    EXPECT_EQ(file.WriteLong(1), 1) << "still in the buffer";
    EXPECT_EQ(file.Flush(), 0);
    EXPECT_EQ(file.GetError(), 1);
    EXPECT_EQ(file.WriteLong(1), 0);
}
#endif

TEST(PrivateFile, OpeningAgainClosesTheFirstFile) {
    const TemporaryFolder folder;
    PrivateFile file;
    ASSERT_EQ(file.Open(folder.path("a").c_str(), 1), 1);
    ASSERT_EQ(file.WriteUChar('x'), 1);
    ASSERT_EQ(file.Open(folder.path("b").c_str(), 1), 1);
    EXPECT_EQ(content_of(folder.path("a")), "x");
}

}  // namespace
