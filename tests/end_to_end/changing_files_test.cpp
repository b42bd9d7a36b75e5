// Footage and textures that vanish, shrink or become something else between the check for their existence and
// the reading. The bundle never waits for them, builds what it can, and leaves nothing open in the host.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "end_to_end/texture_scene.h"
#include "support/deadline.h"
#include "support/loaded_bundle.h"
#include "support/scene_folder.h"
#include "support/special_files.h"
#include "support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;
using embedded::Passage;

/// A change of a file.
struct Change {
    const char* name;
    void (*apply)(const std::string& path);
};

void vanish(const std::string& path) {
    fs::remove_all(path);
}
void shrink(const std::string& path) {
    fs::resize_file(path, fs::file_size(path) / 2);
}
void empty(const std::string& path) {
    fs::resize_file(path, 0);
}
void grow(const std::string& path) {  // by meaningless bytes
    fs::resize_file(path, fs::file_size(path) + 100);
}
void become_folder(const std::string& path) {
    fs::remove_all(path);
    fs::create_directory(path);
}
void become_pipe(const std::string& path) {
    fs::remove_all(path);
    make_pipe(path);
}
void become_device(const std::string& path) {
    fs::remove_all(path);
    make_link("/dev/zero", path);
}
void become_circle(const std::string& path) {
    fs::remove_all(path);
    make_link(path, path);
}
void become_link_to_nothing(const std::string& path) {
    fs::remove_all(path);
    make_link("missing", path);
}

constexpr Change kChanges[] = {
    {"vanishes", vanish},
    {"shrinks", shrink},
    {"is emptied", empty},
    {"grows", grow},
    {"becomes a folder", become_folder},
    {"becomes a pipe without a writer", become_pipe},
    {"becomes a device", become_device},
    {"becomes a link to itself", become_circle},
    {"becomes a link to nothing", become_link_to_nothing},
};

/// Changes a file at the first passage of a kind, and never again.
class ChangeAt {
  public:
    ChangeAt(embedded::TestHost& host, Passage passage, std::string what, std::function<void()> change)
        : host_(host) {
        host.watch([this, passage, what = std::move(what), change = std::move(change)](
                       Passage now, std::string_view where) {
            if (now == passage && where == what && !done_) {
                done_ = true;
                change();
            }
        });
    }
    ~ChangeAt() { host_.watch({}); }
    ChangeAt(const ChangeAt&) = delete;
    ChangeAt& operator=(const ChangeAt&) = delete;

    [[nodiscard]] bool done() const { return done_; }

  private:
    embedded::TestHost& host_;
    bool done_ = false;
};

void expect_sound(LoadedBundle& bundle) {
    EXPECT_EQ(bundle.host().validate().value_or(""), "");
    bundle.host().unload();
    for (const diagnostic::Diagnostic& problem : bundle.host().conformance().violations()) {
        // The bundle deliberately keeps the memory handle of a refused texture.
        EXPECT_TRUE(problem.code == embedded::RuleViolation::memory_left_alive &&
                    problem.within.front() == "AEIO_InitInSpecFromFile")
            << bundle.host().conformance().to_text();
    }
    EXPECT_EQ(bundle.host().validate().value_or(""), "");
    for (const embedded::UndoStep& step : bundle.host().project().undo_steps) {
        EXPECT_TRUE(step.closed);
    }
}

constexpr const char* kSettings = "VORTAN XR COMPOSITION RESOLUTION 64 48 FROM 0 TO 3 RANGE 4 FPS 25 ";

std::string scene_with(const std::string& entries) {
    return kSettings + ("COMPOSITION NRM \"Main\" {\n" + entries + "} ");
}

/// The kinds of footage in scenes: an image, one that the bundle itself reads, a sequence, a texture.
struct Footage {
    const char* name;
    const char* file;
    const char* entry;
};

constexpr Footage kFootage[] = {
    {"image", "plate.tga", "FILE NRM PREMUL \"C:\\plate.tga\"\n"},
    {"image with a matte", "matte.rla", "FILE NRM PREMUL \"C:\\matte.rla\"\n"},
    {"first of a sequence", "glow0000.tga", "FSEQ NRM PREMUL \"C:\\glow0000.tga\"\n"},
    {"texture", "cloth.txl", "FILE NRM PREMUL \"C:\\cloth.txl\"\n"},
};

void make_footage(const SceneFolder& folder) {
    folder.image("plate.tga");
    folder.sequence("glow", 0, 3);
    fs::copy_file(VXR_EXAMPLES_DIR "/interlaced/post.rla", folder.files().path("matte.rla"));
    ASSERT_FALSE(write_texture(folder.files().path("cloth.txl"), make_texture(8, 8, Texture::kRgb, 1)));
}

/// Imports the scene while `footage` changes at `passage`. A file that the host cannot read ends the import
/// with the host's code; one that the bundle finds missing becomes a placeholder.
void import_while(const Footage& footage, const Change& change, Passage passage, const char* what) {
    const SceneFolder folder;
    make_footage(folder);
    LoadedBundle bundle;
    const std::string scene = folder.scene(scene_with(footage.entry));
    const std::string path = folder.files().path(footage.file);
    embedded::CallbackResult result;
    {
        const ChangeAt at(bundle.host(), passage, what, [&] { change.apply(path); });
        result = bundle.host().import_file(scene);
        EXPECT_TRUE(at.done());
    }
    EXPECT_FALSE(result.missing_suite);
    const embedded::Project& project = bundle.host().project();
    ASSERT_LE(project.footage.size(), 1U);
    if (result.code == 0) {
        EXPECT_EQ(project.footage.size(), 1U);
    } else {
        EXPECT_FALSE(bundle.message_texts().empty()) << "a failure is reported";
    }
    become_circle(path);  // so that disposing of a texture meets it too
    expect_sound(bundle);
}

TEST(ChangingFiles, FootageBeforeAndAfterTheCheckForIt) {
    const Deadline deadline;
    for (const Footage& footage : kFootage) {
        for (const Change& change : kChanges) {
            SCOPED_TRACE(std::string(footage.name) + " " + change.name);
            // The bundle creates the folder before it checks for the file, and the footage afterwards.
            import_while(footage, change, Passage::call_ends, "AEGP_CreateNewFolder");
            import_while(footage, change, Passage::call_begins, "AEGP_NewFootage");
            import_while(footage, change, Passage::call_ends, "AEGP_NewFootage");
        }
    }
}

TEST(ChangingFiles, AMissingFileBecomesAPlaceholder) {
    const Deadline deadline;
    for (const Footage& footage : kFootage) {
        for (const Change& change : kChanges) {
            const std::string_view name = change.name;
            if (name == "shrinks" || name == "is emptied" || name == "grows") {
                continue;  // still a file
            }
            SCOPED_TRACE(std::string(footage.name) + " " + change.name);
            const SceneFolder folder;
            make_footage(folder);
            change.apply(folder.files().path(footage.file));
            LoadedBundle bundle;
            EXPECT_EQ(bundle.host().import_file(folder.scene(scene_with(footage.entry))).code, 0);
            ASSERT_EQ(bundle.host().project().footage.size(), 1U);
            EXPECT_EQ(bundle.host().project().footage[0].kind, embedded::FootageKind::placeholder);
            expect_sound(bundle);
        }
    }
}

TEST(ChangingFiles, TheSceneBetweenVerifyingAndReading) {
    const Deadline deadline;
    for (const Change& change : kChanges) {
        SCOPED_TRACE(change.name);
        const SceneFolder folder;
        const std::string scene = folder.scene(scene_with(""));
        LoadedBundle bundle;
        ASSERT_TRUE(bundle.host().verify(scene).importable);
        change.apply(scene);
        const bool is_file = fs::is_regular_file(fs::symlink_status(scene)) && fs::file_size(scene) > 0;
        EXPECT_EQ(bundle.host().import_file(scene).code, is_file ? 0 : 3);
        EXPECT_TRUE(bundle.host().project().compositions.empty()) << "nothing of it is imported";
        EXPECT_FALSE(bundle.host().verify(folder.files().path("missing.aec")).importable);
        expect_sound(bundle);
    }
}

TEST(ChangingFiles, ATextureBetweenTheCallbacks) {
    const Deadline deadline;
    for (const Change& change : kChanges) {
        SCOPED_TRACE(change.name);
        const TemporaryFolder folder;
        const std::string path = folder.path("cloth.txl");
        const Texture texture = make_texture(8, 8, Texture::kRgb, 1);
        ASSERT_FALSE(write_texture(path, texture));
        // A change between verifying and reading: the module refuses the file.
        {
            LoadedBundle bundle;
            embedded::OpenResult opened;
            {
                const ChangeAt at(bundle.host(), Passage::callback_ends, "AEIO_VerifyFileImportable",
                                  [&] { change.apply(path); });
                opened = bundle.host().open_with_module(path);
                EXPECT_TRUE(at.done());
            }
            EXPECT_EQ(opened.in_spec, 0);
            EXPECT_EQ(opened.callback.code, kHostErrorParameter);
            expect_sound(bundle);
        }
        // A change after reading: the module draws what it has read.
        become_circle(path);
        fs::remove(path);
        ASSERT_FALSE(write_texture(path, texture));
        LoadedBundle bundle;
        const embedded::OpenResult opened = bundle.host().open_with_module(path);
        ASSERT_NE(opened.in_spec, 0);
        change.apply(path);
        const embedded::DrawResult drawn = bundle.host().draw(opened.in_spec, {8, 8, 0, 0, 0, {0, 1}, 0});
        EXPECT_EQ(drawn.callback.code, 0);
        ASSERT_EQ(drawn.pixels.size(), 64U);
        EXPECT_EQ(drawn.pixels[63].red, frame_pixel(texture, 7, 7).red);
        expect_sound(bundle);
    }
}

}  // namespace
