// Hosts call a module's callbacks on several threads at a time.

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "host/bridged_plugin.h"
#include "host/suite_handler.h"

namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 300;

std::atomic<int> answered = 0;
const char* const kReport =
    "This plug-in needs the suite \"AEGP Comp Suite\" 9, which the host does not offer.";

TEST(BridgeThreads, SuitesAreCountedAndExceptionsStoppedOnEveryThread) {
    CurrentHost host;
    answered = 0;
    ASSERT_EQ(enter(host,
                    [](SPBasicSuite* bridge) {
                        AEGP_SuiteHandler suites(bridge);
                        AEIO_ModuleInfo info{};
                        AEIO_FunctionBlock2 functions{};
                        functions.AEIO_Idle = [](AEIO_BasicData* data, A_long round, A_long*) {
                            AEGP_SuiteHandler handler(data->basic_suite);
                            if (handler.IOInSuite1()->AEGP_SetInSpecDepth(nullptr, 32) == 0 &&
                                handler.ProjSuite5()->AEGP_GetProjectByIndex(0, nullptr) == 0) {
                                ++answered;
                            }
                            if (round % 3 == 0) {
                                handler.CompSuite9();
                            }
                            return A_Err{0};
                        };
                        return suites.RegisterSuite4()->AEGP_RegisterIO(7, nullptr, &info, &functions);
                    }),
              0);
    const AEIO_FunctionBlock4 block = host.modules.at(0).second;
    std::atomic<int> missing = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&host, &block, &missing] {
            AEIO_BasicData data = *host.basic_data();
            for (int round = 0; round < kRounds; ++round) {
                if (block.AEIO_Idle(&data, round, nullptr) == kHostErrorMissingSuite) {
                    ++missing;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(answered, kThreads * kRounds) << "no thread lost a suite that it held";
    EXPECT_EQ(missing, kThreads * kRounds / 3);
    // Hosts may refuse reports off the main thread, so the next callback on that thread shows them, each text
    // once.
    EXPECT_EQ(host.reports, std::vector<std::string>{});
    AEIO_BasicData data = *host.basic_data();
    EXPECT_EQ(block.AEIO_Idle(&data, 1, nullptr), 0);
    EXPECT_EQ(host.reports, std::vector<std::string>{kReport});
    EXPECT_EQ(block.AEIO_Idle(&data, 1, nullptr), 0);
    EXPECT_EQ(host.reports, std::vector<std::string>{kReport});
    EXPECT_EQ(host.left_open(), std::vector<std::string>{"AEGP Register Suite 6 x 1"});
}

}  // namespace
