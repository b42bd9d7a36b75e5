// The suites that the bridge's basic suite hands out, and how long it holds the host's.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "host/bridged_plugin.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const struct BridgedSuite {
    std::string name;
    A_long classic;
    A_long today;
    bool has_callbacks;  ///< takes callbacks of the plug-in, which the host must call through the bridge
    bool always_bridged = false;  ///< the bridge hands out its own table over the classic version, too
} kBridgedSuites[] = {
    {"AEGP Register Suite", 4, 6, true},         {"AEGP File Import Manager Suite", 2, 3, true},
    {"AEGP Persistent Data Suite", 1, 3, false}, {"AEGP Proj Suite", 5, 8, false},
    {"AEGP Footage Suite", 7, 11, false},        {"AEGP IO In Suite", 1, 5, false},
    {"AEGP IO Out Suite", 1, 7, false},          {"AEGP Item Suite", 10, 13, false},
    {"AEGP Comp Suite", 9, 15, false, true},
};

/// A host that offers every bridged suite in the current version only.
struct FullHost : CurrentHost {
    FullHost() {
        offer_named_suites();
        withhold_suite("AEGP Comp Suite", 9);
    }
};

// A suite as the bridge or the host hands it out. The table starts out non-null, so that a missing write
// shows.
struct Acquired {
    A_Err err;
    const void* table;
};
Acquired acquire(const SPBasicSuite* basic, const std::string& name, A_long version) {
    const void* table = &table;
    const A_Err err = basic->AcquireSuite(name.c_str(), version, &table);
    return {err, table};
}

TEST(BridgeBasicSuite, TheCurrentSuiteIsHeldAsLongAsTheClassicOne) {
    for (const BridgedSuite& suite : kBridgedSuites) {
        SCOPED_TRACE(suite.name);
        FullHost host;
        const SPBasicSuite* bridge = bridge_over(host);
        const Acquired first = acquire(bridge, suite.name, suite.classic);
        EXPECT_EQ(first.err, 0);
        ASSERT_NE(first.table, nullptr);
        EXPECT_EQ(host.held(suite.name, suite.today), 1);
        const Acquired second = acquire(bridge, suite.name, suite.classic);
        EXPECT_EQ(second.table, first.table);
        EXPECT_EQ(host.held(suite.name, suite.today), 2);
        EXPECT_EQ(bridge->ReleaseSuite(suite.name.c_str(), suite.classic), 0);
        EXPECT_EQ(host.held(suite.name, suite.today), 1);
        EXPECT_EQ(bridge->ReleaseSuite(suite.name.c_str(), suite.classic), 0);
        EXPECT_EQ(host.held(suite.name, suite.today), 0);
        EXPECT_EQ(bridge->ReleaseSuite(suite.name.c_str(), suite.classic), 3) << "not held";
        const std::string today = suite.name + " " + std::to_string(suite.today);
        EXPECT_THAT(host.traffic, ElementsAre("acquire " + today, "acquire " + today, "release " + today,
                                              "release " + today));
        const Acquired hosts_own = acquire(host.basic(), suite.name, suite.today);
        EXPECT_NE(first.table, hosts_own.table);
    }
}

TEST(BridgeBasicSuite, AFunctionWorksWhileItsSuiteIsHeld) {
    CurrentHost host;
    const SPBasicSuite* bridge = bridge_over(host);
    const auto* proj = acquired<AEGP_ProjSuite5>(bridge, "AEGP Proj Suite", 5);
    ASSERT_NE(proj, nullptr);
    EXPECT_EQ(proj->AEGP_GetProjectByIndex(0, nullptr), 0);
    ASSERT_EQ(acquired<AEGP_ProjSuite5>(bridge, "AEGP Proj Suite", 5), proj);
    EXPECT_EQ(bridge->ReleaseSuite("AEGP Proj Suite", 5), 0);
    EXPECT_EQ(proj->AEGP_GetProjectByIndex(1, nullptr), 0) << "held once more";
    EXPECT_EQ(bridge->ReleaseSuite("AEGP Proj Suite", 5), 0);
    EXPECT_EQ(proj->AEGP_GetProjectByIndex(2, nullptr), 13);
    EXPECT_THAT(host.calls, ElementsAre("GetProjectByIndex(0, null)", "GetProjectByIndex(1, null)"));
}

TEST(BridgeBasicSuite, AnErrorOfTheHostIsPassedOnAndNothingIsHeld) {
    for (const BridgedSuite& suite : kBridgedSuites) {
        for (const A_Err code : {13, 4, -7}) {
            SCOPED_TRACE(suite.name + " = " + std::to_string(code));
            FullHost host;
            host.withhold_suite(suite.name, suite.today, code);
            const SPBasicSuite* bridge = bridge_over(host);
            const Acquired acquired = acquire(bridge, suite.name, suite.classic);
            EXPECT_EQ(acquired.err, code);
            EXPECT_EQ(acquired.table, nullptr);
            EXPECT_EQ(bridge->ReleaseSuite(suite.name.c_str(), suite.classic), 3);
            EXPECT_THAT(host.left_open(), IsEmpty());
        }
    }
}

TEST(BridgeBasicSuite, ASuccessWithoutATableIsAMissingSuite) {
    for (const BridgedSuite& suite : kBridgedSuites) {
        SCOPED_TRACE(suite.name);
        FullHost host;
        host.withhold_suite(suite.name, suite.today, kHostErrorNone);
        const Acquired acquired = acquire(bridge_over(host), suite.name, suite.classic);
        EXPECT_EQ(acquired.err, 13);
        EXPECT_EQ(acquired.table, nullptr);
    }
}

TEST(BridgeBasicSuite, AHostBetweenTheGenerationsIsCalledDirectlyExceptForRegistrations) {
    const char classic_table = 0;
    for (const BridgedSuite& suite : kBridgedSuites) {
        SCOPED_TRACE(suite.name);
        FullHost host;
        host.clear_script();
        host.withhold_suite(suite.name, suite.today);
        host.offer_suite(suite.name, suite.classic, &classic_table);
        const SPBasicSuite* bridge = bridge_over(host);
        const Acquired acquired = acquire(bridge, suite.name, suite.classic);
        if (suite.has_callbacks) {
            EXPECT_EQ(acquired.err, 13);
            EXPECT_EQ(acquired.table, nullptr);
            EXPECT_THAT(host.traffic, IsEmpty());
            continue;
        }
        EXPECT_EQ(acquired.err, 0);
        EXPECT_EQ(acquired.table == &classic_table, !suite.always_bridged);
        EXPECT_NE(acquired.table, nullptr);
        EXPECT_EQ(host.held(suite.name, suite.classic), 1);
        EXPECT_EQ(bridge->ReleaseSuite(suite.name.c_str(), suite.classic), 0);
        EXPECT_EQ(host.held(suite.name, suite.classic), 0);
        EXPECT_EQ(bridge->ReleaseSuite(suite.name.c_str(), suite.classic), 3) << "not held";
    }
}

TEST(BridgeBasicSuite, TheCurrentSuiteIsPreferredIfTheHostHasBoth) {
    const char classic_table = 0;
    for (const BridgedSuite& suite : kBridgedSuites) {
        SCOPED_TRACE(suite.name);
        FullHost host;
        host.clear_script();
        host.offer_suite(suite.name, suite.classic, &classic_table);
        EXPECT_NE(acquire(bridge_over(host), suite.name, suite.classic).table, &classic_table);
        EXPECT_EQ(host.held(suite.name, suite.today), 1);
        EXPECT_EQ(host.held(suite.name, suite.classic), 0);
    }
}

TEST(BridgeBasicSuite, EverythingElseComesFromTheHost) {
    const struct {
        const char* why;
        std::string name;
        A_long version;
    } cases[] = {
        {"a suite of every host", "PF ANSI Suite", 1},
        {"the current version of a bridged one", "AEGP Footage Suite", 11},
        {"another version of a bridged one", "AEGP Footage Suite", 10},
        {"a bridged one with one letter in lower case", "AEGP footage Suite", 7},
    };
    const char other_table = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        CurrentHost host;
        host.offer_suite("PF ANSI Suite", 1, &other_table);
        host.offer_suite("AEGP Footage Suite", 10, &other_table);
        host.offer_suite("AEGP footage Suite", 7, &other_table);
        const SPBasicSuite* bridge = bridge_over(host);
        const Acquired by_bridge = acquire(bridge, c.name, c.version);
        EXPECT_EQ(by_bridge.err, 0);
        EXPECT_EQ(by_bridge.table, acquire(host.basic(), c.name, c.version).table);
        EXPECT_EQ(bridge->ReleaseSuite(c.name.c_str(), c.version), 0);
        EXPECT_EQ(host.held(c.name, c.version), 1) << "one of two";
    }
}

TEST(BridgeBasicSuite, AnUnbridgedSuiteFailsWithTheHostsResult) {
    for (const A_Err code : {0, 13, 5}) {
        CurrentHost host;
        host.withhold_suite("PF AE Adv App Suite", 1, code);
        const Acquired acquired = acquire(bridge_over(host), "PF AE Adv App Suite", 1);
        EXPECT_EQ(acquired.err, code) << "a success without a table stays one";
        EXPECT_EQ(acquired.table, nullptr);
    }
}

TEST(BridgeBasicSuite, AReleaseReturnsTheHostsResult) {
    CurrentHost host;
    const SPBasicSuite* bridge = bridge_over(host);
    acquire(bridge, "AEGP Proj Suite", 5);
    acquire(bridge, "AEGP Utility Suite", 7);
    host.release_result = 8;
    EXPECT_EQ(bridge->ReleaseSuite("AEGP Proj Suite", 5), 8);
    EXPECT_EQ(bridge->ReleaseSuite("AEGP Utility Suite", 7), 8);
}

TEST(BridgeBasicSuite, ANullTablePointerIsRefused) {
    CurrentHost host;
    EXPECT_EQ(bridge_over(host)->AcquireSuite("AEGP Proj Suite", 5, nullptr), 3);
    EXPECT_THAT(host.traffic, IsEmpty());
}

TEST(BridgeBasicSuite, ItsOtherFunctionsComeFromTheHost) {
    CurrentHost host;
    const SPBasicSuite* bridge = bridge_over(host);
    EXPECT_EQ(bridge->IsEqual("a", "a"), 1);
    EXPECT_EQ(bridge->IsEqual("a", "b"), 0);
    EXPECT_EQ(bridge->AllocateBlock(1, nullptr), 101);
    EXPECT_EQ(bridge->FreeBlock(nullptr), 102);
    EXPECT_EQ(bridge->ReallocateBlock(nullptr, 1, nullptr), 103);
    EXPECT_EQ(bridge->Undefined(), 104);
}

TEST(BridgeBasicSuite, TheNextHostStartsWithoutHeldSuites) {
    CurrentHost first;
    acquire(bridge_over(first), "AEGP Persistent Data Suite", 1);
    CurrentHost second;
    const SPBasicSuite* bridge = bridge_over(second);
    EXPECT_EQ(bridge->ReleaseSuite("AEGP Persistent Data Suite", 1), 3);
    EXPECT_THAT(second.traffic, IsEmpty());
}

}  // namespace
