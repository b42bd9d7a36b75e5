#pragma once

#include <bit>

#include "texture/kernel/u8x16.h"

// Prefetching and streaming stores. Pictures are larger than any cache, and the processor's own prefetcher
// stops at the end of every page. Each function does nothing special where the processor has no such request.
// All are always inline: compilers may drop calls to a function that only prefetches.

/// Requests the cache line at `address`, which will soon be read.
[[gnu::always_inline]] inline void prefetch_to_read(const void* address) {
#if defined(__GNUC__)
    __builtin_prefetch(address, 0);
#else
    static_cast<void>(address);
#endif
}

/// Requests the cache line at `address`, which will soon be written.
[[gnu::always_inline]] inline void prefetch_to_write(const void* address) {
#if defined(__GNUC__)
    __builtin_prefetch(address, 1);
#else
    static_cast<void>(address);
#endif
}

/// Stores past the caches: for pictures larger than the caches, of which nothing would remain there until it
/// is read, and whose lines need not be fetched before they are filled. `bytes` is aligned to 16. A sequence
/// of these stores ends with end_stream().
[[gnu::always_inline]] inline void stream_u8x16(u8x16 value, void* bytes) {
#if defined(__SSE2__)
    _mm_stream_si128(static_cast<__m128i*>(bytes), std::bit_cast<__m128i>(value));
#else
    store_u8x16(value, bytes);
#endif
}

/// Makes streamed bytes visible to other threads before anything that this thread stores afterwards.
[[gnu::always_inline]] inline void end_stream() {
#if defined(__SSE2__)
    _mm_sfence();
#endif
}
