// Opens, draws and disposes of a texture while each host call fails in turn and each suite is missing in
// turn.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "end_to_end/texture_scene.h"
#include "support/loaded_bundle.h"
#include "support/lost_memory.h"
#include "support/temporary_folder.h"

namespace {

using embedded::RuleViolation;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::UnorderedElementsAreArray;

constexpr const char* kLoading = "There was an error loading the file in line %d.";
constexpr const char* kDrawing = "There was an error drawing the frame.";

enum class Callback { open, draw, dispose };

/// The results of opening, drawing and disposing; a callback does not run if the one before it failed.
struct TextureRun {
    std::map<Callback, embedded::CallbackResult> results;
    std::vector<std::string> messages;
    std::vector<diagnostic::Code> problems;
    std::map<std::string, std::int64_t> call_counts;
};

TextureRun run_texture(embedded::HostOptions options, bool sound_file = true) {
    const TemporaryFolder folder;
    const std::string path = folder.path("a.txl");
    if (write_texture(path, make_texture(4, 4, Texture::kRgb, 1))) {
        throw std::runtime_error("cannot write " + path);
    }
    if (!sound_file) {
        folder.write("a.txl", "no texture");
    }
    LoadedBundle bundle(std::move(options));
    if (bundle.loaded().entry.code != 0) {
        throw std::runtime_error("the bundle does not load");
    }
    TextureRun run;
    const embedded::OpenResult opened = bundle.host().open_with_module(path);
    run.results[Callback::open] = opened.callback;
    if (opened.in_spec != 0) {
        const auto drawn = bundle.host().draw(opened.in_spec, {4, 4, 0, 0, 0, {0, 1}, 0});
        run.results[Callback::draw] = drawn.callback;
        run.results[Callback::dispose] = bundle.host().dispose(opened.in_spec);
    }
    run.messages = bundle.message_texts();
    for (const diagnostic::Diagnostic& problem : bundle.host().conformance().violations()) {
        run.problems.push_back(problem.code);
    }
    run.call_counts = bundle.host().call_counts();
    return run;
}

struct Failure {
    const char* function;
    int nth;
    Callback in;
    bool is_result;  // the callback returns the code
    std::vector<std::string> messages;
    std::vector<diagnostic::Code> left;  // violations that the host finds
    bool loses_picture = false;          // the callback that would free the image cannot reach it
};

// The bundle deliberately keeps the record's handle if opening fails before attaching it. A failing call has
// no effect, so a handle that it should unlock or free stays as it is.
const Failure kFailures[] = {
    {"AEGP_NewMemHandle", 1, Callback::open, true, {kLoading}, {}},
    {"AEGP_LockMemHandle", 1, Callback::open, true, {kLoading}, {RuleViolation::memory_left_alive}},
    {"AEGP_UnlockMemHandle",
     1,
     Callback::open,
     true,
     {kLoading},
     {RuleViolation::memory_left_locked, RuleViolation::memory_left_alive}},
    {"AEGP_SetInSpecOptionsHandle", 1, Callback::open, true, {kLoading}, {RuleViolation::memory_left_alive}},
    // From here on the handle belongs to the in-spec and is freed with it.
    {"AEGP_SetInSpecDepth", 1, Callback::open, true, {kLoading}, {}},
    {"AEGP_SetInSpecDuration", 1, Callback::open, true, {kLoading}, {}},
    {"AEGP_SetInSpecDimensions", 1, Callback::open, true, {kLoading}, {}},
    {"AEGP_SetInSpecSize", 1, Callback::open, true, {kLoading}, {}},
    {"AEGP_SetInSpecNativeFPS", 1, Callback::open, true, {kLoading}, {}},
    {"AEGP_SetInSpecAlphaLabel", 1, Callback::open, true, {kLoading}, {}},
    {"AEGP_GetInSpecOptionsHandle", 1, Callback::draw, true, {kDrawing}, {}},
    {"AEGP_LockMemHandle", 2, Callback::draw, true, {kDrawing}, {}},
    {"AEGP_UnlockMemHandle", 2, Callback::draw, true, {kDrawing}, {RuleViolation::memory_left_locked}},
    // Failures while disposing are not reported. A handle that the host does not yield cannot be freed.
    {"AEGP_GetInSpecOptionsHandle", 2, Callback::dispose, true, {}, {RuleViolation::memory_left_alive}, true},
    {"AEGP_LockMemHandle", 3, Callback::dispose, false, {}, {}, true},
    {"AEGP_UnlockMemHandle", 3, Callback::dispose, false, {}, {RuleViolation::memory_left_locked}},
    {"AEGP_FreeMemHandle", 1, Callback::dispose, true, {}, {RuleViolation::memory_left_alive}},
};

class FailingTextureCall : public testing::TestWithParam<Failure> {};

TEST_P(FailingTextureCall, HasTheConsequenceOfItsPlace) {
    const Failure& failure = GetParam();
    for (const A_Err code : {1, 4, 13}) {
        SCOPED_TRACE(code);
        const LostMemory lost_memory(failure.loses_picture);
        embedded::HostOptions options;
        options.faults = {{failure.function, failure.nth, code}};
        const TextureRun run = run_texture(options);
        for (const auto& [callback, result] : run.results) {
            EXPECT_EQ(result.code, callback == failure.in && failure.is_result ? code : 0);
            EXPECT_FALSE(result.missing_suite);
        }
        EXPECT_EQ(run.results.size(), failure.in == Callback::open ? 1U : 3U);
        EXPECT_THAT(run.messages, ElementsAreArray(failure.messages));
        EXPECT_THAT(run.problems, UnorderedElementsAreArray(failure.left));
    }
}

INSTANTIATE_TEST_SUITE_P(Each, FailingTextureCall, testing::ValuesIn(kFailures), [](const auto& failure) {
    return std::string(failure.param.function) + std::to_string(failure.param.nth);
});

TEST(FailingTextureCalls, TheTableHoldsTheCallsOfACleanRun) {
    const TextureRun clean = run_texture({});
    EXPECT_EQ(clean.results.size(), 3U);
    for (const auto& [callback, result] : clean.results) {
        EXPECT_EQ(result.code, 0);
    }
    EXPECT_THAT(clean.messages, IsEmpty());
    EXPECT_THAT(clean.problems, IsEmpty());
    std::map<std::string, std::int64_t> last;
    for (const Failure& failure : kFailures) {
        last[failure.function] = std::max<std::int64_t>(last[failure.function], failure.nth);
    }
    for (const embedded::HostFunction& function : embedded::failable_functions()) {
        const bool of_textures =
            function.suite == "AEGP Memory Suite" || function.suite == "AEGP IO In Suite";
        if (of_textures) {
            const auto count = clean.call_counts.find(function.function);
            EXPECT_EQ(count == clean.call_counts.end() ? 0 : count->second, last[function.function])
                << function.function;
        }
    }
}

TEST(FailingTextureCalls, ABrokenFileThatCannotBeReportedIsStillRefused) {
    for (const int nth : {1, 2}) {
        for (const A_Err code : {1, 4, 13}) {
            embedded::HostOptions options;
            options.faults = {{"AEGP_ReportInfo", nth, code}};
            const TextureRun run = run_texture(options, false);
            EXPECT_EQ(run.results.at(Callback::open).code, 3);
            EXPECT_THAT(run.messages, testing::ElementsAre(kLoading));
        }
    }
}

// The suites that a callback acquires, in the order of first use; the results of releases are ignored.
const char* const kAcquiredInOpen[] = {"AEGP Memory Suite", "PF ANSI Suite", "AEGP IO In Suite"};
const char* const kAcquiredInDrawAndDispose[] = {"AEGP IO In Suite", "AEGP Memory Suite"};

void expect_missing(const TextureRun& run, Callback callback, const std::string& suite) {
    EXPECT_EQ(run.results.at(callback).missing_suite, !tests_today());
    EXPECT_EQ(run.results.at(callback).code, kHostErrorMissingSuite);
    EXPECT_EQ(run.messages, missing_suite_messages(suite));
}

TEST(MissingTextureSuites, EveryAcquisitionFailingInTurn) {
    std::vector<std::pair<Callback, std::string>> acquired;
    for (const char* suite : kAcquiredInOpen) {
        acquired.emplace_back(Callback::open, suite);
    }
    for (const Callback callback : {Callback::draw, Callback::dispose}) {
        for (const char* suite : kAcquiredInDrawAndDispose) {
            acquired.emplace_back(callback, suite);
        }
    }
    constexpr int kByTheEntryPoint = 2;
    ASSERT_EQ(run_texture({}).call_counts.at("AcquireSuite"),
              kByTheEntryPoint + static_cast<std::int64_t>(acquired.size()));
    for (std::size_t i = 0; i < acquired.size(); ++i) {
        SCOPED_TRACE(std::to_string(i) + " " + acquired[i].second);
        const LostMemory lost_memory(acquired[i].first == Callback::dispose);
        embedded::HostOptions options;
        options.faults = {{"AcquireSuite", kByTheEntryPoint + 1 + static_cast<int>(i), 13}};
        const TextureRun run = run_texture(options);
        expect_missing(run, acquired[i].first, acquired[i].second);
        // A handle that is not yet attached stays, and so does one that the module cannot ask for.
        const bool leaves_handle =
            (acquired[i].first == Callback::open && i > 0) || acquired[i].first == Callback::dispose;
        std::vector<diagnostic::Code> expected;
        if (!tests_today()) {
            expected.emplace_back(RuleViolation::missing_suite_exception);
        }
        if (leaves_handle) {
            expected.emplace_back(RuleViolation::memory_left_alive);
        }
        EXPECT_THAT(run.problems, UnorderedElementsAreArray(expected));
    }
}

TEST(MissingTextureSuites, OfferedButEmptyIsTheSame) {
    for (const char* suite : kAcquiredInOpen) {
        embedded::HostOptions options;
        SCOPED_TRACE(suite);
        options.suites_empty = offered_suites_of(suite);
        expect_missing(run_texture(options), Callback::open, suite);
    }
}

TEST(MissingTextureSuites, TheSuiteForReports) {
    embedded::HostOptions options;
    options.suites_not_offered = {{"AEGP Utility Suite", 7}};
    EXPECT_EQ(run_texture(options).results.at(Callback::dispose).code, 0);
    const TextureRun run = run_texture(options, false);
    EXPECT_EQ(run.results.at(Callback::open).missing_suite, !tests_today());
    EXPECT_EQ(run.results.at(Callback::open).code, kHostErrorMissingSuite);
    EXPECT_THAT(run.messages, IsEmpty());
}

}  // namespace
