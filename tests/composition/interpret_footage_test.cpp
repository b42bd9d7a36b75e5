#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "composition/model/composition.h"
#include "composition/model/project_settings.h"
#include "host/suite_handler.h"
#include "support/recording_host.h"
#include "support/special_files.h"
#include "support/temporary_folder.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class InterpretFootage : public ::testing::Test {
  protected:
    A_Err run(const std::string& path) {
        AEGP_SuiteHandler suites(host_.basic());
        std::string writable = path;
        return file_.InterpretFootage(&suites, nullptr, host_.handle<AEGP_ItemH>("item"), &settings_,
                                      writable.data());
    }
    // The last interpretation set on the host.
    std::string told() { return host_.calls.back(); }

    RecordingHost host_;
    TemporaryFolder folder_;
    CFileItem file_;
    tagProjectSettings settings_;
};

TEST_F(InterpretFootage, ReadsIntoAClearedRecordEditsAndWritesBack) {
    host_.interpretation.native_fps = 29.97;
    host_.interpretation.conform_fps = 24.0;
    file_.alphaMode = kAlphaPremultiplied;
    EXPECT_EQ(run("shot.tif"), 0);
    EXPECT_THAT(
        host_.calls,
        ElementsAre("GetFootageInterpretation(item, 0)",
                    "SetFootageInterpretation(item, 0, fields 0/0, alpha 1, aspect 100/100, native 29.97, "
                    "conform 24, motion 0)"));
    EXPECT_THAT(host_.left_open(), IsEmpty());
}

// 24 bytes are enough of an RLA image: everything before the count of matte channels is skipped.
std::string rla_header(int mattes) {
    std::string bytes(22, '\x55');
    bytes += static_cast<char>(mattes >> 8);
    bytes += static_cast<char>(mattes & 255);
    return bytes;
}

TEST_F(InterpretFootage, AlphaFollowsTheEntryUnlessAnImageHasNoMattes) {
    const struct {
        const char* why;
        std::string name;
        std::string bytes;
        A_long alpha_mode;
        A_u_long flags_before;
        A_u_long flags;
    } cases[] = {
        {"premultiplied", "a.tif", "x", kAlphaPremultiplied, 0, 1},
        {"straight", "a.tif", "x", kAlphaStraight, 0, 0},
        {"straight clears what the host guessed", "a.tif", "x", kAlphaStraight, 1, 0},
        {"other flags of the host stay", "a.tif", "x", kAlphaStraight, 7, 6},
        {"no mattes: alpha is ignored although PREMUL", "a.rla", rla_header(0), kAlphaPremultiplied, 0, 4},
        {"no mattes: the host's guess is cleared", "a.rla", rla_header(0), kAlphaPremultiplied, 1, 4},
        {"no mattes, straight", "a.rpf", rla_header(0), kAlphaStraight, 0, 4},
        {"one matte, premultiplied", "a.rla", rla_header(1), kAlphaPremultiplied, 0, 1},
        {"one matte, straight", "a.rpf", rla_header(1), kAlphaStraight, 0, 0},
        {"the count is big-endian", "a.rla", rla_header(256), kAlphaPremultiplied, 0, 1},
        {"a negative count is not 0", "a.rla", rla_header(0xffff), kAlphaPremultiplied, 0, 1},
        {"mixed case", "shot.RlA", rla_header(0), kAlphaPremultiplied, 0, 4},
        {"capitals", "shot.RPF", rla_header(0), kAlphaPremultiplied, 0, 4},
        {"nothing before the extension", ".rla", rla_header(0), kAlphaPremultiplied, 0, 4},
        {"a longer extension", "shot.rla2", rla_header(0), kAlphaPremultiplied, 0, 1},
        {"a shorter extension", "x.rl", rla_header(0), kAlphaPremultiplied, 0, 1},
        {"no dot", "rla", rla_header(0), kAlphaPremultiplied, 0, 1},
        {"no dot four from the end", "shotrla", rla_header(0), kAlphaPremultiplied, 0, 1},
        {"another extension", "shot.rlb", rla_header(0), kAlphaPremultiplied, 0, 1},
        {"too short for the count", "a.rla", rla_header(0).substr(0, 23), kAlphaPremultiplied, 0, 1},
        {"too short for what is before it", "a.rla", std::string(5, '\0'), kAlphaPremultiplied, 0, 1},
        {"empty", "a.rla", "", kAlphaPremultiplied, 0, 1},
        {"longer than the header", "a.rla", rla_header(0) + "more", kAlphaPremultiplied, 0, 4},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.why) + ": " + c.name);
        host_.interpretation.alpha.flags = c.flags_before;
        file_.alphaMode = c.alpha_mode;
        EXPECT_EQ(run(folder_.write(c.name, c.bytes)), 0);
        EXPECT_THAT(told(), ::testing::HasSubstr(", alpha " + std::to_string(c.flags) + ", "));
    }
}

TEST_F(InterpretFootage, BareNameRlaIsNotAnExtension) {
    EXPECT_EQ(run("rla"), 0);
    EXPECT_EQ(run(""), 0);
    EXPECT_EQ(host_.calls.size(), 4U);
}

TEST_F(InterpretFootage, NullPathCountsAsEmpty) {
    AEGP_SuiteHandler suites(host_.basic());
    EXPECT_EQ(file_.InterpretFootage(&suites, nullptr, host_.handle<AEGP_ItemH>("item"), &settings_, nullptr),
              0);
    EXPECT_EQ(host_.calls.size(), 2U);
}

TEST_F(InterpretFootage, ImageThatDoesNotOpenFollowsItsEntry) {
    file_.alphaMode = kAlphaPremultiplied;
    EXPECT_EQ(run(folder_.path("missing.rla")), 0);
    EXPECT_THAT(told(), ::testing::HasSubstr("alpha 1"));

    const std::string pipe = folder_.path("pipe.rla");
    make_pipe(pipe);
    EXPECT_EQ(run(pipe), 0) << "and nothing waits on a pipe";
    EXPECT_THAT(told(), ::testing::HasSubstr("alpha 1"));
}

TEST_F(InterpretFootage, OnlySequencesGetTheFrameRate) {
    settings_.fps = 25;
    host_.interpretation.native_fps = 30.0;
    host_.interpretation.conform_fps = 12.5;
    file_.isSequence = 1;
    EXPECT_EQ(run("shot0000.tif"), 0);
    EXPECT_THAT(told(), ::testing::HasSubstr("native 30, conform 25, motion 1"));
    file_.isSequence = 0;
    EXPECT_EQ(run("shot.tif"), 0);
    EXPECT_THAT(told(), ::testing::HasSubstr("native 30, conform 12.5, motion 0"));
}

TEST_F(InterpretFootage, FieldsBecomeTypeAndOrder) {
    const struct {
        A_long fields;
        const char* told;
    } cases[] = {
        {kFieldsNone, "fields 0/0"}, {kFieldsEven, "fields 1/0"}, {kFieldsOdd, "fields 1/1"},
        {3, "fields 1/1"},           {-1, "fields 1/1"},
    };
    // The host's own guess is overwritten, even where the file says NONE.
    host_.interpretation.interlace.type = kFieldTypeInterlaced;
    host_.interpretation.interlace.order = kFieldOrderLowerFirst;
    for (const auto& c : cases) {
        settings_.fields = c.fields;
        EXPECT_EQ(run("shot.tif"), 0);
        EXPECT_THAT(told(), ::testing::HasSubstr(c.told)) << c.fields;
    }
}

TEST_F(InterpretFootage, PixelAspectIsThatOfTheProject) {
    host_.interpretation.pixel_aspect = {3, 4};
    settings_.aspect = 0.9F;
    EXPECT_EQ(run("shot.tif"), 0);
    EXPECT_THAT(told(), ::testing::HasSubstr("aspect 90/100"));
}

TEST_F(InterpretFootage, FailingReadIsReportedAndNothingIsWritten) {
    host_.fail("GetFootageInterpretation", 5);
    EXPECT_EQ(run("shot.tif"), 5);
    EXPECT_THAT(host_.calls, ElementsAre("GetFootageInterpretation(item, 0) = 5",
                                         "ReportInfo(7, \"Could not interpret footage.\")"));
}

TEST_F(InterpretFootage, FailingWriteIsReportedAndReturned) {
    host_.fail("SetFootageInterpretation", 6);
    host_.fail("ReportInfo", 8);
    EXPECT_EQ(run("shot.tif"), 6) << "and a report that fails changes nothing";
    EXPECT_THAT(host_.reports, ElementsAre("Could not interpret footage."));
}

TEST_F(InterpretFootage, MissingSuiteThrows) {
    host_.withhold_suite("AEGP Footage Suite", 7);
    EXPECT_THROW(run("shot.tif"), long);
    EXPECT_THAT(host_.calls, IsEmpty());
}

}  // namespace
