#pragma once

#include <cstdint>

#include "embedded/testing.h"

/// Counts what the bundle allocates while one of these lives, and refuses one of them. This program's
/// `operator new` in all its forms is the bundle's, too; without a sanitizer, whose own they are then, so are
/// `malloc` and `calloc`. What the host allocates is not touched: the watcher tells the two apart.
class RefusedAllocation {
  public:
    /// The allocation of that number, from 1, is refused; 0 for none.
    explicit RefusedAllocation(std::int64_t refused);
    ~RefusedAllocation();
    RefusedAllocation(const RefusedAllocation&) = delete;
    RefusedAllocation& operator=(const RefusedAllocation&) = delete;

    /// To be given to the host.
    [[nodiscard]] static embedded::Watcher watcher();
    /// Allocations of the bundle so far.
    [[nodiscard]] static std::int64_t asked();
    /// Whether `malloc` and `calloc` are counted.
    [[nodiscard]] static bool with_malloc();
};
