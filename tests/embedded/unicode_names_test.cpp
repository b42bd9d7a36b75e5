// "AEGP Item Suite" 13 and "AEGP Comp Suite" 15, which only current hosts offer.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "embedded/composition_side.h"

namespace {

using embedded::HostGeneration;
using embedded::RuleViolation;
using testing::IsEmpty;

TEST(UnicodeNames, AreOfferedByCurrentHostsOnly) {
    for (const HostGeneration generation : {HostGeneration::classic, HostGeneration::today}) {
        const CompositionSide side({.generation = generation});
        EXPECT_EQ(side.items != nullptr, generation == HostGeneration::today);
        EXPECT_EQ(side.comps != nullptr, generation == HostGeneration::today);
        EXPECT_NE(side.narrow_comps, nullptr) << "both have the classic version";
    }
}

TEST(UnicodeNames, MakeNamesOfAnyLength) {
    const std::u16string name = u"\u00E9toile \xD83C\xDFAC " + std::u16string(60, u'x');
    const std::string expected = "\u00E9toile \U0001F3AC " + std::string(60, 'x');
    CompositionSide side;
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
    CompositionSide side;
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
    CompositionSide side;
    EXPECT_EQ(side.items->AEGP_SetItemName(side.root(), u"a"), 3);
    EXPECT_EQ(side.host.conformance().count(RuleViolation::bad_argument), 1U);
}

TEST(UnicodeNames, AreLoggedWithTheVersionOfTheirSuite) {
    CompositionSide side;
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

}  // namespace
