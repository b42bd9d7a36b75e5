#pragma once

// The memory that the host lends to the bundle through handles.

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
    std::string what;  ///< the bundle's name for it
    AEGP_MemSize size_bytes = 0;
    std::unique_ptr<std::byte[]> bytes;  ///< exactly this size, so that a sanitizer sees every overrun
    int locks = 0;
    Id in_spec = 0;         ///< the in-spec whose options it is, or 0
    bool reported = false;  ///< left alive, and reported once
    [[nodiscard]] bool alive() const { return bytes != nullptr; }
};

/// Fills memory that the bundle did not ask to be cleared, so that relying on zeros shows.
inline constexpr std::byte kUninitialisedMemory{0xCD};

class MemoryStore {
  public:
    /// Null when memory runs out. Ids count from 1.
    MemoryBlock* allocate(const char* what, AEGP_MemSize size_bytes, bool clear);

    /// The block with this id, which was allocated once; it may be freed.
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
