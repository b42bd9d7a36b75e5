// Folders, compositions and layers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "embedded/bundle_side.h"

namespace {

using embedded::RuleViolation;

using embedded::LayerKind;
using ::testing::ElementsAre;

TEST(Project, StartsWithItsRootFolder) {
    const embedded::Host host;
    ASSERT_EQ(host.project().items.size(), 1U);
    EXPECT_EQ(host.project().items[0].id, embedded::kRootFolder);
    EXPECT_EQ(host.project().items[0].parent_folder, 0);
}

TEST(Project, KeepsFoldersInFolders) {
    BundleSide bundle;
    const AEGP_ItemH outer = bundle.folder("outer");
    AEGP_ItemH inner = nullptr;
    ASSERT_EQ(bundle.item_suite->AEGP_CreateNewFolder("inner", outer, &inner), kHostErrorNone);
    bundle.folder("beside");
    const embedded::Project& project = bundle.host.project();
    EXPECT_THAT(project.children_of(embedded::kRootFolder), ElementsAre(2, 4));
    EXPECT_THAT(project.children_of(2), ElementsAre(3));
    ASSERT_NE(project.find_item("inner"), nullptr);
    EXPECT_EQ(project.find_item("inner")->id, 3);
    EXPECT_EQ(project.find_item("nobody"), nullptr);
}

TEST(Compositions, HaveAnItemInAFolder) {
    BundleSide bundle;
    AEGP_CompH comp = nullptr;
    const A_Ratio aspect{106, 100};
    ASSERT_EQ(bundle.comp_suite->AEGP_CreateComp(bundle.folder(), "shot", 720, 576, &aspect,
                                                 &bundle.four_seconds, &bundle.rate, &comp),
              kHostErrorNone);
    const AEGP_ItemH item = bundle.item_of(comp);
    AEGP_CompH again = nullptr;
    ASSERT_EQ(bundle.comp_suite->AEGP_GetCompFromItem(item, &again), kHostErrorNone);
    EXPECT_EQ(again, comp);
    const embedded::Composition& made = bundle.host.project().composition(1);
    EXPECT_EQ(made.width, 720);
    EXPECT_EQ(made.height, 576);
    EXPECT_EQ(made.pixel_aspect.num, 106);
    EXPECT_EQ(made.duration.value, 100);
    EXPECT_EQ(made.frame_rate.num, 2500);
    EXPECT_EQ(bundle.host.project().item(made.item).name, "shot");
    EXPECT_EQ(bundle.host.project().item(made.item).parent_folder, 2);
}

TEST(Layers, GoOnTop) {
    BundleSide bundle;
    const AEGP_CompH comp = bundle.comp();
    AEGP_LayerH layer = nullptr;
    ASSERT_EQ(bundle.layer_suite->AEGP_AddLayer(bundle.placeholder_item(), comp, &layer), kHostErrorNone);
    bundle.camera(comp);
    bundle.light(comp);
    EXPECT_THAT(bundle.host.project().compositions[0].layers, ElementsAre(3, 2, 1));
    const embedded::Layer& footage = bundle.host.project().layer(1);
    EXPECT_EQ(footage.kind, LayerKind::footage);
    EXPECT_EQ(footage.name, "missing.tif");
    EXPECT_EQ(footage.transfer.mode, kTransferModeNormal);
    EXPECT_EQ(footage.transfer.flags, 0);
    EXPECT_EQ(footage.duration.value, 100);
    EXPECT_FALSE(footage.is_3d());
    EXPECT_TRUE(bundle.host.project().layer(2).is_3d());
    EXPECT_EQ(bundle.host.project().layer(2).center->x, 320.0);
}

TEST(Layers, OfStillsLastAsLongAsTheirComposition) {
    BundleSide bundle;
    AEGP_FootageH still = nullptr;
    AEGP_ItemH item = nullptr;
    AEGP_LayerH layer = nullptr;
    const A_Time none{0, 30};
    bundle.footage_suite->AEGP_NewPlaceholderFootage(bundle.host.plugin_id(), "s", 1, 1, &none, &still);
    bundle.footage_suite->AEGP_AddFootageToProject(still, bundle.root(), &item);
    ASSERT_EQ(bundle.layer_suite->AEGP_AddLayer(item, bundle.comp(), &layer), kHostErrorNone);
    EXPECT_EQ(bundle.host.project().layer(1).duration.value, 100);
}

TEST(Layers, CannotContainTheirOwnComposition) {
    BundleSide bundle;
    const AEGP_CompH outer = bundle.comp("outer");
    const AEGP_CompH middle = bundle.comp("middle");
    const AEGP_CompH inner = bundle.comp("inner");
    AEGP_LayerH layer = nullptr;
    ASSERT_EQ(bundle.layer_suite->AEGP_AddLayer(bundle.item_of(middle), outer, &layer), kHostErrorNone);
    ASSERT_EQ(bundle.layer_suite->AEGP_AddLayer(bundle.item_of(inner), middle, &layer), kHostErrorNone);
    struct {
        const char* name;
        AEGP_CompH added;
        AEGP_CompH to;
        A_Boolean valid;
    } const cases[] = {
        {"to itself", outer, outer, 0},          {"to its child", outer, middle, 0},
        {"to its grandchild", outer, inner, 0},  {"to its parent again", inner, middle, 1},
        {"to its grandparent", inner, outer, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        A_Boolean valid = 7;
        EXPECT_EQ(bundle.layer_suite->AEGP_IsAddLayerValid(bundle.item_of(c.added), c.to, &valid),
                  kHostErrorNone);
        EXPECT_EQ(valid, c.valid);
    }
}

TEST(Layers, KeepTheirTimesFlagsModesAndTypes) {
    BundleSide bundle;
    const AEGP_CompH comp = bundle.comp();
    const AEGP_LayerH light = bundle.light(comp);
    const A_Time start{10, 25};
    const A_Time in_point{0, 25};
    const A_Time length{51, 25};
    EXPECT_FALSE(bundle.host.project().layer(1).timing_set);
    EXPECT_FALSE(bundle.host.project().layer(1).light_type.has_value());
    EXPECT_EQ(bundle.layer_suite->AEGP_SetLayerOffset(light, &start), kHostErrorNone);
    EXPECT_EQ(bundle.layer_suite->AEGP_SetLayerInPointAndDuration(light, kTimeModeLayer, &in_point, &length),
              kHostErrorNone);
    EXPECT_EQ(bundle.light_suite->AEGP_SetLightType(light, kLightTypePoint), kHostErrorNone);
    EXPECT_EQ(bundle.layer_suite->AEGP_SetLayerFlag(light, 2, 1), kHostErrorNone);
    const AEGP_LayerTransferMode multiply{kTransferModeMultiply, 1, 2};
    EXPECT_EQ(bundle.layer_suite->AEGP_SetLayerTransferMode(light, &multiply), kHostErrorNone);
    const embedded::Layer& layer = bundle.host.project().layer(1);
    EXPECT_TRUE(layer.timing_set);
    EXPECT_EQ(layer.offset.value, 10);
    EXPECT_EQ(layer.in_point.value, 0);
    EXPECT_EQ(layer.duration.value, 51);
    EXPECT_EQ(layer.light_type, kLightTypePoint);
    EXPECT_EQ(layer.flags, kLayerFlag3D | 2);
    EXPECT_EQ(layer.transfer.mode, kTransferModeMultiply);
    EXPECT_EQ(layer.transfer.track_matte, 2);
    EXPECT_EQ(bundle.layer_suite->AEGP_SetLayerFlag(light, kLayerFlag3D, 0), kHostErrorNone);
    EXPECT_FALSE(layer.is_3d());
}

TEST(Nulls, HaveTheGivenDurationOrTheirCompositions) {
    BundleSide bundle;
    const AEGP_CompH comp = bundle.comp();
    AEGP_LayerH layer = nullptr;
    const A_Time second{1, 1};
    EXPECT_EQ(bundle.comp_suite->AEGP_CreateNullInComp("a", comp, nullptr, &layer), kHostErrorNone);
    EXPECT_EQ(bundle.comp_suite->AEGP_CreateNullInComp("b", comp, &second, &layer), kHostErrorNone);
    EXPECT_EQ(bundle.host.project().layer(1).duration.value, 100);
    EXPECT_EQ(bundle.host.project().layer(2).duration.value, 1);
    EXPECT_EQ(bundle.host.project().layer(1).kind, LayerKind::null);
}

TEST(InputSpecs, ReturnTheirSizeAndAPathThatFitsTheBuffer) {
    BundleSide bundle;
    char path[260] = {};
    const std::string longest(259, 'p');
    const AEIO_InSpecH in = bundle.host.in_spec_handle(bundle.host.new_in_spec(longest));
    EXPECT_EQ(bundle.io_in_suite->AEGP_GetInSpecFilePath(in, path), kHostErrorNone);
    EXPECT_EQ(path, longest);
    A_long size = 7;
    EXPECT_EQ(bundle.io_in_suite->AEGP_GetInSpecSize(in, &size), kHostErrorNone);
    EXPECT_EQ(size, 0);
    EXPECT_EQ(bundle.io_in_suite->AEGP_SetInSpecSize(in, 1843200), kHostErrorNone);
    EXPECT_EQ(bundle.io_in_suite->AEGP_GetInSpecSize(in, &size), kHostErrorNone);
    EXPECT_EQ(size, 1843200);
    const AEIO_InSpecH too_long = bundle.host.in_spec_handle(bundle.host.new_in_spec(longest + "p"));
    EXPECT_EQ(bundle.io_in_suite->AEGP_GetInSpecFilePath(too_long, path), kHostErrorGeneric);
    EXPECT_EQ(path, longest);
}

TEST(OutputSpecs, ReturnAPathThatFitsTheBuffer) {
    BundleSide bundle;
    char path[260] = {};
    EXPECT_EQ(bundle.io_out_suite->AEGP_GetOutSpecFilePath(bundle.host.new_out_spec("C:\\out\\a.txl"), path),
              kHostErrorNone);
    EXPECT_STREQ(path, "C:\\out\\a.txl");
    const std::string longest(259, 'p');
    EXPECT_EQ(bundle.io_out_suite->AEGP_GetOutSpecFilePath(bundle.host.new_out_spec(longest), path),
              kHostErrorNone);
    EXPECT_EQ(path, longest);
    EXPECT_EQ(bundle.io_out_suite->AEGP_GetOutSpecFilePath(bundle.host.new_out_spec(longest + "p"), path),
              kHostErrorGeneric);
}

TEST(Names, AreCutAfter31BytesAndNoted) {
    const std::string fits(31, 'f');
    const std::string too_long(32, 'l');
    struct {
        const char* name;
        std::function<std::string(BundleSide&, const char*)> make;  // the name that the host keeps
    } const kinds[] = {
        {"folder",
         [](BundleSide& b, const char* name) {
             b.folder(name);
             return b.host.project().items.back().name;
         }},
        {"composition",
         [](BundleSide& b, const char* name) {
             b.comp(name);
             return b.host.project().items.back().name;
         }},
        {"placeholder",
         [](BundleSide& b, const char* name) {
             b.placeholder(name);
             return b.host.project().footage.back().name;
         }},
        {"camera",
         [](BundleSide& b, const char* name) {
             AEGP_LayerH layer = nullptr;
             b.comp_suite->AEGP_CreateCameraInComp(name, {0.0, 0.0}, b.comp(), &layer);
             return b.host.project().layers.back().name;
         }},
        {"light",
         [](BundleSide& b, const char* name) {
             AEGP_LayerH layer = nullptr;
             b.comp_suite->AEGP_CreateLightInComp(name, {0.0, 0.0}, b.comp(), &layer);
             return b.host.project().layers.back().name;
         }},
        {"null",
         [](BundleSide& b, const char* name) {
             AEGP_LayerH layer = nullptr;
             b.comp_suite->AEGP_CreateNullInComp(name, b.comp(), nullptr, &layer);
             return b.host.project().layers.back().name;
         }},
    };
    for (const auto& kind : kinds) {
        SCOPED_TRACE(kind.name);
        BundleSide bundle;
        bundle.utility_suite->AEGP_StartUndoGroup("test");
        EXPECT_EQ(kind.make(bundle, fits.c_str()), fits);
        EXPECT_EQ(bundle.count(RuleViolation::name_cut), 0U);
        EXPECT_EQ(kind.make(bundle, too_long.c_str()), too_long.substr(0, 31));
        EXPECT_EQ(bundle.count(RuleViolation::name_cut), 1U);
        EXPECT_TRUE(bundle.host.conformance().clean()) << "a cut name is a note, not a violation";
    }
}

}  // namespace
