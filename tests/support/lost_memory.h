#pragma once

// For tests in which a host's failure keeps the bundle from reaching memory that it would free.

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VXR_HAS_LEAK_CHECKER 1
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define VXR_HAS_LEAK_CHECKER 1
#endif

#if defined(VXR_HAS_LEAK_CHECKER)
#include <sanitizer/lsan_interface.h>
#endif

/// If `expected`, the sanitizer ignores leaks of memory that is allocated during the lifetime of this object.
class LostMemory {
  public:
    explicit LostMemory([[maybe_unused]] bool expected) {
#if defined(VXR_HAS_LEAK_CHECKER)
        expected_ = expected;
        if (expected_) {
            __lsan_disable();
        }
#endif
    }
#if defined(VXR_HAS_LEAK_CHECKER)
    ~LostMemory() {
        if (expected_) {
            __lsan_enable();
        }
    }
#else
    ~LostMemory() = default;
#endif
    LostMemory(const LostMemory&) = delete;
    LostMemory& operator=(const LostMemory&) = delete;

#if defined(VXR_HAS_LEAK_CHECKER)
  private:
    bool expected_ = false;
#endif
};
