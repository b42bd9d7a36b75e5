// Hosts that lack a suite, or report success and yield none; and every single acquisition and release of a
// suite failing in turn. Classic hosts get the exception; current hosts get the error, and the user gets a
// message.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "end_to_end/call_notation.h"
#include "end_to_end/failing_scene.h"

namespace {

using embedded::RuleViolation;
using testing::ElementsAre;
using testing::IsEmpty;

enum class Without {
    cannot_load,       // the exception leaves the entry point
    changes_nothing,   // the exception leaves the import before the project is touched
    leaves_undo_step,  // the exception leaves the import while it builds
    refuses_loudly,    // the result is the host's code, and a message is shown
    refuses_silently,  // result 0, nothing is built
    imports,           // an import does not need it
};

struct Suite {
    const char* name;
    Without when_missing;
    Without when_empty;
    int left_open;  // additions of keys that were not ended when the exception passed
};

// An import acquires a suite when it first uses it.
const Suite kSuites[] = {
    {"AEGP Register Suite", Without::cannot_load, Without::cannot_load, 0},
    {"AEGP File Import Manager Suite", Without::cannot_load, Without::cannot_load, 0},
    {"AEGP Persistent Data Suite", Without::changes_nothing, Without::changes_nothing, 0},
    // Acquired to open the undo group, after the preference has been changed.
    {"AEGP Utility Suite", Without::changes_nothing, Without::changes_nothing, 0},
    // Only its presence is tested, and not through the handler.
    {"PF AE Adv App Suite", Without::refuses_loudly, Without::refuses_silently, 0},
    {"AEGP Proj Suite", Without::leaves_undo_step, Without::leaves_undo_step, 0},
    {"AEGP Item Suite", Without::leaves_undo_step, Without::leaves_undo_step, 0},
    {"AEGP Comp Suite", Without::leaves_undo_step, Without::leaves_undo_step, 0},
    {"AEGP Footage Suite", Without::leaves_undo_step, Without::leaves_undo_step, 0},
    {"AEGP Layer Suite", Without::leaves_undo_step, Without::leaves_undo_step, 0},
    {"AEGP Stream Suite", Without::leaves_undo_step, Without::leaves_undo_step, 0},
    {"AEGP Keyframe Suite", Without::leaves_undo_step, Without::leaves_undo_step, 0},
    // First used for the camera's point of interest, after its three tracks have been started.
    {"PF ANSI Suite", Without::leaves_undo_step, Without::leaves_undo_step, 3},
    {"AEGP Light Suite", Without::leaves_undo_step, Without::leaves_undo_step, 0},
    {"AEGP Memory Suite", Without::imports, Without::imports, 0},
    {"AEGP IO In Suite", Without::imports, Without::imports, 0},
    {"AEGP IO Out Suite", Without::imports, Without::imports, 0},
};

const FailingScene& scene() {
    static const FailingScene made;
    return made;
}

const ImportRun& clean_run() {
    static const ImportRun run = scene().run();
    return run;
}

void expect_untouched(const ImportRun& run) {
    EXPECT_EQ(run.project.items.size(), 1U);
    EXPECT_TRUE(run.project.footage.empty());
    EXPECT_TRUE(run.project.compositions.empty());
    EXPECT_TRUE(run.project.layers.empty());
    EXPECT_TRUE(run.project.undo_steps.empty());
}

constexpr const char* kReporting = "AEGP Utility Suite";

// `others`: violations that the host finds besides an exception.
void expect_exception(const ImportRun& run, const embedded::CallbackResult& callback, std::size_t others,
                      const std::vector<std::string>& messages) {
    const std::size_t exceptions = tests_today() ? 0 : 1;
    EXPECT_EQ(callback.missing_suite, exceptions == 1);
    EXPECT_EQ(callback.code, kHostErrorMissingSuite);
    EXPECT_EQ(run.messages, messages);
    EXPECT_EQ(run.conformance.count(RuleViolation::missing_suite_exception), exceptions);
    EXPECT_EQ(run.conformance.count(RuleViolation::additions_not_ended), others) << run.conformance.to_text();
    EXPECT_EQ(run.conformance.violations().size(), exceptions + others) << run.conformance.to_text();
}

// The calls after the last acquisition without a suite.
std::vector<std::string> calls_after_the_missing_suite(const ImportRun& run) {
    const auto yields_nothing = [](const std::string& call) {
        return function_of(call) == "AcquireSuite" && (call.ends_with("!13") || call.ends_with("-> null"));
    };
    const auto last = std::find_if(run.import_calls.rbegin(), run.import_calls.rend(), yields_nothing);
    EXPECT_NE(last, run.import_calls.rend());
    return {last.base(), run.import_calls.end()};
}

void expect(const ImportRun& run, Without without, const Suite& suite) {
    EXPECT_EQ(run.alpha_preference, int{kAlphaPreferenceBefore});
    // Nothing can be reported without the suite for reports.
    const auto messages = suite.name == std::string(kReporting) ? std::vector<std::string>()
                                                                : missing_suite_messages(suite.name);
    switch (without) {
        case Without::cannot_load:
            expect_exception(run, run.entry, 0, messages);
            expect_untouched(run);
            return;
        case Without::changes_nothing:
            expect_exception(run, run.import, 0, messages);
            expect_untouched(run);
            break;
        case Without::leaves_undo_step:
            expect_exception(run, run.import, static_cast<std::size_t>(suite.left_open), messages);
            ASSERT_EQ(run.project.undo_steps.size(), 1U);
            EXPECT_TRUE(run.project.undo_steps[0].closed);
            // After the failed acquisition, only what restores things, and the report.
            for (const std::string& call : calls_after_the_missing_suite(run)) {
                if (tests_today() && (function_of(call) == "AEGP_ReportInfo" ||
                                      call == "AcquireSuite(\"AEGP Utility Suite\", 7)")) {
                    continue;
                }
                EXPECT_THAT(function_of(call), testing::AnyOf("AEGP_DisposeStream", "AEGP_EndUndoGroup",
                                                              "AEGP_SetData", "ReleaseSuite"));
            }
            break;
        case Without::refuses_loudly:
            EXPECT_FALSE(run.import.missing_suite);
            EXPECT_EQ(run.import.code, kHostErrorMissingSuite);
            EXPECT_THAT(run.messages, ElementsAre(FailingScene::loading_message()));
            EXPECT_TRUE(run.conformance.clean()) << run.conformance.to_text();
            expect_untouched(run);
            break;
        case Without::refuses_silently:
            EXPECT_EQ(run.import.code, 0);
            EXPECT_THAT(run.messages, IsEmpty());
            EXPECT_TRUE(run.conformance.clean()) << run.conformance.to_text();
            expect_untouched(run);
            break;
        case Without::imports:
            EXPECT_EQ(run.import.code, 0);
            EXPECT_TRUE(run.conformance.clean()) << run.conformance.to_text();
            EXPECT_EQ(first_difference(clean_run().import_calls, run.import_calls), "");
            break;
    }
    EXPECT_EQ(run.entry.code, 0);
}

class MissingSuite : public testing::TestWithParam<Suite> {};

TEST_P(MissingSuite, NotOffered) {
    embedded::HostOptions options;
    options.suites_not_offered = offered_suites_of(GetParam().name);
    expect(scene().run(options), GetParam().when_missing, GetParam());
}

TEST_P(MissingSuite, OfferedButEmpty) {
    embedded::HostOptions options;
    options.suites_empty = offered_suites_of(GetParam().name);
    expect(scene().run(options), GetParam().when_empty, GetParam());
}

INSTANTIATE_TEST_SUITE_P(Each, MissingSuite, testing::ValuesIn(kSuites), [](const auto& suite) {
    std::string name = suite.param.name;
    name.erase(std::remove_if(name.begin(), name.end(), [](char c) { return c == ' '; }), name.end());
    return name;
});

TEST(MissingSuites, TheTableHoldsEverySuiteThatTheHostOffers) {
    for (const embedded::SuiteName& offered : embedded::offered_suites(tested_generation())) {
        EXPECT_TRUE(std::any_of(std::begin(kSuites), std::end(kSuites), [&offered](const Suite& suite) {
            return offered.name == suite.name;
        })) << offered.name;
    }
}

std::vector<std::string> calls_of(const ImportRun& run, const std::string& function) {
    std::vector<std::string> calls = all_calls_in_notation(run.log, {});
    std::erase_if(calls, [&function](const std::string& call) { return function_of(call) != function; });
    return calls;
}

// The first text of a call.
std::string suite_named_in(const std::string& call) {
    const std::size_t begin = call.find('"') + 1;
    return call.substr(begin, call.find('"', begin) - begin);
}

// In a current host the bridge acquires the Layer suite twice more: to aim the camera and to aim the light.
std::size_t added_by_bridge() {
    return tests_today() ? 2 : 0;
}

constexpr const char* kNotAimed =
    "A camera or light does not turn towards its point of interest, because After Effects refused the "
    "setting. Select it and choose Layer > Transform > Auto-Orient.";

// The messages in a current host if a failed acquisition does not end the import: names are then narrow, or a
// layer is not aimed. Nothing if the failure ends the import.
std::optional<std::vector<std::string>> messages_of_a_lesser_import(const std::vector<std::string>& acquired,
                                                                    std::size_t failing) {
    if (!tests_today()) {
        return std::nullopt;
    }
    const std::string& call = acquired[failing];
    if (call == "AcquireSuite(\"AEGP Item Suite\", 10)" || call == "AcquireSuite(\"AEGP Comp Suite\", 9)") {
        return std::vector<std::string>();
    }
    const auto first = std::find(acquired.begin(), acquired.end(), "AcquireSuite(\"AEGP Layer Suite\", 11)");
    if (call == *first && first - acquired.begin() != static_cast<std::ptrdiff_t>(failing)) {
        return std::vector<std::string>{kNotAimed};
    }
    return std::nullopt;
}

// Acquisition fails once: whatever the code, the exception follows, except in the presence test and for
// suites that the bridge can do without.
TEST(EveryAcquisition, FailingInTurn) {
    const std::vector<std::string> acquired = calls_of(clean_run(), "AcquireSuite");
    // Register and File Import Manager, the suites of the import, and those that the bridge adds.
    ASSERT_EQ(acquired.size(), 2U + 12U + added_by_bridge());
    for (std::size_t i = 0; i < acquired.size(); ++i) {
        for (const A_Err code : {1, 4, 13}) {
            SCOPED_TRACE(acquired[i] + " with code " + std::to_string(code));
            embedded::HostOptions options;
            options.faults = {{"AcquireSuite", static_cast<int>(i) + 1, code}};
            const ImportRun run = scene().run(options);
            EXPECT_EQ(run.alpha_preference, int{kAlphaPreferenceBefore});
            if (acquired[i].find("PF AE Adv App Suite") != std::string::npos) {
                EXPECT_FALSE(run.import.missing_suite);
                EXPECT_EQ(run.import.code, code);
                EXPECT_THAT(run.messages, ElementsAre(FailingScene::loading_message()));
                expect_untouched(run);
            } else if (const auto messages = messages_of_a_lesser_import(acquired, i)) {
                EXPECT_EQ(run.import.code, 0);
                EXPECT_EQ(run.messages, *messages);
                EXPECT_TRUE(run.conformance.clean()) << run.conformance.to_text();
                EXPECT_EQ(run.project.layers.size(), clean_run().project.layers.size());
            } else {
                const bool needs_tracks = acquired[i].find("PF ANSI Suite") != std::string::npos;
                // The next acquisition succeeds, so that the suite for reports can report its own failure.
                expect_exception(run, i < 2 ? run.entry : run.import, needs_tracks ? 3 : 0,
                                 missing_suite_messages(suite_named_in(acquired[i])));
            }
        }
    }
}

// A suite whose release fails stays acquired, without other consequences; but a failed release of the suite
// that is only tested for presence ends the import.
TEST(EveryRelease, FailingInTurn) {
    const std::vector<std::string> given_back = calls_of(clean_run(), "ReleaseSuite");
    // Those that the clean run acquires, without the two that are kept.
    ASSERT_EQ(given_back.size(), 1U + 11U + added_by_bridge());
    for (std::size_t i = 0; i < given_back.size(); ++i) {
        for (const A_Err code : {1, 4, 13}) {
            SCOPED_TRACE(given_back[i] + " with code " + std::to_string(code));
            embedded::HostOptions options;
            options.faults = {{"ReleaseSuite", static_cast<int>(i) + 1, code}};
            const ImportRun run = scene().run(options);
            EXPECT_EQ(run.entry.code, 0);
            EXPECT_EQ(run.alpha_preference, int{kAlphaPreferenceBefore});
            EXPECT_EQ(run.conformance.violations().size(), 1U);
            EXPECT_EQ(run.conformance.count(RuleViolation::suite_not_released), 1U);
            if (given_back[i].find("PF AE Adv App Suite") != std::string::npos) {
                EXPECT_EQ(run.import.code, code);
                EXPECT_THAT(run.messages, ElementsAre(FailingScene::loading_message()));
                expect_untouched(run);
            } else {
                EXPECT_EQ(run.import.code, 0);
                EXPECT_THAT(run.messages, IsEmpty());
                EXPECT_EQ(run.project.layers.size(), clean_run().project.layers.size());
            }
        }
    }
}

// The report of a failed composition acquires the Utility suite again; without it, the consequence of a
// missing suite replaces the message.
TEST(EveryAcquisition, OfTheSuiteForAReport) {
    embedded::HostOptions options;
    // Acquired before Outer's folder is created: two by the entry point, then Persistent Data, Adv App,
    // Utility, Proj, Item.
    options.faults = {{"AEGP_CreateNewFolder", 1, 4}, {"AcquireSuite", 8, 1}};
    const ImportRun run = scene().run(options);
    expect_exception(run, run.import, 0, missing_suite_messages(kReporting));
    EXPECT_EQ(run.alpha_preference, int{kAlphaPreferenceBefore});
    ASSERT_EQ(run.project.undo_steps.size(), 1U);
    EXPECT_TRUE(run.project.undo_steps[0].closed);
}

}  // namespace
