// Textures whose in-specs have no options, in a project that was opened again or in another thread's copy:
// the bridge has the module load the file once more.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "end_to_end/current_bundle.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

embedded::DrawResult draw(CurrentBundle& bundle, embedded::Id in_spec, A_long width_px, A_long height_px) {
    return bundle.host().draw(in_spec, frame_of(width_px, height_px));
}

std::vector<std::vector<int>> whole_picture(const Texture& texture) {
    return expected_pixels(texture, frame_of(texture.width_px, texture.height_px));
}

/// An in-spec without options, as in a project that was opened again.
embedded::Id reopened(CurrentBundle& bundle, const std::string& path) {
    return bundle.host().new_in_spec(path);
}

TEST(ReopenedTextures, AreLoadedOnceForAllCopies) {
    const TemporaryFolder folder;
    const Texture texture = make_texture(9, 4, Texture::kRgb, 1);
    for (const A_long minor : {kDrawsItself, kDrawsCopies}) {
        SCOPED_TRACE(minor);
        const std::string path = written(folder, "\U0001F3AC \u00E9toffe.txl", texture);
        CurrentBundle bundle(minor);
        const embedded::Id first = reopened(bundle, path);
        expect_pixels(draw(bundle, first, 9, 4), whole_picture(texture));
        // Without the file it cannot be read again, only drawn from memory.
        std::filesystem::remove(path);
        expect_pixels(draw(bundle, first, 9, 4), whole_picture(texture));
        expect_pixels(draw(bundle, reopened(bundle, path), 9, 4), whole_picture(texture));
        const embedded::FrameShape half = frame_of(5, 2);
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

TEST(ReopenedTextures, WithoutTheirFileEndInAnErrorThatNamesIt) {
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
         "choose Reload Footage."},
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
    // After a success the next failure is reported again.
    folder.write("a.txl", "no texture");
    EXPECT_EQ(draw(bundle, spec, 3, 2).callback.code, 3);
    EXPECT_EQ(bundle.host().dispose(spec).code, 0);
    EXPECT_EQ(bundle.message_texts().size(), 2U);
    EXPECT_EQ(bundle.findings(), "");
}

TEST(ReopenedTextures, WithoutAPathFromTheHostEndInAnError) {
    for (const A_Err code : {1, 4}) {
        embedded::HostOptions options = current(kDrawsItself);
        options.faults = {{"AEGP_GetInSpecFilePath", 1, code}};
        LoadedBundle bundle(options, embedded::HostGeneration::today);
        const auto drawn = bundle.host().draw(bundle.host().new_in_spec("/a.txl"), frame_of(2, 2));
        EXPECT_EQ(drawn.callback.code, code);
        expect_untouched(drawn);
        EXPECT_THAT(bundle.message_texts(),
                    ElementsAre("A texture cannot be drawn: the host does not say where its file is (error " +
                                std::to_string(code) + ")."));
    }
}

// A host that copies a project may copy the bytes of options. The addresses in them lead nowhere.
TEST(ReopenedTextures, WithForeignOptionsNeitherReadNorFreeThem) {
    const TemporaryFolder folder;
    const Texture texture = make_texture(3, 2, Texture::kRgb, 0);
    const std::string path = written(folder, "a.txl", texture);
    CurrentBundle bundle(kDrawsItself);
    const embedded::Id spec = reopened(bundle, path);
    const auto* memory = bundle.host().acquire<AEGP_MemorySuite1>("AEGP Memory Suite", 1);
    const auto* in_suite = bundle.host().acquire<AEGP_IOInSuite5>("AEGP IO In Suite", 5);
    ASSERT_NE(memory, nullptr);
    ASSERT_NE(in_suite, nullptr);
    AEGP_MemHandle copied = nullptr;
    void* old = nullptr;
    ASSERT_EQ(memory->AEGP_NewMemHandle(bundle.host().plugin_id(), "copied", 512, 0, &copied), 0);
    ASSERT_EQ(in_suite->AEGP_SetInSpecOptionsHandle(bundle.host().in_spec_handle(spec), copied, &old), 0);
    expect_pixels(draw(bundle, spec, 3, 2), whole_picture(texture));
    EXPECT_EQ(bundle.host().dispose(spec).code, 0);
    EXPECT_FALSE(bundle.host().call_counts().contains("AEGP_FreeMemHandle") &&
                 bundle.host().call_counts().at("AEGP_FreeMemHandle") > 1)
        << "only the path's handle is freed";
    EXPECT_EQ(memory->AEGP_FreeMemHandle(copied), 0);
}

// The bridge forgets those used longest ago.
TEST(ReopenedTextures, AreReadAgainIfMoreAreUsedThanAreKept) {
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
    // The first is no longer kept, the last is.
    std::filesystem::remove(paths.front());
    std::filesystem::remove(paths.back());
    EXPECT_EQ(draw(bundle, reopened(bundle, paths.front()), 3, 2).callback.code, 3);
    expect_pixels(draw(bundle, reopened(bundle, paths.back()), 3, 2), whole_picture(textures.back()));
    EXPECT_EQ(bundle.findings(), "");
}

}  // namespace
