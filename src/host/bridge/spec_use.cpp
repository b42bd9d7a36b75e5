#include "host/bridge/spec_use.h"

#include <algorithm>
#include <cstddef>
#include <new>

#include "host/bridge/underlying_host.h"

namespace bridge {
namespace {

// Null while no callback runs on the thread, so nothing is left behind in the host's threads.
thread_local SpecUse* innermost_use = nullptr;

}  // namespace

struct OwnMemory::Block {
    std::unique_ptr<std::byte[]> bytes;
};

void OwnMemory::Deleted::operator()(Block* block) const {
    delete block;
}

A_Err OwnMemory::allocate(AEGP_MemSize size_bytes, AEGP_MemHandle* handle) {
    std::unique_ptr<Block, Deleted> block(new (std::nothrow) Block);
    if (block != nullptr) {
        block->bytes.reset(new (std::nothrow) std::byte[size_bytes]());
    }
    if (block == nullptr || block->bytes == nullptr) {
        return kHostErrorAllocation;
    }
    blocks_.push_back(std::move(block));
    *handle = reinterpret_cast<AEGP_MemHandle>(blocks_.back().get());
    return kHostErrorNone;
}

A_Err OwnMemory::free(AEGP_MemHandle handle) {
    std::erase_if(blocks_, [handle](const auto& block) {
        return reinterpret_cast<AEGP_MemHandle>(block.get()) == handle;
    });
    return kHostErrorNone;
}

void* OwnMemory::address(AEGP_MemHandle handle) const {
    const auto block = std::find_if(blocks_.begin(), blocks_.end(), [handle](const auto& known) {
        return reinterpret_cast<AEGP_MemHandle>(known.get()) == handle;
    });
    return block == blocks_.end() ? nullptr : (*block)->bytes.get();
}

SpecUse::SpecUse(AEIO_InSpecH spec) : spec_(spec), outer_(innermost_use) {
    innermost_use = this;
}

SpecUse::~SpecUse() {
    innermost_use = outer_;
}

SpecUse* SpecUse::of(AEIO_InSpecH spec) {
    for (SpecUse* use = innermost_use; use != nullptr; use = use->outer_) {
        if (use->spec_ == spec) {
            return use;
        }
    }
    return nullptr;
}

OwnMemory* SpecUse::memory_for_new_handles() {
    return innermost_use == nullptr || innermost_use->is_the_hosts() ? nullptr : innermost_use->memory();
}

bool SpecUse::reports_are_the_bridges() {
    for (const SpecUse* use = innermost_use; use != nullptr; use = use->outer_) {
        if (use->bridge_reports()) {
            return true;
        }
    }
    return false;
}

OwnMemory* SpecUse::memory_with(AEGP_MemHandle handle) {
    for (const SpecUse* use = innermost_use; use != nullptr; use = use->outer_) {
        OwnMemory* const memory = use->memory();
        if (memory != nullptr && memory->address(handle) != nullptr) {
            return memory;
        }
    }
    return nullptr;
}

A_Err SpecUse::get_options(void** options) {
    return Forward<&AEGP_IOInSuite5::AEGP_GetInSpecOptionsHandle>::call(spec_, options);
}

A_Err SpecUse::set_options(void* options, void** old_options) {
    return Forward<&AEGP_IOInSuite5::AEGP_SetInSpecOptionsHandle>::call(spec_, options, old_options);
}

A_Err SpecUse::set_dimensions(A_long width_px, A_long height_px) {
    return Forward<&AEGP_IOInSuite5::AEGP_SetInSpecDimensions>::call(spec_, width_px, height_px);
}

A_Err LentSpec::get_options(void** options) {
    *options = options_;
    return kHostErrorNone;
}

A_Err LentSpec::set_options(void* options, void** old_options) {
    if (old_options != nullptr) {
        *old_options = options_;
    }
    options_ = options;
    return kHostErrorNone;
}

A_Err LentSpec::set_dimensions(A_long width_px, A_long height_px) {
    size_ = {width_px, height_px};
    return kHostErrorNone;
}

}  // namespace bridge
