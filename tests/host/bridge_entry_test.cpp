// The entry point for current hosts: what reaches the plug-in, and what the host gets for an exception.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <stdexcept>
#include <string>

#include "host/bridged_plugin.h"
#include "host/suite_handler.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(BridgeEntry, ThePluginGetsTheBridgeAndTheHostsArgumentsWithoutPaths) {
    CurrentHost host;
    AEGP_GlobalRefcon refcon = nullptr;
    BridgedPlugin::entry = [](SPBasicSuite*) { return A_Err{17}; };
    EXPECT_EQ(EntryPointFunc(host.basic(), 13, 28, 4711, &refcon), 17) << "the entry's result";
    const BridgedPlugin::Arguments& arguments = BridgedPlugin::arguments;
    EXPECT_NE(arguments.basic, host.basic());
    EXPECT_EQ(arguments.major, 13);
    EXPECT_EQ(arguments.minor, 28);
    EXPECT_EQ(arguments.file_path, nullptr);
    EXPECT_EQ(arguments.resource_path, nullptr);
    EXPECT_EQ(arguments.plugin_id, 4711);
    EXPECT_EQ(arguments.refcon, &refcon);
    EXPECT_THAT(host.traffic, IsEmpty());
}

TEST(BridgeEntry, WithoutABasicSuiteThePluginIsNotCalled) {
    bool entered = false;
    BridgedPlugin::entry = [&entered](SPBasicSuite*) {
        entered = true;
        return kHostErrorNone;
    };
    EXPECT_EQ(EntryPointFunc(nullptr, 13, 28, 7, nullptr), 13);
    EXPECT_FALSE(entered);
}

TEST(BridgeEntry, NoExceptionLeaves) {
    const struct {
        const char* why;
        std::function<void()> thrower;
        A_Err err;
    } cases[] = {
        {"the basic suite itself is missing", [] { AEGP_SuiteHandler handler(nullptr); }, 13},
        {"another number of the same type", [] { throw 515L; }, 1},
        {"the same number of another type", [] { throw 516; }, 1},
        {"no memory", [] { throw std::bad_alloc(); }, 4},
        {"no memory for an array of that size", [] { throw std::bad_array_new_length(); }, 4},
        {"an exception of the library", [] { throw std::runtime_error("x"); }, 1},
        {"something else", [] { throw "text"; }, 1},
    };
    for (const auto& c : cases) {
        CurrentHost host;
        EXPECT_EQ(enter(host,
                        [&c](SPBasicSuite*) {
                            c.thrower();
                            return kHostErrorNone;
                        }),
                  c.err)
            << c.why;
        EXPECT_THAT(host.reports, IsEmpty()) << c.why;
        EXPECT_THAT(host.left_open(), IsEmpty()) << c.why;
    }
}

// Suites that the plug-in acquires through the handler, under the name and version that the host knows.
TEST(BridgeEntry, AMissingSuiteIsNamedInOneReport) {
    const struct {
        const char* name;
        A_long version;
        std::function<const void*(AEGP_SuiteHandler&)> ask;
    } cases[] = {
        {"AEGP Register Suite", 6, [](AEGP_SuiteHandler& s) { return s.RegisterSuite4(); }},
        {"AEGP File Import Manager Suite", 3,
         [](AEGP_SuiteHandler& s) { return s.FileImportManagerSuite2(); }},
        {"AEGP Persistent Data Suite", 3, [](AEGP_SuiteHandler& s) { return s.PersistentDataSuite1(); }},
        {"AEGP Proj Suite", 8, [](AEGP_SuiteHandler& s) { return s.ProjSuite5(); }},
        {"AEGP Footage Suite", 11, [](AEGP_SuiteHandler& s) { return s.FootageSuite7(); }},
        {"AEGP IO In Suite", 5, [](AEGP_SuiteHandler& s) { return s.IOInSuite1(); }},
        {"AEGP IO Out Suite", 7, [](AEGP_SuiteHandler& s) { return s.IOOutSuite1(); }},
        {"AEGP Memory Suite", 1, [](AEGP_SuiteHandler& s) { return s.MemorySuite1(); }},
        {"AEGP Layer Suite", 11, [](AEGP_SuiteHandler& s) { return s.LayerSuite11(); }},
    };
    for (const auto& c : cases) {
        // The host returns the right error, another error, and success without a table.
        for (const A_Err result : {kHostErrorMissingSuite, kHostErrorAllocation, kHostErrorNone}) {
            SCOPED_TRACE(std::string(c.name) + " = " + std::to_string(result));
            CurrentHost host;
            host.withhold_suite(c.name, c.version, result);
            EXPECT_EQ(enter(host,
                            [&c](SPBasicSuite* bridge) {
                                AEGP_SuiteHandler suites(bridge);
                                suites.UtilitySuite7();
                                return c.ask(suites) == nullptr ? kHostErrorNone : kHostErrorGeneric;
                            }),
                      13);
            EXPECT_THAT(host.reports,
                        ElementsAre("This plug-in needs the suite \"" + std::string(c.name) + "\" " +
                                    std::to_string(c.version) + ", which the host does not offer."));
            EXPECT_THAT(host.left_open(), IsEmpty()) << "the suites acquired before are released";
        }
    }
}

TEST(BridgeEntry, WithoutTheUtilitySuiteThereIsNoReport) {
    CurrentHost host;
    host.withhold_suite("AEGP Utility Suite", 7);
    EXPECT_EQ(enter(host,
                    [](SPBasicSuite* bridge) {
                        AEGP_SuiteHandler(bridge).UtilitySuite7();
                        return kHostErrorNone;
                    }),
              13);
    EXPECT_THAT(host.reports, IsEmpty());
}

TEST(BridgeEntry, ASuiteThatIsNotNeededIsNotNamed) {
    CurrentHost host;
    EXPECT_EQ(enter(host,
                    [](SPBasicSuite* bridge) {
                        // One suite is missing and not needed, as in the importer; then another is missing.
                        EXPECT_EQ(acquired<char>(bridge, "PF AE Adv App Suite", 1), nullptr);
                        AEGP_SuiteHandler(bridge).CompSuite9();
                        return kHostErrorNone;
                    }),
              13);
    EXPECT_THAT(host.reports,
                ElementsAre("This plug-in needs the suite \"AEGP Comp Suite\" 9, which the host does not "
                            "offer."));
    host.reports.clear();
    EXPECT_EQ(enter(host,
                    [](SPBasicSuite*) {
                        AEGP_SuiteHandler handler(nullptr);
                        return kHostErrorNone;
                    }),
              13);
    EXPECT_THAT(host.reports, IsEmpty()) << "nothing is left of the previous call";
}

TEST(BridgeEntry, ALongNameIsReportedTruncated) {
    const std::string long_name(1000, 'x');
    CurrentHost host;
    EXPECT_EQ(enter(host,
                    [&long_name](SPBasicSuite* bridge) {
                        EXPECT_EQ(acquired<char>(bridge, long_name.c_str(), 1), nullptr);
                        throw AEGP_SuiteHandler::kMissingSuite;
                        return kHostErrorNone;
                    }),
              13);
    ASSERT_EQ(host.reports.size(), 1U);
    EXPECT_THAT(host.reports.front(), ::testing::HasSubstr(std::string(63, 'x') + "\" 1,"));
    EXPECT_THAT(host.reports.front(), ::testing::Not(::testing::HasSubstr(std::string(64, 'x'))));
}

}  // namespace
