#pragma once

#include <cstdint>
#include <memory>

/// `size_bytes` bytes of plain memory, not cleared; null when there are not as many, or when the size is
/// negative. Never throws. The receiver gives the memory back with MemFree.
[[nodiscard]] void* MemAlloc(std::int64_t size_bytes);

/// The same, every byte zero. The pages of a large block are not touched before they are used, so asking for
/// more than is needed costs nothing.
[[nodiscard]] void* MemAllocZeroed(std::int64_t size_bytes);

/// Gives back what MemAlloc or MemAllocZeroed returned; null is allowed.
void MemFree(void* block);

/// Copies `count_bytes` bytes. Deliberately with the source first, unlike the C library's function: every
/// caller of the container is written in this order. The two must not overlap; a count below 1 copies
/// nothing.
void MemCopy(const void* source, void* destination, std::int64_t count_bytes);

struct MemRelease {
    void operator()(void* block) const { MemFree(block); }
};

/// Bytes from MemAlloc or MemAllocZeroed that give themselves back.
using MemBlock = std::unique_ptr<unsigned char, MemRelease>;
