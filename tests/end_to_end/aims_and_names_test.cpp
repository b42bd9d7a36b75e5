// What the bridge adds in current hosts: cameras and lights that turn towards their points of interest, names
// in any script and of any length, and footage whose path is written in an older encoding.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/loaded_bundle.h"
#include "support/scene_folder.h"

namespace {

using embedded::HostGeneration;
using embedded::Layer;
using embedded::LayerKind;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kSettings = "VORTAN XR COMPOSITION RESOLUTION 64 48 FROM 0 TO 3 RANGE 4 FPS 25\n";
const std::string kEveryKind = kSettings +
                               "COMPOSITION NRM \"Main\" { }\n"
                               "CAMERA \"Camera\" { KEY 0 0 0 0 30 0 0 40 }\n"
                               "LIGHT \"Omni\" { TYPE OMNI KEY 0 0 0 0 0 0 0 }\n"
                               "LIGHT \"Spot\" { TYPE SPOT KEY 0 0 0 0 0 0 0 }\n"
                               "LIGHT \"Parallel\" { TYPE PAR KEY 0 0 0 0 0 0 0 }\n"
                               "LIGHT \"Parallel spot\" { TYPE PSPOT KEY 0 0 0 0 0 0 0 }\n"
                               "LIGHT \"Tube\" { TYPE TUBE KEY 0 0 0 0 0 0 0 }\n"
                               "NULL \"Null\" { KEY 0 0 0 0 0 0 0 }\n";

embedded::HostOptions without_unicode_names() {
    embedded::HostOptions options;
    options.suites_not_offered = {{"AEGP Item Suite", 13}, {"AEGP Comp Suite", 15}};
    return options;
}

/// The result of importing a scene, by default into a current host. The host is gone, so that the next can be
/// made.
struct Import {
    explicit Import(const SceneFolder& folder, const std::string& text, embedded::HostOptions options = {},
                    HostGeneration generation = HostGeneration::today) {
        LoadedBundle bundle(std::move(options), generation);
        result = bundle.host().import_file(folder.scene(text));
        bundle.host().unload();
        project = bundle.host().project();
        conformance = bundle.host().conformance();
        messages = bundle.message_texts();
    }
    const Layer& layer(const std::string& name) {
        const auto& layers = project.layers;
        const auto found = std::find_if(layers.begin(), layers.end(),
                                        [&](const Layer& layer) { return layer.name == name; });
        EXPECT_NE(found, layers.end()) << name;
        return found == layers.end() ? layers.at(0) : *found;
    }
    embedded::CallbackResult result;
    embedded::Project project;
    embedded::ConformanceReport conformance;
    std::vector<std::string> messages;
};

TEST(AimsAndNames, CamerasAndDirectedLightsTurnTowardsTheirPointsOfInterest) {
    const std::map<std::string, bool> expected = {
        {"Camera", true},        {"Omni", false}, {"Spot", true}, {"Parallel", true},
        {"Parallel spot", true}, {"Tube", false}, {"Null", false}};
    const SceneFolder folder;
    for (const embedded::HostOptions& options : {embedded::HostOptions(), without_unicode_names()}) {
        Import import(folder, kEveryKind, options);
        EXPECT_EQ(import.result.code, 0);
        for (const auto& [name, aimed] : expected) {
            EXPECT_EQ(import.layer(name).looks_at_point_of_interest(), aimed) << name;
        }
        EXPECT_THAT(import.messages, IsEmpty());
        EXPECT_TRUE(import.conformance.clean()) << import.conformance.to_text();
    }
}

// The null's flag is the first; then the lights that are aimed, newest first; then the camera.
TEST(AimsAndNames, AnAimThatIsRefusedIsReportedAndNothingElseChanges) {
    const SceneFolder folder;
    const struct {
        int nth;
        const char* layer;
    } cases[] = {{2, "Parallel spot"}, {3, "Parallel"}, {4, "Spot"}, {5, "Camera"}};
    for (const auto& c : cases) {
        for (const A_Err code : {1, 4, 13}) {
            embedded::HostOptions options;
            options.faults = {{"AEGP_SetLayerFlag", c.nth, code}};
            Import import(folder, kEveryKind, options);
            EXPECT_EQ(import.result.code, 0);
            EXPECT_FALSE(import.layer(c.layer).looks_at_point_of_interest()) << c.layer;
            EXPECT_EQ(import.project.layers.size(), 7U);
            EXPECT_THAT(import.messages,
                        ElementsAre("A camera or light does not turn towards its point of interest, because "
                                    "After Effects refused the setting. Select it and choose Layer > "
                                    "Transform > Auto-Orient."));
            EXPECT_TRUE(import.conformance.clean()) << import.conformance.to_text();
        }
    }
}

TEST(AimsAndNames, AFlatNullLosesItsKeysAsInClassicHosts) {
    const SceneFolder folder;
    for (const HostGeneration generation : {HostGeneration::classic, HostGeneration::today}) {
        embedded::HostOptions options;
        options.faults = {{"AEGP_SetLayerFlag", 1, 4}};
        Import import(folder, kEveryKind, options, generation);
        EXPECT_EQ(import.result.code, 0);
        EXPECT_EQ(import.project.layers.size(), 1U) << "the null comes first and ends the objects";
        EXPECT_THAT(import.messages, IsEmpty());
    }
}

// ---- names

struct NameCase {
    const char* why;
    std::string name;
    std::string shown;   ///< in a current host
    std::string narrow;  ///< in a host with narrow names
};

const NameCase kNames[] = {
    {"60 characters", std::string(60, 'x'), std::string(60, 'x'), std::string(31, 'x')},
    {"UTF-8", "\u00E9toile \U0001F3AC", "\u00E9toile \U0001F3AC", "\u00E9toile \U0001F3AC"},
    {"Windows-1252", "\xE9toile \x80", "\u00E9toile \u20AC", "\xE9toile \x80"},
};

TEST(AimsAndNames, ArriveWholeInCurrentHostsAndAsTheyAreElsewhere) {
    const SceneFolder folder;
    for (const NameCase& one : kNames) {
        SCOPED_TRACE(one.why);
        const std::string text = kSettings + "COMPOSITION NRM \"" + one.name + "\" { }\nCAMERA \"" +
                                 one.name + "\" { KEY 0 0 0 0 0 0 0 40 }\nLIGHT \"" + one.name +
                                 "\" { }\nNULL \"" + one.name + "\" { }\n";
        Import today(folder, text);
        Import without(folder, text, without_unicode_names());
        Import classic(folder, text, {}, HostGeneration::classic);
        const struct {
            Import* import;
            const std::string* expected;
        } runs[] = {{&today, &one.shown}, {&without, &one.narrow}, {&classic, &one.narrow}};
        for (const auto& run : runs) {
            EXPECT_EQ(run.import->result.code, 0);
            ASSERT_EQ(run.import->project.items.size(), 3U);
            ASSERT_EQ(run.import->project.layers.size(), 3U);
            EXPECT_EQ(run.import->project.items[1].name, *run.expected);
            EXPECT_EQ(run.import->project.items[2].name, *run.expected);
            for (const Layer& layer : run.import->project.layers) {
                EXPECT_EQ(layer.name, *run.expected);
            }
            EXPECT_THAT(run.import->messages, IsEmpty());
            EXPECT_TRUE(run.import->conformance.clean());
        }
        EXPECT_EQ(today.conformance.count(embedded::RuleViolation::name_cut), 0U);
    }
}

TEST(AimsAndNames, OfMissingFootageArriveInCurrentHosts) {
    const SceneFolder folder;
    const std::string text = kSettings +
                             "COMPOSITION NRM \"Main\" {\nFILE NRM STRAIGHT \"C:\\caf\xE9.tga\"\n}\n" +
                             "FILE <-> STRAIGHT \"C:\\\u00E9toile.tga\"\n";
    const auto names = [](Import& import) {
        std::vector<std::string> found;
        for (const embedded::Item& item : import.project.items) {
            if (item.kind == embedded::ItemKind::footage) {
                found.push_back(item.name);
            }
        }
        return found;
    };
    Import today(folder, text);
    EXPECT_THAT(names(today), ElementsAre("caf\u00E9.tga", "\u00E9toile.tga"));
    EXPECT_EQ(today.project.layers.at(0).name, "caf\u00E9.tga") << "the layer is named after its item";
    Import classic(folder, text, {}, HostGeneration::classic);
    EXPECT_THAT(names(classic), ElementsAre("caf\xE9.tga", "\u00E9toile.tga"));
}

// ---- paths

TEST(AimsAndNames, FootageIsFoundByItsPathInAnOlderEncoding) {
    const struct {
        const char* why;
        const char* written;
    } cases[] = {{"Windows-1252", "caf\xE9"}, {"Mac Roman", "caf\x8E"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        const SceneFolder folder;
        const std::string picture = folder.image("caf\u00E9.tga");
        const std::string frame = folder.image("caf\u00E9 0001.tga");
        folder.image("caf\u00E9 0002.tga");
        const std::string text = kSettings + "COMPOSITION NRM \"Main\" {\nFILE NRM STRAIGHT \"C:\\" +
                                 c.written + ".tga\"\nFSEQ NRM STRAIGHT \"" + c.written + " 0001.tga\"\n}\n";
        Import today(folder, text);
        EXPECT_EQ(today.result.code, 0);
        ASSERT_EQ(today.project.footage.size(), 2U);
        EXPECT_EQ(today.project.footage[0].kind, embedded::FootageKind::file);
        EXPECT_EQ(today.project.footage[0].path, picture);
        EXPECT_EQ(today.project.footage[1].kind, embedded::FootageKind::sequence);
        EXPECT_EQ(today.project.footage[1].path, frame);
        ASSERT_TRUE(today.project.footage[1].sequence.has_value());
        EXPECT_EQ(today.project.footage[1].sequence->count, 2);
        EXPECT_THAT(today.messages, IsEmpty());
        Import classic(folder, text, {}, HostGeneration::classic);
        ASSERT_EQ(classic.project.footage.size(), 2U);
        EXPECT_EQ(classic.project.footage[0].kind, embedded::FootageKind::placeholder)
            << "a classic host gets the calls that it always got";
    }
}

}  // namespace
