#include "texture/file/memory.h"

#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

bool allocatable(std::int64_t size_bytes) {
    return size_bytes >= 0 &&
           static_cast<std::uint64_t>(size_bytes) <= std::numeric_limits<std::size_t>::max();
}

}  // namespace

void* MemAlloc(std::int64_t size_bytes) {
    return allocatable(size_bytes) ? std::malloc(static_cast<std::size_t>(size_bytes)) : nullptr;
}

void* MemAllocZeroed(std::int64_t size_bytes) {
    return allocatable(size_bytes) ? std::calloc(static_cast<std::size_t>(size_bytes), 1) : nullptr;
}

void MemFree(void* block) {
    std::free(block);
}

void MemCopy(const void* source, void* destination, std::int64_t count_bytes) {
    if (count_bytes > 0) {
        std::memcpy(destination, source, static_cast<std::size_t>(count_bytes));
    }
}
