#pragma once

#include <cstdint>

#include "embedded/testing.h"

/// During its lifetime, counts the bundle's allocations and refuses one of them. The bundle uses this
/// program's `operator new` in all its forms, and without a sanitizer also its `malloc` and `calloc`. The
/// watcher tells the bundle's allocations from the host's, which are not counted.
class RefusedAllocation {
  public:
    /// Refuses the allocation with this number, from 1; none for 0.
    explicit RefusedAllocation(std::int64_t refused);
    ~RefusedAllocation();
    RefusedAllocation(const RefusedAllocation&) = delete;
    RefusedAllocation& operator=(const RefusedAllocation&) = delete;

    /// The watcher for the host.
    [[nodiscard]] static embedded::Watcher watcher();
    /// The number of the bundle's allocations so far.
    [[nodiscard]] static std::int64_t asked();
    /// Whether `malloc` and `calloc` are counted.
    [[nodiscard]] static bool with_malloc();
};
