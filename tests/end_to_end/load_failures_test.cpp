// The entry point when the host refuses a registration.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "support/loaded_bundle.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Registration {
    const char* function;
    const char* message;
};

const Registration kRegistrations[] = {
    {"AEGP_RegisterDeathHook", "There was an error registering the plugin."},
    {"AEGP_RegisterImportFlavor", "Could not register file type."},
    {"AEGP_RegisterImportFlavorFileTypes", "Could not register file type."},
    {"AEGP_RegisterImportFlavorImportCallbacks", "Could not register file type."},
    {"AEGP_RegisterIO", "Could not register file type."},
};

class RefusedRegistration : public testing::TestWithParam<Registration> {};

TEST_P(RefusedRegistration, IsReportedOnceAndEndsLoading) {
    for (const A_Err code : {1, 4, 13}) {
        SCOPED_TRACE(code);
        embedded::HostOptions options;
        options.faults = {{GetParam().function, 1, code}};
        LoadedBundle bundle(options);
        EXPECT_EQ(bundle.loaded().entry.code, code);
        EXPECT_FALSE(bundle.loaded().entry.missing_suite);
        EXPECT_THAT(bundle.message_texts(), ElementsAre(GetParam().message));
        EXPECT_THAT(bundle.host().flavors(), IsEmpty());
        EXPECT_THAT(bundle.host().modules(), IsEmpty());
        EXPECT_TRUE(bundle.host().conformance().clean()) << bundle.host().conformance().to_text();

        // Nothing is registered after the failure, and everything before it is registered once.
        bool failed = false;
        for (const Registration& registration : kRegistrations) {
            const auto counts = bundle.host().call_counts();
            const auto count = counts.contains(registration.function) ? counts.at(registration.function) : 0;
            EXPECT_EQ(count, failed ? 0 : 1) << registration.function;
            failed = failed || std::string(registration.function) == GetParam().function;
        }
    }
}

TEST_P(RefusedRegistration, ThrowsWithoutTheSuiteForReports) {
    embedded::HostOptions options;
    options.faults = {{GetParam().function, 1, 4}};
    options.suites_not_offered = {{"AEGP Utility Suite", 7}};
    LoadedBundle bundle(options);
    EXPECT_EQ(bundle.loaded().entry.missing_suite, !tests_today());
    EXPECT_EQ(bundle.loaded().entry.code, kHostErrorMissingSuite);
    EXPECT_THAT(bundle.message_texts(), IsEmpty());
}

TEST_P(RefusedRegistration, IsTheResultEvenIfItCannotBeReported) {
    embedded::HostOptions options;
    options.faults = {{GetParam().function, 1, 4}, {"AEGP_ReportInfo", 1, 1}};
    LoadedBundle bundle(options);
    EXPECT_EQ(bundle.loaded().entry.code, 4);
    EXPECT_THAT(bundle.message_texts(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Each, RefusedRegistration, testing::ValuesIn(kRegistrations),
                         [](const auto& registration) { return std::string(registration.param.function); });

// After a failed load, the same process can load the bundle again.
TEST(RefusedRegistrations, DoNotSpoilTheNextLoad) {
    {
        embedded::HostOptions options;
        options.faults = {{"AEGP_RegisterIO", 1, 4}};
        LoadedBundle bundle(options);
        ASSERT_EQ(bundle.loaded().entry.code, 4);
    }
    LoadedBundle bundle;
    EXPECT_EQ(bundle.loaded().entry.code, 0);
    EXPECT_EQ(bundle.host().flavors().size(), 1U);
    EXPECT_EQ(bundle.host().modules().size(), 1U);
}

}  // namespace
