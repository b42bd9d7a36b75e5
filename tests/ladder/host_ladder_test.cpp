// Imports or draws every example while each host call fails in turn, each suite is missing in turn, and each
// suite is empty in turn.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ladder/climbing_file.h"
#include "ladder/ladder_host.h"
#include "ladder/rungs.h"
#include "support/lost_memory.h"
#include "support/tested_host.h"

namespace {

// The most calls of one function that fail: scenes with many keys make long lists of calls.
#if defined(VXR_SANITIZED)
constexpr std::size_t kOfOneFunction = 2;
#else
constexpr std::size_t kOfOneFunction = 25;
#endif

constexpr A_Err kCodes[] = {1, 4, 13};

/// All scenes and textures, and one footage file of each format.
std::vector<Example> hosted_examples() {
    std::vector<Example> chosen = examples_of(Kind::scene);
    for (const Example& texture : examples_of(Kind::texture)) {
        chosen.push_back(texture);
    }
    for (const Example& footage : examples_of(Kind::footage)) {
        if (footage.path.ends_with("post.rla") || footage.path.ends_with("contact.png")) {
            chosen.push_back(footage);
        }
    }
    return chosen;
}

/// Expects a result that follows from the options: success, the code of the fault, or the importer's own 3
/// for a missing file.
void expect_sound(const Climb& climbed, A_Err code, const std::string& rung) {
    EXPECT_EQ(climbed.violation, "") << rung;
    EXPECT_FALSE(climbed.no_memory_thrown) << rung;
    EXPECT_TRUE(climbed.result.code == kHostErrorMissingSuite || climbed.result.code == 0 ||
                climbed.result.code == code || climbed.result.code == 3 || climbed.result.code == 1)
        << rung << ": " << climbed.result.code;
    EXPECT_TRUE(!climbed.result.missing_suite || !tests_today()) << rung;
}

/// Whether the failure keeps the texture's last callback from reaching the image, so that it cannot free it.
bool loses_picture(const std::string& function) {
    return function == "AcquireSuite" || function == "AEGP_GetInSpecOptionsHandle" ||
           function == "AEGP_LockMemHandle";
}

TEST(HostLadder, EveryCallFailing) {
    for (const Example& example : hosted_examples()) {
        const ClimbingFile file(example);
        const Climb clean = climb({}, file.path());
        ASSERT_EQ(clean.violation, "") << example.name;
        for (const embedded::HostFunction& function : embedded::failable_functions()) {
            const auto called = clean.call_counts.find(function.function);
            if (called == clean.call_counts.end()) {
                continue;
            }
            for (const std::size_t call : some_of(static_cast<std::size_t>(called->second), kOfOneFunction)) {
                for (const A_Err code : kCodes) {
                    const LostMemory lost(loses_picture(function.function));
                    embedded::HostOptions options;
                    options.faults = {{function.function, static_cast<int>(call) + 1, code}};
                    expect_sound(climb(options, file.path()), code,
                                 example.name + ": call " + std::to_string(call + 1) + " of " +
                                     function.function + " with " + std::to_string(code));
                    count_rungs("host_calls");
                }
            }
        }
    }
}

// Frames for copies of a project take other ways through the bridge.
TEST(HostLadder, EveryCallFailingWhileATextureIsDrawnFromACopy) {
    if (!tests_today()) {
        GTEST_SKIP() << "classic hosts draw what they have opened";
    }
    embedded::HostOptions copying;
    copying.version = {13, 5};
    for (const Example& example : examples_of(Kind::texture)) {
        const ClimbingFile file(example);
        const Climb clean = climb(copying, file.path());
        ASSERT_EQ(clean.violation, "") << example.name;
        for (const embedded::HostFunction& function : embedded::failable_functions()) {
            const auto called = clean.call_counts.find(function.function);
            const std::size_t calls =
                called == clean.call_counts.end() ? 0 : static_cast<std::size_t>(called->second);
            for (const std::size_t call : some_of(calls, kOfOneFunction)) {
                const LostMemory lost(loses_picture(function.function));
                embedded::HostOptions options = copying;
                options.faults = {{function.function, static_cast<int>(call) + 1, 4}};
                expect_sound(climb(options, file.path()), 4,
                             example.name + ": call " + std::to_string(call + 1) + " of " +
                                 function.function + " while drawing from a copy");
                count_rungs("host_calls");
            }
        }
    }
}

TEST(HostLadder, EverySuiteMissingAndEverySuiteEmpty) {
    for (const Example& example : hosted_examples()) {
        const ClimbingFile file(example);
        for (const embedded::SuiteName& suite : embedded::offered_suites(tested_generation())) {
            for (const bool empty : {false, true}) {
                embedded::HostOptions options;
                (empty ? options.suites_empty : options.suites_not_offered) = {suite};
                expect_sound(climb(options, file.path()), kHostErrorMissingSuite,
                             example.name + (empty ? ": empty " : ": without ") + suite.name);
                count_rungs(empty ? "empty_suites" : "missing_suites");
            }
        }
    }
}

}  // namespace
