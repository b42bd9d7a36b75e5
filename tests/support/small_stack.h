#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstddef>
#include <functional>

/// The stack that a host's thread has at least left. Sanitizers pad variables, and their builds are not
/// optimised, so a call needs several times as much there.
#if defined(VXR_SANITIZED)
constexpr std::size_t kSmallStack_bytes = std::size_t{4} << 20;
#else
constexpr std::size_t kSmallStack_bytes = std::size_t{512} << 10;
#endif

/// Runs `work` on a thread with that much stack.
inline void run_on_small_stack(const std::function<void()>& work) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, kSmallStack_bytes), 0);
    pthread_t thread{};
    const auto call = [](void* argument) -> void* {
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
    };
    std::function<void()> copy = work;
    ASSERT_EQ(pthread_create(&thread, &attributes, call, &copy), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attributes);
}
