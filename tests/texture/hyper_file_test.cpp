#include "texture/container/hyper_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "support/file_content.h"
#include "support/special_files.h"
#include "support/temporary_folder.h"
#include "texture/file/memory.h"
#if !defined(_WIN32)
#include "texture/out_of_memory.h"
#endif
#include "texture/txl_builder.h"

namespace {

using namespace std::string_literals;

constexpr std::int32_t kIdent = four_characters("Test");

/// Lets tests see the counter and be told of failures.
class TestedFile : public PrivateHyperFile {
  public:
    [[nodiscard]] std::uint32_t counter() const { return counter_; }
    void set_counter(std::uint32_t value) { counter_ = value; }
    int OpenToRead(const std::string& path) { return Open(kIdent, path.c_str(), kReading, 0, 0); }
    int OpenToWrite(const std::string& path) { return Open(kIdent, path.c_str(), kWriting, 0, 1); }
};

/// A folder with one file of the container.
class HyperFile : public testing::Test {
  protected:
    static HyperBytes header() { return HyperBytes().Header("AVXR", "Test"); }
    std::string write(const HyperBytes& bytes) { return folder_.write("file", bytes.bytes()); }
    void open(const HyperBytes& bytes) { ASSERT_EQ(file_.OpenToRead(write(bytes)), 1); }

    TemporaryFolder folder_;
    TestedFile file_;
};

TEST_F(HyperFile, EveryByteOfAFileIsAsWrittenByHand) {
    const std::string path = folder_.path("all");
    ASSERT_EQ(file_.OpenToWrite(path), 1);
    EXPECT_EQ(file_.WriteChunkStart(502, 3), 1);
    EXPECT_EQ(file_.WriteChar(-1), 1);
    EXPECT_EQ(file_.WriteUChar(255), 1);
    EXPECT_EQ(file_.WriteWord(-2), 1);
    EXPECT_EQ(file_.WriteUWord(0xABCD), 1);
    EXPECT_EQ(file_.WriteLong(-3), 1);
    EXPECT_EQ(file_.WriteULong(0x89ABCDEF), 1);
    EXPECT_EQ(file_.WriteReal(-0.5F), 1);
    EXPECT_EQ(file_.WriteLReal(2.0), 1);
    EXPECT_EQ(file_.WriteBool(7), 1);
    EXPECT_EQ(file_.WriteBool(-7), 1);
    EXPECT_EQ(file_.WriteMemory("xyz", 3), 1);
    EXPECT_EQ(file_.WriteMemory(nullptr, 0), 1);
    EXPECT_EQ(file_.WriteString(PrivateString("A\x80")), 1);
    EXPECT_EQ(file_.WriteString(PrivateString()), 1);
    EXPECT_EQ(file_.WriteChunkEnd(), 1);
    EXPECT_EQ(file_.GetLength(), 0) << "a file that is written has no stored length";
    EXPECT_EQ(file_.counter(), 16u);
    EXPECT_EQ(file_.Close(), 1);
    EXPECT_EQ(file_.GetError(), 0);
    EXPECT_EQ(content_of(path),
              "AVXRTest"
              "\x01\x00\x00\x01\xF6\x00\x00\x00\x03"
              "\x0B\xFF"
              "\x0C\xFF"
              "\x0D\xFF\xFE"
              "\x0E\xAB\xCD"
              "\x0F\xFF\xFF\xFF\xFD"
              "\x10\x89\xAB\xCD\xEF"
              "\x13\xBF\x00\x00\x00"
              "\x14\x40\x00\x00\x00\x00\x00\x00\x00"
              "\x15\x01"
              "\x15\x00"
              "\x80\x00\x00\x00\x03xyz"
              "\x80\x00\x00\x00\x00"
              "\x82\x00\x00\x00\x04\x00\x41\xFF\x80"
              "\x82\x00\x00\x00\x00"
              "\x02"s);
}

TEST_F(HyperFile, ReadsEveryTypeBack) {
    open(
        header().Raw("\x0B\xFE"
                     "\x0C\xFE"
                     "\x0D\xFF\xFE"
                     "\x0E\xAB\xCD"
                     "\x0F\xFF\xFF\xFF\xFD"
                     "\x10\x89\xAB\xCD\xEF"
                     "\x13\xBF\x00\x00\x00"
                     "\x15\x02"
                     "\x15\x00"s));
    EXPECT_EQ(file_.GetLength(), 8 + 29);
    char signed_byte = 0;
    unsigned char byte = 0;
    std::int16_t word = 0;
    std::uint16_t uword = 0;
    std::int32_t longer = 0;
    std::uint32_t ulonger = 0;
    float real = 0;
    int truth = 5;
    int lie = 5;
    EXPECT_EQ(file_.ReadChar(&signed_byte), 1);
    EXPECT_EQ(file_.ReadUChar(&byte), 1);
    EXPECT_EQ(file_.ReadWord(&word), 1);
    EXPECT_EQ(file_.ReadUWord(&uword), 1);
    EXPECT_EQ(file_.ReadLong(&longer), 1);
    EXPECT_EQ(file_.ReadULong(&ulonger), 1);
    EXPECT_EQ(file_.ReadReal(&real), 1);
    EXPECT_EQ(file_.ReadBool(&truth), 1);
    EXPECT_EQ(file_.ReadBool(&lie), 1);
    EXPECT_EQ(static_cast<signed char>(signed_byte), -2);
    EXPECT_EQ(byte, 0xFE);
    EXPECT_EQ(word, -2);
    EXPECT_EQ(uword, 0xABCD);
    EXPECT_EQ(longer, -3);
    EXPECT_EQ(ulonger, 0x89ABCDEFu);
    EXPECT_EQ(real, -0.5F);
    EXPECT_EQ(truth, 1);
    EXPECT_EQ(lie, 0);
    EXPECT_EQ(file_.counter(), 9u);
    EXPECT_EQ(file_.GetPosition(), file_.GetLength());
}

TEST_F(HyperFile, ARealKeepsEveryBitPattern) {
    open(header().Raw("\x13\x7F\x80\x00\x01"s));  // a signalling "not a number"
    float real = 0;
    ASSERT_EQ(file_.ReadReal(&real), 1);
    std::uint32_t bits = 0;
    std::memcpy(&bits, &real, sizeof(bits));
    EXPECT_EQ(bits, 0x7F800001u);
}

/// One value of every type, and the operation that reads it.
struct Typed {
    const char* name;
    std::string stored;
    std::function<int(PrivateHyperFile&)> read;
};

std::vector<Typed> typed_values() {
    return {
        {"Char", "\x0B\x01"s,
         [](PrivateHyperFile& f) {
             char v = 0;
             return f.ReadChar(&v);
         }},
        {"UChar", "\x0C\x01"s,
         [](PrivateHyperFile& f) {
             unsigned char v = 0;
             return f.ReadUChar(&v);
         }},
        {"Word", "\x0D\x00\x01"s,
         [](PrivateHyperFile& f) {
             std::int16_t v = 0;
             return f.ReadWord(&v);
         }},
        {"UWord", "\x0E\x00\x01"s,
         [](PrivateHyperFile& f) {
             std::uint16_t v = 0;
             return f.ReadUWord(&v);
         }},
        {"Long", "\x0F\x00\x00\x00\x01"s,
         [](PrivateHyperFile& f) {
             std::int32_t v = 0;
             return f.ReadLong(&v);
         }},
        {"ULong", "\x10\x00\x00\x00\x01"s,
         [](PrivateHyperFile& f) {
             std::uint32_t v = 0;
             return f.ReadULong(&v);
         }},
        {"Real", "\x13\x00\x00\x00\x01"s,
         [](PrivateHyperFile& f) {
             float v = 0;
             return f.ReadReal(&v);
         }},
        {"Bool", "\x15\x01"s,
         [](PrivateHyperFile& f) {
             int v = 0;
             return f.ReadBool(&v);
         }},
        {"block", "\x80\x00\x00\x00\x01x"s,
         [](PrivateHyperFile& f) {
             void* data = nullptr;
             std::int32_t count = 0;
             const int read = f.ReadMemory(&data, &count);
             MemFree(data);
             return read;
         }},
        {"string", "\x82\x00\x00\x00\x02\x00x"s,
         [](PrivateHyperFile& f) {
             PrivateString v;
             return f.ReadString(&v);
         }},
    };
}

TEST_F(HyperFile, AValueReadsAsItsOwnTypeOnly) {
    std::vector<Typed> stored = typed_values();
    stored.push_back({"LReal", "\x14\x00\x00\x00\x00\x00\x00\x00\x00"s, nullptr});
    stored.push_back({"chunk start", "\x01\x00\x00\x00\x00\x00\x00\x00\x00"s, nullptr});
    stored.push_back({"chunk end", "\x02"s, nullptr});
    for (const Typed& value : stored) {
        for (const Typed& reader : typed_values()) {
            SCOPED_TRACE("a "s + value.name + " read as a " + reader.name);
            TestedFile file;
            ASSERT_EQ(file.OpenToRead(write(header().Raw(value.stored).UChar(0))), 1);
            const bool same = std::string(value.name) == reader.name;
            EXPECT_EQ(reader.read(file), same ? 1 : 0);
            EXPECT_EQ(file.GetError(), same ? 0 : -100);
            EXPECT_EQ(file.GetPosition(), same ? 8 + static_cast<std::int32_t>(value.stored.size()) : 9)
                << "of a wrong value only the tag is read";
            EXPECT_EQ(file.counter(), same ? 1u : 0u);
        }
    }
}

TEST_F(HyperFile, EveryTypeCutAtEveryByteIsAShortRead) {
    for (const Typed& value : typed_values()) {
        for (std::size_t length = 0; length < value.stored.size(); ++length) {
            SCOPED_TRACE(std::string(value.name) + " cut to " + std::to_string(length));
            TestedFile file;
            ASSERT_EQ(file.OpenToRead(write(header().Raw(value.stored.substr(0, length)))), 1);
            EXPECT_EQ(value.read(file), 0);
            EXPECT_EQ(file.GetError(), 1);
            EXPECT_EQ(file.counter(), 0u);
        }
    }
}

TEST_F(HyperFile, EveryTagIsSkippedByItsWidth) {
    const auto width = [](int tag) {
        switch (tag) {
            case 1:
            case 17:
            case 18:
            case 20:
            case 22:
                return 8;
            case 11:
            case 12:
            case 21:
                return 1;
            case 13:
            case 14:
                return 2;
            case 15:
            case 16:
            case 19:
                return 4;
            case 23:
                return 12;
            case 24:
                return 24;
            case 25:
                return 48;
            case 26:
                return 96;
            default:
                return tag < 128 ? 0 : 4 + 5;
        }
    };
    for (int tag = 0; tag < 256; ++tag) {
        SCOPED_TRACE("tag " + std::to_string(tag));
        TestedFile file;
        ASSERT_EQ(file.OpenToRead(write(header().Byte(tag).Be32(5).Raw(std::string(100, 'x')))), 1);
        std::uint8_t read_tag = 0;
        ASSERT_EQ(file.ReadValueHeader(&read_tag), 1);
        EXPECT_EQ(read_tag, tag);
        EXPECT_EQ(file.counter(), 0u) << "a tag alone is not counted";
        EXPECT_EQ(file.SkipValue(read_tag), 1);
        EXPECT_EQ(file.GetPosition(), 9 + width(tag));
        EXPECT_EQ(file.counter(), 1u);
    }
}

TEST_F(HyperFile, ABlockOfNegativeLengthSkipsItsLengthOnly) {
    open(header().Be32(-5).Raw("xxxxxxxxxx"));
    EXPECT_EQ(file_.SkipValue(0xC0), 1);
    EXPECT_EQ(file_.GetPosition(), 12);
    EXPECT_EQ(file_.ReadDummy(-1), 1);
    EXPECT_EQ(file_.GetPosition(), 12);
}

TEST_F(HyperFile, SkippingPastTheEndIsAShortRead) {
    open(header().Be32(0x7FFFFFFF).Raw("xxxxxxxxxx"));
    EXPECT_EQ(file_.SkipValue(0xC0), 0);
    EXPECT_EQ(file_.GetError(), 1);
    EXPECT_EQ(file_.SkipValue(0), 0);
    EXPECT_EQ(file_.ReadDummy(0), 0);
}

TEST_F(HyperFile, ALongBlockIsSkippedWhole) {
    open(header().Be32(10000).Raw(std::string(10000, 'x')).UChar(9));
    EXPECT_EQ(file_.SkipValue(128), 1);
    unsigned char value = 0;
    EXPECT_EQ(file_.ReadUChar(&value), 1);
    EXPECT_EQ(value, 9);
}

TEST_F(HyperFile, BlocksOfManyLengthsComeBackWithAGuardByte) {
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

TEST_F(HyperFile, StringsOfManyLengthsComeBack) {
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

TEST_F(HyperFile, AnEmptyStringLeavesTheOldBufferToWhoeverSharesIt) {
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
                                         BadBlock{"OneMoreThanIsLeft", 9, 1},
                                         BadBlock{"TwoGigabytes", INT32_MAX, 1}),
                         [](const auto& tested) { return tested.param.name; });

TEST_F(HyperFile, ABlockUpToTheLastByteIsRead) {
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

TEST_F(HyperFile, AfterAnErrorWritesLeaveTheFileAsItIs) {
    const std::string path = folder_.path("out");
    ASSERT_EQ(file_.OpenToWrite(path), 1);
    ASSERT_EQ(file_.WriteLong(1), 1);
    file_.SetError(-7);
    EXPECT_EQ(file_.WriteChar(1), 0);
    EXPECT_EQ(file_.WriteUChar(1), 0);
    EXPECT_EQ(file_.WriteWord(1), 0);
    EXPECT_EQ(file_.WriteUWord(1), 0);
    EXPECT_EQ(file_.WriteLong(1), 0);
    EXPECT_EQ(file_.WriteULong(1), 0);
    EXPECT_EQ(file_.WriteReal(1), 0);
    EXPECT_EQ(file_.WriteLReal(1), 0);
    EXPECT_EQ(file_.WriteBool(1), 0);
    EXPECT_EQ(file_.WriteMemory("x", 1), 0);
    EXPECT_EQ(file_.WriteString(PrivateString("x")), 0);
    EXPECT_EQ(file_.WriteChunkStart(1, 1), 0);
    EXPECT_EQ(file_.WriteChunkEnd(), 0);
    EXPECT_EQ(file_.GetError(), -7);
    EXPECT_EQ(file_.counter(), 1u);
    file_.Close();
    EXPECT_EQ(content_of(path), header().Long(1).bytes());
}

TEST_F(HyperFile, AfterAnErrorReadsDoNotMove) {
    open(header().Long(1).Start(1, 1).End().Raw(std::string(50, '\x02')));
    file_.SetError(-7);
    for (const Typed& reader : typed_values()) {
        EXPECT_EQ(reader.read(file_), 0) << reader.name;
    }
    std::uint8_t tag = 0;
    std::int32_t id = 0;
    std::int32_t version = 0;
    EXPECT_EQ(file_.ReadValueHeader(&tag), 0);
    EXPECT_EQ(file_.CheckIt(15), 0);
    EXPECT_EQ(file_.ReadChunkStart(&id, &version), 0);
    EXPECT_EQ(file_.ReadChunkEnd(), 0);
    EXPECT_EQ(file_.SkipValue(15), 0);
    EXPECT_EQ(file_.SkipToEndChunk(), 0);
    EXPECT_EQ(file_.ReadDummy(1), 0);
    EXPECT_EQ(file_.GetError(), -7);
    EXPECT_EQ(file_.GetPosition(), 8);
    EXPECT_EQ(file_.counter(), 0u);
}

TEST_F(HyperFile, AnObjectThatFailedStaysFailedUntilToldOtherwise) {
    const std::string path = write(header().Long(1));
    file_.SetError(-100);
    EXPECT_EQ(file_.OpenToRead(path), 0);
    EXPECT_EQ(file_.OpenToWrite(path), 0);
    EXPECT_EQ(content_of(path), header().Long(1).bytes()) << "not even emptied";
    file_.SetError(0);
    EXPECT_EQ(file_.OpenToRead(path), 1);
}

TEST_F(HyperFile, TheCounterRunsToFiftyThousandAndStartsAtOne) {
    open(header().UChar(1).UChar(1).UChar(1));
    unsigned char value = 0;
    file_.set_counter(49999);
    ASSERT_EQ(file_.ReadUChar(&value), 1);
    EXPECT_EQ(file_.counter(), 50000u);
    ASSERT_EQ(file_.ReadUChar(&value), 1);
    EXPECT_EQ(file_.counter(), 1u);
    ASSERT_EQ(file_.ReadUChar(&value), 1);
    EXPECT_EQ(file_.counter(), 2u);
    file_.Close();
    ASSERT_EQ(file_.OpenToRead(write(header())), 1);
    EXPECT_EQ(file_.counter(), 0u) << "opening clears it";
}

struct BadOpen {
    const char* name;
    std::string bytes;
    int error;
};

class Openings : public HyperFile, public testing::WithParamInterface<BadOpen> {};

TEST_P(Openings, AreRefused) {
    EXPECT_EQ(file_.OpenToRead(folder_.write("bad", GetParam().bytes)), 0);
    EXPECT_EQ(file_.GetError(), GetParam().error);
    EXPECT_EQ(file_.PrivateFile::Close(), 0) << "the file is closed again";
}

INSTANTIATE_TEST_SUITE_P(
    HyperFile, Openings,
    testing::Values(BadOpen{"EmptyWithoutACode", "", 0}, BadOpen{"OneByte", "A", -100},
                    BadOpen{"MagicOnly", "AVXR", -100}, BadOpen{"SevenBytes", "AVXRTes", -100},
                    BadOpen{"WrongMagic", "AVXSTest", -100}, BadOpen{"MagicBackwards", "RXVATest", -100},
                    BadOpen{"WrongIdent", "AVXRTexa", -100}, BadOpen{"IdentBackwards", "AVXRtseT", -100}),
    [](const auto& tested) { return tested.param.name; });

TEST_F(HyperFile, AHeaderAloneOpens) {
    open(header());
    EXPECT_EQ(file_.GetLength(), 8);
    EXPECT_EQ(file_.GetPosition(), 8);
}

TEST_F(HyperFile, AnyModeButWritingReads) {
    const std::string path = write(header());
    for (const std::int32_t mode : {0, 1, 3, -1}) {
        TestedFile file;
        EXPECT_EQ(file.Open(kIdent, path.c_str(), mode, 99, 0), 1) << mode;
        EXPECT_EQ(file.GetLength(), 8);
    }
}

TEST_F(HyperFile, WritingToAFileOpenForReadingDoesNotWriteTheHeader) {
    EXPECT_EQ(file_.Open(kIdent, write(header()).c_str(), PrivateHyperFile::kWriting, 0, 0), 0);
    EXPECT_EQ(file_.GetError(), -100);
}

TEST_F(HyperFile, WhatCannotBeOpenedSetsTheFilesOwnError) {
    const std::string pipe = folder_.path("pipe");
    make_pipe(pipe);
    for (const std::string& path : {folder_.path("missing"), folder_.folder().string(), pipe}) {
        TestedFile file;
        EXPECT_EQ(file.OpenToRead(path), 0) << path;
        EXPECT_EQ(file.GetError(), 1) << path;
    }
    TestedFile file;
    EXPECT_EQ(file.OpenToWrite(folder_.folder().string()), 0);
    EXPECT_EQ(file.GetError(), 1);
}

TEST_F(HyperFile, AFileOfTwoGigabytesIsRefused) {
    const std::string path = write(header());
    std::filesystem::resize_file(path, 0x7FFFFFFE);
    {
        TestedFile file;
        EXPECT_EQ(file.OpenToRead(path), 1) << "the largest";
    }
    std::filesystem::resize_file(path, 0x7FFFFFFF);
    EXPECT_EQ(file_.OpenToRead(path), 0);
    EXPECT_EQ(file_.GetError(), -7);
}

#if !defined(_WIN32)  // where no file stands for a full disk
TEST_F(HyperFile, AFullDiskIsAnErrorAtTheLatestWhenClosing) {
    ASSERT_EQ(file_.OpenToWrite("/dev/full"), 1);
    EXPECT_EQ(file_.WriteLong(1), 1);
    EXPECT_EQ(file_.Close(), 1);
    EXPECT_EQ(file_.GetError(), 1);

    TestedFile large;
    ASSERT_EQ(large.OpenToWrite("/dev/full"), 1);
    const std::string data(1 << 20, 'x');
    EXPECT_EQ(large.WriteMemory(data.data(), 1 << 20), 0);
    EXPECT_EQ(large.GetError(), 1);
}
#endif

TEST_F(HyperFile, AnEndIsNotReadWhileWriting) {
    ASSERT_EQ(file_.OpenToWrite(folder_.path("out")), 1);
    EXPECT_EQ(file_.ReadChunkEnd(), 0);
    EXPECT_EQ(file_.GetError(), -4);
}

TEST_F(HyperFile, ReadingFromAFileThatIsWrittenFails) {
    ASSERT_EQ(file_.OpenToWrite(folder_.path("out")), 1);
    std::int32_t value = 0;
    EXPECT_EQ(file_.ReadLong(&value), 0);
    EXPECT_EQ(file_.GetError(), 1);
}

TEST_F(HyperFile, AClosedFileFailsWithoutACode) {
    std::int32_t value = 0;
    EXPECT_EQ(file_.ReadLong(&value), 0);
    EXPECT_EQ(file_.WriteLong(1), 0);
    EXPECT_EQ(file_.GetError(), 0);
    EXPECT_EQ(file_.Close(), 0);
}

TEST_F(HyperFile, ChunkMarksAreReadAndCounted) {
    open(header().Start(-5, 70000).End());
    ASSERT_EQ(file_.CheckIt(1), 1);
    std::int32_t id = 0;
    std::int32_t version = 0;
    EXPECT_EQ(file_.ReadChunkStart(&id, &version), 1);
    EXPECT_EQ(id, -5);
    EXPECT_EQ(version, 70000);
    ASSERT_EQ(file_.CheckIt(2), 1);
    const std::int32_t position = file_.GetPosition();
    EXPECT_EQ(file_.ReadChunkEnd(), 1);
    EXPECT_EQ(file_.GetPosition(), position) << "the end tag was read before";
    EXPECT_EQ(file_.counter(), 2u);
}

TEST_F(HyperFile, SkippingAChunkStopsAfterTheEndThatBalancesIt) {
    open(header().Long(1).Raw(unknown_chunk()).Block("\x02\x02").End().UChar(42).End());
    EXPECT_EQ(file_.SkipToEndChunk(), 1);
    unsigned char value = 0;
    EXPECT_EQ(file_.ReadUChar(&value), 1);
    EXPECT_EQ(value, 42);
}

TEST_F(HyperFile, AThousandNestedChunksAreSkipped) {
    HyperBytes bytes = header();
    for (int i = 0; i < 1000; ++i) {
        bytes.Start(i, 0);
    }
    for (int i = 0; i < 1001; ++i) {
        bytes.End();
    }
    open(bytes.UChar(42));
    EXPECT_EQ(file_.SkipToEndChunk(), 1);
    unsigned char value = 0;
    EXPECT_EQ(file_.ReadUChar(&value), 1);
}

TEST_F(HyperFile, ReachingTheEndBetweenTwoItemsIsNotAnError) {
    open(header().Long(1).Start(1, 1));
    EXPECT_EQ(file_.SkipToEndChunk(), 0);
    EXPECT_EQ(file_.GetError(), 0);
    EXPECT_EQ(file_.SkipToEndChunk(), 0);
}

TEST_F(HyperFile, ReachingTheEndInsideAnItemIsAnErrorOfItsOwn) {
    for (const std::string& item :
         {"\x0F\x00\x00"s, "\x01\x00"s, "\x80\x00\x00"s, "\x80\x00\x00\x00\x09x"s}) {
        TestedFile file;
        ASSERT_EQ(file.OpenToRead(write(header().Long(1).Raw(item))), 1);
        EXPECT_EQ(file.SkipToEndChunk(), 0);
        EXPECT_EQ(file.GetError(), -104);
    }
}

TEST_F(HyperFile, PrivateDataIsTheCallers) {
    EXPECT_EQ(file_.GetPrivateData(), nullptr);
    int mine = 0;
    file_.SetPrivateData(&mine);
    EXPECT_EQ(file_.GetPrivateData(), &mine);
}

class Listener : public FailureObserver {
  public:
    void on_failure(const diagnostic::Diagnostic& failure) override {
        codes.emplace_back(failure.code.name());
        offset_bytes = failure.at.offset_bytes;
        reason = failure.reason;
    }
    std::vector<std::string> codes;
    std::optional<std::int64_t> offset_bytes;
    std::string reason;
};

TEST_F(HyperFile, AnObserverIsToldWhatFailedAndWhere) {
    Listener listener;
    file_.SetObserver(&listener);
    open(header().Long(1).Byte(16).Be32(1));
    std::int32_t value = 0;
    ASSERT_EQ(file_.ReadLong(&value), 1);
    EXPECT_EQ(file_.ReadLong(&value), 0);
    EXPECT_EQ(listener.codes, std::vector<std::string>{"wrong-tag"});
    EXPECT_EQ(listener.offset_bytes, 13) << "of the tag";
    EXPECT_EQ(listener.reason, "a value with tag 15 must stand here, found tag 16");
}

TEST_F(HyperFile, AnObserverIsToldOfASkipAfterTheReadThatEndedIt) {
    Listener listener;
    file_.SetObserver(&listener);
    open(header().Raw("\x0F\x00"s));
    EXPECT_EQ(file_.SkipToEndChunk(), 0);
    EXPECT_EQ(listener.codes, (std::vector<std::string>{"short-transfer", "truncated"}));
    EXPECT_EQ(listener.offset_bytes, 8);
}

#if !defined(_WIN32)  // where no process can be kept from taking more memory
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
                RefuseFurtherMemory();
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
