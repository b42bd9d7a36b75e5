#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "system/threads.h"

namespace cli {

/// The threads for `--jobs N`; one for each processor for 0.
[[nodiscard]] inline std::size_t threads_for(int jobs) {
    return jobs > 0 ? static_cast<std::size_t>(jobs)
                    : std::max<std::size_t>(1, std::thread::hardware_concurrency());
}

/// Calls `work(i)` for every i below `count` on `threads` threads. On the calling thread, calls `done(n)` as
/// the number n of finished jobs grows, and `report(i, result)` for every i in order, as early as possible.
/// `work` must not throw. An exception from `done` or `report` is passed on once the jobs that have begun are
/// finished; no other job begins. Where there are no threads, the calling one does all the work.
template <class Result>
void run_in_order(std::size_t count, std::size_t threads, const std::function<Result(std::size_t)>& work,
                  const std::function<void(std::size_t)>& done,
                  const std::function<void(std::size_t, Result)>& report) {
    if (!os::kHasThreads) {
        for (std::size_t i = 0; i < count; ++i) {
            Result result = work(i);
            done(i + 1);
            report(i, std::move(result));
        }
        return;
    }
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::optional<Result>> results(count);
    std::size_t next = 0;
    std::size_t finished = 0;

    const auto run_jobs = [&] {
        for (;;) {
            std::size_t i = 0;
            {
                const std::lock_guard lock(mutex);
                if (next >= count) {
                    return;
                }
                i = next++;
            }
            Result result = work(i);
            {
                const std::lock_guard lock(mutex);
                results[i] = std::move(result);
                ++finished;
            }
            changed.notify_one();
        }
    };
    // Joined whichever way this function ends. Not std::jthread, which clang's library lacks.
    struct Pool {
        std::vector<std::thread> threads = {};
        ~Pool() {
            for (std::thread& thread : threads) {
                thread.join();
            }
        }
    };
    Pool pool;
    const auto stop = [&] {
        const std::lock_guard lock(mutex);
        next = count;
    };
    struct Stopper {
        const std::function<void()> stop;
        ~Stopper() { stop(); }
    };
    const Stopper stopper{stop};  // destroyed before the pool, so it stops the threads before they are joined
    for (std::size_t i = 0; i < threads && i < count; ++i) {
        pool.threads.emplace_back(run_jobs);
    }

    std::size_t told = 0;
    for (std::size_t reported = 0; reported < count;) {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return finished > told || results[reported].has_value(); });
        const std::size_t now = finished;
        std::optional<Result> result = std::move(results[reported]);
        results[reported].reset();
        lock.unlock();
        if (now > told) {
            told = now;
            done(now);
        }
        if (result.has_value()) {
            report(reported++, std::move(*result));
        }
    }
}

}  // namespace cli
