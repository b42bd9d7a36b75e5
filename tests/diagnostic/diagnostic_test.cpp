#include "diagnostic/diagnostic.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace {

using diagnostic::Code;
using diagnostic::CodeInfo;
using diagnostic::CodeRow;
using diagnostic::Diagnostic;
using diagnostic::Severity;
using testing::ElementsAre;
using testing::IsEmpty;

enum class Fruit { bruised, unripe };

constexpr std::array<CodeRow<Fruit>, 2> kFruit = {{
    {Fruit::bruised, {"bruised", Severity::warning, "The fruit was dropped.", "Eat it today."}},
    {Fruit::unripe, {"unripe", Severity::error, "The fruit was picked early."}},
}};

const CodeInfo& code_info(Fruit code) {
    return kFruit[static_cast<std::size_t>(code)].info;
}

enum class Nut { unripe };

constexpr std::array<CodeRow<Nut>, 1> kNuts = {{
    {Nut::unripe, {"unripe", Severity::error, "The nut was picked early."}},
}};

const CodeInfo& code_info(Nut code) {
    return kNuts[static_cast<std::size_t>(code)].info;
}

TEST(CodeTable, HasOneRowForEachCodeInOrder) {
    static_assert(in_order(kFruit, Fruit::unripe));
    static_assert(!in_order(kFruit, Fruit::bruised), "a row too many");
    constexpr std::array<CodeRow<Fruit>, 2> kSwapped = {{kFruit[1], kFruit[0]}};
    static_assert(!in_order(kSwapped, Fruit::unripe), "the order of the enumeration");
    constexpr std::array<CodeRow<Fruit>, 1> kShort = {{kFruit[0]}};
    static_assert(!in_order(kShort, Fruit::unripe), "a row too few");
}

TEST(Code, ComparesWithTheEnumeratorsOfItsDomainOnly) {
    const Code code = Fruit::unripe;
    EXPECT_TRUE(code == Fruit::unripe);
    EXPECT_FALSE(code == Fruit::bruised);
    EXPECT_FALSE(code == Nut::unripe) << "the same name in another table is another code";
}

TEST(Diagnostic, TakesSeverityAndRemedyFromItsCode) {
    const Diagnostic made =
        diagnostic::make(Fruit::bruised, {"bowl", 3}, "the apple has a brown spot", {"bowl"});
    EXPECT_EQ(made.severity(), Severity::warning);
    EXPECT_EQ(made.at.file, "bowl");
    EXPECT_EQ(made.at.offset_bytes, 3);
    EXPECT_EQ(made.reason, "the apple has a brown spot");
    EXPECT_THAT(made.within, ElementsAre("bowl"));
    EXPECT_THAT(made.effects, ElementsAre("Eat it today."));
    EXPECT_EQ(made.count, 1);
}

TEST(Diagnostic, HasNoEffectWhereItsCodeHasNoRemedy) {
    EXPECT_THAT(diagnostic::make(Fruit::unripe, {}, "the pear is hard").effects, IsEmpty());
}

TEST(SeverityName, IsTheWordOfTheJson) {
    EXPECT_STREQ(diagnostic::severity_name(Severity::error), "error");
    EXPECT_STREQ(diagnostic::severity_name(Severity::loss), "loss");
    EXPECT_STREQ(diagnostic::severity_name(Severity::warning), "warning");
    EXPECT_STREQ(diagnostic::severity_name(Severity::note), "note");
}

}  // namespace
