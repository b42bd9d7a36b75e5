// The host that the bundle meets: its options as text, faults, preferences.

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <stdexcept>

#include "embedded/bundle_side.h"

namespace {

using embedded::HostOptions;

TEST(HostOptions, ReadInterfaceVersions) {
    struct {
        const char* name;
        const char* text;
        bool valid;
        A_long major;
        A_long minor;
    } const cases[] = {
        {"two numbers", "9.31", true, 9, 31},
        {"two digits each", "13.27", true, 13, 27},
        {"no full stop", "9", false, 0, 0},
        {"nothing after it", "9.", false, 0, 0},
        {"nothing before it", ".9", false, 0, 0},
        {"letters", "9.x", false, 0, 0},
        {"three numbers", "9.3.1", false, 0, 0},
        {"negative", "-9.1", false, 0, 0},
        {"empty", "", false, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto version = embedded::parse_interface_version(c.text);
        ASSERT_EQ(version.has_value(), c.valid);
        if (version) {
            EXPECT_EQ(version->major, c.major);
            EXPECT_EQ(version->minor, c.minor);
        }
    }
}

TEST(HostOptions, ReadKindsOfHosts) {
    using embedded::HostGeneration;
    struct {
        const char* name;
        const char* text;
        std::optional<embedded::HostKind> kind;
    } const cases[] = {
        {"a generation has its usual version", "classic", {{HostGeneration::classic, {11, 0}}}},
        {"so has the other generation", "today", {{HostGeneration::today, {13, 0}}}},
        {"a version has its generation", "9.31", {{HostGeneration::classic, {9, 31}}}},
        {"the last classic version", "12.99", {{HostGeneration::classic, {12, 99}}}},
        {"the first current version", "13.0", {{HostGeneration::today, {13, 0}}}},
        {"both", "today:25.3", {{HostGeneration::today, {25, 3}}}},
        {"both, in a combination that never existed", "today:9.31", {{HostGeneration::today, {9, 31}}}},
        {"empty", "", std::nullopt},
        {"capitals", "Today", std::nullopt},
        {"an unknown word", "tomorrow", std::nullopt},
        {"an unknown word with a version", "tomorrow:25.3", std::nullopt},
        {"half a version", "today:25", std::nullopt},
        {"no version", "today:", std::nullopt},
        {"no generation", ":25.3", std::nullopt},
        {"a blank", "today 25.3", std::nullopt},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(embedded::parse_host(c.text), c.kind) << c.name;
    }
}

TEST(HostOptions, HaveTheUsualVersionOfTheirGeneration) {
    HostOptions options;
    for (const auto generation : {embedded::HostGeneration::classic, embedded::HostGeneration::today}) {
        options.generation = generation;
        EXPECT_EQ(options.interface_version(), embedded::usual_version(generation));
    }
    options.version = {12, 5};
    EXPECT_EQ(options.interface_version(), (embedded::InterfaceVersion{12, 5}));
}

TEST(HostOptions, ReadSuiteNames) {
    const auto suite = embedded::parse_suite_name("AEGP Comp Suite:9");
    ASSERT_TRUE(suite.has_value());
    EXPECT_EQ(suite->name, "AEGP Comp Suite");
    EXPECT_EQ(suite->version, 9);
    for (const char* wrong : {"", ":9", "AEGP Comp Suite", "AEGP Comp Suite:", "AEGP Comp Suite:x"}) {
        EXPECT_FALSE(embedded::parse_suite_name(wrong).has_value()) << wrong;
    }
}

TEST(HostOptions, ReadFaults) {
    const auto fault = embedded::parse_fault("AEGP_CreateComp:2:4");
    ASSERT_TRUE(fault.has_value());
    EXPECT_EQ(fault->function, "AEGP_CreateComp");
    EXPECT_EQ(fault->nth, 2);
    EXPECT_EQ(fault->code, 4);
    EXPECT_TRUE(embedded::parse_fault("AcquireSuite:1:-7").has_value());
    struct {
        const char* name;
        const char* text;
    } const wrong[] = {
        {"nothing", ""},
        {"no code", "AEGP_CreateComp:2"},
        {"call 0", "AEGP_CreateComp:0:4"},
        {"a code that means success", "AEGP_CreateComp:1:0"},
        {"a function that this host does not have", "AEGP_Nothing:1:4"},
        {"a function that cannot fail", "sin:1:4"},
        {"a count that is not a number", "AEGP_CreateComp:x:4"},
    };
    for (const auto& c : wrong) {
        EXPECT_FALSE(embedded::parse_fault(c.text).has_value()) << c.name;
    }
}

TEST(Faults, AnswerTheNthCallAloneAndChangeNothing) {
    HostOptions options;
    options.faults = {{"AEGP_CreateNewFolder", 2, 77}};
    BundleSide bundle(options);
    bundle.utility_suite->AEGP_StartUndoGroup("test");
    AEGP_ItemH first = nullptr;
    AEGP_ItemH second = nullptr;
    AEGP_ItemH third = nullptr;
    EXPECT_EQ(bundle.item_suite->AEGP_CreateNewFolder("a", bundle.root(), &first), kHostErrorNone);
    EXPECT_EQ(bundle.item_suite->AEGP_CreateNewFolder("b", bundle.root(), &second), 77);
    EXPECT_EQ(bundle.item_suite->AEGP_CreateNewFolder("c", bundle.root(), &third), kHostErrorNone);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(second, nullptr) << "a call answered by a fault must change nothing";
    EXPECT_NE(third, nullptr);
    EXPECT_EQ(bundle.host.project().items.size(), 3U);
    EXPECT_EQ(bundle.host.call_counts().at("AEGP_CreateNewFolder"), 3);
    EXPECT_TRUE(bundle.host.conformance().clean()) << bundle.host.conformance().to_text();
}

TEST(Faults, CanBeSetForEveryFunctionThatCanFail) {
    std::set<std::string> names;
    for (const embedded::HostFunction& function : embedded::failable_functions()) {
        EXPECT_TRUE(names.insert(function.function).second) << function.function << " is listed twice";
        const auto fault = embedded::parse_fault(function.function + ":3:41");
        ASSERT_TRUE(fault.has_value()) << function.function;
        HostOptions options;
        options.faults = {*fault};
        EXPECT_NO_THROW(const embedded::TestHost host(options)) << function.function;
    }
    EXPECT_EQ(names.size(), 59U);
}

TEST(Faults, ReachTheBasicSuite) {
    HostOptions options;
    options.faults = {{"AcquireSuite", 1, 41}, {"ReleaseSuite", 1, 42}};
    embedded::TestHost host(options);
    const void* table = nullptr;
    EXPECT_EQ(host.basic_suite()->AcquireSuite("AEGP Comp Suite", 9, &table), 41);
    EXPECT_EQ(host.basic_suite()->AcquireSuite("AEGP Comp Suite", 9, &table), kHostErrorNone);
    EXPECT_EQ(host.basic_suite()->ReleaseSuite("AEGP Comp Suite", 9), 42);
    EXPECT_EQ(host.basic_suite()->ReleaseSuite("AEGP Comp Suite", 9), kHostErrorNone);
}

TEST(Faults, OfUnknownFunctionsAreRefused) {
    HostOptions options;
    options.faults = {{"AEGP_Nothing", 1, 1}};
    EXPECT_THROW(embedded::Host{options}, std::invalid_argument);
    options.faults = {{"cos", 1, 1}};
    EXPECT_THROW(embedded::Host{options}, std::invalid_argument);
}

constexpr char kSection[] = "Main Pref Section";
constexpr char kAlpha[] = "Pref_DEFAULT_UNLABELED_ALPHA";

TEST(Preferences, ContainTheAlphaPreferenceIfItIsSet) {
    A_Boolean exists = 7;
    {
        BundleSide bundle;
        EXPECT_EQ(bundle.data_suite->AEGP_DoesKeyExist(bundle.blob(), kSection, kAlpha, &exists),
                  kHostErrorNone);
        EXPECT_EQ(exists, 0);
    }
    HostOptions options;
    options.alpha_preference = 2;
    BundleSide bundle(options);
    EXPECT_EQ(bundle.data_suite->AEGP_DoesKeyExist(bundle.blob(), kSection, kAlpha, &exists), kHostErrorNone);
    EXPECT_EQ(exists, 1);
    std::uint8_t value = 0;
    EXPECT_EQ(bundle.data_suite->AEGP_GetData(bundle.blob(), kSection, kAlpha, 1, nullptr, &value),
              kHostErrorNone);
    EXPECT_EQ(value, 2);
    value = 3;
    EXPECT_EQ(bundle.data_suite->AEGP_SetData(bundle.blob(), kSection, kAlpha, 1, &value), kHostErrorNone);
    EXPECT_EQ(bundle.host.project().preferences.at({kSection, kAlpha}), std::vector<std::uint8_t>{3});
}

TEST(Preferences, AreCreatedByReadingWithADefault) {
    BundleSide bundle;
    const char fallback[2] = {8, 9};
    char value[2] = {};
    EXPECT_EQ(bundle.data_suite->AEGP_GetData(bundle.blob(), "s", "k", 2, fallback, value), kHostErrorNone);
    EXPECT_EQ(value[0], 8);
    EXPECT_EQ(value[1], 9);
    A_Boolean exists = 0;
    bundle.data_suite->AEGP_DoesKeyExist(bundle.blob(), "s", "k", &exists);
    EXPECT_EQ(exists, 1);
}

}  // namespace
