#include "ladder/refused_allocation.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

// Thread-local: one thread imports, and a library's thread that allocates meanwhile is not the bundle.
thread_local bool t_in_bundle = false;
thread_local bool t_counting = false;
thread_local std::int64_t t_asked = 0;
thread_local std::int64_t t_refused = 0;

bool refused() {
    return t_counting && t_in_bundle && ++t_asked == t_refused;
}

}  // namespace

#if !defined(VXR_SANITIZED)
// The C library's functions under the names that it provides for replacements.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);

void* malloc(std::size_t size) {
    if (refused()) {
        errno = ENOMEM;
        return nullptr;
    }
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    if (refused()) {
        errno = ENOMEM;
        return nullptr;
    }
    return __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) {
    if (refused()) {
        errno = ENOMEM;
        return nullptr;
    }
    return __libc_realloc(block, size);
}
}

namespace {
void* memory(std::size_t size) {
    return refused() ? nullptr : __libc_malloc(size == 0 ? 1 : size);
}
}  // namespace
#else
// The sanitizer's malloc and calloc are left alone: its own code asks for them. Nothing but the bundle asks
// for realloc while its calls are counted.
extern "C" {
void* __interceptor_realloc(void* block, std::size_t size);

void* realloc(void* block, std::size_t size) {
    if (refused()) {
        errno = ENOMEM;
        return nullptr;
    }
    return __interceptor_realloc(block, size);
}
}

namespace {
void* memory(std::size_t size) {
    return refused() ? nullptr : std::malloc(size == 0 ? 1 : size);
}
}  // namespace
#endif

void* operator new(std::size_t size) {
    void* block = memory(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}
void* operator new[](std::size_t size) {
    void* block = memory(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return memory(size);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return memory(size);
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete[](void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}
void operator delete[](void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}

RefusedAllocation::RefusedAllocation(std::int64_t refused_number) {
    t_asked = 0;
    t_refused = refused_number;
    t_in_bundle = false;
    t_counting = true;
}

RefusedAllocation::~RefusedAllocation() {
    t_counting = false;
}

embedded::Watcher RefusedAllocation::watcher() {
    // Only the host calls callbacks and only the bundle calls the host, so every passage changes sides.
    return [](embedded::Passage /*passage*/, std::string_view /*what*/) { t_in_bundle = !t_in_bundle; };
}

std::int64_t RefusedAllocation::asked() {
    return t_asked;
}

bool RefusedAllocation::with_malloc() {
#if defined(VXR_SANITIZED)
    return false;
#else
    return true;
#endif
}
