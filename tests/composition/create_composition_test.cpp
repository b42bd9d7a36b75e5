#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "composition/expected_calls.h"
#include "composition/model_builder.h"
#include "host/suite_handler.h"
#include "limit/limits.h"
#include "support/recording_host.h"
#include "support/small_stack.h"
#include "support/temporary_folder.h"

namespace {

constexpr auto kMostLevels = static_cast<A_long>(limits::kCompositionNesting.value);

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

class CreateComposition : public ::testing::Test {
  protected:
    CreateComposition() {
        settings_.width = 720;
        settings_.height = 576;
        settings_.from = 10;
        settings_.to = 59;
        settings_.range = 48;
        settings_.fps = 25;
        settings_.aspect = 1.0667F;
        fill(&settings_.composition, "Main");
    }
    CComposition& root() { return settings_.composition; }
    int run() {
        AEGP_SuiteHandler suites(host_.basic());
        return root().CreateComposition(&suites, host_.handle<AEGP_ItemH>("root"), &settings_);
    }

    RecordingHost host_;
    TemporaryFolder folder_;
    tagProjectSettings settings_;
};

TEST_F(CreateComposition, WithoutChildrenMakesAFolderAndAnEmptyComposition) {
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(host_.calls,
                ElementsAre("CreateNewFolder(\"Main\", root) -> folder1",
                            "CreateComp(folder1, \"Main\", 720, 576, 106/100, 48@25, 2500/100) -> comp1",
                            "GetItemFromComp(comp1) -> item(comp1)"));
    EXPECT_EQ(host_.name_of(root().compH), "comp1");
    EXPECT_EQ(host_.name_of(root().parentFolder), "root");
    EXPECT_EQ(root().itemH, nullptr) << "kept, never used";
    EXPECT_EQ(host_.name_of(settings_.firstFolder), "folder1");
    EXPECT_EQ(host_.name_of(settings_.firstCompItem), "item(comp1)");
}

TEST_F(CreateComposition, FootageAndNestedCompositionsBecomeLayersInFileOrder) {
    const std::string image = folder_.write("image.tif", "x");
    const std::string frames = folder_.write("glow0000.tif", "x");
    fill(root().AddFile(), image, kBlendMultiply, kAlphaPremultiplied);
    CComposition& nested = fill(root().AddComposition(), "Shadow pass", kBlendAdd);
    fill(nested.AddFile(), frames, kBlendNormal, kAlphaStraight, 1);
    fill(root().AddFile(), "C:\\media\\shot.tif", kBlendAdd);

    EXPECT_EQ(run(), 0);
    const std::string expected[] = {
        "CreateNewFolder(\"Main\", root) -> folder1",
        "CreateComp(folder1, \"Main\", 720, 576, 106/100, 48@25, 2500/100) -> comp1",
        "GetItemFromComp(comp1) -> item(comp1)",
        // a single image
        "NewFootage(7, \"" + image + "\", null, null, 0, null) -> footage1",
        "AddFootageToProject(footage1, folder1) -> item(footage1)",
        "IsAddLayerValid(item(footage1), comp1)",
        "AddLayer(item(footage1), comp1) -> layer1",
        "GetLayerTransferMode(layer1)",
        "SetLayerTransferMode(layer1, 5/12/13)",
        "GetFootageInterpretation(item(footage1), 0)",
        set_interpretation("item(footage1)", {1, 106, 0, 0}),
        "SetLayerOffset(layer1, 0@25)",
        "SetLayerInPointAndDuration(layer1, 0, 0@25, 50@25)",
        // the nested composition: a folder in the folder, and a layer before its own children
        "CreateNewFolder(\"Shadow pass\", folder1) -> folder2",
        "CreateComp(folder2, \"Shadow pass\", 720, 576, 106/100, 48@25, 2500/100) -> comp2",
        "GetItemFromComp(comp2) -> item(comp2)",
        "IsAddLayerValid(item(comp2), comp1)",
        "AddLayer(item(comp2), comp1) -> layer2",
        "GetLayerTransferMode(layer2)",
        "SetLayerTransferMode(layer2, 4/12/13)",
        "NewFootage(7, \"" + frames + "\", null, {1, 0, -1, -1}, 0, null) -> footage2",
        "AddFootageToProject(footage2, folder2) -> item(footage2)",
        "IsAddLayerValid(item(footage2), comp2)",
        "AddLayer(item(footage2), comp2) -> layer3",
        "GetLayerTransferMode(layer3)",
        "SetLayerTransferMode(layer3, 2/12/13)",
        "GetFootageInterpretation(item(footage2), 0)",
        set_interpretation("item(footage2)", {0, 106, 25, 1}),
        "SetLayerOffset(layer3, 0@25)",
        "SetLayerInPointAndDuration(layer3, 0, 0@25, 50@25)",
        // missing footage
        "NewPlaceholderFootage(7, \"shot.tif\", 720, 576, 50@25) -> placeholder1",
        "AddFootageToProject(placeholder1, folder1) -> item(placeholder1)",
        "IsAddLayerValid(item(placeholder1), comp1)",
        "AddLayer(item(placeholder1), comp1) -> layer4",
        "GetLayerTransferMode(layer4)",
        "SetLayerTransferMode(layer4, 4/12/13)",
        "GetFootageInterpretation(item(placeholder1), 0)",
        set_interpretation("item(placeholder1)", {0, 106, 0, 0}),
        "SetLayerOffset(layer4, 0@25)",
        "SetLayerInPointAndDuration(layer4, 0, 0@25, 50@25)",
    };
    EXPECT_THAT(host_.calls, ElementsAreArray(expected));
    EXPECT_EQ(host_.name_of(nested.compH), "comp2");
    EXPECT_EQ(host_.name_of(nested.parentFolder), "folder1");
    EXPECT_EQ(host_.name_of(settings_.firstFolder), "folder1")
        << "the first composition is the one remembered";
    EXPECT_EQ(host_.name_of(settings_.firstCompItem), "item(comp1)");
    EXPECT_THAT(host_.reports, IsEmpty());
    EXPECT_THAT(host_.left_open(), IsEmpty());
}

TEST_F(CreateComposition, PlaceholdersAreNamedAfterTheLastComponent) {
    const std::string forty(40, 'n');
    const struct {
        std::string path;
        std::string name;
    } cases[] = {
        {"C:\\media\\shot.tif", "shot.tif"},
        {"Macintosh HD:Renders:shot.tif", "shot.tif"},
        {"/no/such/folder/shot.tif", "shot.tif"},
        {"/mixed:styles\\shot.tif", "shot.tif"},
        {"no separators at all.tif", "no separators at all.tif"},
        {"ends in a separator/", ""},
        {"", ""},
        {"/missing/" + std::string(31, 'a'), std::string(31, 'a')},
        {"/missing/" + std::string(32, 'a'), std::string(32, 'a')},
        {"/missing/" + std::string(33, 'a'), std::string(32, 'a')},
        {"/missing/" + forty, forty.substr(0, 32)},
    };
    for (const auto& c : cases) {
        fill(root().AddFile(), c.path);
    }
    EXPECT_EQ(run(), 0);
    const std::vector<std::string> made = host_.calls_of({"NewPlaceholderFootage"});
    ASSERT_EQ(made.size(), std::size(cases));
    for (std::size_t i = 0; i < made.size(); ++i) {
        EXPECT_THAT(made[i], ::testing::StartsWith("NewPlaceholderFootage(7, \"" + cases[i].name +
                                                   "\", 720, 576, 50@25)"))
            << cases[i].path;
    }
}

TEST_F(CreateComposition, FolderInPlaceOfTheFootageCountsAsMissing) {
    fill(root().AddFile(), folder_.folder().string());
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(host_.calls_of({"NewFootage"}), IsEmpty());
}

TEST_F(CreateComposition, LocalLayersStartAtTheFirstFrameAndLastAsLong) {
    settings_.local = 1;
    fill(root().AddFile(), "missing");
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(
        host_.calls_of({"SetLayerOffset", "SetLayerInPointAndDuration"}),
        ElementsAre("SetLayerOffset(layer1, 10@25)", "SetLayerInPointAndDuration(layer1, 0, 0@25, 50@25)"));
}

TEST_F(CreateComposition, UnknownBlendModeKeepsTheHostsMode) {
    fill(root().AddFile(), "missing", 3);
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(host_.calls_of({"SetLayerTransferMode"}),
                ElementsAre("SetLayerTransferMode(layer1, 11/12/13)"));
}

TEST_F(CreateComposition, IgnoresWhetherALayerIsValid) {
    host_.add_layer_valid = 0;
    fill(root().AddFile(), "missing");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(host_.calls_of({"AddLayer"}).size(), 1U);
}

TEST_F(CreateComposition, ClampsSizesTo32Bits) {
    settings_.from = 0;
    settings_.to = 2147483647;
    settings_.fps = 2147483647;
    fill(root().AddFile(), "missing");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(host_.calls[1],
              "CreateComp(folder1, \"Main\", 720, 576, 106/100, 48@2147483647, 2147483647/100) -> comp1");
    EXPECT_EQ(host_.calls.back(),
              "SetLayerInPointAndDuration(layer1, 0, 0@2147483647, 2147483647@2147483647)");
}

// ---- failures

TEST_F(CreateComposition, EveryFailingCallEndsTheBuild) {
    const auto fill_tree = [](CComposition& composition) {
        fill(composition.AddFile(), "missing");
        fill(fill(composition.AddComposition(), "Nested").AddFile(), "missing too");
    };
    fill_tree(root());
    ASSERT_EQ(run(), 0);
    const std::vector<std::string> clean = host_.calls;
    ASSERT_EQ(clean.size(), 30U);

    for (std::size_t failing = 1; failing <= clean.size(); ++failing) {
        SCOPED_TRACE(clean[failing - 1]);
        RecordingHost host;
        host.fail_call(static_cast<int>(failing), 77);
        tagProjectSettings settings;
        fill(&settings.composition, "Main");
        fill_tree(settings.composition);
        {
            AEGP_SuiteHandler suites(host.basic());
            EXPECT_EQ(
                settings.composition.CreateComposition(&suites, host.handle<AEGP_ItemH>("root"), &settings),
                77);
        }
        ASSERT_GE(host.calls.size(), failing);
        EXPECT_THAT(host.calls[failing - 1], ::testing::EndsWith(" = 77"));
        for (std::size_t i = failing; i < host.calls.size(); ++i) {
            EXPECT_THAT(host.calls[i], ::testing::StartsWith("ReportInfo("))
                << "nothing but messages after a failure";
        }
        // The nested composition begins after the ten calls for the first footage.
        const bool nested = failing > 3 + 10;
        const bool interpretation = clean[failing - 1].find("Interpretation") != std::string::npos;
        std::vector<std::string> reports(nested ? 2 : 1, "Unable to create composition.");
        if (interpretation) {
            reports.insert(reports.begin(), "Could not interpret footage.");
        }
        EXPECT_EQ(host.reports, reports);
        EXPECT_THAT(host.left_open(), IsEmpty());
    }
}

TEST_F(CreateComposition, EveryLevelReportsTheFailureOnce) {
    CComposition& middle = fill(root().AddComposition(), "Middle");
    CComposition& inner = fill(middle.AddComposition(), "Inner");
    fill(inner.AddFile(), "missing");
    fill(root().AddFile(), "never reached");
    host_.fail("SetFootageInterpretation", 9);
    EXPECT_EQ(run(), 9);
    EXPECT_THAT(host_.reports, ElementsAre("Could not interpret footage.", "Unable to create composition.",
                                           "Unable to create composition.", "Unable to create composition."));
    EXPECT_EQ(host_.calls_of({"NewPlaceholderFootage"}).size(), 1U);
}

TEST_F(CreateComposition, EveryReportUsesItsOwnHandler) {
    host_.fail("CreateNewFolder", 9);
    EXPECT_EQ(run(), 9);
    EXPECT_THAT(
        host_.traffic,
        ElementsAre("acquire AEGP Item Suite 10", "CreateNewFolder(\"Main\", root) = 9",
                    "acquire AEGP Utility Suite 7", "ReportInfo(7, \"Unable to create composition.\")",
                    "release AEGP Utility Suite 7", "release AEGP Item Suite 10"));
}

TEST_F(CreateComposition, SuccessWithoutAHandleIsHostError1) {
    const char* const functions[] = {"CreateNewFolder", "CreateComp",          "GetItemFromComp",
                                     "AddLayer",        "AddFootageToProject", "NewPlaceholderFootage"};
    for (const char* function : functions) {
        RecordingHost host;
        host.yield_nothing(function);
        tagProjectSettings settings;
        fill(&settings.composition, "Main");
        fill(settings.composition.AddFile(), "missing");
        AEGP_SuiteHandler suites(host.basic());
        EXPECT_EQ(settings.composition.CreateComposition(&suites, host.handle<AEGP_ItemH>("root"), &settings),
                  1)
            << function;
        EXPECT_THAT(host.reports, ElementsAre("Unable to create composition.")) << function;
    }
}

TEST_F(CreateComposition, MissingSuiteIsNotReported) {
    fill(fill(root().AddComposition(), "Nested").AddFile(), "missing");
    host_.withhold_suite("AEGP Footage Suite", 7);
    EXPECT_THROW(run(), long);
    EXPECT_THAT(host_.reports, IsEmpty());
    EXPECT_THAT(host_.left_open(), IsEmpty()) << "what was acquired before is released";
}

// ---- depth

TEST_F(CreateComposition, DeepestTreeNeedsLittleStack) {
    CComposition* innermost = &root();
    for (A_long level = 1; level < kMostLevels; ++level) {
        innermost = &fill(innermost->AddComposition(), "Nested");
    }
    fill(innermost->AddFile(), "missing");
    int result = -1;
    run_on_small_stack([&] { result = run(); });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(host_.calls_of({"CreateComp"}).size(), static_cast<std::size_t>(kMostLevels));
    EXPECT_EQ(host_.name_of(innermost->compH), "comp" + std::to_string(kMostLevels));
}

TEST_F(CreateComposition, FailureInTheDeepestTreeIsReportedByEveryLevelWithLittleStack) {
    CComposition* innermost = &root();
    for (A_long level = 1; level < kMostLevels; ++level) {
        innermost = &fill(innermost->AddComposition(), "Nested");
    }
    fill(innermost->AddFile(), "missing");
    host_.fail("NewPlaceholderFootage", 4);
    int result = -1;
    run_on_small_stack([&] { result = run(); });
    EXPECT_EQ(result, 4);
    EXPECT_EQ(host_.reports.size(), static_cast<std::size_t>(kMostLevels));
}

}  // namespace
