#include "embedded/memory_store.h"

#include <algorithm>
#include <new>
#include <utility>

namespace embedded {

MemoryBlock* MemoryStore::allocate(const char* what, AEGP_MemSize size_bytes, bool clear) {
    std::unique_ptr<std::byte[]> bytes(new (std::nothrow) std::byte[size_bytes]);
    if (!bytes) {
        return nullptr;
    }
    std::fill_n(bytes.get(), size_bytes, clear ? std::byte{0} : kUninitialisedMemory);
    MemoryBlock& block = blocks_.emplace_back();
    block.id = static_cast<Id>(blocks_.size());
    block.what = what;
    block.size_bytes = size_bytes;
    block.bytes = std::move(bytes);
    return &block;
}

}  // namespace embedded
