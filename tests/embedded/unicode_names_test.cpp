// "AEGP Item Suite" 13 and "AEGP Comp Suite" 15, which only current hosts offer; the aim of cameras and
// lights; the preference for stills; and layers that the host does not want.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "embedded/testing.h"
#include "host/current_interface.h"

namespace {

using embedded::HostGeneration;
using embedded::RuleViolation;
using testing::IsEmpty;

constexpr A_Ratio kSquare{1, 1};
constexpr A_Ratio kRate{2500, 100};
constexpr A_Time kFourSeconds{100, 25};

embedded::HostOptions of(HostGeneration generation) {
    embedded::HostOptions options;
    options.generation = generation;
    return options;
}

/// A host with an open undo group and a composition.
struct Side {
    explicit Side(const embedded::HostOptions& options = {}) : host(options) {
        utility = acquire<AEGP_UtilitySuite7>("AEGP Utility Suite", 7);
        project = acquire<AEGP_ProjSuite8>("AEGP Proj Suite", 8);
        items = acquire<AEGP_ItemSuite13>("AEGP Item Suite", 13);
        comps = acquire<AEGP_CompSuite15>("AEGP Comp Suite", 15);
        narrow_comps = acquire<AEGP_CompSuite9>("AEGP Comp Suite", 9);
        layers = acquire<AEGP_LayerSuite11>("AEGP Layer Suite", 11);
        lights = acquire<AEGP_LightSuite2>("AEGP Light Suite", 2);
        utility->AEGP_StartUndoGroup("test");
        narrow_comps->AEGP_CreateComp(root(), "comp", 640, 480, &kSquare, &kFourSeconds, &kRate, &comp);
        narrow_comps->AEGP_GetItemFromComp(comp, &item);
    }
    template <class Table>
    const Table* acquire(const char* name, A_long version) {
        const void* table = nullptr;
        host.basic_suite()->AcquireSuite(name, version, &table);
        return static_cast<const Table*>(table);
    }
    // Both versions of the suite have the function in the same slot.
    AEGP_ItemH root() {
        const auto* suite = acquire<AEGP_ProjSuite5>("AEGP Proj Suite", 5);
        AEGP_ProjectH handle = nullptr;
        AEGP_ItemH folder = nullptr;
        if (suite != nullptr) {
            suite->AEGP_GetProjectByIndex(0, &handle);
            suite->AEGP_GetProjectRootFolder(handle, &folder);
        } else {
            project->AEGP_GetProjectByIndex(0, &handle);
            project->AEGP_GetProjectRootFolder(handle, &folder);
        }
        return folder;
    }
    AEGP_LayerH camera() {
        AEGP_LayerH layer = nullptr;
        narrow_comps->AEGP_CreateCameraInComp("camera", {1, 2}, comp, &layer);
        return layer;
    }
    AEGP_LayerH light(AEGP_LightType type) {
        AEGP_LayerH layer = nullptr;
        narrow_comps->AEGP_CreateLightInComp("light", {1, 2}, comp, &layer);
        lights->AEGP_SetLightType(layer, type);
        return layer;
    }
    const embedded::Layer& last() { return host.project().layers.back(); }

    embedded::TestHost host;
    const AEGP_UtilitySuite7* utility = nullptr;
    const AEGP_ProjSuite8* project = nullptr;
    const AEGP_ItemSuite13* items = nullptr;
    const AEGP_CompSuite15* comps = nullptr;
    const AEGP_CompSuite9* narrow_comps = nullptr;
    const AEGP_LayerSuite11* layers = nullptr;
    const AEGP_LightSuite2* lights = nullptr;
    AEGP_CompH comp = nullptr;
    AEGP_ItemH item = nullptr;
};

TEST(UnicodeNames, AreTakenByCurrentHostsOnly) {
    for (const HostGeneration generation : {HostGeneration::classic, HostGeneration::today}) {
        const Side side(of(generation));
        EXPECT_EQ(side.items != nullptr, generation == HostGeneration::today);
        EXPECT_EQ(side.comps != nullptr, generation == HostGeneration::today);
        EXPECT_NE(side.narrow_comps, nullptr) << "both have the classic version";
    }
}

TEST(UnicodeNames, MakeNamesOfAnyLength) {
    const std::u16string name = u"\u00E9toile \xD83C\xDFAC " + std::u16string(60, u'x');
    const std::string expected = "\u00E9toile \U0001F3AC " + std::string(60, 'x');
    Side side;
    AEGP_ItemH folder = nullptr;
    AEGP_CompH comp = nullptr;
    AEGP_LayerH layer = nullptr;
    EXPECT_EQ(side.items->AEGP_CreateNewFolder(name.c_str(), nullptr, &folder), 0);
    EXPECT_EQ(side.host.project().items.back().name, expected);
    EXPECT_EQ(side.host.project().items.back().parent_folder, embedded::kRootFolder) << "null is the root";
    EXPECT_EQ(side.comps->AEGP_CreateComp(folder, name.c_str(), 8, 8, &kSquare, &kFourSeconds, &kRate, &comp),
              0);
    EXPECT_EQ(side.host.project().items.back().name, expected);
    EXPECT_EQ(side.host.project().items.back().parent_folder, side.host.project().items.back().id - 1);
    EXPECT_EQ(side.comps->AEGP_CreateCameraInComp(name.c_str(), {1, 2}, comp, &layer), 0);
    EXPECT_EQ(side.last().name, expected);
    EXPECT_EQ(side.comps->AEGP_CreateLightInComp(name.c_str(), {1, 2}, comp, &layer), 0);
    EXPECT_EQ(side.last().name, expected);
    EXPECT_EQ(side.comps->AEGP_CreateNullInComp(name.c_str(), comp, nullptr, &layer), 0);
    EXPECT_EQ(side.last().name, expected);
    EXPECT_EQ(side.items->AEGP_SetItemName(side.item, u"renamed \u00E9"), 0);
    EXPECT_EQ(side.host.project().item(2).name, "renamed \u00E9");
    EXPECT_TRUE(side.host.conformance().clean()) << side.host.conformance().to_text();
    EXPECT_EQ(side.host.conformance().count(RuleViolation::name_cut), 0U);
    side.utility->AEGP_EndUndoGroup();
    EXPECT_EQ(side.host.validate(), std::nullopt);
}

TEST(UnicodeNames, MustBeUtf16) {
    const A_UTF16Char half[] = {u'a', 0xD83C, 0};
    Side side;
    for (const A_UTF16Char* name :
         {static_cast<const A_UTF16Char*>(half), static_cast<const A_UTF16Char*>(nullptr)}) {
        AEGP_ItemH folder = nullptr;
        AEGP_LayerH layer = nullptr;
        EXPECT_EQ(side.items->AEGP_CreateNewFolder(name, nullptr, &folder), 3);
        EXPECT_EQ(side.comps->AEGP_CreateCameraInComp(name, {1, 2}, side.comp, &layer), 3);
        EXPECT_EQ(side.items->AEGP_SetItemName(side.item, name), 3);
    }
    EXPECT_EQ(side.host.project().items.size(), 2U);
    EXPECT_THAT(side.host.project().layers, IsEmpty());
    EXPECT_EQ(side.host.conformance().count(RuleViolation::bad_argument), 6U);
    EXPECT_EQ(side.host.conformance().violations()[0].reason,
              "name is not UTF-16: unit 1 is half of a pair without the other half");
}

TEST(UnicodeNames, AreNotForTheRootFolder) {
    Side side;
    EXPECT_EQ(side.items->AEGP_SetItemName(side.root(), u"a"), 3);
    EXPECT_EQ(side.host.conformance().count(RuleViolation::bad_argument), 1U);
}

TEST(UnicodeNames, AreLoggedWithTheVersionOfTheirSuite) {
    Side side;
    std::vector<std::string> lines;
    side.host.log_calls([&lines](std::string_view line) { lines.emplace_back(line); });
    AEGP_ItemH folder = nullptr;
    AEGP_CompH comp = nullptr;
    side.items->AEGP_CreateNewFolder(u"\u00E9", nullptr, &folder);
    side.comps->AEGP_GetCompFromItem(side.item, &comp);
    side.narrow_comps->AEGP_GetCompFromItem(side.item, &comp);
    ASSERT_EQ(lines.size(), 3U);
    const std::string comp_suite = R"("suite":"AEGP Comp Suite","version":)";
    EXPECT_THAT(lines[0], testing::HasSubstr(R"("suite":"AEGP Item Suite","version":13,)"));
    EXPECT_THAT(lines[0], testing::HasSubstr("\"name\":\"\u00E9\""));
    EXPECT_THAT(lines[1], testing::HasSubstr(comp_suite + R"(15,"function":"AEGP_GetCompFromItem")"));
    EXPECT_THAT(lines[2], testing::HasSubstr(comp_suite + R"(9,"function":"AEGP_GetCompFromItem")"));
}

TEST(Aim, CamerasOfClassicHostsHaveItAndThoseOfCurrentHostsDoNot) {
    for (const HostGeneration generation : {HostGeneration::classic, HostGeneration::today}) {
        Side side(of(generation));
        const AEGP_LayerH camera = side.camera();
        EXPECT_EQ(side.last().looks_at_point_of_interest(), generation == HostGeneration::classic);
        EXPECT_EQ(side.layers->AEGP_SetLayerFlag(camera, kLayerFlagLookAtPointOfInterest, 1), 0);
        EXPECT_TRUE(side.last().looks_at_point_of_interest());
        EXPECT_TRUE(side.last().is_3d());
    }
}

TEST(Aim, LightsOfClassicHostsHaveItByTheirType) {
    const struct {
        AEGP_LightType type;
        bool aimed;
    } cases[] = {{kLightTypeParallel, true},
                 {kLightTypeSpot, true},
                 {kLightTypePoint, false},
                 {kLightTypeAmbient, false}};
    for (const auto& c : cases) {
        for (const HostGeneration generation : {HostGeneration::classic, HostGeneration::today}) {
            Side side(of(generation));
            side.light(c.type);
            EXPECT_EQ(side.last().looks_at_point_of_interest(),
                      c.aimed && generation == HostGeneration::classic)
                << c.type;
        }
    }
}

TEST(StillDuration, IsThatOfNullsMadeWithoutOne) {
    embedded::HostOptions options;
    for (const bool set : {false, true}) {
        if (set) {
            options.still_duration = A_Time{7, 25};
        }
        Side side(options);
        AEGP_LayerH layer = nullptr;
        const A_Time given{3, 25};
        EXPECT_EQ(side.comps->AEGP_CreateNullInComp(u"n", side.comp, nullptr, &layer), 0);
        EXPECT_EQ(side.last().duration.value, set ? 7 : 100) << "without a preference, the composition's";
        EXPECT_EQ(side.comps->AEGP_CreateNullInComp(u"n", side.comp, &given, &layer), 0);
        EXPECT_EQ(side.last().duration.value, 3);
        side.camera();
        EXPECT_EQ(side.last().duration.value, 100) << "not of cameras";
    }
}

TEST(RefusedLayers, AreNotAddedWhateverTheBundleDoes) {
    embedded::HostOptions options;
    options.layers_refused = {2};
    Side side(options);
    AEGP_CompH inner = nullptr;
    AEGP_ItemH inner_item = nullptr;
    side.comps->AEGP_CreateComp(nullptr, u"inner", 8, 8, &kSquare, &kFourSeconds, &kRate, &inner);
    side.comps->AEGP_GetItemFromComp(inner, &inner_item);
    AEGP_LayerH layer = nullptr;
    A_Boolean valid = 7;
    EXPECT_EQ(side.layers->AEGP_IsAddLayerValid(inner_item, side.comp, &valid), 0);
    EXPECT_EQ(valid, 1);
    EXPECT_EQ(side.layers->AEGP_IsAddLayerValid(inner_item, side.comp, &valid), 0);
    EXPECT_EQ(valid, 0);
    EXPECT_EQ(side.layers->AEGP_AddLayer(inner_item, side.comp, &layer), 3);
    EXPECT_THAT(side.host.project().layers, IsEmpty());
    EXPECT_EQ(side.host.conformance().count(RuleViolation::bad_argument), 1U);
}

}  // namespace
