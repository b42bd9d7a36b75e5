#include "host/one_refused_allocation.h"

#include <cstdlib>
#include <new>

namespace {

constexpr int kNone = -1;
thread_local int left_to_allow = kNone;  // kNone: all of them
thread_local bool was_refused = false;

}  // namespace

OneRefusedAllocation::OneRefusedAllocation(int index) {
    was_refused = false;
    left_to_allow = index;
}

OneRefusedAllocation::~OneRefusedAllocation() {
    left_to_allow = kNone;
}

bool OneRefusedAllocation::refused() const {
    return was_refused;
}

void* operator new(std::size_t size) {
    if (left_to_allow == 0) {
        left_to_allow = kNone;
        was_refused = true;
        throw std::bad_alloc();
    }
    if (left_to_allow > 0) {
        --left_to_allow;
    }
    if (void* block = std::malloc(size == 0 ? 1 : size)) {
        return block;
    }
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}
