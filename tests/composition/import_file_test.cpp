#include "composition/build/import_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "composition/expected_calls.h"
#include "composition/read/read_observer.h"
#include "composition/refused_memory.h"
#include "host/plugin_globals.h"
#include "support/recording_host.h"
#include "support/temporary_folder.h"

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

const std::string kHeader = "VORTAN XR COMPOSITION\n";
const std::string kSettings = "RESOLUTION 720 576 FROM 0 TO 99 RANGE 100 FPS 25\n";
const std::string kRoot = "COMPOSITION NRM \"Main\" {\n}\n";
const std::string kEmptyScene = kHeader + kSettings + kRoot;

class ImportFileTest : public ::testing::Test {
  protected:
    ImportFileTest() { host_.alpha_preference = 1; }

    A_Err import_path(const std::string& path) {
        return ImportFile(path.c_str(), nullptr, kSpecialActionNone, nullptr, nullptr);
    }
    A_Err import(const std::string& text) { return import_path(folder_.write("shot.aec", text)); }

    /// A complete file with an empty root composition.
    A_Err import_scene(const std::string& settings, const std::string& objects) {
        return import(kHeader + settings + kRoot + objects);
    }

    RecordingHost host_;
    TemporaryFolder folder_;
};

std::string loading_error(int line) {
    return "There was an error loading the file in line " + std::to_string(line) + ".";
}

// The calls at the beginning and end of every import into a host whose alpha preference is 1.
const std::vector<std::string> kBefore = {
    "GetApplicationBlob() -> blob",
    "DoesKeyExist(blob, \"Main Pref Section\", \"Pref_DEFAULT_UNLABELED_ALPHA\")",
    "GetData(blob, \"Main Pref Section\", \"Pref_DEFAULT_UNLABELED_ALPHA\", 1, default 0)",
    "SetData(blob, \"Main Pref Section\", \"Pref_DEFAULT_UNLABELED_ALPHA\", 1, 3)",
};
const std::string kAfter = "SetData(blob, \"Main Pref Section\", \"Pref_DEFAULT_UNLABELED_ALPHA\", 1, 1)";
const std::vector<std::string> kRootCalls = {
    "StartUndoGroup(\"Import media\")",
    "GetProjectByIndex(0) -> project",
    "GetProjectRootFolder(project) -> root",
    "CreateNewFolder(\"Main\", root) -> folder1",
    "CreateComp(folder1, \"Main\", 720, 576, 100/100, 100@25, 2500/100) -> comp1",
    "GetItemFromComp(comp1) -> item(comp1)",
};

/// kBefore, kRootCalls, `middle`, and the end of an undo group and an import.
std::vector<std::string> whole_import(const std::vector<std::string>& middle) {
    std::vector<std::string> calls = kBefore;
    calls.insert(calls.end(), kRootCalls.begin(), kRootCalls.end());
    calls.insert(calls.end(), middle.begin(), middle.end());
    calls.emplace_back("EndUndoGroup()");
    calls.push_back(kAfter);
    return calls;
}

// ---- files that are not read

TEST_F(ImportFileTest, UnopenableFileGivesResult3WithoutAnySuite) {
    const std::string cases[] = {folder_.path("missing.aec"), folder_.write("empty.aec", ""),
                                 folder_.folder().string(), ""};
    for (const std::string& path : cases) {
        EXPECT_EQ(import_path(path), 3) << path;
        EXPECT_THAT(host_.traffic, IsEmpty()) << path;
    }
}

TEST_F(ImportFileTest, GrammarFailureIsSilentAndRestoresThePreference) {
    const struct {
        const char* why;
        std::string text;
    } cases[] = {
        {"a misspelt keyword in the settings", kHeader + "RESOLUTON 720 576\n" + kSettings + kRoot},
        {"no header", "something else\n"},
        {"no frame rate", kHeader + "RESOLUTION 1 1 FROM 0 TO 0 RANGE 1\n" + kRoot},
        {"a root without its name", kHeader + kSettings + "COMPOSITION NRM {\n}\n"},
        {"a block that never ends", kHeader + kSettings + "COMPOSITION NRM \"Main\" {\n"},
        {"a misspelt scene object", kEmptyScene + "CAMRA \"c\" {\n}\n"},
        {"a scene object that ends too early", kEmptyScene + "CAMERA \"c\" {\nKEY 0 0 0 0 0 0 0\n}\n"},
    };
    for (const auto& c : cases) {
        host_.calls.clear();
        EXPECT_EQ(import(c.text), 0) << c.why;
        EXPECT_THAT(host_.calls, ElementsAre(kBefore[0], kBefore[1], kBefore[2], kBefore[3], kAfter))
            << c.why;
        EXPECT_EQ(host_.alpha_preference, 1) << c.why;
        EXPECT_THAT(host_.left_open(), IsEmpty()) << c.why;
    }
}

// ---- what is built

TEST_F(ImportFileTest, EmptySceneIsOneEmptyComposition) {
    EXPECT_EQ(import(kEmptyScene), 0);
    EXPECT_EQ(host_.calls, whole_import({}));
    EXPECT_THAT(host_.reports, IsEmpty());
    EXPECT_EQ(host_.alpha_preference, 1);
    EXPECT_THAT(host_.left_open(), IsEmpty());
}

TEST_F(ImportFileTest, SuitesAreAcquiredOnFirstUseAndReleasedAtTheEnd) {
    EXPECT_EQ(import(kEmptyScene), 0);
    const std::vector<std::string> expected = {
        "acquire AEGP Persistent Data Suite 1",
        kBefore[0],
        kBefore[1],
        kBefore[2],
        kBefore[3],
        "acquire PF AE Adv App Suite 1",
        "release PF AE Adv App Suite 1",
        "acquire AEGP Utility Suite 7",
        kRootCalls[0],
        "acquire AEGP Proj Suite 5",
        kRootCalls[1],
        kRootCalls[2],
        "acquire AEGP Item Suite 10",
        kRootCalls[3],
        "acquire AEGP Comp Suite 9",
        kRootCalls[4],
        kRootCalls[5],
        "EndUndoGroup()",
        kAfter,
        "release AEGP Comp Suite 9",
        "release AEGP Proj Suite 5",
        "release AEGP Item Suite 10",
        "release AEGP Utility Suite 7",
    };
    EXPECT_EQ(host_.traffic, expected);
}

TEST_F(ImportFileTest, TopLevelFootageGoesToAFolderOfItsOwn) {
    const std::string image = folder_.write("depth.tif", "x");
    const std::string frames = folder_.write("objectbuffer0000.tif", "x");
    const std::string missing = folder_.path("gone0000.tif");
    EXPECT_EQ(import(kEmptyScene + "FILE <-> STRAIGHT \"" + image + "\"\nFSEQ <-> PREMUL \"" + frames +
                     "\"\nFSEQ <-> PREMUL \"" + missing + "\"\n"),
              0);
    EXPECT_EQ(host_.calls, whole_import({
                               "CreateNewFolder(\"Special Passes\", root) -> folder2",
                               "NewFootage(7, \"" + image + "\", null, null, 0, null) -> footage1",
                               "AddFootageToProject(footage1, folder2) -> item(footage1)",
                               "GetFootageInterpretation(item(footage1), 0)",
                               set_interpretation("item(footage1)", {0, 100, 0, 0}),
                               "NewFootage(7, \"" + frames + "\", null, {1, 0, -1, -1}, 0, null) -> footage2",
                               "AddFootageToProject(footage2, folder2) -> item(footage2)",
                               "GetFootageInterpretation(item(footage2), 0)",
                               set_interpretation("item(footage2)", {1, 100, 25, 1}),
                               "NewPlaceholderFootage(7, \"gone0000.tif\", 720, 576, 100@25) -> placeholder1",
                               "AddFootageToProject(placeholder1, folder2) -> item(placeholder1)",
                               "GetFootageInterpretation(item(placeholder1), 0)",
                               set_interpretation("item(placeholder1)", {1, 100, 25, 1}),
                           }));
}

TEST_F(ImportFileTest, TopLevelPlaceholderNamesAreTruncatedTo31Characters) {
    const std::string forty(40, 'n');
    EXPECT_EQ(import(kEmptyScene + "FILE <-> STRAIGHT \"/missing/" + forty + "\"\n"), 0);
    EXPECT_THAT(host_.calls, Contains("NewPlaceholderFootage(7, \"" + forty.substr(0, 31) +
                                      "\", 720, 576, 100@25) -> placeholder1"));
}

TEST_F(ImportFileTest, TopLevelEntryWithoutAPathIsANamelessPlaceholder) {
    EXPECT_EQ(import(kEmptyScene + "FILE <-> STRAIGHT \"\"\n"), 0);
    EXPECT_THAT(host_.calls, Contains("NewPlaceholderFootage(7, \"\", 720, 576, 100@25) -> placeholder1"));
}

const std::string kObjects =
    "CAMERA \"Cam\" {\nKEY 0 0 0 0 0 0 0 40\n}\n"
    "LIGHT \"Lamp\" {\n}\n"
    "NULL \"Target\" {\n}\n";

TEST_F(ImportFileTest, SceneObjectsAreLayersOfTheRootNewestFirst) {
    const std::string square[] = {kSettings, "ASPECT 1.0\n" + kSettings};
    for (const std::string& settings : square) {
        RecordingHost host;
        EXPECT_EQ(import_scene(settings, kObjects), 0);
        EXPECT_THAT(
            host.calls_of({"CreateComp", "CreateCameraInComp", "CreateLightInComp", "CreateNullInComp"}),
            ElementsAre("CreateComp(folder1, \"Main\", 720, 576, 100/100, 100@25, 2500/100) -> comp1",
                        "CreateNullInComp(\"Target\", comp1, null) -> null1",
                        "CreateLightInComp(\"Lamp\", (360, 288), comp1) -> light1",
                        "CreateCameraInComp(\"Cam\", (360, 288), comp1) -> camera1"));
        EXPECT_THAT(host.calls_of({"SetLayerInPointAndDuration"}),
                    ElementsAre("SetLayerInPointAndDuration(null1, 0, 0@25, 100@25)",
                                "SetLayerInPointAndDuration(light1, 0, 0@25, 100@25)",
                                "SetLayerInPointAndDuration(camera1, 0, 0@25, 100@25)"));
        EXPECT_THAT(host.reports, IsEmpty());
        EXPECT_THAT(host.left_open(), IsEmpty());
    }
}

TEST_F(ImportFileTest, NonSquarePixelsGiveTheSceneACompositionOfItsOwn) {
    EXPECT_EQ(import(kHeader + "ASPECT 1.0667\nLOCAL\n" + kSettings + kRoot + "NULL \"Target\" {\n}\n"), 0);
    const auto begin = std::find_if(host_.calls.begin(), host_.calls.end(), [](const std::string& call) {
        return call.starts_with("GetItemFromComp(comp1");
    });
    ASSERT_NE(begin, host_.calls.end());
    const std::vector<std::string> scene(begin + 1, begin + 13);
    EXPECT_THAT(
        scene,
        ElementsAre("CreateComp(folder1, \"Camera+Light\", 720, 576, 106/100, 100@25, 2500/100) -> comp2",
                    "GetItemFromComp(comp2) -> item(comp2)", "GetCompFromItem(item(comp1)) -> comp1",
                    "IsAddLayerValid(item(comp2), comp1)", "AddLayer(item(comp2), comp1) -> layer1",
                    "GetNewLayerStream(7, layer1, 2) -> layer1/scale",
                    "SetStreamValue(7, layer1/scale, [100, 106.66999816894531])",
                    "DisposeStream(layer1/scale)", "CreateNullInComp(\"Target\", comp2, null) -> null1",
                    "SetLayerFlag(null1, 2048, 1)", "SetLayerOffset(null1, 0@25)",
                    "SetLayerInPointAndDuration(null1, 0, 0@25, 100@25)"));
    EXPECT_THAT(host_.left_open(), IsEmpty());
}

TEST_F(ImportFileTest, WithoutSceneObjectsThereIsNoCompositionForThem) {
    EXPECT_EQ(import(kHeader + "ASPECT 1.0667\n" + kSettings + kRoot), 0);
    EXPECT_EQ(host_.calls_of({"CreateComp"}).size(), 1U);
    EXPECT_EQ(host_.calls_of({"CreateNewFolder"}).size(), 1U)
        << "and no folder for footage that there is not";
}

TEST_F(ImportFileTest, OlderHostsReadSceneObjectsButBuildNone) {
    version55 = false;
    EXPECT_EQ(import(kHeader + "ASPECT 1.0667\n" + kSettings + kRoot + kObjects), 0);
    EXPECT_EQ(host_.calls_of({"CreateComp"}).size(), 1U);
    EXPECT_THAT(host_.calls_of({"CreateCameraInComp", "CreateLightInComp", "CreateNullInComp"}), IsEmpty());

    host_.calls.clear();
    EXPECT_EQ(import(kEmptyScene + "NULL \"n\" {\nCOLOR 1 1 1\n}\n"), 0);
    EXPECT_THAT(host_.calls_of({"CreateComp"}), IsEmpty()) << "they must be valid all the same";
}

TEST_F(ImportFileTest, TimesAreSetUnlessTheRangeIsFrame0Alone) {
    const struct {
        const char* settings;
        std::size_t timings;
    } cases[] = {
        {"RESOLUTION 8 8 RANGE 1 FPS 25 FROM 0 TO 0\n", 0},
        {"RESOLUTION 8 8 RANGE 1 FPS 25 FROM 0 TO 1\n", 1},
        {"RESOLUTION 8 8 RANGE 1 FPS 25 FROM 1 TO 0\n", 1},
        {"RESOLUTION 8 8 RANGE 1 FPS 25 FROM 1 TO 1\n", 1},
    };
    for (const auto& c : cases) {
        RecordingHost host;
        EXPECT_EQ(import_scene(c.settings, "NULL \"n\" {\n}\n"), 0);
        EXPECT_EQ(host.calls_of({"SetLayerOffset"}).size(), c.timings) << c.settings;
    }
}

TEST_F(ImportFileTest, LocalLayersAndObjectsStartAtTheFirstFrame) {
    EXPECT_EQ(
        import(kHeader + "RESOLUTION 8 8 FROM 17 TO 20 RANGE 4 FPS 25 LOCAL\n" +
               "COMPOSITION NRM \"Main\" {\nFILE NRM STRAIGHT \"/missing/a.tif\"\n}\n" + "NULL \"n\" {\n}\n"),
        0);
    EXPECT_THAT(host_.calls_of({"SetLayerOffset"}),
                ElementsAre("SetLayerOffset(layer1, 17@25)", "SetLayerOffset(null1, 17@25)"));
}

// ---- the preference

TEST_F(ImportFileTest, HostWithoutThePreferenceIsUnchanged) {
    host_.alpha_preference.reset();
    EXPECT_EQ(import(kEmptyScene), 0);
    EXPECT_THAT(host_.calls_of({"GetData", "SetData"}), IsEmpty());
    EXPECT_THAT(host_.calls, Contains(StartsWith("CreateComp(")));
}

TEST_F(ImportFileTest, HostWithoutABlobIsUnchanged) {
    host_.yield_nothing("GetApplicationBlob");
    EXPECT_EQ(import(kEmptyScene), 0);
    EXPECT_THAT(host_.calls_of({"DoesKeyExist", "GetData", "SetData"}), IsEmpty());
    EXPECT_THAT(host_.calls, Contains(StartsWith("CreateComp(")));
}

TEST_F(ImportFileTest, PreferenceIs3WhileBuildingWhateverItWas) {
    for (const A_u_char before : {A_u_char{0}, A_u_char{3}, A_u_char{255}}) {
        host_.alpha_preference = before;
        host_.calls.clear();
        EXPECT_EQ(import(kEmptyScene), 0);
        EXPECT_EQ(host_.alpha_preference, before);
        EXPECT_EQ(host_.calls_of({"SetData"}).front(), kBefore[3]);
    }
}

TEST_F(ImportFileTest, FailingPreferenceCallLeavesItUnchangedAndTheImportContinues) {
    for (const char* function : {"GetApplicationBlob", "DoesKeyExist", "GetData", "SetData"}) {
        RecordingHost host;
        host.alpha_preference = 1;
        host.fail(function, 5);
        EXPECT_EQ(import(kEmptyScene), 0) << function;
        EXPECT_EQ(host.alpha_preference, 1) << function;
        EXPECT_THAT(host.calls, Not(Contains(kAfter)))
            << function << ": nothing was changed, nothing is put back";
        EXPECT_THAT(host.calls, Contains(StartsWith("CreateComp("))) << function;
        EXPECT_THAT(host.reports, IsEmpty()) << function;
    }
}

// ---- the presence test

TEST_F(ImportFileTest, WithoutTheAdvAppSuiteTheImportEndsWithTheHostsError) {
    host_.withhold_suite("PF AE Adv App Suite", 1);
    // Counted from 1: four line ends, and the end of the file counts the last one again.
    EXPECT_EQ(import(kEmptyScene), 13);
    EXPECT_THAT(host_.reports, ElementsAre(loading_error(6)));
    EXPECT_THAT(host_.calls_of({"StartUndoGroup", "EndUndoGroup", "CreateNewFolder"}), IsEmpty());
    EXPECT_THAT(host_.calls[host_.calls.size() - 2], kAfter) << "the message comes last";
    EXPECT_THAT(host_.left_open(), IsEmpty());
}

TEST_F(ImportFileTest, NullAdvAppSuiteEndsTheImportSilently) {
    host_.withhold_suite("PF AE Adv App Suite", 1, kHostErrorNone);
    EXPECT_EQ(import(kEmptyScene), 0);
    EXPECT_THAT(host_.reports, IsEmpty());
    EXPECT_THAT(host_.calls_of({"StartUndoGroup", "CreateNewFolder"}), IsEmpty());
    EXPECT_THAT(host_.traffic, Not(Contains("release PF AE Adv App Suite 1")))
        << "what was not lent is not given back";
    EXPECT_EQ(host_.alpha_preference, 1);
}

TEST_F(ImportFileTest, UnreleasableAdvAppSuiteEndsTheImportWithItsError) {
    host_.release_result = 21;
    EXPECT_EQ(import(kEmptyScene), 21);
    EXPECT_THAT(host_.reports, ElementsAre(loading_error(6)));
    EXPECT_THAT(host_.calls_of({"StartUndoGroup", "CreateNewFolder"}), IsEmpty());
}

// ---- failures while building

TEST_F(ImportFileTest, MessageNamesTheLineWhereReadingStopped) {
    const struct {
        const char* why;
        std::string text;
        int line;
    } cases[] = {
        {"four line ends, the last counted twice", kEmptyScene, 6},
        {"blank lines at the end", kEmptyScene + "\n\n", 8},
        {"after the scene objects only one word is read, with the character after it",
         kEmptyScene + "NULL \"n\" {\n} done\nmore\nmore\n", 7},
        {"an operator reads no character after it", kEmptyScene + "NULL \"n\" {\n} }\nmore\nmore\n", 6},
    };
    for (const auto& c : cases) {
        RecordingHost host;
        host.fail("GetProjectByIndex", 77);
        EXPECT_EQ(import(c.text), 77);
        EXPECT_THAT(host.reports, ElementsAre(loading_error(c.line))) << c.why;
    }
}

TEST_F(ImportFileTest, WithoutAnUndoGroupNothingIsBuiltOrClosed) {
    host_.fail("StartUndoGroup", 8);
    EXPECT_EQ(import(kEmptyScene), 8);
    EXPECT_THAT(host_.reports, ElementsAre(loading_error(6)));
    EXPECT_THAT(host_.calls_of({"EndUndoGroup", "GetProjectByIndex"}), IsEmpty());
    EXPECT_EQ(host_.alpha_preference, 1);
}

TEST_F(ImportFileTest, FailuresToCloseOrRestoreAreIgnored) {
    host_.fail("EndUndoGroup", 8);
    EXPECT_EQ(import(kEmptyScene), 0);
    EXPECT_EQ(host_.alpha_preference, 1) << "and the preference is put back all the same";
    host_.fail("SetData", 8, 4);
    EXPECT_EQ(import(kEmptyScene), 0);
    EXPECT_THAT(host_.reports, IsEmpty());
}

TEST_F(ImportFileTest, FailureToReportIsIgnored) {
    host_.fail("GetProjectByIndex", 77);
    host_.fail("ReportInfo", 8);
    EXPECT_EQ(import(kEmptyScene), 77);
}

TEST_F(ImportFileTest, FailedCompositionIsReportedByItsBuilderFirst) {
    host_.fail("CreateComp", 77);
    EXPECT_EQ(import(kEmptyScene), 77);
    EXPECT_THAT(host_.reports, ElementsAre("Unable to create composition.", loading_error(6)));
    EXPECT_THAT(std::vector<std::string>(host_.calls.end() - 4, host_.calls.end()),
                ElementsAre("ReportInfo(7, \"Unable to create composition.\")", "EndUndoGroup()", kAfter,
                            "ReportInfo(7, \"" + loading_error(6) + "\")"));
}

TEST_F(ImportFileTest, SuccessWithoutAHandleIsHostError1) {
    const std::string text = kHeader + "ASPECT 0.5\n" + kSettings + kRoot +
                             "FILE <-> STRAIGHT \"/missing/a.tif\"\nNULL \"n\" {\n}\n";
    const struct {
        const char* function;
        int nth;
    } cases[] = {
        {"GetProjectByIndex", 1},     {"GetProjectRootFolder", 1}, {"CreateNewFolder", 2},
        {"NewPlaceholderFootage", 1}, {"AddFootageToProject", 1},  {"CreateComp", 2},
        {"GetItemFromComp", 2},       {"GetCompFromItem", 1},      {"AddLayer", 1},
    };
    for (const auto& c : cases) {
        RecordingHost host;
        host.yield_nothing(c.function, c.nth);
        EXPECT_EQ(import(text), 1) << c.function;
        EXPECT_EQ(host.reports.size(), 1U) << c.function;
        EXPECT_THAT(host.left_open(), IsEmpty()) << c.function;
    }
}

TEST_F(ImportFileTest, EmptyScaleStreamIsIgnored) {
    host_.yield_nothing("GetNewLayerStream", 1);
    EXPECT_EQ(import(kHeader + "ASPECT 0.5\n" + kSettings + kRoot + "NULL \"n\" {\n}\n"), 0);
    EXPECT_THAT(host_.calls_of({"SetStreamValue"}), IsEmpty());
    EXPECT_THAT(host_.calls_of({"CreateNullInComp"}),
                ElementsAre("CreateNullInComp(\"n\", comp2, null) -> null1"));
}

TEST_F(ImportFileTest, ScaleThatCannotBeSetIsDisposedOfBeforeTheErrorEndsTheBuild) {
    host_.fail("SetStreamValue", 5);
    EXPECT_EQ(import(kHeader + "ASPECT 0.5\n" + kSettings + kRoot + "NULL \"n\" {\n}\n"), 5);
    EXPECT_THAT(host_.calls_of({"DisposeStream", "EndUndoGroup"}),
                ElementsAre("DisposeStream(layer1/scale)", "EndUndoGroup()"));
    EXPECT_THAT(host_.reports, ElementsAre(loading_error(9)));
}

TEST_F(ImportFileTest, FirstObjectThatCannotBeAddedEndsTheLoopWithoutFailure) {
    host_.fail("CreateLightInComp", 5);
    EXPECT_EQ(import(kEmptyScene + kObjects), 0);
    EXPECT_EQ(host_.calls_of({"CreateNullInComp"}).size(), 1U) << "the newest object comes first and stays";
    EXPECT_THAT(host_.calls_of({"CreateCameraInComp"}), IsEmpty());
    EXPECT_THAT(host_.reports, IsEmpty());
    EXPECT_THAT(host_.left_open(), IsEmpty());
}

// ---- everything at once

const std::string kEverything = kHeader + "ASPECT 1.0667\n" + kSettings +
                                "COMPOSITION NRM \"Main\" {\n"
                                "FILE NRM STRAIGHT \"/missing/background.tif\"\n"
                                "COMPOSITION MUL \"Shadow pass\" {\n"
                                "FSEQ ADD PREMUL \"/missing/shadow0000.tif\"\n}\n}\n"
                                "FSEQ <-> PREMUL \"/missing/objectbuffer0000.tif\"\n" +
                                kObjects;

TEST_F(ImportFileTest, EveryFailingCallLeavesNothingOpenAndThePreferenceRestored) {
    ASSERT_EQ(import(kEverything), 0);
    std::vector<std::string> clean;
    for (const std::string& line : host_.calls) {
        if (!line.starts_with("cos(") && !line.starts_with("sin(")) {
            clean.push_back(line);
        }
    }
    ASSERT_EQ(clean.size(), 125U);
    const auto index_of = [&](const std::string& call) {
        return static_cast<std::size_t>(
            std::find_if(clean.begin(), clean.end(),
                         [&](const std::string& line) { return line.starts_with(call); }) -
            clean.begin());
    };
    const std::size_t first_object = index_of("CreateNullInComp(");
    ASSERT_LT(first_object, clean.size());

    for (std::size_t failing = 0; failing < clean.size(); ++failing) {
        SCOPED_TRACE(clean[failing]);
        RecordingHost host;
        host.alpha_preference = 1;
        host.fail_call(static_cast<int>(failing) + 1, 77);
        // The result does not show failures of the calls around the build, of the calls from the first object
        // on, and of one call whose result is ignored.
        const bool silent = failing < kBefore.size() || failing >= first_object ||
                            clean[failing] == "DisposeStream(layer4/scale)";
        EXPECT_EQ(import(kEverything), silent ? 0 : 77);
        if (silent) {
            EXPECT_THAT(host.reports, IsEmpty());
        } else {
            EXPECT_EQ(host.reports.back(), loading_error(19));
            EXPECT_EQ(std::count(host.reports.begin(), host.reports.end(), loading_error(19)), 1);
        }
        EXPECT_THAT(host.left_open(), IsEmpty());
        const bool restoring = failing + 1 == clean.size();
        EXPECT_EQ(host.alpha_preference, restoring ? 3 : 1);
    }
}

TEST_F(ImportFileTest, EveryMissingSuiteEndsTheImportWithEverythingReleased) {
    const std::pair<const char*, A_long> suites[] = {
        {"AEGP Persistent Data Suite", 1}, {"AEGP Utility Suite", 7}, {"AEGP Proj Suite", 5},
        {"AEGP Item Suite", 10},           {"AEGP Comp Suite", 9},    {"AEGP Layer Suite", 11},
        {"AEGP Footage Suite", 7},         {"AEGP Stream Suite", 7},  {"AEGP Keyframe Suite", 3},
        {"AEGP Light Suite", 2},           {"PF ANSI Suite", 1},
    };
    for (const auto& [name, version] : suites) {
        for (const bool empty : {false, true}) {
            SCOPED_TRACE(std::string(name) + (empty ? " is nothing" : " is refused"));
            RecordingHost host;
            host.alpha_preference = 1;
            host.withhold_suite(name, version, empty ? kHostErrorNone : kHostErrorMissingSuite);
            long caught = 0;
            try {
                import(kEverything);
            } catch (long value) {
                caught = value;
            }
            EXPECT_EQ(caught, 516);
            EXPECT_THAT(host.reports, IsEmpty());
            EXPECT_THAT(host.left_open(), IsEmpty());
            EXPECT_EQ(host.alpha_preference, 1);
            const std::size_t opened = host.calls_of({"StartUndoGroup"}).size();
            EXPECT_EQ(host.calls_of({"EndUndoGroup"}).size(), opened);
            if (opened != 0) {
                EXPECT_THAT(std::vector<std::string>(host.calls.end() - 2, host.calls.end()),
                            ElementsAre("EndUndoGroup()", kAfter))
                    << "the group is closed, then the preference is put back";
            }
        }
    }
}

TEST_F(ImportFileTest, OutOfMemoryEndsTheImportWithEverythingReleased) {
    const std::string path = folder_.write("shot.aec", kEverything);
    const auto import_with = [&](long first_refused) {
        const RefusedMemory refused(first_refused);
        import_path(path);
        return RefusedMemory::asked();
    };
    const long asked = import_with(1000000);
    ASSERT_GT(asked, 50);
    for (long first_refused = 0; first_refused < asked; ++first_refused) {
        SCOPED_TRACE(first_refused);
        RecordingHost host;
        host.alpha_preference = 1;
        host.fail("GetProjectByIndex", 77);  // the report asks for memory too
        EXPECT_NO_THROW(import_with(first_refused));
        EXPECT_THAT(host.left_open(), IsEmpty());
        EXPECT_EQ(host.alpha_preference, 1);
    }
}

// ---- observed

struct FailureNotes : ReadObserver {
    void on_failure(const diagnostic::Diagnostic& error) override {
        lines.push_back(error.at.line.value_or(0));
    }
    void on_end(const TextPosition& /*at*/, bool at_end_of_file) override { ended.push_back(at_end_of_file); }
    std::vector<std::int64_t> lines;
    std::vector<bool> ended;
};

TEST_F(ImportFileTest, ObserverLearnsOfSilentFailures) {
    const std::string bad = folder_.write("bad.aec", kHeader + "FPS 25\nFRAMES 3\n" + kRoot);
    FailureNotes failed;
    EXPECT_EQ(import_composition_file(bad.c_str(), &failed), 0);
    EXPECT_THAT(failed.lines, ElementsAre(3));
    EXPECT_THAT(failed.ended, IsEmpty());
    EXPECT_THAT(host_.reports, IsEmpty());

    const std::string good = folder_.write("good.aec", kEmptyScene);
    FailureNotes read;
    host_.calls.clear();
    EXPECT_EQ(import_composition_file(good.c_str(), &read), 0);
    EXPECT_THAT(read.lines, IsEmpty());
    EXPECT_THAT(read.ended, ElementsAre(true));
    EXPECT_EQ(host_.calls, whole_import({})) << "and it changes nothing";
}

TEST_F(ImportFileTest, WithoutABasicSuiteThrowsBeforeAnyCall) {
    g_pBasicSuite = nullptr;
    EXPECT_THROW(import(kEmptyScene), long);
    EXPECT_THAT(host_.traffic, IsEmpty());
}

}  // namespace
