#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/file_content.h"
#include "texture/hyper_file_fixture.h"

namespace {

using namespace std::string_literals;

TEST_F(HyperFile, WritesTheExpectedBytes) {
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
    EXPECT_EQ(file_.GetLength(), 0) << "no length is stored while writing";
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

TEST_F(HyperFile, AValueReadsOnlyAsItsOwnType) {
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
                << "only the tag of a wrong value is read";
            EXPECT_EQ(file.counter(), same ? 1u : 0u);
        }
    }
}

TEST_F(HyperFile, EveryTypeCutAnywhereIsAShortRead) {
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

TEST_F(HyperFile, TheCounterRunsTo50000AndRestartsAtOne) {
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

}  // namespace
