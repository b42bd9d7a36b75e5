#pragma once

// The memory handles that the host lends.

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "embedded/project.h"
#include "host/host_interface.h"

namespace embedded {

struct MemoryBlock {
    Id id = 0;
    std::string what;  ///< what the bundle said it is for
    AEGP_MemSize size_bytes = 0;
    std::unique_ptr<std::byte[]> bytes;  ///< of exactly that size, so that a sanitizer sees every overrun
    int locks = 0;
    Id in_spec = 0;         ///< whose options it is; 0 for nobody's
    bool reported = false;  ///< as left alive, once
    [[nodiscard]] bool alive() const { return bytes != nullptr; }
};

/// Fills what is not asked to be clear, so that nobody gets away with relying on zeros.
inline constexpr std::byte kUninitialisedMemory{0xCD};

class MemoryStore {
  public:
    /// Null when there is no memory. Ids count from 1.
    MemoryBlock* allocate(const char* what, AEGP_MemSize size_bytes, bool clear);

    /// The block with this id, which must have been allocated; it may be dead.
    MemoryBlock& block(Id id) { return blocks_.at(Project::index(id)); }
    [[nodiscard]] const std::vector<MemoryBlock>& blocks() const { return blocks_; }

  private:
    std::vector<MemoryBlock> blocks_;
};

inline MemoryBlock* MemoryStore::allocate(const char* what, AEGP_MemSize size_bytes, bool clear) {
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
