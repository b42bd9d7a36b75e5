// What a check says about footage: files as they lie in folders, real images, and what is nearby.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/footage/footage_survey.h"
#include "cli/scene/scene_check.h"
#include "image/image.h"
#include "support/child_process.h"
#include "support/made_texture.h"
#include "support/program_run.h"
#include "support/scene_folder.h"
#include "text/printable.h"
#include "texture/value/texture_file.h"

namespace {

namespace fs = std::filesystem;
using cli::Diagnostic;
using cli::FootageSurvey;

// The code and the reason of each warning, in their order.
struct Said {
    std::string code;
    std::string reason;

    friend bool operator==(const Said&, const Said&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Said& said) {
        return out << said.code << ": " << said.reason;
    }
};

std::string scene_text(const std::string& settings, const std::string& entry) {
    return "VORTAN XR COMPOSITION\nRESOLUTION 4 4 RANGE 200 FPS 25 " + settings +
           "\nCOMPOSITION NRM \"M\" {\n" + entry + "\n}\n";
}

std::vector<Diagnostic> warnings_of(const std::string& scene, bool read_pixels = false) {
    FootageSurvey survey(nullptr, read_pixels);
    return cli::scene_warnings(cli::read_scene(scene), survey);
}

std::vector<Said> said_of(const std::vector<Diagnostic>& warnings) {
    std::vector<Said> said;
    for (const Diagnostic& one : warnings) {
        said.push_back({one.code.name(), one.reason});
    }
    return said;
}

struct SequenceCase {
    const char* name;
    std::string settings;
    const char* first;  // the file that the scene names
    std::vector<Said> expected;
};

TEST(FootageCheck, NumbersAndLengthOfASequence) {
    const SceneFolder folder;
    folder.sequence("three", 17, 19);
    folder.sequence("eleven", 10, 20);
    folder.sequence("stray", 1, 8);
    folder.sequence("stray", 900, 901);
    folder.sequence("slate", 1, 1);
    folder.sequence("slate", 101, 108);
    folder.sequence("holes", 1, 2);
    folder.sequence("holes", 5, 6);
    const SequenceCase cases[] = {
        {"a file for each frame", "FROM 17 TO 19", "three0017", {}},
        {"a layer shorter than the sequence is covered", "FROM 17 TO 18", "three0017", {}},
        {"a layer is covered in a gap, too",
         "FROM 1 TO 6",
         "holes0001",
         {{"sequence-gap", "the sequence holes####.tga 1-6 has gaps: 3-4"}}},
        {"one frame too few",
         "FROM 17 TO 20",
         "three0017",
         {{"sequence-short", "the sequence three####.tga 17-19 has 3 frames, and its layer lasts 4"}}},
        {"files 17 to 19 and a layer of 50",
         "FROM 17 TO 66",
         "three0019",
         {{"sequence-short", "the sequence three####.tga 17-19 has 3 frames, and its layer lasts 50"}}},
        {"files 10 to 20 from frame 15",
         "FROM 15 TO 20",
         "eleven0015",
         {{"sequence-offset",
           "the sequence eleven####.tga begins with file 10, and the scene with frame 15"}}},
        {"files 10 to 20 from frame 5",
         "FROM 5 TO 15",
         "eleven0010",
         {{"sequence-offset",
           "the sequence eleven####.tga begins with file 10, and the scene with frame 5"}}},
        {"the place of the layer in the composition changes nothing",
         "FROM 15 TO 20 LOCAL",
         "eleven0010",
         {{"sequence-offset",
           "the sequence eleven####.tga begins with file 10, and the scene with frame 15"}}},
        {"files numbered in another way begin with the scene", "FROM 101 TO 111", "eleven0010", {}},
        {"files far behind the scene are stray",
         "FROM 1 TO 8",
         "stray0001",
         {{"sequence-gap", "the sequence stray####.tga 1-901 has gaps: 9-899"},
          {"sequence-stray",
           "the sequence stray####.tga takes in files that lie apart from the frames 1-8 of the scene: "
           "900-901"}}},
        {"a slate in front of the scene is stray and moves every frame",
         "FROM 101 TO 108",
         "slate0101",
         {{"sequence-gap", "the sequence slate####.tga 1-108 has gaps: 2-100"},
          {"sequence-offset", "the sequence slate####.tga begins with file 1, and the scene with frame 101"},
          {"sequence-stray",
           "the sequence slate####.tga takes in files that lie apart from the frames 101-108 of the scene: "
           "1"}}},
    };
    for (const SequenceCase& one : cases) {
        SCOPED_TRACE(one.name);
        const std::string text =
            scene_text(one.settings, std::string("FSEQ NRM STRAIGHT \"X:") + one.first + ".tga\"");
        std::vector<Said> said = said_of(warnings_of(folder.scene(text)));
        std::erase_if(said, [](const Said& s) { return s.code == "layer-past-end"; });
        EXPECT_EQ(said, one.expected);
    }
}

TEST(FootageCheck, EffectsOfNumbersSayWhichFileIsShownWhen) {
    const SceneFolder folder;
    folder.sequence("plate", 10, 20);
    const auto warnings =
        warnings_of(folder.scene(scene_text("FROM 15 TO 26", "FSEQ NRM STRAIGHT \"X:plate0010.tga\"")));
    ASSERT_EQ(warnings.size(), 2U);
    EXPECT_EQ(warnings[0].effects.front(), "the layer has no picture for its last 1 frame");
    EXPECT_EQ(warnings[1].effects.front(),
              "After Effects shows file 10 at frame 15, and so every file 5 frames late");
    const auto early =
        warnings_of(folder.scene(scene_text("FROM 9 TO 19", "FSEQ NRM STRAIGHT \"X:plate0010.tga\"")));
    ASSERT_EQ(early.size(), 1U);
    EXPECT_EQ(early[0].effects.front(),
              "After Effects shows file 10 at frame 9, and so every file 1 frame early");
}

TEST(FootageCheck, SequenceAtTheTopLevelHasNoLayerYet) {
    const SceneFolder folder;
    folder.sequence("pass", 10, 12);
    const std::string text =
        "VORTAN XR COMPOSITION\nRESOLUTION 4 4 FROM 11 TO 20 RANGE 10 FPS 25\nCOMPOSITION NRM \"M\" { }\n"
        "FSEQ <-> STRAIGHT \"X:pass0010.tga\"\n";
    const auto warnings = warnings_of(folder.scene(text));
    ASSERT_EQ(said_of(warnings),
              (std::vector<Said>{
                  {"sequence-short", "the sequence pass####.tga 10-12 has 3 frames, and the scene has 10"}}));
    EXPECT_EQ(warnings[0].effects.front(), "as a layer, it has no picture for the last 7 frames");
}

// The effects of the one warning about missing footage, as one text.
std::string hints_of(const std::string& scene) {
    const auto warnings = warnings_of(scene);
    std::string all;
    for (const Diagnostic& one : warnings) {
        if (std::string(one.code.name()) == "footage-missing") {
            for (const std::string& effect : one.effects) {
                all += effect + '\n';
            }
        }
    }
    return all;
}

struct NearCase {
    const char* name;
    std::string entry;
    std::string expected;  // the hint; empty for none
};

TEST(FootageCheck, MissingFootageThatIsNearby) {
    const SceneFolder folder;
    const auto make = [&](const std::string& name) {
        fs::create_directories(fs::path(folder.files().path(name)).parent_path());
        folder.image(name);
        return folder.files().path(name);
    };
    const std::string letters = make("Plate.TGA");
    const std::string utf8 = make("K\u00FCche.tga");
    const std::string frame = make("run0003.tga");
    const std::string below = make("plates/sky.tga");
    const std::string deep = make("a/b/c/sea.tga");
    make("one/twin.tga");
    make("two/twin.tga");
    const std::string scene = folder.files().path("shot.aec");
    const std::string relink = "vxr relink " + scene;
    const std::string search = relink + " --search " + folder.files().folder().string();
    const NearCase cases[] = {
        {"other letter case beside the scene", "FILE NRM STRAIGHT \"X:plate.tga\"",
         "it may be \"" + letters + "\": capital and small letters differ; to use it: " + relink +
             " --out-dir relinked"},
        {"the sequence without its named frame", "FSEQ NRM STRAIGHT \"X:run0001.tga\"",
         "it may be \"" + frame +
             "\": another frame of the sequence, which lacks the named one; to use it: " + relink +
             " --out-dir relinked"},
        {"no sequence, no other frame", "FILE NRM STRAIGHT \"X:run0001.tga\"", ""},
        {"one folder down", "FILE NRM STRAIGHT \"X:sky.tga\"",
         "it may be \"" + below + "\": the same name in another folder; to use it: " + search +
             " --out-dir relinked"},
        {"further down", "FILE NRM STRAIGHT \"X:sea.tga\"",
         "it may be \"" + deep + "\": the same name in another folder; to use it: " + search +
             " --out-dir relinked"},
        {"two that may be meant", "FILE NRM STRAIGHT \"X:twin.tga\"",
         "to use the newest of them: " + search + " --out-dir relinked --prefer newest"},
        {"nothing of the name", "FILE NRM STRAIGHT \"X:gone.tga\"", ""},
    };
    for (const NearCase& one : cases) {
        SCOPED_TRACE(one.name);
        const std::string hints = hints_of(folder.scene(scene_text("FROM 1 TO 1", one.entry)));
        EXPECT_NE(hints.find("takes its place"), std::string::npos) << hints;
        if (one.expected.empty()) {
            EXPECT_EQ(hints.find("it may be"), std::string::npos) << hints;
        } else {
            EXPECT_NE(hints.find(one.expected), std::string::npos) << hints;
        }
    }
    // "\x9F" is the letter in Mac Roman; in a folder, where the plug-in does not look for it.
    fs::rename(utf8, folder.files().path("a/K\u00FCche.tga"));
    const std::string roman = hints_of(folder.scene(scene_text("FROM 1 TO 1",
                                                               "FILE NRM STRAIGHT \"X:K\x9F"
                                                               "che.tga\"")));
    EXPECT_NE(roman.find("the same name once read as Mac Roman"), std::string::npos) << roman;
    const std::string windows = hints_of(folder.scene(scene_text("FROM 1 TO 1",
                                                                 "FILE NRM STRAIGHT \"X:K\xFC"
                                                                 "che.tga\"")));
    EXPECT_NE(windows.find("the same name once read as Windows-1252"), std::string::npos) << windows;
}

TEST(FootageCheck, CommandOfAHintWorksInAShellWhateverTheNamesAre) {
    const SceneFolder folder;
    const std::string odd = folder.files().path("it's $HOME \"here\"");
    fs::create_directories(odd + "/down");
    fs::copy(folder.image("sky.tga"), odd + "/down/sky.tga");
    fs::remove(folder.files().path("sky.tga"));
    folder.files().write("it's $HOME \"here\"/shot one.aec",
                         scene_text("FROM 1 TO 1", "FILE NRM STRAIGHT \"X:sky.tga\""));
    const std::string hints = hints_of(odd + "/shot one.aec");
    const std::string mark = "to use it: vxr ";
    const std::size_t at = hints.find(mark);
    ASSERT_NE(at, std::string::npos) << hints;
    const std::string command = hints.substr(at + mark.size(), hints.find('\n', at) - at - mark.size());
    const ProcessResult ran = run_process({"bash", "-c", "cd \"$1\" && \"$2\" " + command, "bash",
                                           folder.files().folder().string(), VXR_PROGRAM});
    EXPECT_EQ(ran.exit_code, 0) << ran.err;
    EXPECT_EQ(hints_of(folder.files().path("relinked/shot one.aec")), "")
        << "the new scene finds its picture";
}

TEST(FootageCheck, OneFolderIsReadOnceWhateverTheNumberOfScenesAndSequences) {
    const SceneFolder folder;
    std::string entries;
    for (const char* const name : {"a", "b", "c", "d"}) {
        folder.sequence(name, 1, 2);
        entries += std::string("FSEQ NRM STRAIGHT \"X:") + name + "0001.tga\"\n";
    }
    const std::string scene = folder.scene(scene_text("FROM 1 TO 2", entries));
    FootageSurvey survey;
    EXPECT_EQ(cli::scene_warnings(cli::read_scene(scene), survey).size(), 0U);
    EXPECT_EQ(survey.folders_read(), 1U);
    // What comes later, and would be a gap, is not seen: nothing was read again.
    folder.image("a0009.tga");
    EXPECT_EQ(cli::scene_warnings(cli::read_scene(scene), survey).size(), 0U);
    EXPECT_EQ(survey.folders_read(), 1U);
}

// A picture of one colour; alpha is nothing or one value.
Texture picture(std::int32_t width_px, std::int32_t height_px, int alphas, int alpha_value) {
    Texture texture = made_texture(width_px, height_px, Texture::kRgb, alphas);
    for (auto& alpha : texture.alphas) {
        for (std::size_t i = 0; i < alpha.values.size(); ++i) {
            alpha.values[i] = static_cast<std::uint8_t>(alpha_value);
        }
    }
    return texture;
}

TEST(FootageCheck, ImagesThatDoNotFit) {
    const SceneFolder folder;
    const auto make = [&](const char* name, const Texture& texture) {
        ASSERT_FALSE(image::write(folder.files().path(name), texture).error.has_value()) << name;
    };
    make("fits.png", picture(4, 4, 0, 0));
    make("small.tif", picture(2, 3, 0, 0));
    make("large.png", picture(8, 6, 0, 0));
    make("matte.png", made_texture(4, 4, Texture::kRgb, 1));
    make("nothing.png", picture(4, 4, 1, 0));
    make("solid.tif", picture(4, 4, 1, 255));
    make("mixed0001.png", picture(4, 4, 0, 0));
    make("mixed0002.png", picture(4, 4, 1, 9));
    make("grown0001.tif", picture(4, 4, 0, 0));
    make("grown0002.tif", picture(5, 4, 0, 0));
    make("torn0001.png", picture(4, 4, 0, 0));
    make("half.png", picture(4, 4, 1, 127));
    folder.files().write("torn0002.png", "no picture");

    const std::vector<Said> no_alpha{
        {"premul-without-alpha", "the entry says PREMUL, and the image has no alpha channel"}};
    const struct {
        const char* name;
        const char* entry;
        bool read_pixels;
        std::vector<Said> expected;
    } cases[] = {
        {"an image that fits", "FILE NRM STRAIGHT \"X:fits.png\"", true, {}},
        {"smaller than the composition",
         "FILE NRM STRAIGHT \"X:small.tif\"",
         false,
         {{"footage-size", "the footage has 2x3 pixels, and the composition 4x4"}}},
        {"larger than the composition",
         "FILE NRM STRAIGHT \"X:large.png\"",
         false,
         {{"footage-size", "the footage has 8x6 pixels, and the composition 4x4"}}},
        {"premultiplied without alpha", "FILE NRM PREMUL \"X:fits.png\"", false, no_alpha},
        {"premultiplied with alpha", "FILE NRM PREMUL \"X:matte.png\"", true, {}},
        {"alpha is not read unless asked", "FILE NRM PREMUL \"X:nothing.png\"", false, {}},
        {"alpha of nothing",
         "FILE NRM PREMUL \"X:nothing.png\"",
         true,
         {{"alpha-uniform", "the alpha channel is 0 everywhere"}}},
        {"alpha of everything",
         "FILE NRM STRAIGHT \"X:solid.tif\"",
         true,
         {{"alpha-uniform", "the alpha channel is 255 everywhere"}}},
        {"alpha that is the same everywhere and neither of them",
         "FILE NRM STRAIGHT \"X:half.png\"",
         true,
         {}},
        {"channels that change",
         "FSEQ NRM STRAIGHT \"X:mixed0001.png\"",
         false,
         {{"sequence-mixed",
           "the images of the sequence are of several kinds: \"mixed0002.png\" has 4 channels, and "
           "\"mixed0001.png\" has 3"}}},
        {"a size that changes",
         "FSEQ NRM STRAIGHT \"X:grown0001.tif\"",
         false,
         {{"sequence-mixed",
           "the images of the sequence are of several kinds: \"grown0002.tif\" has 5x4 pixels, and "
           "\"grown0001.tif\" has 4x4"}}},
        {"a torn frame",
         "FSEQ NRM STRAIGHT \"X:torn0001.png\"",
         false,
         {{"sequence-mixed",
           "the images of the sequence are of several kinds: \"torn0002.png\" is not a readable image"}}},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.name);
        const std::string settings =
            std::string(one.entry).starts_with("FSEQ") ? "FROM 1 TO 2" : "FROM 1 TO 1";
        const std::string scene = folder.scene(scene_text(settings, one.entry));
        EXPECT_EQ(said_of(warnings_of(scene, one.read_pixels)), one.expected);
    }
    const auto effect_of = [&](const char* name) {
        const std::string entry = std::string("FILE NRM STRAIGHT \"X:") + name + '"';
        const auto warnings = warnings_of(folder.scene(scene_text("FROM 1 TO 1", entry)));
        return warnings.size() == 1 ? warnings.front().effects.front() : std::string();
    };
    EXPECT_NE(effect_of("small.tif").find("it does not cover the composition"), std::string::npos);
    EXPECT_NE(effect_of("large.png").find("its edges are cut off"), std::string::npos);
}

TEST(FootageCheck, ATextureIsAStillAndHasNoLengthAsASequence) {
    const SceneFolder folder;
    const std::string texture = folder.files().path("skin0001.txl");
    ASSERT_FALSE(write_texture(texture, made_texture(4, 4, Texture::kRgb, 0)).has_value());
    const std::string scene = folder.scene(scene_text("FROM 1 TO 9", "FSEQ NRM STRAIGHT \"X:skin0001.txl\""));
    EXPECT_EQ(
        said_of(warnings_of(scene)),
        (std::vector<Said>{{"sequence-single-frame", "the sequence skin####.txl has one file, number 1"}}));
}

TEST(FootageCheck, FoldersFarBelowTheSceneAreNotSearched) {
    const SceneFolder folder;
    const auto hints_at_level = [&](int level) {
        std::string place = folder.files().folder().string() + "/level" + std::to_string(level);
        for (int i = 1; i < level; ++i) {
            place += "/down";
        }
        fs::create_directories(place);
        fs::copy(folder.image("sky.tga"), place + "/deep" + std::to_string(level) + ".tga");
        return hints_of(folder.scene(
            scene_text("FROM 1 TO 1", "FILE NRM STRAIGHT \"X:deep" + std::to_string(level) + ".tga\"")));
    };
    EXPECT_NE(hints_at_level(6).find("the same name in another folder"), std::string::npos);
    const std::string cut = hints_at_level(7);
    EXPECT_EQ(cut.find("it may be"), std::string::npos) << cut;
    EXPECT_NE(cut.find("there are too many files below the scene's folder"), std::string::npos) << cut;
}

TEST(FootageCheck, SomeFramesOfALongSequenceAreLookedAtAndAllWhenAsked) {
    const SceneFolder folder;
    folder.sequence("long", 1, 40);
    folder.image("long0002.tga", true);  // not among those that are looked at
    const std::string scene =
        folder.scene(scene_text("FROM 1 TO 40", "FSEQ NRM STRAIGHT \"X:long0001.tga\""));
    EXPECT_EQ(warnings_of(scene).size(), 0U);
    const auto all = warnings_of(scene, true);
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].effects.front(), "1 of the 40 images that were looked at differ");
    folder.image("long0040.tga", true);  // the last is
    const auto some = warnings_of(scene);
    ASSERT_EQ(some.size(), 1U);
    EXPECT_EQ(some[0].effects.front(),
              "1 of the 8 images that were looked at differ, of 40; --read-pixels looks at all of them");
}

}  // namespace
