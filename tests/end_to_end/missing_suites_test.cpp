// Hosts that do not have a suite, or say that they have it and hand out nothing; and every single acquiring
// and giving back of a suite failing in turn.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "end_to_end/call_notation.h"
#include "end_to_end/failing_scene.h"

namespace {

using embedded::Breach;
using testing::ElementsAre;
using testing::IsEmpty;

enum class Without {
    cannot_load,       // the exception leaves the entry point
    changes_nothing,   // the exception leaves the import before the project is touched
    leaves_undo_step,  // the exception leaves the import while it builds
    refuses_loudly,    // the result is the host's code, and the user is told
    refuses_silently,  // result 0, nothing is built
    imports,           // an import has no need of it
};

struct Suite {
    const char* name;
    A_long version;
    Without when_missing;
    Without when_empty;
    int left_open;  // additions of keys that nobody ended when the exception passed
};

// Whatever an import acquires is acquired when it is used first.
const Suite kSuites[] = {
    {"AEGP Register Suite", 4, Without::cannot_load, Without::cannot_load, 0},
    {"AEGP File Import Manager Suite", 2, Without::cannot_load, Without::cannot_load, 0},
    {"AEGP Persistent Data Suite", 1, Without::changes_nothing, Without::changes_nothing, 0},
    // Acquired to open the undo group, after the preference was changed.
    {"AEGP Utility Suite", 7, Without::changes_nothing, Without::changes_nothing, 0},
    // Only its presence is tested, and not through the handler.
    {"PF AE Adv App Suite", 1, Without::refuses_loudly, Without::refuses_silently, 0},
    {"AEGP Proj Suite", 5, Without::leaves_undo_step, Without::leaves_undo_step, 0},
    {"AEGP Item Suite", 10, Without::leaves_undo_step, Without::leaves_undo_step, 0},
    {"AEGP Comp Suite", 9, Without::leaves_undo_step, Without::leaves_undo_step, 0},
    {"AEGP Footage Suite", 7, Without::leaves_undo_step, Without::leaves_undo_step, 0},
    {"AEGP Layer Suite", 11, Without::leaves_undo_step, Without::leaves_undo_step, 0},
    {"AEGP Stream Suite", 7, Without::leaves_undo_step, Without::leaves_undo_step, 0},
    {"AEGP Keyframe Suite", 3, Without::leaves_undo_step, Without::leaves_undo_step, 0},
    // First used for the camera's point of interest, when its three tracks have been started.
    {"PF ANSI Suite", 1, Without::leaves_undo_step, Without::leaves_undo_step, 3},
    {"AEGP Light Suite", 2, Without::leaves_undo_step, Without::leaves_undo_step, 0},
    {"AEGP Memory Suite", 1, Without::imports, Without::imports, 0},
    {"AEGP IO In Suite", 1, Without::imports, Without::imports, 0},
    {"AEGP IO Out Suite", 1, Without::imports, Without::imports, 0},
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

// `others`: what the host finds beside the exception.
void expect_exception(const ImportRun& run, const embedded::CallbackResult& callback, std::size_t others) {
    EXPECT_TRUE(callback.missing_suite);
    EXPECT_EQ(callback.code, kHostErrorMissingSuite);
    EXPECT_THAT(run.messages, IsEmpty());
    EXPECT_EQ(run.discipline.count(Breach::missing_suite_exception), 1U);
    EXPECT_EQ(run.discipline.count(Breach::additions_not_ended), others) << run.discipline.to_text();
    EXPECT_EQ(run.discipline.problems().size(), 1 + others) << run.discipline.to_text();
}

void expect(const ImportRun& run, Without without, const Suite& suite) {
    EXPECT_EQ(run.alpha_preference, int{kAlphaPreferenceBefore});
    switch (without) {
        case Without::cannot_load:
            expect_exception(run, run.entry, 0);
            expect_untouched(run);
            return;
        case Without::changes_nothing:
            expect_exception(run, run.import, 0);
            expect_untouched(run);
            break;
        case Without::leaves_undo_step:
            expect_exception(run, run.import, static_cast<std::size_t>(suite.left_open));
            ASSERT_EQ(run.project.undo_steps.size(), 1U);
            EXPECT_TRUE(run.project.undo_steps[0].closed);
            // Nothing after the failed acquiring but what puts things right.
            for (const std::string& call : run.calls_after(
                     "AcquireSuite", static_cast<int>(std::count_if(
                                         run.import_calls.begin(), run.import_calls.end(),
                                         [](const auto& c) { return function_of(c) == "AcquireSuite"; }))))
                EXPECT_THAT(function_of(call), testing::AnyOf("AEGP_DisposeStream", "AEGP_EndUndoGroup",
                                                              "AEGP_SetData", "ReleaseSuite"));
            break;
        case Without::refuses_loudly:
            EXPECT_FALSE(run.import.missing_suite);
            EXPECT_EQ(run.import.code, kHostErrorMissingSuite);
            EXPECT_THAT(run.messages, ElementsAre(FailingScene::loading_message()));
            EXPECT_TRUE(run.discipline.clean()) << run.discipline.to_text();
            expect_untouched(run);
            break;
        case Without::refuses_silently:
            EXPECT_EQ(run.import.code, 0);
            EXPECT_THAT(run.messages, IsEmpty());
            EXPECT_TRUE(run.discipline.clean()) << run.discipline.to_text();
            expect_untouched(run);
            break;
        case Without::imports:
            EXPECT_EQ(run.import.code, 0);
            EXPECT_TRUE(run.discipline.clean()) << run.discipline.to_text();
            EXPECT_EQ(first_difference(clean_run().import_calls, run.import_calls), "");
            break;
    }
    EXPECT_EQ(run.entry.code, 0);
}

class MissingSuite : public testing::TestWithParam<Suite> {};

TEST_P(MissingSuite, NotOffered) {
    embedded::HostOptions options;
    options.suites_not_offered = {{GetParam().name, GetParam().version}};
    expect(scene().run(options), GetParam().when_missing, GetParam());
}

TEST_P(MissingSuite, OfferedButEmpty) {
    embedded::HostOptions options;
    options.suites_empty = {{GetParam().name, GetParam().version}};
    expect(scene().run(options), GetParam().when_empty, GetParam());
}

INSTANTIATE_TEST_SUITE_P(Each, MissingSuite, testing::ValuesIn(kSuites), [](const auto& suite) {
    std::string name = suite.param.name + std::to_string(suite.param.version);
    name.erase(std::remove_if(name.begin(), name.end(), [](char c) { return c == ' '; }), name.end());
    return name;
});

TEST(MissingSuites, TheTableHoldsEverySuiteThatTheHostOffers) {
    for (const embedded::SuiteName& offered : embedded::offered_suites()) {
        EXPECT_TRUE(std::any_of(std::begin(kSuites), std::end(kSuites),
                                [&offered](const Suite& suite) {
                                    return offered.name == suite.name && offered.version == suite.version;
                                }))
            << offered.name << " " << offered.version;
    }
}

std::vector<std::string> calls_of(const ImportRun& run, const std::string& function) {
    std::vector<std::string> calls;
    for (const auto* list : {&run.load_calls, &run.import_calls})
        std::copy_if(list->begin(), list->end(), std::back_inserter(calls),
                     [&function](const std::string& call) { return function_of(call) == function; });
    return calls;
}

// Acquiring fails for a reason of the moment: whatever the code, it is the exception, but for the presence
// test.
TEST(EveryAcquiring, FailingInTurn) {
    const std::vector<std::string> acquired = calls_of(clean_run(), "AcquireSuite");
    ASSERT_EQ(acquired.size(), 2U + 12U);  // Register, File Import Manager; what an import uses
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
            } else {
                const bool needs_tracks = acquired[i].find("PF ANSI Suite") != std::string::npos;
                expect_exception(run, i < 2 ? run.entry : run.import, needs_tracks ? 3 : 0);
            }
        }
    }
}

// A suite that the host does not take back stays acquired, and that is all; giving back the one that is only
// tested for presence ends the import.
TEST(EveryGivingBack, FailingInTurn) {
    const std::vector<std::string> given_back = calls_of(clean_run(), "ReleaseSuite");
    ASSERT_EQ(given_back.size(), 1U + 11U);  // what the clean run acquired, without the two that are kept
    for (std::size_t i = 0; i < given_back.size(); ++i) {
        for (const A_Err code : {1, 4, 13}) {
            SCOPED_TRACE(given_back[i] + " with code " + std::to_string(code));
            embedded::HostOptions options;
            options.faults = {{"ReleaseSuite", static_cast<int>(i) + 1, code}};
            const ImportRun run = scene().run(options);
            EXPECT_EQ(run.entry.code, 0);
            EXPECT_EQ(run.alpha_preference, int{kAlphaPreferenceBefore});
            EXPECT_EQ(run.discipline.problems().size(), 1U);
            EXPECT_EQ(run.discipline.count(Breach::suite_not_released), 1U);
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

// What reports a failed composition acquires the utility suite anew; without it, the exception takes the
// place of the message.
TEST(EveryAcquiring, OfTheSuiteForAReport) {
    embedded::HostOptions options;
    // Acquired until Outer's folder is made: two by the entry point, then Persistent Data, Adv App, Utility,
    // Proj, Item.
    options.faults = {{"AEGP_CreateNewFolder", 1, 4}, {"AcquireSuite", 8, 1}};
    const ImportRun run = scene().run(options);
    expect_exception(run, run.import, 0);
    EXPECT_EQ(run.alpha_preference, int{kAlphaPreferenceBefore});
    ASSERT_EQ(run.project.undo_steps.size(), 1U);
    EXPECT_TRUE(run.project.undo_steps[0].closed);
}

}  // namespace
