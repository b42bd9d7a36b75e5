#include <gtest/gtest.h>

#include <string>

#include "texture/hyper_file_fixture.h"

namespace {

using namespace std::string_literals;

TEST_F(HyperFile, EveryTagIsSkippedWithItsBytes) {
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

TEST_F(HyperFile, OnlyTheLengthOfANegativeBlockIsSkipped) {
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

TEST_F(HyperFile, ALongBlockIsSkippedAsAWhole) {
    open(header().Be32(10000).Raw(std::string(10000, 'x')).UChar(9));
    EXPECT_EQ(file_.SkipValue(128), 1);
    unsigned char value = 0;
    EXPECT_EQ(file_.ReadUChar(&value), 1);
    EXPECT_EQ(value, 9);
}

TEST_F(HyperFile, ChunkStartsAndEndsAreReadAndCounted) {
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
    EXPECT_EQ(file_.GetPosition(), position) << "the end tag has already been read";
    EXPECT_EQ(file_.counter(), 2u);
}

TEST_F(HyperFile, SkippingAChunkStopsAfterItsOwnEnd) {
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

TEST_F(HyperFile, TheEndOfTheFileBetweenTwoItemsIsNotAnError) {
    open(header().Long(1).Start(1, 1));
    EXPECT_EQ(file_.SkipToEndChunk(), 0);
    EXPECT_EQ(file_.GetError(), 0);
    EXPECT_EQ(file_.SkipToEndChunk(), 0);
}

TEST_F(HyperFile, TheEndOfTheFileInsideAnItemIsTruncation) {
    for (const std::string& item :
         {"\x0F\x00\x00"s, "\x01\x00"s, "\x80\x00\x00"s, "\x80\x00\x00\x00\x09x"s}) {
        TestedFile file;
        ASSERT_EQ(file.OpenToRead(write(header().Long(1).Raw(item))), 1);
        EXPECT_EQ(file.SkipToEndChunk(), 0);
        EXPECT_EQ(file.GetError(), -104);
    }
}

}  // namespace
