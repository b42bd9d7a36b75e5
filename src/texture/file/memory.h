#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>

// Plain memory that is asked for in 64-bit sizes. Nothing here throws.

/// Whether `size_bytes` is a size that the C library can be asked for.
[[nodiscard]] inline bool is_allocatable(std::int64_t size_bytes) {
    return size_bytes >= 0 &&
           static_cast<std::uint64_t>(size_bytes) <= std::numeric_limits<std::size_t>::max();
}

/// Returns `size_bytes` bytes of uninitialised memory, or null when memory is short or the size is negative.
/// The caller releases it with MemFree.
[[nodiscard]] inline void* MemAlloc(std::int64_t size_bytes) {
    return is_allocatable(size_bytes) ? std::malloc(static_cast<std::size_t>(size_bytes)) : nullptr;
}

/// Like MemAlloc, but every byte is zero. The pages of a large block are not touched until they are used, so
/// asking for more than is needed costs nothing.
[[nodiscard]] inline void* allocate_zeroed(std::int64_t size_bytes) {
    return is_allocatable(size_bytes) ? std::calloc(static_cast<std::size_t>(size_bytes), 1) : nullptr;
}

/// Releases what MemAlloc or allocate_zeroed returned; null is allowed.
inline void MemFree(void* block) {
    std::free(block);
}

/// Copies `count_bytes` bytes; a count below 1 copies nothing. The two ranges must not overlap. Deliberately
/// takes the source first, unlike the C library's function: every caller of the container uses this order.
inline void MemCopy(const void* source, void* destination, std::int64_t count_bytes) {
    if (count_bytes > 0) {
        std::memcpy(destination, source, static_cast<std::size_t>(count_bytes));
    }
}

struct MemRelease {
    void operator()(void* block) const { MemFree(block); }
};

/// Owns bytes from MemAlloc or allocate_zeroed.
using MemBlock = std::unique_ptr<unsigned char, MemRelease>;
