#include "host/suite_handler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using SuiteKey = std::pair<std::string, A_long>;

// The part of a host that a handler sees. The functions are plain C functions, so the state has namespace
// scope; every test starts with a fresh one.
struct FakeBasicSuite {
    std::vector<SuiteKey> acquired;
    std::vector<SuiteKey> released;
    SuiteKey refused;   ///< acquiring this one fails with kHostErrorMissingSuite
    SuiteKey withheld;  ///< acquiring this one succeeds without a table
    A_Err release_result = kHostErrorNone;

    static constexpr std::size_t kTables = 128;
};
FakeBasicSuite* fake = nullptr;
char lent_tables[FakeBasicSuite::kTables];

A_Err fake_acquire(const char* name, A_long version, const void** suite) {
    const SuiteKey key(name, version);
    // Every acquisition yields another address, so that tests can tell them apart.
    *suite = &lent_tables[fake->acquired.size() % FakeBasicSuite::kTables];
    fake->acquired.push_back(key);
    if (key == fake->refused) {
        return kHostErrorMissingSuite;
    }
    if (key == fake->withheld) {
        *suite = nullptr;
    }
    return kHostErrorNone;
}

A_Err fake_release(const char* name, A_long version) {
    fake->released.emplace_back(name, version);
    return fake->release_result;
}

class SuiteHandlerTest : public ::testing::Test {
  protected:
    SuiteHandlerTest() {
        fake = &host_;
        basic_.AcquireSuite = fake_acquire;
        basic_.ReleaseSuite = fake_release;
    }
    ~SuiteHandlerTest() override { fake = nullptr; }
    SuiteHandlerTest(const SuiteHandlerTest&) = delete;
    SuiteHandlerTest& operator=(const SuiteHandlerTest&) = delete;

    FakeBasicSuite host_;
    SPBasicSuite basic_{};
};

// The released rows in the order in which a handler releases them, written by hand and compared with the
// table in the source.
const std::vector<SuiteKey> kReleaseOrder = {
    {"AEGP Marker Suite", 1},
    {"AEGP Layer Suite", 8},
    {"AEGP Layer Suite", 10},
    {"AEGP Stream Suite", 8},
    {"AEGP Stream Suite", 7},
    {"AEGP Stream Suite", 4},
    {"AEGP Dynamic Stream Suite", 2},
    {"AEGP Dynamic Stream Suite", 3},
    {"AEGP Keyframe Suite", 4},
    {"AEGP Keyframe Suite", 3},
    {"AEGP Keyframe Suite", 1},
    {"AEGP Comp Suite", 9},
    {"AEGP Comp Suite", 11},
    {"AEGP Comp Suite", 14},
    {"AEGP Proj Suite", 2},
    {"AEGP Proj Suite", 5},
    {"AEGP Canvas Suite", 10},
    {"AEGP Canvas Suite", 11},
    {"AEGP Camera Suite", 2},
    {"AEGP Register Suite", 2},
    {"AEGP Item Suite", 11},
    {"AEGP Item Suite", 10},
    {"AEGP Item Suite", 7},
    {"AEGP Item Suite", 3},
    {"AEGP PF Interface Suite", 1},
    {"PF Path Query Suite", 1},
    {"AEGP Memory Suite", 1},
    {"PF Path Data Suite", 1},
    {"PF Path Data Suite", 1},
    {"PF AE App Suite", 2},
    {"PF AE App Suite", 5},
    {"PF AE Adv App Suite", 2},
    {"AEGP Light Suite", 1},
    {"AEGP Light Suite", 2},
    {"AEGP Effect Suite", 1},
    {"AEGP Effect Suite", 2},
    {"AEGP Effect Suite", 3},
    {"AEGP Layer Mask Suite", 5},
    {"AEGP Mask Outline Suite", 3},
    {"AEGP Footage Suite", 7},
    {"AEGP Command Suite", 1},
    {"AEGP Utility Suite", 7},
    {"AEGP Render Suite", 1},
    {"AEGP Render Suite", 2},
    {"PF ANSI Suite", 1},
    {"PF Handle Suite", 1},
    {"PF Fill Matte Suite", 1},
    {"PF World Transform Suite", 1},
    {"AEGP QueryXform Suite", 4},
    {"AEGP Composite Suite", 2},
    {"PF World Suite", 1},
    {"AEGP IO In Suite", 1},
    {"AEGP IO Out Suite", 1},
    {"AEGP IO Out Suite", 6},
    {"AEGP Render Queue Suite", 1},
    {"AEGP Render Queue Item Suite", 3},
    {"AEGP Output Module Suite", 1},
    {"AEGP Output Module Suite", 2},
    {"AEGP File Import Manager Suite", 2},
    {"PF Sampling8 Suite", 1},
    {"PF Sampling16 Suite", 1},
    {"PF Iterate8 Suite", 1},
    {"PF iterate16 Suite", 1},
    {"PF iterateFloat Suite", 1},
    {"AEGP Collection Suite", 2},
    {"AEGP Text Document Suite", 1},
    {"AEGP Sound Data Suite", 1},
    {"AEGP Text Layer Suite", 1},
    {"AEGP Artisan Util Suite", 1},
    {"AEGP World Suite", 2},
    {"AEGP Render Options Suite", 1},
    {"AEGP Tracker Suite", 1},
    {"AEGP Tracker Utility Suite", 1},
    {"AE Plugin Helper Suite2", 2},
    {"AEGP Layer Suite", 11},
    {"PF AE Adv Item Suite", 1},
    {"AEGP Layer Suite", 5},
    {"AEGP Layer Mask Suite", 2},
    {"AEGP Comp Suite", 4},
    {"AEGP Collection Suite", 1},
    {"AEGP Register Suite", 1},
    {"AEGP Mask Outline Suite", 2},
    {"PF AE Adv App Suite", 1},
    {"AEGP Utility Suite", 3},
    {"AEGP Render Options Suite", 2},
    {"AEGP Proj Suite", 7},
    {"AEGP Footage Suite", 10},
    {"AEGP Render Queue Item Suite", 4},
    {"AEGP Utility Suite", 10},
    {"PF Color Settings Suite", 3},
    {"PF Color Settings Suite", 1},
    {"PF ColorParamSuite", 1},
    {"PF SamplingFloat Suite", 1},
    {"AEGP Utility Suite", 11},
};

const std::vector<SuiteKey> kNeverReleased = {{"AEGP Register Suite", 4}, {"AEGP Persistent Data Suite", 1}};

using AskForSuite = const void* (*)(AEGP_SuiteHandler&);

// One call per accessor, in the order of the rows.
#define VXR_ASK(name, version, accessor, type) \
    [](AEGP_SuiteHandler& suites) -> const void* { return suites.accessor(); },
const std::vector<AskForSuite> kAskReleased = {VXR_RELEASED_SUITE_ROWS(VXR_ASK)};
const std::vector<AskForSuite> kAskKept = {VXR_KEPT_SUITE_ROWS(VXR_ASK)};
#undef VXR_ASK

/// The type and value that `action` throws, as text: "long 516", "nothing" or "something else".
template <typename Action>
std::string thrown_by(const Action& action) {
    try {
        action();
    } catch (long value) {
        return "long " + std::to_string(value);
    } catch (...) {
        return "something else";
    }
    return "nothing";
}

TEST_F(SuiteHandlerTest, WithoutAnyAccessorNothingIsAcquiredOrReleased) {
    { const AEGP_SuiteHandler suites(&basic_); }
    EXPECT_THAT(host_.acquired, IsEmpty());
    EXPECT_THAT(host_.released, IsEmpty());
}

TEST_F(SuiteHandlerTest, EveryRowIsAskedForByItsExactNameAndVersion) {
    ASSERT_EQ(kReleaseOrder.size(), 94U);
    ASSERT_EQ(kAskReleased.size(), kReleaseOrder.size());
    for (std::size_t row = 0; row < kAskReleased.size(); ++row) {
        host_.acquired.clear();
        host_.released.clear();
        {
            AEGP_SuiteHandler suites(&basic_);
            EXPECT_EQ(kAskReleased[row](suites), &lent_tables[0]);
        }
        EXPECT_THAT(host_.acquired, ElementsAre(kReleaseOrder[row])) << "row " << row;
        EXPECT_THAT(host_.released, ElementsAre(kReleaseOrder[row])) << "row " << row;
    }
}

TEST_F(SuiteHandlerTest, AllAreReleasedInTheOrderOfTheRows) {
    {
        AEGP_SuiteHandler suites(&basic_);
        for (auto ask = kAskReleased.rbegin(); ask != kAskReleased.rend(); ++ask) {
            (*ask)(suites);
        }
        for (const AskForSuite ask : kAskKept) {
            ask(suites);
        }
        EXPECT_THAT(host_.released, IsEmpty()) << "suites are held until the end of the call";
    }
    EXPECT_EQ(host_.acquired.size(), 96U);
    EXPECT_EQ(host_.released, kReleaseOrder);
}

TEST_F(SuiteHandlerTest, TwoSuitesAreAcquiredAndNeverReleased) {
    ASSERT_EQ(kAskKept.size(), kNeverReleased.size());
    {
        AEGP_SuiteHandler suites(&basic_);
        suites.RegisterSuite4();
        suites.PersistentDataSuite1();
    }
    EXPECT_EQ(host_.acquired, kNeverReleased);
    EXPECT_THAT(host_.released, IsEmpty());
}

TEST_F(SuiteHandlerTest, AskingTwiceAcquiresOnceAndReleasesOnce) {
    {
        AEGP_SuiteHandler suites(&basic_);
        const AEGP_UtilitySuite7* first = suites.UtilitySuite7();
        EXPECT_EQ(suites.UtilitySuite7(), first);
        const AEGP_RegisterSuite4* kept = suites.RegisterSuite4();
        EXPECT_EQ(suites.RegisterSuite4(), kept);
    }
    EXPECT_THAT(host_.acquired,
                ElementsAre(SuiteKey("AEGP Utility Suite", 7), SuiteKey("AEGP Register Suite", 4)));
    EXPECT_THAT(host_.released, ElementsAre(SuiteKey("AEGP Utility Suite", 7)));
}

TEST_F(SuiteHandlerTest, VersionsOfASuiteAreDifferentSuites) {
    {
        AEGP_SuiteHandler suites(&basic_);
        EXPECT_NE(static_cast<const void*>(suites.UtilitySuite7()),
                  static_cast<const void*>(suites.UtilitySuite11()));
    }
    EXPECT_THAT(host_.released,
                ElementsAre(SuiteKey("AEGP Utility Suite", 7), SuiteKey("AEGP Utility Suite", 11)));
}

TEST_F(SuiteHandlerTest, TheDoubledRowHasTwoSlots) {
    const SuiteKey path_data("PF Path Data Suite", 1);
    {
        AEGP_SuiteHandler suites(&basic_);
        const void* first = suites.PathDataSuite1();
        const void* second = suites.PathDataSuite1Second();
        EXPECT_NE(first, second);
        EXPECT_EQ(suites.PathDataSuite1(), first);
        EXPECT_EQ(suites.PathDataSuite1Second(), second);
    }
    EXPECT_THAT(host_.acquired, ElementsAre(path_data, path_data));
    EXPECT_THAT(host_.released, ElementsAre(path_data, path_data));
}

TEST_F(SuiteHandlerTest, EachHandlerAcquiresForItself) {
    for (int call = 0; call < 2; ++call) {
        AEGP_SuiteHandler suites(&basic_);
        suites.CompSuite9();
    }
    EXPECT_EQ(host_.acquired.size(), 2U);
    EXPECT_EQ(host_.released.size(), 2U);
}

TEST_F(SuiteHandlerTest, WithoutABasicSuiteTheMissingSuiteErrorIsThrownAtOnce) {
    EXPECT_EQ(thrown_by([] { const AEGP_SuiteHandler suites(nullptr); }), "long 516");
}

TEST_F(SuiteHandlerTest, MissingSuiteErrorThrowsTheLongValue516) {
    const AEGP_SuiteHandler suites(&basic_);
    EXPECT_EQ(thrown_by([&] { suites.MissingSuiteError(); }), "long 516");
}

TEST_F(SuiteHandlerTest, EveryUnavailableRowIsAMissingSuite) {
    std::vector<SuiteKey> rows = kReleaseOrder;
    rows.insert(rows.end(), kNeverReleased.begin(), kNeverReleased.end());
    std::vector<AskForSuite> ask = kAskReleased;
    ask.insert(ask.end(), kAskKept.begin(), kAskKept.end());
    ASSERT_EQ(rows.size(), ask.size());
    for (std::size_t row = 0; row < rows.size(); ++row) {
        SCOPED_TRACE(rows[row].first + " " + std::to_string(rows[row].second));
        host_ = FakeBasicSuite{};
        {
            AEGP_SuiteHandler suites(&basic_);
            host_.refused = rows[row];
            EXPECT_EQ(thrown_by([&] { ask[row](suites); }), "long 516") << "an error of the host";
            host_.refused = {};
            host_.withheld = rows[row];
            EXPECT_EQ(thrown_by([&] { ask[row](suites); }), "long 516") << "success without a suite";
        }
        EXPECT_THAT(host_.released, IsEmpty()) << "a suite that was not acquired is not released";
    }
}

TEST_F(SuiteHandlerTest, AFailedAcquisitionIsTriedAgain) {
    {
        AEGP_SuiteHandler suites(&basic_);
        host_.refused = {"AEGP Item Suite", 10};
        EXPECT_EQ(thrown_by([&] { suites.ItemSuite10(); }), "long 516");
        host_.refused = {};
        EXPECT_NE(suites.ItemSuite10(), nullptr);
    }
    EXPECT_THAT(host_.released, ElementsAre(SuiteKey("AEGP Item Suite", 10)));
}

TEST_F(SuiteHandlerTest, UnwindingReleasesTheSuitesAcquiredBefore) {
    host_.refused = {"AEGP Layer Suite", 11};
    EXPECT_EQ(thrown_by([&] {
                  AEGP_SuiteHandler suites(&basic_);
                  suites.CompSuite9();
                  suites.RegisterSuite4();
                  suites.LayerSuite11();
              }),
              "long 516");
    EXPECT_EQ(host_.acquired.size(), 3U);
    EXPECT_THAT(host_.released, ElementsAre(SuiteKey("AEGP Comp Suite", 9)));
}

TEST_F(SuiteHandlerTest, ReleaseSuiteReturnsTheHostsResult) {
    AEGP_SuiteHandler suites(&basic_);
    host_.release_result = 77;
    EXPECT_EQ(suites.ReleaseSuite("AEGP Canvas Suite", 10), 77);
    EXPECT_THAT(host_.released, ElementsAre(SuiteKey("AEGP Canvas Suite", 10)));
}

TEST_F(SuiteHandlerTest, FailuresOfTheFinalReleasesAreIgnored) {
    host_.release_result = kHostErrorGeneric;
    {
        AEGP_SuiteHandler suites(&basic_);
        suites.CompSuite9();
        suites.UtilitySuite7();
    }
    EXPECT_THAT(host_.released,
                ElementsAre(SuiteKey("AEGP Comp Suite", 9), SuiteKey("AEGP Utility Suite", 7)))
        << "the second is released although the first release failed";
}

TEST(SuiteHandler, IsAPlainRecordOfOnePointerAndItsSlots) {
    EXPECT_FALSE(std::is_polymorphic_v<AEGP_SuiteHandler>);
    EXPECT_TRUE(std::is_standard_layout_v<AEGP_SuiteHandler>);
    EXPECT_EQ(sizeof(AEGP_SuiteHandler), (1 + 101) * sizeof(void*));
    EXPECT_FALSE(std::is_copy_constructible_v<AEGP_SuiteHandler>) << "a suite is released exactly once";
}

}  // namespace
