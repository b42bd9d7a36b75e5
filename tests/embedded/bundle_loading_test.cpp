#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

#include "embedded/bundle_side.h"
#include "support/special_files.h"
#include "support/temporary_folder.h"

namespace {

using embedded::Host;
using embedded::LoadResult;
using embedded::TestHost;

TEST(BundleLoading, CallsTheExportedEntryAndKeepsWhatItRegistered) {
    TestHost host(in_a_classic_host());
    const LoadResult loaded = host.load(VXR_SMALL_BUNDLE);
    ASSERT_TRUE(loaded.ok()) << loaded.error;
    ASSERT_EQ(host.flavors().size(), 1U);
    EXPECT_EQ(host.flavors()[0].name, "small");
    EXPECT_TRUE(host.verify("any file").importable);
    EXPECT_EQ(host.import_file("any file").code, kHostErrorNone);
    EXPECT_TRUE(host.conformance().clean()) << host.conformance().to_text();
}

TEST(BundleLoading, CallsTheEntryOfItsGeneration) {
    embedded::HostOptions options;
    options.generation = embedded::HostGeneration::today;
    TestHost host(options);
    const LoadResult loaded = host.load(VXR_SMALL_BUNDLE);
    ASSERT_TRUE(loaded.ok()) << loaded.error;
    ASSERT_EQ(host.flavors().size(), 1U);
    EXPECT_EQ(host.flavors()[0].name, "small today");
    EXPECT_TRUE(host.verify("any file").importable);
    EXPECT_EQ(host.import_file("any file").code, kHostErrorNone);
    EXPECT_TRUE(host.conformance().clean()) << host.conformance().to_text();
}

A_Err classic_entry(SPBasicSuite*, A_long, A_long, const A_char*, const A_char*, AEGP_PluginID,
                    AEGP_GlobalRefcon*) {
    return kHostErrorNone;
}

A_Err today_entry(SPBasicSuite*, A_long, A_long, AEGP_PluginID, AEGP_GlobalRefcon*) {
    return kHostErrorNone;
}

TEST(BundleLoading, RefusesAnEntryOfTheOtherGeneration) {
    {
        TestHost host(in_a_classic_host());
        EXPECT_TRUE(host.load_entry(classic_entry).ok());
        EXPECT_THROW(host.load_entry(today_entry), std::logic_error);
    }
    embedded::HostOptions options;
    options.generation = embedded::HostGeneration::today;
    TestHost host(options);
    EXPECT_TRUE(host.load_entry(today_entry).ok());
    EXPECT_THROW(host.load_entry(classic_entry), std::logic_error);
}

TEST(BundleLoading, WorksAgainInTheSameHostAndInTheNext) {
    {
        TestHost host(in_a_classic_host());
        ASSERT_TRUE(host.load(VXR_SMALL_BUNDLE).ok());
        ASSERT_TRUE(host.load(VXR_SMALL_BUNDLE).ok());
        EXPECT_EQ(host.flavors().size(), 1U) << "the first registration is still there";
    }
    TestHost host(in_a_classic_host());
    ASSERT_TRUE(host.load(VXR_SMALL_BUNDLE).ok());
    EXPECT_TRUE(host.verify("any file").importable);
}

#if !defined(_WIN32)  // where a bundle is not a folder
TEST(BundleLoading, FindsTheCodeInAMacosFolder) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder.path("Small.plugin/Contents/MacOS"));
    std::filesystem::create_symlink(VXR_SMALL_BUNDLE, folder.path("Small.plugin/Contents/MacOS/Small"));
    TestHost host;
    const LoadResult loaded = host.load(folder.path("Small.plugin"));
    ASSERT_TRUE(loaded.ok()) << loaded.error;
    EXPECT_EQ(host.flavors().size(), 1U);
    EXPECT_FALSE(host.load(folder.path("Other.plugin")).ok());
}
#endif

TEST(BundleLoading, SaysWhyAFileIsNotABundle) {
    const TemporaryFolder folder;
    TestHost host(in_a_classic_host());
    const LoadResult missing = host.load(folder.path("missing.so"));
    EXPECT_FALSE(missing.ok());
    EXPECT_NE(missing.error.find("missing.so"), std::string::npos) << missing.error;
    const LoadResult text = host.load(folder.write("text.so", "not a library"));
    EXPECT_FALSE(text.ok());
    const LoadResult no_entry = host.load(VXR_SMALL_BUNDLE, "No_such_entry");
    EXPECT_EQ(no_entry.error, "the bundle does not export No_such_entry");
    EXPECT_FALSE(host.verify("any file").importable);
    EXPECT_EQ(host.import_file("any file").code, kHostErrorGeneric);
}

TEST(BundleLoading, NeverBlocks) {
    const TemporaryFolder folder;
    make_pipe(folder.path("pipe"));
    make_link(folder.path("circle"), folder.path("circle"));
    folder.make_folder("folder");
    for (const char* const name : {"pipe", "circle", "folder", "missing"}) {
        TestHost host(in_a_classic_host());
        const LoadResult loaded = host.load(folder.path(name));
        EXPECT_FALSE(loaded.ok()) << name;
        EXPECT_NE(loaded.error.find(folder.path(name) + ": "), std::string::npos) << loaded.error;
    }
}

TEST(BundleLoading, ForgetsWhatAFailingEntryRegistered) {
    TestHost host(in_a_classic_host());
    const LoadResult loaded = host.load(VXR_SMALL_BUNDLE, "failing_entry");
    EXPECT_FALSE(loaded.ok());
    EXPECT_EQ(loaded.entry.code, kHostErrorStructure);
    EXPECT_EQ(loaded.error, "the entry point failed with host error 2");
    EXPECT_TRUE(host.flavors().empty());
}

TEST(BundleLoading, CatchesTheMissingSuiteExceptionOfAnotherLibrary) {
    embedded::HostOptions options;
    options.suites_not_offered = {{"AEGP File Import Manager Suite", 2}};
    TestHost host(in_a_classic_host(options));
    const LoadResult loaded = host.load(VXR_SMALL_BUNDLE);
    EXPECT_FALSE(loaded.ok());
    EXPECT_TRUE(loaded.entry.missing_suite);
    EXPECT_EQ(loaded.entry.code, kHostErrorMissingSuite);
    EXPECT_EQ(host.conformance().count(embedded::RuleViolation::missing_suite_exception), 1U);
}

int death_hooks_run = 0;

TEST(BundleLoading, RunsTheDeathHookBeforeUnloading) {
    death_hooks_run = 0;
    {
        TestHost host(in_a_classic_host());
        const LoadResult loaded =
            host.load_entry([](SPBasicSuite* basic, A_long, A_long, const A_char*, const A_char*,
                               AEGP_PluginID id, AEGP_GlobalRefcon*) -> A_Err {
                const void* table = nullptr;
                basic->AcquireSuite("AEGP Register Suite", 4, &table);
                return static_cast<const AEGP_RegisterSuite4*>(table)->AEGP_RegisterDeathHook(
                    id,
                    [](AEGP_GlobalRefcon, AEGP_DeathRefcon) -> A_Err {
                        ++death_hooks_run;
                        return kHostErrorNone;
                    },
                    nullptr);
            });
        ASSERT_TRUE(loaded.ok()) << loaded.error;
        EXPECT_EQ(death_hooks_run, 0);
    }
    EXPECT_EQ(death_hooks_run, 1);
}

TEST(Host, ExistsOncePerProcess) {
    {
        const Host first;
        EXPECT_THROW(Host{}, std::logic_error);
    }
    EXPECT_NO_THROW(Host{});
}

TEST(Host, FailsEveryCallAfterItsEnd) {
    SPBasicSuite* basic = nullptr;
    const AEGP_UtilitySuite7* utility = nullptr;
    {
        BundleSide bundle;
        basic = bundle.host.basic_suite();
        utility = bundle.utility_suite;
    }
    const void* table = nullptr;
    EXPECT_EQ(basic->AcquireSuite("AEGP Utility Suite", 7, &table), kHostErrorGeneric);
    EXPECT_EQ(utility->AEGP_ReportInfo(1, "text"), kHostErrorGeneric);
}

TEST(Host, PassesEveryOtherExceptionOn) {
    BundleSide bundle;
    EXPECT_THROW(bundle.host.run("callback", []() -> A_Err { throw std::runtime_error("mine"); }),
                 std::runtime_error);
    EXPECT_THROW(bundle.host.run("callback", []() -> A_Err { throw 515L; }), long);
    EXPECT_TRUE(bundle.host.conformance().clean());
    EXPECT_THROW(bundle.host.run("callback",
                                 [&]() -> A_Err {
                                     bundle.memory();
                                     throw std::runtime_error("with a handle left alive");
                                 }),
                 std::runtime_error);
    EXPECT_EQ(bundle.count(embedded::RuleViolation::memory_left_alive), 1U);
    const embedded::CallbackResult missing = bundle.host.run("callback", []() -> A_Err { throw 516L; });
    EXPECT_TRUE(missing.missing_suite);
    EXPECT_EQ(missing.code, kHostErrorMissingSuite);
    EXPECT_EQ(bundle.count(embedded::RuleViolation::missing_suite_exception), 1U);
}

TEST(Suites, AreOfferedByNameAndVersion) {
    for (const auto generation : {embedded::HostGeneration::classic, embedded::HostGeneration::today}) {
        embedded::HostOptions options;
        options.generation = generation;
        TestHost host(options);
        const auto offered = embedded::offered_suites(generation);
        // Current hosts have two of them in two versions.
        EXPECT_EQ(offered.size(), generation == embedded::HostGeneration::classic ? 17U : 19U);
        for (const embedded::SuiteName& suite : offered) {
            SCOPED_TRACE(suite.name);
            const void* table = nullptr;
            EXPECT_EQ(host.basic_suite()->AcquireSuite(suite.name.c_str(), suite.version, &table),
                      kHostErrorNone);
            EXPECT_NE(table, nullptr);
            EXPECT_EQ(host.basic_suite()->AcquireSuite(suite.name.c_str(), suite.version + 100, &table),
                      kHostErrorMissingSuite);
            EXPECT_EQ(table, nullptr);
            EXPECT_EQ(host.basic_suite()->ReleaseSuite(suite.name.c_str(), suite.version), kHostErrorNone);
        }
        EXPECT_TRUE(host.conformance().clean()) << host.conformance().to_text();
    }
}

TEST(Suites, CanBeWithheldOrEmpty) {
    embedded::HostOptions options;
    options.suites_not_offered = {{"AEGP Comp Suite", 9}};
    options.suites_empty = {{"PF AE Adv App Suite", 1}};
    TestHost host(options);
    const void* table = &host;
    EXPECT_EQ(host.basic_suite()->AcquireSuite("AEGP Comp Suite", 9, &table), kHostErrorMissingSuite);
    EXPECT_EQ(table, nullptr);
    table = &host;
    EXPECT_EQ(host.basic_suite()->AcquireSuite("PF AE Adv App Suite", 1, &table), kHostErrorNone);
    EXPECT_EQ(table, nullptr);
    EXPECT_EQ(host.basic_suite()->AcquireSuite("AEGP Layer Suite", 11, &table), kHostErrorNone);
    EXPECT_NE(table, nullptr);
    EXPECT_EQ(host.basic_suite()->ReleaseSuite("AEGP Layer Suite", 11), kHostErrorNone);
    EXPECT_TRUE(host.conformance().clean()) << "asking for a suite breaks no rule";
}

}  // namespace
