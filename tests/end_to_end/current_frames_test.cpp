// Frames as current hosts request them from the bundle: of any size and in part, with every pointer null that
// may be, and of impossible shapes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "end_to_end/current_bundle.h"

namespace {

using embedded::FrameShape;
using testing::ElementsAre;
using testing::IsEmpty;

struct FrameCase {
    const char* name;
    A_long width_px;
    A_long height_px;
    A_long row_bytes = 0;
    std::optional<A_LRect> region;
    A_long divisor = 1;
};

// Of a picture of 13 by 10.
const FrameCase kFrames[] = {
    {"full size", 13, 10, 0, {}, 1},
    {"half, sides rounded up", 7, 5, 0, {}, 2},
    {"half, sides rounded down", 6, 5, 0, {}, 2},
    {"a third", 5, 4, 0, {}, 3},
    {"a quarter", 4, 3, 0, {}, 4},
    {"one pixel", 1, 1, 0, {}, 100},
    {"one row", 13, 1, 0, {}, 1},
    {"enlarged", 20, 17, 0, {}, 1},
    {"wider and lower", 19, 3, 0, {}, 1},
    {"half in padded rows", 7, 5, 31, {}, 2},
    {"half in rows that run upwards", 7, 5, -29, {}, 2},
    {"full size, upper left part", 13, 10, 0, A_LRect{0, 0, 6, 7}, 1},
    {"full size, a part in the middle", 13, 10, 0, A_LRect{3, 2, 9, 8}, 1},
    {"full size, lower right part in rows that run upwards", 13, 10, -60, A_LRect{5, 6, 13, 10}, 1},
    {"half, a part in the middle", 7, 5, 0, A_LRect{2, 1, 5, 4}, 2},
    {"half, the last pixel", 7, 5, 0, A_LRect{6, 4, 7, 5}, 2},
    {"a region that reaches beyond the frame", 7, 5, 0, A_LRect{-4, 2, 90, 90}, 2},
};

TEST(CurrentFrames, ShowTheWholePictureInTheirRequiredRegion) {
    const TemporaryFolder folder;
    const Texture textures[] = {make_texture(13, 10, Texture::kRgb, 1),
                                make_texture(13, 10, Texture::kGrey, 0),
                                make_texture(13, 10, Texture::kRgb, 3)};
    for (const A_long minor : {kDrawsItself, kDrawsCopies}) {
        CurrentBundle bundle(minor);
        for (std::size_t i = 0; i < std::size(textures); ++i) {
            const std::string path = written(folder, std::to_string(i) + ".txl", textures[i]);
            const embedded::OpenResult opened = bundle.host().open_with_module(path);
            ASSERT_EQ(opened.error, "");
            for (const FrameCase& frame : kFrames) {
                SCOPED_TRACE(std::string(frame.name) + ", 13." + std::to_string(minor));
                FrameShape shape = frame_of(frame.width_px, frame.height_px);
                shape.row_bytes = frame.row_bytes;
                shape.required_region = frame.region;
                shape.resolution_divisor = frame.divisor;
                expect_pixels(bundle.host().draw(opened.in_spec, shape), expected_pixels(textures[i], shape));
            }
            EXPECT_EQ(bundle.host().dispose(opened.in_spec).code, 0);
        }
        EXPECT_THAT(bundle.message_texts(), IsEmpty());
        EXPECT_EQ(bundle.findings(), "");
    }
}

TEST(CurrentFrames, WithoutARegionInsideAreWholeOrRefused) {
    const TemporaryFolder folder;
    const Texture texture = make_texture(4, 4, Texture::kRgb, 1);
    const std::string path = written(folder, "a.txl", texture);
    CurrentBundle bundle(kDrawsItself);
    const auto opened = bundle.host().open_with_module(path);
    ASSERT_EQ(opened.error, "");
    FrameShape shape = frame_of(2, 2);
    const auto whole = expected_pixels(texture, shape);
    for (const A_LRect region : {A_LRect{0, 0, 0, 0}, A_LRect{1, 1, 1, 2}, A_LRect{2, 2, 0, 0}}) {
        shape.required_region = region;
        expect_pixels(bundle.host().draw(opened.in_spec, shape), whole);
    }
    EXPECT_THAT(bundle.message_texts(), IsEmpty());
    shape.required_region = A_LRect{2, 0, 4, 2};
    const auto outside = bundle.host().draw(opened.in_spec, shape);
    EXPECT_EQ(outside.callback.code, 3);
    EXPECT_THAT(bundle.message_texts(), ElementsAre("There was an error drawing the frame."));
    expect_untouched(outside);
    EXPECT_EQ(bundle.findings(), "");
}

TEST(CurrentFrames, AcceptNullForEveryPointerThatMayBeNull) {
    const TemporaryFolder folder;
    const Texture texture = make_texture(3, 2, Texture::kRgb, 0);
    const std::string path = written(folder, "a.txl", texture);
    CurrentBundle bundle(kDrawsItself);
    const auto opened = bundle.host().open_with_module(path);
    ASSERT_EQ(opened.error, "");
    const auto& functions = std::get<AEIO_FunctionBlock4>(bundle.host().modules()[0].functions);
    AEIO_BasicData* const basic = bundle.host().basic_data();
    const AEIO_InSpecH spec = bundle.host().in_spec_handle(opened.in_spec);
    const auto run = [&](const char* name, const std::function<A_Err()>& call) {
        return bundle.host().run(name, call).code;
    };
    std::vector<PF_Pixel> pixels(6);
    PF_LayerDef world{};
    world.data = pixels.data();
    world.width = 3;
    world.height = 2;
    world.row_bytes = 12;
    EXPECT_EQ(
        run("draw", [&] { return functions.AEIO_DrawSparseFrame(basic, spec, nullptr, &world, nullptr); }),
        0);
    EXPECT_EQ(channels(pixels[5]), channels(frame_pixel(texture, 2, 1)));
    EXPECT_EQ(
        run("draw", [&] { return functions.AEIO_DrawSparseFrame(basic, spec, nullptr, nullptr, nullptr); }),
        3);
    world.data = nullptr;
    EXPECT_EQ(
        run("draw", [&] { return functions.AEIO_DrawSparseFrame(basic, spec, nullptr, &world, nullptr); }),
        3);
    EXPECT_EQ(run("aux", [&] { return functions.AEIO_NumAuxFiles(basic, spec, nullptr); }), 0);
    EXPECT_EQ(run("info", [&] { return functions.AEIO_GetInSpecInfo(basic, spec, nullptr); }), 0);
    EXPECT_EQ(run("depths", [&] { return functions.AEIO_GetDepths(basic, nullptr, nullptr); }), 0);
    EXPECT_EQ(
        run("verify", [&] { return functions.AEIO_VerifyFileImportable(basic, 0, u"/a.txl", nullptr); }), 0);
    EXPECT_EQ(run("dimensions",
                  [&] { return functions.AEIO_GetDimensions(basic, spec, nullptr, nullptr, nullptr); }),
              9992);
    EXPECT_EQ(run("flatten", [&] { return functions.AEIO_FlattenOptions(basic, spec, nullptr); }), 9992);
    EXPECT_EQ(run("inflate", [&] { return functions.AEIO_InflateOptions(basic, spec, nullptr); }), 0);
    AEIO_BasicData silent = *basic;
    silent.msg_func = nullptr;
    EXPECT_EQ(run("options", [&] { return functions.AEIO_SeqOptionsDlg(&silent, spec, nullptr); }), 0);
}

TEST(CurrentFrames, OfImpossibleShapesAreRefused) {
    const TemporaryFolder folder;
    const std::string path = written(folder, "a.txl", make_texture(8, 6, Texture::kRgb, 0));
    CurrentBundle bundle(kDrawsItself);
    const auto opened = bundle.host().open_with_module(path);
    ASSERT_EQ(opened.error, "");
    const auto& functions = std::get<AEIO_FunctionBlock4>(bundle.host().modules()[0].functions);
    const struct {
        const char* name;
        A_long width;
        A_long height;
        A_long row_bytes;
        A_Err code;
    } cases[] = {
        {"no columns", 0, 3, 16, 0},        {"no rows", 4, 0, 16, 0},
        {"a negative width", -4, 3, 16, 3}, {"a negative height", 4, -3, 16, 3},
        {"rows that overlap", 4, 3, 15, 3}, {"rows that overlap upwards", 4, 3, -15, 3},
        {"rows at one place", 4, 3, 0, 3},  {"one row of no length", 4, 1, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<PF_Pixel> pixels(64, PF_Pixel{kFill, kFill, kFill, kFill});
        PF_LayerDef world{};
        world.data = pixels.data() + 32;
        world.width = c.width;
        world.height = c.height;
        world.row_bytes = c.row_bytes;
        AEIO_DrawingFlags flags = 77;
        EXPECT_EQ(bundle.host()
                      .run("draw",
                           [&] {
                               return functions.AEIO_DrawSparseFrame(
                                   bundle.host().basic_data(), bundle.host().in_spec_handle(opened.in_spec),
                                   nullptr, &world, &flags);
                           })
                      .code,
                  c.code);
        EXPECT_EQ(flags, 0);
        const bool drawn = c.code == 0 && c.width > 0 && c.height > 0;
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            const bool inside = drawn && i >= 32 && i < 36;
            EXPECT_EQ(channels(pixels[i]) == std::vector<int>(4, kFill), !inside) << i;
        }
    }
}

}  // namespace
