#include "cli/scene/scene_check.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "scene_places.h"
#include "support/scene_folder.h"

namespace {

using cli::Diagnostic;

struct Case {
    const char* name;
    std::string text;
    Places expected;
};

const Case kCases[] = {
    {"nothing to say", kScene, {}},
    {"everything ends at the end of the file", kScene + "NULL \"n\" { KEY 1 0 0 0 0 0 0 }", {}},

    // numbers
    {"frame rate with a fraction", kHead + "FPS 29.97 COMPOSITION NRM \"M\" { }\n", {"value-changed 3:12"}},
    {"only the last of a setting counts", kHead + "FPS 29.97 FPS 24 COMPOSITION NRM \"M\" { }\n", {}},
    {"lone minus sign keeps what was there",
     kHead + "FROM - COMPOSITION NRM \"M\" { }\n",
     {"value-changed 3:13"}},
    {"size beyond 32 bits",
     kHead + "RESOLUTION 9999999999 5 COMPOSITION NRM \"M\" { }\n",
     {"value-changed 3:19", "outside-host-range 3:19"}},
    {"frame of a key with a fraction, told once a block",
     kScene + "NULL \"n\" { KEY 1.5 0 0 0 0 0 0\n KEY 2.5 0 0 0 0 0 0 }",
     {"value-changed 4:16"}},
    {"position too large", kScene + "NULL \"n\" { KEY 1 1e99 0 0 0 0 0 }", {"value-changed 4:18"}},
    {"the same in two blocks",
     kScene + "NULL \"n\" { KEY 1 1.2.3 0 0 0 0 0 }\nNULL \"m\" { KEY 1 7E 0 0 0 0 0 }",
     {"value-changed 4:18", "value-changed 5:18"}},
    {"pixel aspect of more than hundredths",
     kHead + "ASPECT 1.0667 COMPOSITION NRM \"M\" { }\n",
     {"aspect-cut 3:15"}},
    {"pixel aspect in hundredths", kHead + "ASPECT 1.42 COMPOSITION NRM \"M\" { }\n", {}},
    {"hundredths that single precision falls short of",
     kHead + "ASPECT 0.53 COMPOSITION NRM \"M\" { }\n",
     {"aspect-cut 3:15"}},

    // names
    {"31 bytes are kept", kHead + "COMPOSITION NRM \"" + std::string(31, 'x') + "\" { }\n", {}},
    {"32 bytes are not", kHead + "COMPOSITION NRM \"" + std::string(32, 'x') + "\" { }\n", {"name-cut 3:24"}},
    {"UTF-8 is no mistake", kHead + "COMPOSITION NRM \"\u00E9toile\" { }\n", {}},
    {"bytes that are not UTF-8", kHead + "COMPOSITION NRM \"caf\xE9\" { }\n", {"name-not-utf8 3:24"}},
    {"name of an object", kScene + "NULL \"" + std::string(40, 'x') + "\" { }", {"name-cut 4:6"}},

    // range
    {"end before the beginning", kHead + "TO 0 COMPOSITION NRM \"M\" { }\n", {"range-reversed 3:8"}},
    {"composition shorter than its layers",
     kHead + "RANGE 7 COMPOSITION NRM \"M\" { }\n",
     {"layer-past-end 3:8"}},
    {"a length that could not be read is compared with nothing",
     "VORTAN XR COMPOSITION FROM 1 TO 8 RANGE abc",
     {}},
    {"nor is an end", "VORTAN XR COMPOSITION FROM 5 RANGE 8 TO abc", {}},
    {"nor is a beginning", "VORTAN XR COMPOSITION TO 8 RANGE 8 FROM abc", {}},
    {"local layers begin at FROM", kHead + "LOCAL COMPOSITION NRM \"M\" { }\n", {"layer-past-end 2:32"}},
    {"and may end with the composition", kHead + "LOCAL RANGE 9 COMPOSITION NRM \"M\" { }\n", {}},

    // lights
    {"kinds that the host has", kScene + "LIGHT \"l\" { TYPE OMNI SHADOW NONE TYPE SPOT TYPE PAR }", {}},
    {"parallel spot", kScene + "LIGHT \"l\" { TYPE PSPOT }", {"light-kind-changed 4:18"}},
    {"tube", kScene + "LIGHT \"l\" { TYPE TUBE }", {"light-kind-changed 4:18"}},
    {"area light and area shadow",
     kScene + "LIGHT \"l\" { TYPE AREA SHADOW AREA }",
     {"light-kind-changed 4:18", "shadow-kind-not-sent 4:30"}},
    {"soft shadow", kScene + "LIGHT \"l\" { SHADOW SOFT }", {"shadow-kind-not-sent 4:20"}},
    {"hard shadow, taken back", kScene + "LIGHT \"l\" { SHADOW HARD SHADOW NONE }", {}},
    {"cone angle", kScene + "LIGHT \"l\" { TYPE SPOT ANGLE 30 }", {"angle-not-sent 4:23"}},

    // keys
    {"first and last frame are inside", kScene + "NULL \"n\" { KEY 1 0 0 0 0 0 0 KEY 8 0 0 0 0 0 0 }", {}},
    {"one frame before and one after",
     kScene + "NULL \"n\" { KEY 0 0 0 0 0 0 0 KEY 9 0 0 0 0 0 0 }",
     {"key-outside-range 4:12"}},
    {"going back", kScene + "NULL \"n\" { KEY 3 0 0 0 0 0 0\nKEY 2 0 0 0 0 0 0 }", {"key-out-of-order 5:1"}},
    {"twice the same", kScene + "NULL \"n\" { KEY 3 0 0 0 0 0 0\nKEY 3 0 0 0 0 0 0 }", {"key-repeated 5:1"}},
    {"other objects have keys of their own",
     kScene + "NULL \"n\" { KEY 3 0 0 0 0 0 0 }\nNULL \"m\" { KEY 2 0 0 0 0 0 0 }",
     {}},
    {"field of view of nothing", kScene + "CAMERA \"c\" { KEY 1 0 0 0 0 0 0 0 }", {"field-of-view 4:14"}},
    {"field of view just above", kScene + "CAMERA \"c\" { KEY 1 0 0 0 0 0 0 .1 }", {}},
    {"field of view just below half a turn", kScene + "CAMERA \"c\" { KEY 1 0 0 0 0 0 0 179.9 }", {}},
    {"field of view of half a turn",
     kScene + "CAMERA \"c\" { KEY 1 0 0 0 0 0 0 180 }",
     {"field-of-view 4:14"}},
    {"negative field of view", kScene + "CAMERA \"c\" { KEY 1 0 0 0 0 0 0 -40 }", {"field-of-view 4:14"}},

    // words
    {"word that is no entry", kHead + "COMPOSITION NRM \"M\" {\n SOLO }\n", {"word-ignored 4:2"}},
    {"what stands where the brace would",
     kHead + "COMPOSITION NRM \"M\"\nFILE <-> PREMUL \"a.tif\"\n",
     {}},  // refused: the word FILE is taken for the brace
    {"text after the objects", kScene + "NULL \"n\" { }\nEND here\n", {"text-after-end 5:1"}},
    {"comment after the objects", kScene + "NULL \"n\" { }\n/ END\n", {}},
};

TEST(SceneCheck, Warnings) {
    for (const Case& one : kCases) {
        Places places = places_of(warnings_of(one.text));
        std::erase_if(places, [](const std::string& place) {
            return place.find("word-ignored 4:1") == 0 || place.find("keys-all-equal") == 0;
        });
        EXPECT_EQ(places, one.expected) << one.name;
    }
}

TEST(SceneCheck, TextsSayWhatWasWrittenAndWhatWasKept) {
    const std::vector<Diagnostic> fps = warnings_of(kHead + "FPS 29.97 COMPOSITION NRM \"M\" { }\n");
    ASSERT_EQ(fps.size(), 1U);
    EXPECT_EQ(fps[0].reason, "the number \"29.97\" after FPS is read as 29");
    EXPECT_EQ(*fps[0].source_line, "FPS 25 FPS 29.97 COMPOSITION NRM \"M\" { }");

    const std::vector<Diagnostic> aspect = warnings_of(kHead + "ASPECT 1.0667 COMPOSITION NRM \"M\" { }\n");
    ASSERT_EQ(aspect.size(), 1U);
    EXPECT_EQ(aspect[0].reason, "the pixel aspect 1.0667 becomes 106/100");
}

TEST(SceneCheck, KeysOfOneObjectAreReportedTogether) {
    std::string keys;
    for (int frame = 20; frame < 40; ++frame) {
        keys += "KEY " + std::to_string(frame) + ' ' + std::to_string(frame) + " 0 0 0 0 0\n";
    }
    const std::vector<Diagnostic> warnings = warnings_of(kScene + "NULL \"n\" {\n" + keys + "}");
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_EQ(warnings[0].count, 20);
    EXPECT_EQ(warnings[0].reason,
              "keys outside FROM 1 to TO 8: frames 20, 21, 22, 23, 24, 25, 26, 27 and 12 more");
    EXPECT_EQ(warnings[0].within, std::vector<std::string>{"null \"n\""});
}

TEST(SceneCheck, ManyOfOneKindAreCounted) {
    std::string lights;
    for (int i = 0; i < 60; ++i) {
        lights += "LIGHT \"l" + std::to_string(i) + "\" { ANGLE 3 }\n";
    }
    const std::vector<Diagnostic> warnings = warnings_of(kScene + lights);
    ASSERT_EQ(warnings.size(), static_cast<std::size_t>(cli::WarningList::kMostOfOneCode) + 1);
    EXPECT_EQ(warnings.back().count, 60 - cli::WarningList::kMostOfOneCode);
    EXPECT_EQ(*warnings.back().at.line, 4 + cli::WarningList::kMostOfOneCode);
}

TEST(SceneCheck, MissingFootageSaysWhereItWasSearchedFor) {
    const SceneFolder folder;
    const std::vector<Diagnostic> warnings =
        warnings_of(folder, kHead +
                                "COMPOSITION NRM \"M\" {\n FILE NRM PREMUL \"Disk:renders:a long name of "
                                "forty bytes in all.tif\"\n}\n");
    ASSERT_EQ(places_of(warnings), Places{"footage-missing 4:18"});
    EXPECT_EQ(warnings[0].reason,
              "the footage \"Disk:renders:a long name of forty bytes in all.tif\" does not exist");
    ASSERT_EQ(warnings[0].effects.size(), 2U);
    EXPECT_EQ(warnings[0].effects[0], "looked for as written, then as \"" +
                                          folder.files().path("a long name of forty bytes in all.tif") + '"');
    EXPECT_EQ(warnings[0].effects[1],
              "a placeholder \"a long name of forty bytes in a\" of 640x360 and 8 frames takes its place");
}

struct FootageCase {
    const char* name;
    std::string entry;
    Places expected;
};

TEST(SceneCheck, Footage) {
    const SceneFolder folder;
    folder.image("still.tga", true);
    folder.image("noise.tga", true);
    folder.files().write("notes.tif", "no picture");
    folder.files().write("notes.TXL", "no picture");
    folder.sequence("full", 17, 20, true);
    folder.sequence("holes", 1, 2, true);
    folder.sequence("holes", 5, 6, true);
    folder.image("one0007.tga", true);
    const FootageCase cases[] = {
        {"still beside the file", "FILE NRM PREMUL \"X:still.tga\"", {}},
        {"still by its own path", "FILE NRM PREMUL \"" + folder.files().path("still.tga") + "\"", {}},
        {"whole sequence", "FSEQ NRM PREMUL \"X:full0017.tga\"", {"sequence-short 4:17"}},
        {"sequence with a gap",
         "FSEQ NRM PREMUL \"X:holes0001.tga\"",
         {"sequence-gap 4:17", "sequence-short 4:17"}},
        {"one file of it is no sequence and has no gap", "FILE NRM PREMUL \"X:holes0001.tga\"", {}},
        {"sequence of one frame",
         "FSEQ NRM PREMUL \"X:one0007.tga\"",
         {"sequence-single-frame 4:17", "sequence-short 4:17", "sequence-offset 4:17"}},
        {"sequence without a number", "FSEQ NRM PREMUL \"X:still.tga\"", {"sequence-without-number 4:17"}},
        {"file that is no image", "FILE NRM PREMUL \"X:notes.tif\"", {"footage-unreadable 4:17"}},
        {"texture, which the bundle reads", "FILE NRM PREMUL \"" VXR_EXAMPLES_DIR "/textures/tiny.txl\"", {}},
        {"file with the extension of a texture",
         "FILE NRM PREMUL \"X:notes.TXL\"",
         {"footage-unreadable 4:17"}},
        {"file that is not there", "FILE NRM PREMUL \"X:gone.tga\"", {"footage-missing 4:17"}},
        {"number of a sequence that is not there",
         "FSEQ NRM PREMUL \"X:full0016.tga\"",
         {"footage-missing 4:17"}},
    };
    for (const FootageCase& one : cases) {
        const std::string text = kSmallHead + "COMPOSITION NRM \"M\" {\n" + one.entry + "\n}\n";
        EXPECT_EQ(places_of(warnings_of(folder, text)), one.expected) << one.name;
    }
}

TEST(SceneCheck, TopLevelFootage) {
    const std::string missing = kScene + "FILE <-> PREMUL \"X:gone.tga\"\n";
    EXPECT_EQ(places_of(warnings_of(missing)), Places{"footage-missing 4:17"});
    const std::string unread = kScene + "FILE <-> PREMUL \"\"\n";
    const std::vector<Diagnostic> warnings = warnings_of(unread);
    ASSERT_EQ(places_of(warnings), Places{"footage-path-unread 4:17"});
    EXPECT_EQ(warnings[0].effects[0], "a placeholder \"\" of 640x360 and 8 frames takes its place");
}

TEST(SceneCheck, RefusedFilesHaveTheWarningsUpToTheError) {
    EXPECT_EQ(places_of(warnings_of(kScene + "LIGHT \"l\" { ANGLE 3 }\nLIGHT \"m\" { ANGLE 3 COLOR x }")),
              (Places{"angle-not-sent 4:13", "angle-not-sent 5:13"}));
    // The field of view was not reached, so its 0 in the model is no reason to warn.
    EXPECT_EQ(places_of(warnings_of(kScene + "CAMERA \"c\" { KEY 9 0 0 0 0 0 0 x }")),
              Places{"key-outside-range 4:14"});
    EXPECT_EQ(places_of(warnings_of(kScene + "CAMERA \"c\" { KEY 9 0 0 0 0 0 0 0 x }")),
              (Places{"key-outside-range 4:14", "field-of-view 4:14"}));
}

TEST(SceneCheck, FootageIsFoundByItsPathInAnOlderEncoding) {
    const SceneFolder folder;
    folder.image("caf\u00E9.tga");
    const auto found = [&](const std::string& name) {
        return cli::scene_warnings(cli::read_scene(folder.scene(
            kSmallHead + "COMPOSITION NRM \"M\" {\nFILE NRM STRAIGHT \"C:\\" + name + "\"\n}\n")));
    };
    EXPECT_TRUE(found("caf\xE9.tga").empty()) << "Windows-1252";
    EXPECT_TRUE(found("caf\x8E.tga").empty()) << "Mac Roman";
    const auto missing = found("caf\xFF.tga");
    ASSERT_EQ(missing.size(), 1U);
    ASSERT_EQ(missing[0].effects.size(), 3U);
    EXPECT_EQ(missing[0].effects[1],
              "the path is not UTF-8; it was also read as Windows-1252 and as Mac Roman");
}

}  // namespace
