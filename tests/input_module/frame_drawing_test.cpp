#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "input_module/object_bytes.h"
#include "input_module/texture_files.h"
#include "support/recording_host.h"
#include "texture/input_module/frame_reading.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int32_t kGrey = 2;
constexpr std::int32_t kRgb = 4;
constexpr unsigned char kBefore = 0xEE;
constexpr unsigned char kZeros = 0x00;
constexpr unsigned char kOnes = 0xFF;
constexpr char kDrawingMessage[] = "There was an error drawing the frame.";

// A host's frame in its own block: rows of `stride_bytes`, the top row first, or last if the stride is
// negative.
class Frame {
  public:
    Frame(A_long width_px, A_long height_px, A_long stride_bytes)
        : stride_bytes_(stride_bytes),
          bytes_(static_cast<std::size_t>(std::max(height_px, 1)) *
                     static_cast<std::size_t>(std::abs(stride_bytes)),
                 kBefore) {
        world_.data = reinterpret_cast<PF_Pixel*>(RowBytes(stride_bytes < 0 ? height_px - 1 : 0));
        world_.row_bytes = stride_bytes;
        world_.width = width_px;
        world_.height = height_px;
    }

    [[nodiscard]] PF_LayerDef* world() { return &world_; }
    [[nodiscard]] const std::vector<unsigned char>& bytes() const { return bytes_; }

    // The expected content of the frame after only `picture` has been drawn.
    [[nodiscard]] std::vector<unsigned char> BytesWith(PaintedPicture picture) const {
        std::vector<unsigned char> expected(bytes_.size(), kBefore);
        for (A_long y = 0; y < std::min(world_.height, picture.GetBh()); ++y) {
            const A_long row = stride_bytes_ < 0 ? world_.height - 1 - y : y;
            for (A_long x = 0; x < std::min(world_.width, picture.GetBw()); ++x) {
                const bool has_alpha = picture.GetAlphaCount() > 0;
                const unsigned char pixel[] = {
                    has_alpha ? PaintedPicture::AlphaAt(x, y, 0) : static_cast<unsigned char>(255),
                    picture.ColourAt(x, y, 0), picture.ColourAt(x, y, 1), picture.ColourAt(x, y, 2)};
                std::copy(std::begin(pixel), std::end(pixel),
                          expected.begin() + std::ptrdiff_t{row} * std::abs(stride_bytes_) + 4 * x);
            }
        }
        return expected;
    }

  private:
    unsigned char* RowBytes(A_long row) {
        return bytes_.data() + std::ptrdiff_t{std::max(row, 0)} * std::abs(stride_bytes_);
    }

    A_long stride_bytes_;
    std::vector<unsigned char> bytes_;
    PF_LayerDef world_ = filled_with<PF_LayerDef>(kBefore);
};

class FrameDrawing : public testing::Test {
  protected:
    void Import(const PaintedPicture& picture) {
        ASSERT_EQ(
            InitInSpecFromFile(host.basic_data(), files.Save("picture.txl", picture).c_str(), host.in_spec()),
            0);
        host.clear_script();
        host.calls.clear();
    }

    A_Err Draw(PF_LayerDef* world) {
        return My_DrawSparseFrame(host.basic_data(), host.in_spec(), nullptr, world, nullptr);
    }

    void TearDown() override {
        host.clear_script();
        EXPECT_EQ(My_DisposeInSpec(host.basic_data(), host.in_spec()), 0);
        EXPECT_THAT(host.handles(), IsEmpty());
    }

    TextureFiles files;
    RecordingHost host;
};

struct DrawCase {
    const char* name;
    PaintedPicture picture;
    A_long width_px;
    A_long height_px;
    A_long stride_bytes;
};

const DrawCase kDrawCases[] = {
    {"as large as the picture", {5, 3, kRgb, 0}, 5, 3, 20},
    {"with alpha", {5, 3, kRgb, 1}, 5, 3, 20},
    {"grey", {5, 3, kGrey, 0}, 5, 3, 20},
    {"grey with alpha", {5, 3, kGrey, 1}, 5, 3, 20},
    {"three alphas, of which the first is drawn", {5, 3, kRgb, 3}, 5, 3, 20},
    {"padded rows", {5, 3, kRgb, 1}, 5, 3, 29},
    {"rows from bottom to top", {5, 3, kRgb, 1}, 5, 3, -32},
    {"narrower", {5, 3, kRgb, 1}, 2, 3, 8},
    {"lower", {5, 3, kRgb, 1}, 5, 1, 20},
    {"smaller", {5, 3, kRgb, 1}, 2, 2, 11},
    {"wider", {5, 3, kRgb, 1}, 9, 3, 36},
    {"higher", {5, 3, kRgb, 1}, 5, 7, 20},
    {"larger", {5, 3, kRgb, 1}, 9, 7, 40},
    {"wider and lower", {5, 3, kRgb, 1}, 9, 2, 40},
    {"one pixel", {5, 3, kRgb, 1}, 1, 1, 4},
    {"no columns", {5, 3, kRgb, 1}, 0, 3, 20},
    {"no rows", {5, 3, kRgb, 1}, 5, 0, 20},
    {"negative width", {5, 3, kRgb, 1}, -5, 3, 20},
    {"negative height", {5, 3, kRgb, 1}, 5, -3, 20},
    {"picture without pixels", {0, 0, kRgb, 0}, 5, 3, 20},
};

TEST_F(FrameDrawing, PictureIsDrawnAtTheTopLeftAndNothingElseChanges) {
    for (const DrawCase& c : kDrawCases) {
        SCOPED_TRACE(c.name);
        Import(c.picture);
        Frame frame(c.width_px, c.height_px, c.stride_bytes);
        const std::vector<unsigned char> world_before = bytes_of(*frame.world());
        EXPECT_EQ(Draw(frame.world()), 0);
        EXPECT_EQ(frame.bytes(), frame.BytesWith(c.picture));
        EXPECT_EQ(bytes_of(*frame.world()), world_before);
        EXPECT_THAT(host.functions_called(),
                    ElementsAre("GetInSpecOptionsHandle", "LockMemHandle", "UnlockMemHandle"));
        EXPECT_THAT(host.reports, IsEmpty());
        EXPECT_THAT(host.suites_held(), IsEmpty());
    }
}

TEST_F(FrameDrawing, RequestAndFlagsAreIgnored) {
    const PaintedPicture picture = {5, 3, kRgb, 1};
    Import(picture);
    for (const unsigned char filling : {kZeros, kBefore, kOnes}) {
        const auto request = filled_with<AEIO_DrawSparseFramePB>(filling);
        const std::vector<unsigned char> request_before = bytes_of(request);
        AEIO_DrawingFlags flags = filling;
        Frame frame(5, 3, 20);
        EXPECT_EQ(My_DrawSparseFrame(host.basic_data(), host.in_spec(), &request, frame.world(), &flags), 0);
        EXPECT_EQ(frame.bytes(), frame.BytesWith(picture));
        EXPECT_EQ(bytes_of(request), request_before);
        EXPECT_EQ(flags, filling);
    }
}

TEST_F(FrameDrawing, OneImportServesAnyNumberOfFrames) {
    const PaintedPicture picture = {5, 3, kRgb, 1};
    Import(picture);
    std::filesystem::remove(files.Path("picture.txl"));
    for (int i = 0; i < 3; ++i) {
        Frame frame(4, 4, 16);
        EXPECT_EQ(Draw(frame.world()), 0);
        EXPECT_EQ(frame.bytes(), frame.BytesWith(picture));
    }
}

TEST_F(FrameDrawing, WithoutARecordNothingIsDrawn) {
    Frame frame(5, 3, 20);
    EXPECT_EQ(Draw(frame.world()), 0);
    EXPECT_EQ(Draw(nullptr), 0) << "the record is looked up first";
    EXPECT_EQ(frame.bytes(), std::vector<unsigned char>(60, kBefore));
    EXPECT_THAT(host.reports, IsEmpty());
}

TEST_F(FrameDrawing, WithoutAFrameThereIsAnError) {
    Import({5, 3, kRgb, 1});
    EXPECT_EQ(Draw(nullptr), 3);
    EXPECT_THAT(host.reports, ElementsAre(kDrawingMessage));
    PF_LayerDef without_data = {};
    without_data.width = 5;
    without_data.height = 3;
    EXPECT_EQ(Draw(&without_data), 3);
    EXPECT_THAT(host.reports, ElementsAre(kDrawingMessage, kDrawingMessage));
}

TEST_F(FrameDrawing, EveryFailingCallEndsItWithAMessage) {
    Import({5, 3, kRgb, 1});
    for (int n = 1; n <= 3; ++n) {
        SCOPED_TRACE(n);
        host.clear_script();
        host.reports.clear();
        host.fail_call(n, 80 + n);
        host.fail_every("ReportInfo", 99);
        Frame frame(5, 3, 20);
        EXPECT_EQ(Draw(frame.world()), 80 + n);
        EXPECT_EQ(frame.bytes(), std::vector<unsigned char>(60, kBefore));
        EXPECT_THAT(host.reports, ElementsAre(kDrawingMessage));
        EXPECT_THAT(host.suites_held(), IsEmpty());
    }
}

TEST_F(FrameDrawing, ALockWithoutAnAddressIsAnError) {
    Import({5, 3, kRgb, 1});
    host.always_yield_nothing("LockMemHandle");
    Frame frame(5, 3, 20);
    EXPECT_EQ(Draw(frame.world()), 1);
    EXPECT_THAT(host.reports, ElementsAre(kDrawingMessage));
    EXPECT_EQ(frame.bytes(), std::vector<unsigned char>(60, kBefore));
}

TEST_F(FrameDrawing, WithoutItsSuitesItThrows) {
    Import({5, 3, kRgb, 1});
    Frame frame(5, 3, 20);
    for (const char* suite : {"AEGP Memory Suite", "AEGP IO In Suite"}) {
        host.withhold_suite(suite, 1);
        EXPECT_TRUE(throws_missing_suite([&] { Draw(frame.world()); })) << suite;
        host.clear_script();
    }
    host.withhold_suite("AEGP Utility Suite", 7);
    EXPECT_TRUE(throws_missing_suite([&] { Draw(nullptr); })) << "there is something to report";
    EXPECT_THAT(host.reports, IsEmpty());
    EXPECT_THAT(host.suites_held(), IsEmpty());
    EXPECT_EQ(frame.bytes(), std::vector<unsigned char>(60, kBefore));
    EXPECT_EQ(Draw(frame.world()), 0) << "there is nothing to report";
}

}  // namespace
