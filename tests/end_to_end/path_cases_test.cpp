// Scenes, footage and textures with names of every kind, from the host to the file and back.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>

#include "end_to_end/texture_scene.h"
#include "support/loaded_bundle.h"
#include "support/scene_folder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct PathCase {
    const char* name;
    std::string folder;  ///< below a temporary folder
    std::string stem;    ///< of every file in it
};

std::string repeated(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

const PathCase kPathCases[] = {
    {"plain", "shots", "shot"},
    {"accents", "r\u00E9sum\u00E9s d'\u00E9t\u00E9", "na\u00EFve \u00FCber \u00E5ngstr\u00F6m"},
    {"accents_beside_their_letters", "cafe\u0301", "o\u0308l"},
    {"cyrillic", "\u0421\u044A\u0451\u043C\u043A\u0430", "\u043A\u0430\u0434\u0440"},
    {"japanese", "\u6620\u753B\u306E\u5834\u9762", "\u30AB\u30C3\u30C8\u4E00"},
    {"outside_the_basic_plane", "\U0001F3AC\U0001F39E\uFE0F", "\U00020BB7\U0001F469\u200D\U0001F3A4"},
    {"three_hundred_characters_deep", repeated("a folder of thirty characters/", 10), "shot"},
    {"three_hundred_japanese_characters_deep", repeated(repeated("\u5834", 59) + "/", 5), "\u5834"},
    {"three_hundred_emoji_deep", repeated(repeated("\U0001F3AC", 59) + "/", 5), "\U0001F3AC"},
    {"spaces", "  two before, two after  ", " a  b "},
#if defined(_WIN32)  // where no name may contain double quotes
    {"quotes", "'the' 'hero' `pot`", "it's 'here'"},
#else
    {"quotes", "\"the\" 'hero' `pot`", "it's \"here\""},
#endif
    {"a_trailing_dot", "takes.", "shot."},
#if !defined(_WIN32)  // where a folder named by full stops only can never be emptied
    {"dots_only_before", "...", "..shot"},
#endif
    {"no_letters", "100%", "#1 & (2) [3] {4} ~$!;=+,@^"},
    {"the_last_characters_of_each_length", "\u007F\u07FF\uFFFD", "\U0010FFFF"},
};

class Paths : public testing::TestWithParam<PathCase> {
  protected:
    Paths() { files_.make_folder(GetParam().folder); }

    [[nodiscard]] std::string name(const std::string& ending) const {
        return GetParam().folder + "/" + GetParam().stem + ending;
    }
    [[nodiscard]] std::string path(const std::string& ending) const { return files_.path(name(ending)); }
    std::string write(const std::string& ending, std::string_view bytes) const {
        return files_.write(name(ending), bytes);
    }

    /// A Targa image of one pixel.
    static std::string picture() {
        std::string bytes(18 + 3, '\0');
        bytes[2] = 2;
        bytes[12] = bytes[14] = 1;
        bytes[16] = 24;
        return bytes;
    }

  private:
    TemporaryFolder files_;
};

constexpr const char* kSettings = "VORTAN XR COMPOSITION RESOLUTION 64 48 FROM 0 TO 3 RANGE 4 FPS 25\n";

TEST_P(Paths, LeadToTheSceneAndToItsFootage) {
    const std::string plate = write(".tga", picture());
    const std::string card = write(" card.tga", picture());
    for (const char* frame : {" 0001.tga", " 0002.tga", " 0003.tga"}) {
        write(frame, picture());
    }
    ASSERT_FALSE(write_texture(path(".txl"), make_texture(7, 5, Texture::kRgb, 1)).has_value());
    const std::string scene =
        write(".aec", std::string(kSettings) + "COMPOSITION NRM \"Main\" {\n" + "FILE NRM STRAIGHT \"" +
                          plate + "\"\n" + "FSEQ NRM STRAIGHT \"C:\\elsewhere\\" + GetParam().stem +
                          " 0002.tga\"\n" + "FILE NRM PREMUL \"" + path(".txl") + "\"\n}\n" +
                          "FILE <-> STRAIGHT \"/elsewhere/" + GetParam().stem + " card.tga\"\n");
    LoadedBundle bundle;
    ASSERT_EQ(bundle.loaded().error, "");
    EXPECT_EQ(bundle.host().path_problem(scene), "");
    EXPECT_TRUE(bundle.host().verify(scene).importable);
    ASSERT_EQ(bundle.host().import_file(scene).code, 0);
    EXPECT_THAT(bundle.message_texts(), IsEmpty());

    const embedded::Project& project = bundle.host().project();
    ASSERT_EQ(project.footage.size(), 4U);
    EXPECT_EQ(project.footage[0].kind, embedded::FootageKind::file);
    EXPECT_EQ(project.footage[0].path, plate);
    EXPECT_EQ(project.footage[0].name, GetParam().stem + ".tga");
    EXPECT_EQ(project.footage[1].kind, embedded::FootageKind::sequence);
    EXPECT_EQ(project.footage[1].path, path(" 0002.tga"));
    EXPECT_EQ(project.footage[1].name, GetParam().stem + " [0001-0003].tga");
    EXPECT_EQ(project.footage[2].kind, embedded::FootageKind::module_file);
    EXPECT_EQ(project.footage[2].path, path(".txl"));
    EXPECT_EQ(project.footage[2].width, 7);
    EXPECT_EQ(project.in_spec(project.footage[2].in_spec).path, path(".txl"));
    EXPECT_EQ(project.footage[3].path, card);

    bundle.host().unload();
    EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
}

TEST_P(Paths, LeadToATextureThatIsDrawn) {
    const Texture texture = make_texture(7, 5, Texture::kRgb, 1);
    ASSERT_FALSE(write_texture(path(".txl"), texture).has_value());
    LoadedBundle bundle;
    const embedded::OpenResult opened = bundle.host().open_with_module(path(".txl"));
    ASSERT_EQ(opened.error, "");
    const embedded::DrawResult drawn = bundle.host().draw(opened.in_spec, {7, 5, 0, 0, 0, {0, 1}, 0});
    ASSERT_EQ(drawn.pixels.size(), 35U);
    for (std::int32_t y = 0; y < 5; ++y) {
        for (std::int32_t x = 0; x < 7; ++x) {
            const PF_Pixel& pixel =
                drawn.pixels[7 * static_cast<std::size_t>(y) + static_cast<std::size_t>(x)];
            const PF_Pixel expected = frame_pixel(texture, x, y);
            EXPECT_EQ(pixel.red, expected.red);
            EXPECT_EQ(pixel.alpha, expected.alpha);
        }
    }
    EXPECT_EQ(bundle.host().dispose(opened.in_spec).code, 0);
    EXPECT_THAT(bundle.message_texts(), IsEmpty());
    EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
}

INSTANTIATE_TEST_SUITE_P(Of, Paths, testing::ValuesIn(kPathCases),
                         [](const auto& path) { return std::string(path.param.name); });

TEST(PathCases, AreAsDeepAsTheySay) {
    const auto begins_character = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
    };
    for (const PathCase& path : kPathCases) {
        if (!std::string(path.name).starts_with("three_hundred")) {
            continue;
        }
        EXPECT_GE(std::count_if(path.folder.begin(), path.folder.end(), begins_character), 300) << path.name;
    }
}

// --- names that are not UTF-8: Linux accepts any bytes, and current hosts cannot express them

const char* const kLatin1 = "caf\xE9";

#if !defined(_WIN32)  // where every name is Unicode
TEST(NamesThatAreNotUtf8, AreForClassicHostsOnly) {
    const SceneFolder folder;
    const std::string scene = folder.files().write(std::string(kLatin1) + ".aec",
                                                   std::string(kSettings) + "COMPOSITION NRM \"Main\" { } ");
    const std::string texture = folder.files().path(std::string(kLatin1) + ".txl");
    ASSERT_FALSE(write_texture(texture, make_texture(4, 4, Texture::kRgb, 0)).has_value());
    LoadedBundle bundle;
    bundle.take_calls();
    const auto verified = bundle.host().verify(scene);
    const auto imported = bundle.host().import_file(scene);
    const auto opened = bundle.host().open_with_module(texture);
    if (tests_today()) {
        const std::size_t offset = scene.find('\xE9');
        EXPECT_EQ(bundle.host().path_problem(scene),
                  "the path is not UTF-8 (byte 0xE9 at offset " + std::to_string(offset) +
                      "), and current hosts take paths in Unicode; only a classic host can take it");
        EXPECT_FALSE(verified.importable);
        EXPECT_EQ(verified.callback.code, kHostErrorParameter);
        EXPECT_EQ(imported.code, kHostErrorParameter);
        EXPECT_EQ(opened.callback.code, kHostErrorParameter);
        EXPECT_EQ(opened.error, bundle.host().path_problem(texture));
        EXPECT_THAT(bundle.take_calls(), IsEmpty()) << "the bundle is not called";
        EXPECT_THAT(bundle.host().project().compositions, IsEmpty());
    } else {
        EXPECT_EQ(bundle.host().path_problem(scene), "");
        EXPECT_TRUE(verified.importable);
        EXPECT_EQ(imported.code, 0);
        EXPECT_EQ(opened.error, "");
        EXPECT_EQ(bundle.host().project().compositions.size(), 1U);
    }
    EXPECT_THAT(bundle.message_texts(), IsEmpty());
    bundle.host().unload();
    EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
}

TEST(NamesThatAreNotUtf8, OfFootageEndTheImportInCurrentHostsWithAMessage) {
    const SceneFolder folder;
    const std::string picture = folder.image(std::string(kLatin1) + ".tga");
    const std::string scene = folder.scene(std::string(kSettings) + "COMPOSITION NRM \"Main\" {\n" +
                                           "FILE NRM STRAIGHT \"C:\\" + kLatin1 + ".tga\"\n}\n");
    LoadedBundle bundle;
    const auto imported = bundle.host().import_file(scene);
    if (tests_today()) {
        EXPECT_EQ(imported.code, kHostErrorParameter);
        const std::string before = (folder.files().folder() / "caf").string();
        EXPECT_THAT(
            bundle.message_texts(),
            ElementsAre("A path cannot be given to the host: it is not valid UTF-8 (byte E9 behind \"" +
                            before.substr(before.size() - std::min<std::size_t>(before.size(), 60)) +
                            "\"), and no file has this name read as Windows-1252 or as Mac Roman.",
                        "Unable to create composition.", "There was an error loading the file in line 6."));
        EXPECT_THAT(bundle.host().project().footage, IsEmpty());
        ASSERT_EQ(bundle.host().project().undo_steps.size(), 1U);
        EXPECT_TRUE(bundle.host().project().undo_steps[0].closed);
    } else {
        EXPECT_EQ(imported.code, 0);
        EXPECT_THAT(bundle.message_texts(), IsEmpty());
        ASSERT_EQ(bundle.host().project().footage.size(), 1U);
        EXPECT_EQ(bundle.host().project().footage[0].path, picture);
    }
    bundle.host().unload();
    EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
}
#endif

// Missing footage becomes a placeholder, whose item is then named in Unicode.
TEST(NamesThatAreNotUtf8, OfMissingFootageArePlaceholdersEverywhere) {
    const SceneFolder folder;
    LoadedBundle bundle;
    EXPECT_EQ(bundle.host()
                  .import_file(folder.scene(std::string(kSettings) + "COMPOSITION NRM \"Main\" {\n" +
                                            "FILE NRM STRAIGHT \"C:\\" + kLatin1 + ".tga\"\n}\n"))
                  .code,
              0);
    ASSERT_EQ(bundle.host().project().footage.size(), 1U);
    EXPECT_EQ(bundle.host().project().footage[0].kind, embedded::FootageKind::placeholder);
    EXPECT_EQ(bundle.host().project().footage[0].name, std::string(kLatin1) + ".tga");
    EXPECT_EQ(bundle.host().project().items.back().name,
              tests_today() ? "caf\u00E9.tga" : std::string(kLatin1) + ".tga");
    EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();
}

}  // namespace
