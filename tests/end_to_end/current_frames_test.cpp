// Frames as current hosts request them from the bundle: of any size, in part, and for copies of a project,
// whose in-specs have no options.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "end_to_end/texture_scene.h"
#include "support/area_average.h"
#include "support/loaded_bundle.h"
#include "support/temporary_folder.h"

namespace {

using embedded::FrameShape;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint8_t kFill = 0x3C;
constexpr const char* kDrawing = "There was an error drawing the frame.";

embedded::HostOptions current(A_long minor) {
    embedded::HostOptions options;
    options.version = {13, minor};
    return options;
}

/// A host that draws in its own in-specs, and one that draws on another thread from copies.
constexpr A_long kDrawsItself = 4;
constexpr A_long kDrawsCopies = 5;

struct CurrentBundle : LoadedBundle {
    explicit CurrentBundle(A_long minor) : LoadedBundle(current(minor), embedded::HostGeneration::today) {
        EXPECT_EQ(loaded().error, "");
    }
    /// Everything that the host found, after the bundle is unloaded.
    std::string findings() {
        host().unload();
        return host().conformance().to_text();
    }
};

std::string written(const TemporaryFolder& folder, const std::string& name, const Texture& texture) {
    const std::string path = folder.path(name);
    if (const auto error = write_texture(path, texture)) {
        throw std::runtime_error(error->reason);
    }
    return path;
}

std::vector<int> channels(const PF_Pixel& pixel) {
    return {pixel.alpha, pixel.red, pixel.green, pixel.blue};
}

/// What the whole texture is in a frame of this shape; outside the region the fill.
std::vector<std::vector<int>> expected_pixels(const Texture& texture, const FrameShape& shape) {
    const A_LRect region = shape.required_region.value_or(A_LRect{0, 0, shape.width_px, shape.height_px});
    std::vector<std::vector<int>> all;
    for (A_long y = 0; y < shape.height_px; ++y) {
        for (A_long x = 0; x < shape.width_px; ++x) {
            std::vector<int>& pixel = all.emplace_back(4, kFill);
            if (x < region.left || x >= region.right || y < region.top || y >= region.bottom) {
                continue;
            }
            for (std::size_t channel = 0; channel < 4; ++channel) {
                pixel[channel] = area_average(x, y, shape.width_px, shape.height_px, texture.width_px,
                                              texture.height_px, [&](A_long column, A_long row) {
                                                  return channels(frame_pixel(texture, column, row))[channel];
                                              });
            }
        }
    }
    return all;
}

void expect_pixels(const embedded::DrawResult& drawn, const std::vector<std::vector<int>>& expected) {
    EXPECT_EQ(drawn.error, "");
    EXPECT_EQ(drawn.callback.code, 0);
    ASSERT_EQ(drawn.pixels.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(channels(drawn.pixels[i]), expected[i]) << "pixel " << i;
    }
}

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

TEST(CurrentFrames, ShowTheWholePictureAndOfItTheRequiredRegion) {
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
                FrameShape shape;
                shape.width_px = frame.width_px;
                shape.height_px = frame.height_px;
                shape.row_bytes = frame.row_bytes;
                shape.fill = kFill;
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

TEST(CurrentFrames, ThatNeedNothingOfTheFrameAreWholeOrRefused) {
    const TemporaryFolder folder;
    const Texture texture = make_texture(4, 4, Texture::kRgb, 1);
    const std::string path = written(folder, "a.txl", texture);
    CurrentBundle bundle(kDrawsItself);
    const auto opened = bundle.host().open_with_module(path);
    ASSERT_EQ(opened.error, "");
    FrameShape shape;
    shape.width_px = 2;
    shape.height_px = 2;
    shape.fill = kFill;
    const auto whole = expected_pixels(texture, shape);
    for (const A_LRect region : {A_LRect{0, 0, 0, 0}, A_LRect{1, 1, 1, 2}, A_LRect{2, 2, 0, 0}}) {
        shape.required_region = region;
        expect_pixels(bundle.host().draw(opened.in_spec, shape), whole);
    }
    EXPECT_THAT(bundle.message_texts(), IsEmpty());
    shape.required_region = A_LRect{2, 0, 4, 2};
    const auto outside = bundle.host().draw(opened.in_spec, shape);
    EXPECT_EQ(outside.callback.code, 3);
    EXPECT_THAT(bundle.message_texts(), ElementsAre(kDrawing));
    for (const PF_Pixel& pixel : outside.pixels) {
        EXPECT_EQ(channels(pixel), std::vector<int>(4, kFill));
    }
    EXPECT_EQ(bundle.findings(), "");
}

// ---- in-specs without options

embedded::DrawResult draw(CurrentBundle& bundle, embedded::Id in_spec, A_long width_px, A_long height_px) {
    FrameShape shape;
    shape.width_px = width_px;
    shape.height_px = height_px;
    shape.fill = kFill;
    return bundle.host().draw(in_spec, shape);
}

std::vector<std::vector<int>> whole_picture(const Texture& texture) {
    FrameShape shape;
    shape.width_px = texture.width_px;
    shape.height_px = texture.height_px;
    return expected_pixels(texture, shape);
}

/// An in-spec of a project that was opened again: the host inflated it from nothing.
embedded::Id reopened(CurrentBundle& bundle, const std::string& path) {
    return bundle.host().new_in_spec(path);
}

TEST(ReopenedTextures, AreLoadedOnceForAllCopies) {
    const TemporaryFolder folder;
    const Texture texture = make_texture(9, 4, Texture::kRgb, 1);
    const std::string path = written(folder, "\U0001F3AC \u00E9toffe.txl", texture);
    for (const A_long minor : {kDrawsItself, kDrawsCopies}) {
        SCOPED_TRACE(minor);
        if (!std::filesystem::exists(path)) {
            written(folder, "\U0001F3AC \u00E9toffe.txl", texture);
        }
        CurrentBundle bundle(minor);
        const embedded::Id first = reopened(bundle, path);
        expect_pixels(draw(bundle, first, 9, 4), whole_picture(texture));
        // Had it to be read again, it could not be drawn.
        std::filesystem::remove(path);
        expect_pixels(draw(bundle, first, 9, 4), whole_picture(texture));
        expect_pixels(draw(bundle, reopened(bundle, path), 9, 4), whole_picture(texture));
        FrameShape half;
        half.width_px = 5;
        half.height_px = 2;
        half.fill = kFill;
        expect_pixels(bundle.host().draw(first, half), expected_pixels(texture, half));
        EXPECT_EQ(bundle.host().dispose(first).code, 0);
        expect_pixels(draw(bundle, reopened(bundle, path), 9, 4), whole_picture(texture));
        EXPECT_THAT(bundle.message_texts(), IsEmpty());
        EXPECT_EQ(bundle.host().project().in_spec(first).width, 0) << "the host's in-spec is not touched";
        EXPECT_FALSE(bundle.host().call_counts().contains("AEGP_SetInSpecOptionsHandle"));
        EXPECT_EQ(bundle.findings(), "");
    }
}

TEST(ReopenedTextures, ShowAFileThatChanged) {
    const TemporaryFolder folder;
    const Texture before = make_texture(5, 3, Texture::kRgb, 0, 1);
    const Texture after = make_texture(8, 6, Texture::kRgb, 1, 90);
    const std::string path = written(folder, "a.txl", before);
    CurrentBundle bundle(kDrawsCopies);
    const embedded::Id spec = reopened(bundle, path);
    expect_pixels(draw(bundle, spec, 5, 3), whole_picture(before));
    written(folder, "a.txl", after);
    expect_pixels(draw(bundle, spec, 8, 6), whole_picture(after));
    // The same number of bytes, written later.
    written(folder, "a.txl", make_texture(8, 6, Texture::kRgb, 1, 30));
    std::filesystem::last_write_time(path, std::filesystem::last_write_time(path) + std::chrono::seconds(3));
    expect_pixels(draw(bundle, spec, 8, 6), whole_picture(make_texture(8, 6, Texture::kRgb, 1, 30)));
    EXPECT_EQ(bundle.findings(), "");
}

void expect_untouched(const embedded::DrawResult& drawn) {
    for (const PF_Pixel& pixel : drawn.pixels) {
        EXPECT_EQ(channels(pixel), std::vector<int>(4, kFill));
    }
}

TEST(ReopenedTextures, WithoutTheirFileAreAnErrorThatNamesIt) {
    const TemporaryFolder folder;
    folder.write("text.txl", "no texture");
    const struct {
        const char* name;
        const char* file;
        const char* report;
    } cases[] = {
        {"gone", "gone.txl",
         "\"gone.txl\" cannot be drawn: the file is not there any more. Put it back, or choose Replace "
         "Footage."},
        {"not a texture any more", "text.txl",
         "\"text.txl\" cannot be drawn: the file could not be read again (error 3). Check the file, then "
         "choose "
         "Reload Footage."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        CurrentBundle bundle(kDrawsItself);
        const embedded::Id spec = reopened(bundle, folder.path(c.file));
        const embedded::DrawResult drawn = draw(bundle, spec, 3, 2);
        EXPECT_EQ(drawn.callback.code, 3);
        expect_untouched(drawn);
        EXPECT_THAT(bundle.message_texts(), ElementsAre(c.report));
        EXPECT_EQ(bundle.findings(), "");
    }
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.name) + ", on another thread");
        CurrentBundle bundle(kDrawsCopies);
        const embedded::Id spec = reopened(bundle, folder.path(c.file));
        for (int i = 0; i < 3; ++i) {
            const embedded::DrawResult drawn = draw(bundle, spec, 3, 2);
            EXPECT_EQ(drawn.callback.code, 3);
            expect_untouched(drawn);
        }
        // The main thread shows what waits for it. One message a file is enough, however many frames fail.
        EXPECT_EQ(bundle.host().dispose(spec).code, 0);
        EXPECT_THAT(bundle.message_texts(), ElementsAre(c.report));
        EXPECT_EQ(bundle.findings(), "");
    }
}

TEST(ReopenedTextures, AreDrawnAgainWhenTheirFileIsBack) {
    const TemporaryFolder folder;
    const Texture texture = make_texture(3, 2, Texture::kRgb, 0);
    CurrentBundle bundle(kDrawsCopies);
    const embedded::Id spec = reopened(bundle, folder.path("a.txl"));
    EXPECT_EQ(draw(bundle, spec, 3, 2).callback.code, 3);
    written(folder, "a.txl", texture);
    expect_pixels(draw(bundle, spec, 3, 2), whole_picture(texture));
    // After a success the next failure is told again.
    folder.write("a.txl", "no texture");
    EXPECT_EQ(draw(bundle, spec, 3, 2).callback.code, 3);
    EXPECT_EQ(bundle.host().dispose(spec).code, 0);
    EXPECT_EQ(bundle.message_texts().size(), 2U);
    EXPECT_EQ(bundle.findings(), "");
}

TEST(ReopenedTextures, ThatTheHostCannotNameAreAnError) {
    for (const A_Err code : {1, 4}) {
        embedded::HostOptions options = current(kDrawsItself);
        options.faults = {{"AEGP_GetInSpecFilePath", 1, code}};
        LoadedBundle bundle(options, embedded::HostGeneration::today);
        FrameShape shape;
        shape.width_px = 2;
        shape.height_px = 2;
        shape.fill = kFill;
        const auto drawn = bundle.host().draw(bundle.host().new_in_spec("/a.txl"), shape);
        EXPECT_EQ(drawn.callback.code, code);
        expect_untouched(drawn);
        EXPECT_THAT(bundle.message_texts(),
                    ElementsAre("A texture cannot be drawn: the host does not say where its file is (error " +
                                std::to_string(code) + ")."));
    }
}

// A host that copies a project may copy the bytes of options. The addresses in them lead nowhere.
TEST(ReopenedTextures, OptionsThatTheModuleDidNotAttachAreNeitherReadNorFreed) {
    const TemporaryFolder folder;
    const Texture texture = make_texture(3, 2, Texture::kRgb, 0);
    const std::string path = written(folder, "a.txl", texture);
    CurrentBundle bundle(kDrawsItself);
    const embedded::Id spec = reopened(bundle, path);
    const auto acquire = [&bundle](const char* name, A_long version) {
        const void* table = nullptr;
        EXPECT_EQ(bundle.host().basic_suite()->AcquireSuite(name, version, &table), 0);
        return table;
    };
    const auto* memory = static_cast<const AEGP_MemorySuite1*>(acquire("AEGP Memory Suite", 1));
    const auto* in_suite = static_cast<const AEGP_IOInSuite5*>(acquire("AEGP IO In Suite", 5));
    AEGP_MemHandle copied = nullptr;
    void* old = nullptr;
    ASSERT_EQ(memory->AEGP_NewMemHandle(bundle.host().plugin_id(), "copied", 512, 0, &copied), 0);
    ASSERT_EQ(in_suite->AEGP_SetInSpecOptionsHandle(bundle.host().in_spec_handle(spec), copied, &old), 0);
    expect_pixels(draw(bundle, spec, 3, 2), whole_picture(texture));
    EXPECT_EQ(bundle.host().dispose(spec).code, 0);
    EXPECT_FALSE(bundle.host().call_counts().contains("AEGP_FreeMemHandle") &&
                 bundle.host().call_counts().at("AEGP_FreeMemHandle") > 1)
        << "but for that of the path";
    EXPECT_EQ(memory->AEGP_FreeMemHandle(copied), 0);
}

// More pictures than are kept: those used longest ago are read again.
TEST(ReopenedTextures, MoreOfThemThanAreKept) {
    const TemporaryFolder folder;
    std::vector<Texture> textures;
    std::vector<std::string> paths;
    for (int i = 0; i < 40; ++i) {
        textures.push_back(make_texture(3, 2, Texture::kRgb, 0, i));
        paths.push_back(written(folder, std::to_string(i) + ".txl", textures.back()));
    }
    CurrentBundle bundle(kDrawsCopies);
    for (int round = 0; round < 2; ++round) {
        for (std::size_t i = 0; i < paths.size(); ++i) {
            expect_pixels(draw(bundle, reopened(bundle, paths[i]), 3, 2), whole_picture(textures[i]));
        }
    }
    // The first was given up, the last is kept.
    std::filesystem::remove(paths.front());
    std::filesystem::remove(paths.back());
    EXPECT_EQ(draw(bundle, reopened(bundle, paths.front()), 3, 2).callback.code, 3);
    expect_pixels(draw(bundle, reopened(bundle, paths.back()), 3, 2), whole_picture(textures.back()));
    EXPECT_EQ(bundle.findings(), "");
}

// ---- what else a current host may pass

TEST(CurrentFrames, EveryPointerThatMayBeNull) {
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
