#include "cli/project/project_tree.h"

#include <gtest/gtest.h>

#include <string>

#include "cli/project/project_labels.h"
#include "cli/project_builder.h"

namespace {

using embedded::FootageKind;
using embedded::Id;
using embedded::kRootFolder;
using embedded::LayerKind;

const cli::Paint kPlain(false);

std::string tree_of(const ProjectBuilder& builder) {
    return cli::project_tree(builder.project, kPlain);
}

TEST(ProjectTree, NothingInAnEmptyProject) {
    EXPECT_EQ(tree_of({}), "");
}

TEST(ProjectTree, FoldersCompositionsLayersAndFootage) {
    ProjectBuilder builder;
    const Id folder = builder.folder(kRootFolder, "Main");
    const Id main = builder.composition(folder, "Main").id;
    embedded::Footage& glow = builder.footage(folder, "glow[0017-0024].tif", FootageKind::sequence);
    glow.sequence = embedded::SequenceFrames{"glow####.tif", {17, 24}, 6, 4, {{19, 19}, {21, 21}}};
    glow.interpretation.interlace.type = kFieldTypeInterlaced;
    glow.interpretation.interlace.order = kFieldOrderLowerFirst;
    glow.interpretation.alpha.flags = kAlphaFlagPremultiplied;
    glow.interpretation.conform_fps = 25;
    embedded::Layer& layer = builder.layer(main, LayerKind::footage, "glow", glow.item);
    layer.transfer.mode = kTransferModeAdd;
    layer.offset = {17, 25};
    embedded::Layer& camera = builder.layer(main, LayerKind::camera, "Camera");
    camera.offset = {17, 25};
    ProjectBuilder::keys(camera, kLayerStreamPosition, 0, 8);
    builder.composition(folder, "Nothing");

    EXPECT_EQ(
        tree_of(builder),
        "Main/\n"
        "  Main  composition, 100x50, pixel aspect 1, 10 frames at 25 fps\n"
        "    | #  layer   kind      blend  alpha          fields       in  length\n"
        "    | 1  Camera  camera                                       17      10  8 keys, frames 17-24\n"
        "    | 2  glow    sequence  add    premultiplied  lower first  17      10\n"
        "  glow[0017-0024].tif  sequence 17-24 without 19, 21, 100x50 RGBA 8 bit, alpha premultiplied, "
        "lower first, pixel aspect 1, 25 fps\n"
        "  Nothing  composition, 100x50, pixel aspect 1, 10 frames at 25 fps, empty\n");
}

TEST(ProjectTree, MissingFootageIsMarkedInTheFolderAndInTheLayers) {
    ProjectBuilder builder;
    const Id main = builder.composition(kRootFolder, "Main").id;
    embedded::Footage& gone = builder.footage(kRootFolder, "gone.tif", FootageKind::placeholder);
    gone.duration = {8, 25};
    builder.layer(main, LayerKind::footage, "gone.tif", gone.item);
    const std::string tree = tree_of(builder);
    EXPECT_NE(tree.find("| 1  gone.tif  MISSING  normal  straight  progressive   0      10\n"),
              std::string::npos)
        << tree;
    EXPECT_NE(tree.find("gone.tif  MISSING, replaced by a placeholder, 100x50, 0.32 s long"),
              std::string::npos)
        << tree;
}

TEST(ProjectTree, ScaleOfALayerThatWasStretched) {
    ProjectBuilder builder;
    const Id main = builder.composition(kRootFolder, "Main").id;
    const Id inner = builder.composition(kRootFolder, "Camera+Light").item;
    embedded::Layer& layer = builder.layer(main, LayerKind::composition, "Camera+Light", inner);
    layer.streams[kLayerStreamScale].value = {100, 106.67, 0, 0};
    layer.streams[kLayerStreamScale].value_set = true;
    EXPECT_NE(tree_of(builder).find("scale 100 x 106.67 %\n"), std::string::npos) << tree_of(builder);
}

TEST(ProjectTree, NamesAreSafeToPrint) {
    ProjectBuilder builder;
    builder.folder(kRootFolder, "a\x1b[31m\xff");
    builder.folder(kRootFolder, "");
    EXPECT_EQ(tree_of(builder), "a\\x1b[31m\\xff/\n(no name)/\n");
}

TEST(ProjectTree, DeepFoldersKeepTheirLinesShort) {
    ProjectBuilder builder;
    Id folder = kRootFolder;
    for (int i = 0; i < 2000; ++i) {
        folder = builder.folder(folder, "f");
    }
    const std::string tree = tree_of(builder);
    EXPECT_EQ(tree.substr(0, 10), "f/\n  f/\n  ");
    EXPECT_TRUE(tree.ends_with('\n' + std::string(24, ' ') + "(1999 deep) f/\n"));
}

TEST(ProjectTree, ColourOnlyWhereItIsWanted) {
    ProjectBuilder builder;
    builder.folder(kRootFolder, "Main");
    EXPECT_EQ(cli::project_tree(builder.project, cli::Paint(true)), "\x1b[36mMain/\x1b[0m\n");
}

TEST(ProjectSummary, CountsAndMissing) {
    ProjectBuilder builder;
    const Id main = builder.composition(kRootFolder, "Main").id;
    builder.footage(kRootFolder, "a", FootageKind::file);
    builder.footage(kRootFolder, "b", FootageKind::placeholder);
    builder.layer(main, LayerKind::light, "l");
    builder.layer(main, LayerKind::null, "n");
    builder.layer(main, LayerKind::null, "m");
    EXPECT_EQ(cli::project_summary(builder.project),
              "1 composition, 2 footage items (1 missing), 0 cameras, 1 light, 2 nulls");
}

TEST(HostReport, NothingToSay) {
    EXPECT_EQ(cli::host_report(embedded::empty_project(), embedded::ConformanceReport(), kPlain), "");
}

TEST(HostReport, MessagesProblemsAndNotes) {
    embedded::Project project = embedded::empty_project();
    project.messages.push_back({"Could not interpret footage.", {}});
    embedded::ConformanceReport report;
    report.add(embedded::conformance_finding(embedded::RuleViolation::stream_not_disposed, 0, "import",
                                             "a stream is open"));
    report.add(embedded::conformance_finding(embedded::RuleViolation::name_cut, 12, "AEGP_CreateComp",
                                             "the name was cut"));
    EXPECT_EQ(cli::host_report(project, report, kPlain),
              "Messages to the user:\n"
              "  Could not interpret footage.\n"
              "Rules of the host that the plug-in broke:\n"
              "  import: a stream is open [stream_not_disposed]\n"
              "Notes of the host:\n"
              "  call 12 AEGP_CreateComp: the name was cut [name_cut]\n");
}

struct AlphaCase {
    const char* name;
    bool has_alpha;
    FootageKind kind;
    AEGP_AlphaFlags flags;
    const char* expected;
};

const AlphaCase kAlphaCases[] = {
    {"straight", true, FootageKind::file, 0, "straight"},
    {"premultiplied", true, FootageKind::file, kAlphaFlagPremultiplied, "premultiplied"},
    {"ignored wins", true, FootageKind::file, kAlphaFlagIgnore | kAlphaFlagPremultiplied, "ignored"},
    {"file without alpha", false, FootageKind::file, kAlphaFlagPremultiplied, "none"},
    {"a placeholder has what its entry says", false, FootageKind::placeholder, kAlphaFlagPremultiplied,
     "premultiplied"},
};

TEST(ProjectLabels, Alpha) {
    for (const AlphaCase& one : kAlphaCases) {
        embedded::Footage footage;
        footage.has_alpha = one.has_alpha;
        footage.kind = one.kind;
        footage.interpretation.alpha.flags = one.flags;
        EXPECT_EQ(cli::alpha_label(footage), one.expected) << one.name;
    }
}

TEST(ProjectLabels, Frames) {
    const A_Ratio rate{2997, 100};
    EXPECT_EQ(cli::frames_text(10 / 29.97, rate), "10");
    EXPECT_EQ(cli::frames_text(-5 / 29.97, rate), "-5");
    EXPECT_EQ(cli::frames_text(0.5 / 29.97, rate), "0.5");
    EXPECT_EQ(cli::frame_count_text(1 / 29.97, rate), "1 frame");
    EXPECT_EQ(cli::plain_number(29.97), "29.97");
    EXPECT_EQ(cli::plain_number(2147483647), "2147483647");
    EXPECT_EQ(cli::seconds_of({1, 0}), 0);
}

}  // namespace
