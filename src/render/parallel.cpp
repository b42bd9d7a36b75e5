#include "render/parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

#include "system/threads.h"

namespace render {

void for_each_index(std::size_t count, std::size_t threads,
                    const std::function<void(std::size_t i, std::size_t thread)>& work) {
    std::atomic<std::size_t> next = 0;
    std::mutex mutex;
    std::exception_ptr failure;
    const auto run = [&](std::size_t thread) {
        try {
            for (std::size_t i = next++; i < count; i = next++) {
                work(i, thread);
            }
        } catch (...) {
            next = count;
            const std::lock_guard lock(mutex);
            if (!failure) {
                failure = std::current_exception();
            }
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
    {
        Pool pool;
        const std::size_t others = os::kHasThreads ? std::min(threads, count) : 0;
        for (std::size_t thread = 1; thread < others; ++thread) {
            pool.threads.emplace_back(run, thread);
        }
        run(0);
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

}  // namespace render
