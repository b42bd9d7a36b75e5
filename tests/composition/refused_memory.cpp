#include "composition/refused_memory.h"

#include <atomic>
#include <limits>
#include <new>

namespace {

constexpr long kNever = std::numeric_limits<long>::max();
std::atomic<long> g_asked{0};
std::atomic<long> g_first_refused{kNever};

bool refused() {
    return g_asked.fetch_add(1) >= g_first_refused.load();
}

}  // namespace

RefusedMemory::RefusedMemory(long first_refused) {
    g_asked = 0;
    g_first_refused = first_refused;
}

RefusedMemory::~RefusedMemory() {
    g_first_refused = kNever;
}

long RefusedMemory::asked() {
    return g_asked;
}

// The throwing operators remain the library's, so that every block is freed by its own allocator.
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    if (refused()) {
        return nullptr;
    }
    try {
        return ::operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    if (refused()) {
        return nullptr;
    }
    try {
        return ::operator new[](size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
