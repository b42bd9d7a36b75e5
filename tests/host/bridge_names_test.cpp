// Names in UTF-16, and the aim of cameras and lights.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/bridged_plugin.h"
#include "host/one_refused_allocation.h"
#include "support/aimed_lights.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kNotAimed =
    "A camera or light does not turn towards its point of interest, because After Effects refused the "
    "setting. Select it and choose Layer > Transform > Auto-Orient.";

constexpr A_Ratio kSquare = {1, 1};
constexpr A_Ratio kRate = {2500, 100};
constexpr A_Time kSecond = {25, 25};

class BridgeNames : public ::testing::Test {
  protected:
    BridgeNames() {
        host.offer_named_suites();
        acquire();
    }
    void acquire() {
        bridge = bridge_over(host);
        items = acquired<AEGP_ItemSuite10>(bridge, "AEGP Item Suite", 10);
        comps = acquired<AEGP_CompSuite9>(bridge, "AEGP Comp Suite", 9);
        lights = acquired<AEGP_LightSuite2>(bridge, "AEGP Light Suite", 2);
        footage = acquired<AEGP_FootageSuite7>(bridge, "AEGP Footage Suite", 7);
        host.calls.clear();
        host.traffic.clear();
    }
    AEGP_LayerH camera(const char* name = "c") {
        AEGP_LayerH layer = nullptr;
        EXPECT_EQ(comps->AEGP_CreateCameraInComp(name, {1, 2}, comp, &layer), 0);
        return layer;
    }
    /// Makes a placeholder and its item; the host yields both.
    void placeholder(const char* name) {
        static AEGP_FootageH made;
        static AEGP_ItemH item;
        made = some_handle<AEGP_FootageH>(0x40);
        item = some_handle<AEGP_ItemH>(0x50);
        EXPECT_EQ(footage->AEGP_NewPlaceholderFootage(7, name, 64, 48, &kSecond, &made), 0);
        EXPECT_EQ(footage->AEGP_AddFootageToProject(made, nullptr, &item), 0);
    }

    CurrentHost host;
    SPBasicSuite* bridge = nullptr;
    const AEGP_ItemSuite10* items = nullptr;
    const AEGP_CompSuite9* comps = nullptr;
    const AEGP_LightSuite2* lights = nullptr;
    const AEGP_FootageSuite7* footage = nullptr;
    const AEGP_CompH comp = some_handle<AEGP_CompH>(0x30);
    const AEGP_ItemH folder = some_handle<AEGP_ItemH>(0x20);
};

TEST_F(BridgeNames, ArriveWholeInUtf16) {
    const struct {
        const char* why;
        std::string name;
        std::string wide;
    } cases[] = {
        {"ASCII", "Main", "u\"Main\""},
        {"empty", "", "u\"\""},
        {"UTF-8", "\xC3\xA9toile \xF0\x9F\x8E\xAC", "u\"\\u00e9toile \\ud83c\\udfac\""},
        {"Windows-1252", "caf\xE9 \x80", "u\"caf\\u00e9 \\u20ac\""},
        {"60 characters", std::string(60, 'x'), "u\"" + std::string(60, 'x') + "\""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        host.calls.clear();
        const char* name = c.name.c_str();
        AEGP_LayerH light = nullptr;
        EXPECT_EQ(items->AEGP_CreateNewFolder(name, folder, nullptr), 0);
        EXPECT_EQ(comps->AEGP_CreateComp(folder, name, 64, 48, &kSquare, &kSecond, &kRate, nullptr), 0);
        EXPECT_EQ(comps->AEGP_CreateLightInComp(name, {1, 2}, comp, &light), 0);
        EXPECT_EQ(comps->AEGP_CreateNullInComp(name, comp, nullptr, nullptr), 0);
        EXPECT_NE(camera(name), nullptr);
        ASSERT_EQ(host.calls.size(), 6U);
        EXPECT_EQ(host.calls[0], "CreateNewFolder(" + c.wide + ", 0x20, null)");
        EXPECT_THAT(host.calls[1], ::testing::StartsWith("CreateComp(0x20, " + c.wide + ", 64, 48, "));
        EXPECT_EQ(host.calls[2], "CreateLightInComp(" + c.wide + ", (1, 2), 0x30) -> light");
        EXPECT_EQ(host.calls[3], "CreateNullInComp(" + c.wide + ", 0x30, null, null)");
        EXPECT_EQ(host.calls[4], "CreateCameraInComp(" + c.wide + ", (1, 2), 0x30) -> camera");
    }
}

TEST_F(BridgeNames, ThatAreNullStayNull) {
    EXPECT_EQ(items->AEGP_CreateNewFolder(nullptr, folder, nullptr), 0);
    EXPECT_THAT(host.calls, ElementsAre("CreateNewFolder(null, 0x20, null)"));
}

TEST_F(BridgeNames, NeedMemory) {
    const std::string name(100, 'x');
    const OneRefusedAllocation memory(0);
    EXPECT_EQ(items->AEGP_CreateNewFolder(name.c_str(), folder, nullptr), 4);
    EXPECT_TRUE(memory.refused());
    EXPECT_THAT(host.calls, IsEmpty());
}

TEST_F(BridgeNames, ReturnTheHostsErrors) {
    for (const char* function : {"CreateNewFolder", "CreateComp", "CreateCameraInComp", "CreateLightInComp",
                                 "CreateNullInComp", "GetCompFromItem", "GetItemFromComp", "SetLightType"}) {
        host.fail_every(function, 4711);
    }
    AEGP_LayerH layer = nullptr;
    EXPECT_EQ(items->AEGP_CreateNewFolder("a", folder, nullptr), 4711);
    EXPECT_EQ(comps->AEGP_CreateComp(folder, "a", 1, 1, &kSquare, &kSecond, &kRate, nullptr), 4711);
    EXPECT_EQ(comps->AEGP_CreateCameraInComp("a", {1, 2}, comp, &layer), 4711);
    EXPECT_EQ(comps->AEGP_CreateLightInComp("a", {1, 2}, comp, &layer), 4711);
    EXPECT_EQ(comps->AEGP_CreateNullInComp("a", comp, nullptr, nullptr), 4711);
    EXPECT_EQ(comps->AEGP_GetCompFromItem(folder, nullptr), 4711);
    EXPECT_EQ(comps->AEGP_GetItemFromComp(comp, nullptr), 4711);
    EXPECT_EQ(lights->AEGP_SetLightType(some_handle<AEGP_LayerH>(1), kLightTypeSpot), 4711);
    EXPECT_TRUE(host.calls_of({"SetLayerFlag"}).empty()) << "nothing was made that could be aimed";
}

TEST_F(BridgeNames, NeedTheirSuites) {
    bridge->ReleaseSuite("AEGP Item Suite", 10);
    bridge->ReleaseSuite("AEGP Comp Suite", 9);
    bridge->ReleaseSuite("AEGP Light Suite", 2);
    AEGP_LayerH layer = nullptr;
    EXPECT_EQ(items->AEGP_CreateNewFolder("a", folder, nullptr), 13);
    EXPECT_EQ(comps->AEGP_CreateComp(folder, "a", 1, 1, &kSquare, &kSecond, &kRate, nullptr), 13);
    EXPECT_EQ(comps->AEGP_CreateCameraInComp("a", {1, 2}, comp, &layer), 13);
    EXPECT_EQ(comps->AEGP_CreateLightInComp("a", {1, 2}, comp, &layer), 13);
    EXPECT_EQ(comps->AEGP_CreateNullInComp("a", comp, nullptr, nullptr), 13);
    EXPECT_EQ(lights->AEGP_SetLightType(some_handle<AEGP_LayerH>(1), kLightTypeSpot), 13);
    EXPECT_THAT(host.calls, IsEmpty());
}

// ---- hosts without these suites

TEST_F(BridgeNames, PassAsTheyAreWhereTheHostTakesNarrowOnes) {
    host.withhold_suite("AEGP Comp Suite", 15);
    acquire();
    AEGP_LayerH layer = nullptr;
    EXPECT_EQ(comps->AEGP_CreateComp(folder, "\xE9", 1, 1, &kSquare, &kSecond, &kRate, nullptr), 0);
    EXPECT_EQ(comps->AEGP_CreateLightInComp("\xE9", {1, 2}, comp, &layer), 0);
    EXPECT_EQ(comps->AEGP_CreateCameraInComp("\xE9", {1, 2}, comp, &layer), 0);
    ASSERT_EQ(host.calls.size(), 4U);
    EXPECT_THAT(host.calls[0], ::testing::StartsWith("CreateComp(0x20, \"\xE9\", 1, 1, "));
    EXPECT_EQ(host.calls[1], "CreateLightInComp(\"\xE9\", (1, 2), 0x30) -> light");
    EXPECT_EQ(host.calls[2], "CreateCameraInComp(\"\xE9\", (1, 2), 0x30) -> camera");
    EXPECT_EQ(host.calls[3], "SetLayerFlag(camera, 8192, 1)") << "the camera is aimed all the same";
    bridge->ReleaseSuite("AEGP Comp Suite", 9);
    EXPECT_EQ(host.held("AEGP Comp Suite", 9), 0);
}

// ---- cameras and lights

TEST_F(BridgeNames, ACameraTurnsTowardsItsPointOfInterest) {
    EXPECT_NE(camera(), nullptr);
    EXPECT_THAT(host.traffic, ElementsAre("CreateCameraInComp(u\"c\", (1, 2), 0x30) -> camera",
                                          "acquire AEGP Layer Suite 11", "SetLayerFlag(camera, 8192, 1)",
                                          "release AEGP Layer Suite 11"));
    EXPECT_THAT(host.reports, IsEmpty());
}

TEST_F(BridgeNames, ACameraThatWasNotMadeIsNotAimed) {
    host.always_yield_nothing("CreateCameraInComp");
    EXPECT_EQ(camera(), nullptr);
    EXPECT_TRUE(host.calls_of({"SetLayerFlag"}).empty());
    EXPECT_THAT(host.reports, IsEmpty());
}

TEST_F(BridgeNames, SpotAndParallelLightsTurnTowardsTheirPointsOfInterest) {
    for (const AimedLight& light : kAimedLights) {
        host.calls.clear();
        EXPECT_EQ(lights->AEGP_SetLightType(host.handle<AEGP_LayerH>("light"), light.type), 0);
        std::vector<std::string> expected = {"SetLightType(light, " + std::to_string(light.type) + ")"};
        if (light.aimed) {
            expected.emplace_back("SetLayerFlag(light, 8192, 1)");
        }
        EXPECT_EQ(host.calls, expected) << light.type;
    }
}

TEST_F(BridgeNames, AnAimThatIsRefusedIsReportedAndTheLayerStays) {
    host.fail_every("SetLayerFlag", 5);
    EXPECT_NE(camera(), nullptr);
    EXPECT_EQ(lights->AEGP_SetLightType(host.handle<AEGP_LayerH>("light"), kLightTypeSpot), 0);
    EXPECT_THAT(host.reports, ElementsAre(kNotAimed, kNotAimed));
    host.reports.clear();
    host.withhold_suite("AEGP Layer Suite", 11);
    EXPECT_NE(camera(), nullptr);
    EXPECT_THAT(host.reports, ElementsAre(kNotAimed));
}

// ---- placeholders

TEST_F(BridgeNames, OfPlaceholdersAreSetOnTheItemIfTheNarrowOneIsSpoilt) {
    const struct {
        const char* why;
        std::string name;
        std::string wide;  ///< empty: not renamed
    } cases[] = {
        {"ASCII of 31 bytes arrives", std::string(31, 'x'), ""},
        {"ASCII of 32 bytes would lose one", std::string(32, 'x'), "u\"" + std::string(32, 'x') + "\""},
        {"UTF-8", "caf\xC3\xA9.tga", "u\"caf\\u00e9.tga\""},
        {"Windows-1252", "caf\xE9.tga", "u\"caf\\u00e9.tga\""},
        {"a character that the importer has cut", std::string(31, 'x') + "\xC3",
         "u\"" + std::string(31, 'x') + "\""},
        {"the same of four bytes", std::string(29, 'x') + "\xF0\x9F\x8E",
         "u\"" + std::string(29, 'x') + "\""},
        {"a short name is not cut", "x\xC3", "u\"x\\u00c3\""},
        {"longer than an importer makes them", std::string(64, 'x'), ""},
    };
    for (const auto& c : cases) {
        host.calls.clear();
        placeholder(c.name.c_str());
        const auto renamed = host.calls_of({"SetItemName"});
        if (c.wide.empty()) {
            EXPECT_THAT(renamed, IsEmpty()) << c.why;
        } else {
            EXPECT_THAT(renamed, ElementsAre("SetItemName(0x50, " + c.wide + ")")) << c.why;
        }
        EXPECT_THAT(host.calls.front(),
                    ::testing::StartsWith("NewPlaceholderFootage(7, \"" + c.name + "\", 64, 48, "));
    }
    EXPECT_EQ(host.held("AEGP Item Suite", 13), 1) << "the one of this test";
}

TEST_F(BridgeNames, OfPlaceholdersGoToTheirOwnItemsOnly) {
    AEGP_FootageH made = some_handle<AEGP_FootageH>(0x40);
    AEGP_ItemH item = some_handle<AEGP_ItemH>(0x50);
    EXPECT_EQ(footage->AEGP_NewPlaceholderFootage(7, "\xE9", 64, 48, &kSecond, &made), 0);
    EXPECT_EQ(footage->AEGP_AddFootageToProject(some_handle<AEGP_FootageH>(0x41), nullptr, &item), 0);
    EXPECT_THAT(host.calls_of({"SetItemName"}), IsEmpty()) << "other footage";
    EXPECT_EQ(footage->AEGP_AddFootageToProject(made, nullptr, &item), 0);
    EXPECT_EQ(footage->AEGP_AddFootageToProject(made, nullptr, &item), 0);
    EXPECT_THAT(host.calls_of({"SetItemName"}), ElementsAre("SetItemName(0x50, u\"\\u00e9\")")) << "once";
}

TEST_F(BridgeNames, OfPlaceholdersStayNarrowWithoutTheSuite) {
    host.withhold_suite("AEGP Item Suite", 13);
    placeholder("\xE9");
    EXPECT_EQ(host.calls.size(), 2U);
    EXPECT_THAT(host.reports, IsEmpty());
}

TEST_F(BridgeNames, OfPlaceholdersThatTheHostRefusesChangeNothing) {
    host.fail_every("SetItemName", 6);
    placeholder("\xE9");
    EXPECT_THAT(host.calls.back(), ::testing::EndsWith(" = 6"));
    EXPECT_THAT(host.reports, IsEmpty());
}

}  // namespace
