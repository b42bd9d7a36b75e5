#include "cli/terminal/ordered_jobs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

TEST(OrderedJobs, ReportsInOrderWhicheverJobEndsFirst) {
    for (const std::size_t threads : {1U, 2U, 8U, 100U}) {
        std::vector<std::size_t> reported;
        std::vector<std::size_t> done;
        cli::run_in_order<std::size_t>(
            20, threads,
            [](std::size_t i) {
                std::this_thread::sleep_for(std::chrono::milliseconds(i % 3 == 0 ? 3 : 0));
                return i * i;
            },
            [&](std::size_t n) { done.push_back(n); },
            [&](std::size_t i, std::size_t result) {
                EXPECT_EQ(result, i * i);
                reported.push_back(i);
            });
        ASSERT_EQ(reported.size(), 20U);
        for (std::size_t i = 0; i < reported.size(); ++i) {
            EXPECT_EQ(reported[i], i);
        }
        EXPECT_EQ(done.back(), 20U);
        EXPECT_TRUE(std::is_sorted(done.begin(), done.end()));
    }
}

TEST(OrderedJobs, NoJobsAreFinishedAtOnce) {
    cli::run_in_order<int>(
        0, 4, [](std::size_t) { return 0; }, [](std::size_t) { FAIL(); }, [](std::size_t, int) { FAIL(); });
}

TEST(OrderedJobs, AnExceptionWhileReportingStopsTheJobs) {
    std::atomic<int> begun = 0;
    EXPECT_THROW(cli::run_in_order<int>(
                     1000, 2,
                     [&](std::size_t) {
                         ++begun;
                         std::this_thread::sleep_for(std::chrono::milliseconds(1));
                         return 0;
                     },
                     [](std::size_t) {}, [](std::size_t, int) { throw std::runtime_error("disk full"); }),
                 std::runtime_error);
    EXPECT_LT(begun, 1000);
}

}  // namespace
