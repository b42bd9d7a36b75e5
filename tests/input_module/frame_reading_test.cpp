#include "texture/input_module/frame_reading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "host/plugin_globals.h"
#include "input_module/texture_files.h"
#include "support/recording_host.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int32_t kGrey = 2;
constexpr std::int32_t kRgb = 4;
constexpr char kLoadingMessage[] = "There was an error loading the file in line %d.";

const std::string kNewHandle =
    "NewMemHandle(7, \"optionsH\", " + std::to_string(sizeof(tagTexalonHeader)) + ", 1)";

tagTexalonHeader& record_in(AEGP_MemHandle handle) {
    return *reinterpret_cast<tagTexalonHeader*>(handle->bytes.get());
}

class FrameReading : public testing::Test {
  protected:
    A_Err Import(const std::string& path) {
        return InitInSpecFromFile(host.basic_data(), path.c_str(), host.in_spec());
    }

    // Disposes of the footage as a host does: after a success the in-spec is a new one.
    A_Err Dispose() {
        const A_Err err = My_DisposeInSpec(host.basic_data(), host.in_spec());
        if (err == 0) {
            host.footage() = {};
        }
        return err;
    }

    void ExpectFootageNotDescribed() {
        const AEIO_SeqSpec& footage = host.footage();
        EXPECT_FALSE(footage.depth || footage.duration || footage.dimensions || footage.size_bytes ||
                     footage.fps || footage.alpha_label);
    }

    TextureFiles files;
    RecordingHost host;
};

struct PictureCase {
    const char* name;
    PaintedPicture picture;
    A_long expected_depth;
};

const PictureCase kPictureCases[] = {
    {"RGB", {5, 3, kRgb, 0}, 24},          {"RGB with alpha", {5, 3, kRgb, 1}, 32},
    {"grey", {4, 6, kGrey, 0}, 24},        {"grey with alpha", {4, 6, kGrey, 1}, 32},
    {"three alphas", {5, 3, kRgb, 3}, 32}, {"no pixels", {0, 0, kRgb, 0}, 24},
};

TEST_F(FrameReading, HeaderHoldsPathSizeAndDepth) {
    for (const PictureCase& c : kPictureCases) {
        SCOPED_TRACE(c.name);
        PaintedPicture picture = c.picture;
        const std::string path = files.Save("picture.txl", picture);
        tagTexalonHeader header;
        EXPECT_EQ(ReadFileHeader(host.basic_data(), &header, path.c_str()), 0);
        EXPECT_EQ(header.path, path);
        EXPECT_EQ(header.width, picture.GetBw());
        EXPECT_EQ(header.height, picture.GetBh());
        EXPECT_EQ(header.depth, c.expected_depth);
        EXPECT_EQ(header.bitmap.width(), picture.GetBw());
        EXPECT_EQ(header.bitmap.GetChannelCount(), c.expected_depth == 32 ? 1 : 0);
        EXPECT_THAT(host.reports, IsEmpty());
        EXPECT_THAT(host.suites_held(), IsEmpty());
    }
}

TEST_F(FrameReading, UnreadableFileIsReportedOnce) {
    const std::string whole = files.Save("whole.txl", {5, 3, kRgb, 0});
    for (const std::string& path : {files.Path("missing.txl"), files.Path(""), files.Cut(whole, 100)}) {
        SCOPED_TRACE(path);
        host.reports.clear();
        tagTexalonHeader header;
        EXPECT_EQ(ReadFileHeader(host.basic_data(), &header, path.c_str()), 3);
        EXPECT_THAT(host.reports, ElementsAre(kLoadingMessage));
        EXPECT_EQ(header.path, path);
        EXPECT_EQ(header.width, 0);
        EXPECT_EQ(header.depth, 0);
        EXPECT_THAT(host.suites_held(), IsEmpty());
    }
}

TEST_F(FrameReading, PathIsTruncatedInTheRecordButNotForReading) {
    // Folders long enough that the file name begins past the 260 characters of the record.
    const std::string folder = std::string(200, 'd') + "/" + std::string(200, 'e');
    std::filesystem::create_directories(files.Path(folder));
    const std::string path = files.Save(folder + "/deep.txl", {2, 2, kRgb, 0});
    tagTexalonHeader header;
    EXPECT_EQ(ReadFileHeader(host.basic_data(), &header, path.c_str()), 0);
    EXPECT_EQ(header.path, path.substr(0, 259));
    EXPECT_EQ(header.width, 2);
}

TEST_F(FrameReading, PathsAroundTheSizeOfTheField) {
    for (const std::size_t length : {258U, 259U, 260U, 261U}) {
        const std::string path(length, 'p');
        tagTexalonHeader header;
        EXPECT_EQ(ReadFileHeader(host.basic_data(), &header, path.c_str()), 3);
        EXPECT_EQ(header.path, path.substr(0, 259)) << length;
    }
}

TEST_F(FrameReading, ReadingWithoutItsSuitesThrows) {
    const std::string path = files.Save("picture.txl", {5, 3, kRgb, 0});
    tagTexalonHeader header;
    host.withhold_suite("PF ANSI Suite", 1);
    EXPECT_TRUE(throws_missing_suite([&] { ReadFileHeader(host.basic_data(), &header, path.c_str()); }));
    host.clear_script();
    host.withhold_suite("AEGP Utility Suite", 7);
    EXPECT_EQ(ReadFileHeader(host.basic_data(), &header, path.c_str()), 0) << "nothing to report";
    EXPECT_TRUE(throws_missing_suite([&] { ReadFileHeader(host.basic_data(), &header, "missing"); }));
    EXPECT_THAT(host.reports, IsEmpty());
    EXPECT_THAT(host.suites_held(), IsEmpty());
}

TEST_F(FrameReading, ImportWithAlphaCallsTheHostInOrder) {
    const std::string path = files.Save("picture.txl", {5, 3, kRgb, 1});
    EXPECT_EQ(Import(path), 0);
    EXPECT_EQ(host.calls.front(), kNewHandle);
    EXPECT_THAT(
        host.functions_called(),
        ElementsAre("NewMemHandle", "LockMemHandle", "UnlockMemHandle", "strcpy", "SetInSpecOptionsHandle",
                    "SetInSpecDepth", "SetInSpecDuration", "SetInSpecDimensions", "SetInSpecSize",
                    "SetInSpecNativeFPS", "SetInSpecAlphaLabel"));
    EXPECT_THAT(host.suites_held(), IsEmpty());

    const AEIO_SeqSpec& footage = host.footage();
    ASSERT_EQ(host.handles().size(), 1U);
    EXPECT_EQ(footage.options, host.handles()[0].get());
    EXPECT_EQ(footage.depth, 32);
    ASSERT_TRUE(footage.duration.has_value());
    EXPECT_EQ(footage.duration->value, 0);
    EXPECT_EQ(footage.duration->scale, 30U);
    EXPECT_EQ(footage.dimensions, std::make_pair(5, 3));
    EXPECT_EQ(footage.size_bytes, 5 * 3 * 6);
    EXPECT_EQ(footage.fps, 0x1E0000);
    ASSERT_TRUE(footage.alpha_label.has_value());
    const AEIO_AlphaLabel& label = *footage.alpha_label;
    EXPECT_EQ(label.version, 0x0101);
    EXPECT_EQ(AEIO_AlphaFlags{label.flags}, 1U);  // a copy: the record is packed
    EXPECT_EQ(label.red, 0);
    EXPECT_EQ(label.green, 0);
    EXPECT_EQ(label.blue, 0);
    EXPECT_EQ(label.alpha_type, 1);
    EXPECT_THAT(host.reports, IsEmpty());

    EXPECT_EQ(Dispose(), 0);
    EXPECT_THAT(host.handles(), IsEmpty());
}

TEST_F(FrameReading, AlphaLabelNeedsAlphaAndAHostThatSupportsIt) {
    const std::string plain = files.Save("plain.txl", {5, 3, kRgb, 0});
    const std::string alpha = files.Save("alpha.txl", {5, 3, kRgb, 1});
    for (const bool new_host : {false, true}) {
        for (const bool with_alpha : {false, true}) {
            version55 = new_host;
            EXPECT_EQ(Import(with_alpha ? alpha : plain), 0);
            EXPECT_EQ(host.footage().depth, with_alpha ? 32 : 24);
            EXPECT_EQ(host.footage().alpha_label.has_value(), new_host && with_alpha);
            EXPECT_TRUE(host.footage().fps.has_value());
            EXPECT_EQ(Dispose(), 0);
        }
    }
}

struct SizeCase {
    const char* name;
    std::int32_t width_px;
    std::int32_t height_px;
    A_long expected_bytes;
};

const SizeCase kSizeCases[] = {
    {"ordinary", 640, 480, 1843200},
    {"largest that fits 32 bits", 18918, 18918, 2147344344},
    {"smallest that does not", 18919, 18919, 2147483647},
    {"nothing", 0, 480, 0},
};

TEST_F(FrameReading, SizeInBytesIsCappedAt32Bits) {
    for (const SizeCase& c : kSizeCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Import(files.SaveHeaderOnly("large.txl", c.width_px, c.height_px)), 0);
        EXPECT_EQ(host.footage().size_bytes, c.expected_bytes);
        EXPECT_EQ(host.footage().dimensions, std::make_pair(c.width_px, c.height_px));
        EXPECT_EQ(Dispose(), 0);
    }
}

TEST_F(FrameReading, UnreadableFileIsReportedTwiceAndKeepsItsHandle) {
    EXPECT_EQ(Import(files.Path("missing.txl")), 3);
    EXPECT_THAT(host.reports, ElementsAre(kLoadingMessage, kLoadingMessage));
    EXPECT_EQ(host.calls.front(), kNewHandle);
    EXPECT_THAT(host.functions_called(), ElementsAre("NewMemHandle", "LockMemHandle", "UnlockMemHandle",
                                                     "strcpy", "ReportInfo", "ReportInfo"));
    EXPECT_EQ(host.handles().size(), 1U);
    EXPECT_EQ(host.footage().options, nullptr);
    ExpectFootageNotDescribed();
}

TEST_F(FrameReading, PictureOfAnUnreadableFileIsFreed) {
    const std::string whole = files.Save("whole.txl", {50, 30, kRgb, 0});
    EXPECT_EQ(Import(files.Cut(whole, 2000)), 3) << "some rows were read";
    ASSERT_EQ(host.handles().size(), 1U);
    const BaseBitmap& picture = record_in(host.handles()[0].get()).bitmap;
    EXPECT_EQ(picture.width(), 0);
    EXPECT_EQ(picture.depth(), 0);
}

TEST_F(FrameReading, EveryFailingCallOfAnImportEndsItWithOneMessage) {
    const std::string path = files.Save("picture.txl", {5, 3, kRgb, 1});
    ASSERT_EQ(Import(path), 0);
    const int all_calls = host.call_count();
    ASSERT_EQ(all_calls, 10);
    ASSERT_EQ(Dispose(), 0);
    for (int n = 1; n <= all_calls; ++n) {
        SCOPED_TRACE(n);
        host.clear_script();
        host.reports.clear();
        host.fail_call(n, 70 + n);
        const std::size_t handles_before = host.handles().size();
        EXPECT_EQ(Import(path), 70 + n);
        EXPECT_THAT(host.reports, ElementsAre(kLoadingMessage));
        EXPECT_THAT(host.suites_held(), IsEmpty());
        EXPECT_EQ(host.handles().size(), handles_before + (n == 1 ? 0 : 1)) << "the handle is kept";
        const bool attached = n > 4;
        EXPECT_EQ(host.footage().options != nullptr, attached);
        if (n == 4) {
            EXPECT_EQ(record_in(host.handles().back().get()).bitmap.width(), 0) << "the picture is freed";
        }
        host.clear_script();
        EXPECT_EQ(Dispose(), 0);
    }
}

TEST_F(FrameReading, AFailingReportChangesNothing) {
    host.fail_every("ReportInfo", 99);
    EXPECT_EQ(Import(files.Path("missing.txl")), 3);
    EXPECT_EQ(host.reports.size(), 2U);
}

TEST_F(FrameReading, ASuccessfulCallWithoutAResultIsAnError) {
    const std::string path = files.Save("picture.txl", {5, 3, kRgb, 1});
    for (const char* function : {"NewMemHandle", "LockMemHandle"}) {
        SCOPED_TRACE(function);
        host.reports.clear();
        host.always_yield_nothing(function);
        EXPECT_EQ(Import(path), 1);
        EXPECT_THAT(host.reports, ElementsAre(kLoadingMessage));
        EXPECT_EQ(host.footage().options, nullptr);
        host.clear_script();
    }
}

TEST_F(FrameReading, ImportWithoutItsSuitesThrows) {
    const std::string path = files.Save("picture.txl", {50, 30, kRgb, 1});
    for (const char* suite : {"AEGP Memory Suite", "PF ANSI Suite", "AEGP IO In Suite"}) {
        SCOPED_TRACE(suite);
        host.withhold_suite(suite, 1);
        EXPECT_TRUE(throws_missing_suite([&] { Import(path); }));
        EXPECT_EQ(host.footage().options, nullptr);
        EXPECT_THAT(host.reports, IsEmpty());
        EXPECT_THAT(host.suites_held(), IsEmpty());
        if (!host.handles().empty()) {
            EXPECT_EQ(record_in(host.handles().back().get()).bitmap.width(), 0) << "the picture is freed";
        }
        host.clear_script();
    }
    host.withhold_suite("AEGP Utility Suite", 7);
    EXPECT_TRUE(throws_missing_suite([&] { Import(files.Path("missing.txl")); }));
    host.fail_every("SetInSpecDepth", 5);
    EXPECT_TRUE(throws_missing_suite([&] { Import(path); }));
    EXPECT_THAT(host.suites_held(), IsEmpty());
    host.clear_script();
    EXPECT_EQ(Dispose(), 0);
}

TEST_F(FrameReading, WithoutABasicSuiteEveryCallbackThrows) {
    AEIO_BasicData basic = *host.basic_data();
    basic.basic_suite = nullptr;
    EXPECT_TRUE(throws_missing_suite([&] { InitInSpecFromFile(&basic, "picture.txl", host.in_spec()); }));
    EXPECT_TRUE(throws_missing_suite([&] { My_DisposeInSpec(&basic, host.in_spec()); }));
    EXPECT_TRUE(
        throws_missing_suite([&] { My_DrawSparseFrame(&basic, host.in_spec(), nullptr, nullptr, nullptr); }));
    EXPECT_THAT(host.calls, IsEmpty());
}

TEST_F(FrameReading, SecondImportReplacesTheFirst) {
    EXPECT_EQ(Import(files.Save("first.txl", {50, 30, kRgb, 1})), 0);
    host.calls.clear();
    EXPECT_EQ(Import(files.Save("second.txl", {6, 4, kRgb, 0})), 0);
    EXPECT_EQ(host.calls.front(), kNewHandle);
    EXPECT_THAT(
        host.functions_called(),
        ElementsAre("NewMemHandle", "LockMemHandle", "UnlockMemHandle", "strcpy", "SetInSpecOptionsHandle",
                    "LockMemHandle", "UnlockMemHandle", "FreeMemHandle", "SetInSpecDepth",
                    "SetInSpecDuration", "SetInSpecDimensions", "SetInSpecSize", "SetInSpecNativeFPS"));
    ASSERT_EQ(host.handles().size(), 1U);
    EXPECT_EQ(record_in(host.handles()[0].get()).width, 6);
    EXPECT_EQ(Dispose(), 0);
}

TEST_F(FrameReading, FailingToFreeTheOldHandleEndsTheImport) {
    const std::string path = files.Save("picture.txl", {5, 3, kRgb, 0});
    ASSERT_EQ(Import(path), 0);
    host.footage().depth.reset();
    host.fail_every("FreeMemHandle", 55);
    EXPECT_EQ(Import(path), 55);
    EXPECT_THAT(host.reports, ElementsAre(kLoadingMessage));
    EXPECT_FALSE(host.footage().depth.has_value());
    host.clear_script();
    EXPECT_EQ(Dispose(), 0);
}

TEST_F(FrameReading, DisposingNothingFreesNothing) {
    EXPECT_EQ(Dispose(), 0);
    EXPECT_THAT(host.functions_called(), ElementsAre("GetInSpecOptionsHandle"));
    EXPECT_THAT(host.suites_held(), IsEmpty());
}

TEST_F(FrameReading, DisposingFreesPictureAndHandle) {
    ASSERT_EQ(Import(files.Save("picture.txl", {5, 3, kRgb, 1})), 0);
    host.calls.clear();
    EXPECT_EQ(Dispose(), 0);
    EXPECT_THAT(host.functions_called(),
                ElementsAre("GetInSpecOptionsHandle", "LockMemHandle", "UnlockMemHandle", "FreeMemHandle"));
    EXPECT_THAT(host.handles(), IsEmpty());
    EXPECT_THAT(host.suites_held(), IsEmpty());
}

TEST_F(FrameReading, DisposingReturnsTheErrorOfGettingTheHandle) {
    ASSERT_EQ(Import(files.Save("picture.txl", {5, 3, kRgb, 1})), 0);
    host.fail_every("GetInSpecOptionsHandle", 44);
    EXPECT_EQ(Dispose(), 44);
    EXPECT_EQ(host.handles().size(), 1U);
    EXPECT_THAT(host.reports, IsEmpty());
    host.clear_script();
    EXPECT_EQ(Dispose(), 0);
}

TEST_F(FrameReading, DisposingFreesTheHandleEvenIfLockingFails) {
    for (const char* function : {"LockMemHandle", "UnlockMemHandle"}) {
        SCOPED_TRACE(function);
        ASSERT_EQ(Import(files.Save("picture.txl", {5, 3, kRgb, 1})), 0);
        record_in(host.handles()[0].get()).bitmap.Destroy();  // the module cannot reach it without a lock
        host.fail_every(function, 44);
        EXPECT_EQ(Dispose(), 0);
        EXPECT_THAT(host.handles(), IsEmpty());
        host.clear_script();
    }
    ASSERT_EQ(Import(files.Save("picture.txl", {5, 3, kRgb, 1})), 0);
    record_in(host.handles()[0].get()).bitmap.Destroy();
    host.always_yield_nothing("LockMemHandle");
    EXPECT_EQ(Dispose(), 0);
    EXPECT_THAT(host.handles(), IsEmpty());
}

TEST_F(FrameReading, AHandleThatCannotBeFreedKeepsAnEmptyRecord) {
    ASSERT_EQ(Import(files.Save("picture.txl", {5, 3, kRgb, 1})), 0);
    host.fail_every("FreeMemHandle", 44);
    EXPECT_EQ(Dispose(), 44);
    EXPECT_THAT(host.reports, IsEmpty());
    ASSERT_EQ(host.handles().size(), 1U);
    EXPECT_EQ(record_in(host.handles()[0].get()).bitmap.width(), 0);
    host.clear_script();
    EXPECT_EQ(Dispose(), 0) << "a second attempt frees nothing twice";
}

TEST_F(FrameReading, DisposingWithoutItsSuitesThrows) {
    ASSERT_EQ(Import(files.Save("picture.txl", {5, 3, kRgb, 1})), 0);
    for (const char* suite : {"AEGP Memory Suite", "AEGP IO In Suite"}) {
        host.withhold_suite(suite, 1);
        EXPECT_TRUE(throws_missing_suite([&] { Dispose(); })) << suite;
        host.clear_script();
    }
    EXPECT_THAT(host.suites_held(), IsEmpty());
    EXPECT_EQ(Dispose(), 0);
}

}  // namespace
