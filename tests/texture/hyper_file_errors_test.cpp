#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "support/file_content.h"
#include "support/special_files.h"
#include "texture/file/memory.h"
#include "texture/hyper_file_fixture.h"

namespace {

using namespace std::string_literals;

constexpr std::int32_t kIdent = four_characters("Test");

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

TEST_F(HyperFile, AFileOfOnlyAHeaderOpens) {
    open(header());
    EXPECT_EQ(file_.GetLength(), 8);
    EXPECT_EQ(file_.GetPosition(), 8);
}

TEST_F(HyperFile, EveryOtherModeReads) {
    const std::string path = write(header());
    for (const std::int32_t mode : {0, 1, 3, -1}) {
        TestedFile file;
        EXPECT_EQ(file.Open(kIdent, path.c_str(), mode, 99, 0), 1) << mode;
        EXPECT_EQ(file.GetLength(), 8);
    }
}

TEST_F(HyperFile, TheHeaderIsNotWrittenToAFileOpenForReading) {
    EXPECT_EQ(file_.Open(kIdent, write(header()).c_str(), PrivateHyperFile::kWriting, 0, 0), 0);
    EXPECT_EQ(file_.GetError(), -100);
}

TEST_F(HyperFile, FailingToOpenSetsTheFileError) {
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

#if !defined(_WIN32)  // where no device simulates a full disk
TEST_F(HyperFile, AFullDiskIsNoticedWhenClosingAtTheLatest) {
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

TEST_F(HyperFile, AfterAnErrorNothingIsWritten) {
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

TEST_F(HyperFile, AfterAnErrorNothingIsRead) {
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

TEST_F(HyperFile, AFailedObjectStaysFailedUntilItsErrorIsCleared) {
    const std::string path = write(header().Long(1));
    file_.SetError(-100);
    EXPECT_EQ(file_.OpenToRead(path), 0);
    EXPECT_EQ(file_.OpenToWrite(path), 0);
    EXPECT_EQ(content_of(path), header().Long(1).bytes()) << "the file is not even emptied";
    file_.SetError(0);
    EXPECT_EQ(file_.OpenToRead(path), 1);
}

TEST_F(HyperFile, AChunkEndCannotBeReadWhileWriting) {
    ASSERT_EQ(file_.OpenToWrite(folder_.path("out")), 1);
    EXPECT_EQ(file_.ReadChunkEnd(), 0);
    EXPECT_EQ(file_.GetError(), -4);
}

TEST_F(HyperFile, ReadingFailsWhileWriting) {
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

TEST_F(HyperFile, PrivateDataBelongsToTheCaller) {
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

TEST_F(HyperFile, TheObserverLearnsWhatFailedAndWhere) {
    Listener listener;
    file_.SetObserver(&listener);
    open(header().Long(1).Byte(16).Be32(1));
    std::int32_t value = 0;
    ASSERT_EQ(file_.ReadLong(&value), 1);
    EXPECT_EQ(file_.ReadLong(&value), 0);
    EXPECT_EQ(listener.codes, std::vector<std::string>{"wrong-tag"});
    EXPECT_EQ(listener.offset_bytes, 13) << "of the tag";
    EXPECT_EQ(listener.reason, "expected a value with tag 15, found tag 16");
}

/// Reads one block or string of a file in which `count` is claimed and eight bytes follow.
struct BlockReader {
    const char* name;
    int tag;
    int (*read)(PrivateHyperFile& file);
};

constexpr BlockReader kBlockReaders[] = {
    {"copied", 128,
     [](PrivateHyperFile& file) {
         void* data = nullptr;
         std::int32_t count = 0;
         const int read = file.ReadMemory(&data, &count);
         MemFree(data);
         return read;
     }},
    {"in place", 128,
     [](PrivateHyperFile& file) {
         const unsigned char* data = nullptr;
         std::int32_t count = 0;
         return file.ReadMemoryInPlace(&data, &count);
     }},
    {"string", 130,
     [](PrivateHyperFile& file) {
         PrivateString string;
         return file.ReadString(&string);
     }},
};

// The end of the file would stop the reading as well, but after memory was taken and with another fault.
TEST_F(HyperFile, ABlockMayTakeAllTheBytesThatAreLeftAndNotOneMore) {
    for (const BlockReader& block : kBlockReaders) {
        SCOPED_TRACE(block.name);
        for (const std::int32_t above : {0, 1, 2}) {
            Listener listener;
            TestedFile file;
            file.SetObserver(&listener);
            ASSERT_EQ(file.OpenToRead(write(header().Byte(block.tag).Be32(8 + above).Raw("xxxxxxxx"))), 1);
            EXPECT_EQ(block.read(file), above == 0 ? 1 : 0) << above;
            EXPECT_EQ(listener.codes,
                      above == 0 ? std::vector<std::string>() : std::vector<std::string>{"block-too-long"})
                << above;
        }
    }
}

TEST_F(HyperFile, TheObserverLearnsOfAFailedReadAndThenOfTheFailedSkip) {
    Listener listener;
    file_.SetObserver(&listener);
    open(header().Raw("\x0F\x00"s));
    EXPECT_EQ(file_.SkipToEndChunk(), 0);
    EXPECT_EQ(listener.codes, (std::vector<std::string>{"short-transfer", "truncated"}));
    EXPECT_EQ(listener.offset_bytes, 8);
}

}  // namespace
