#pragma once

/// Asks the processor for the cache line at `address`, to read it or to write to it soon; where there is no
/// such request, nothing. Pictures are larger than any cache, and the processor's own guessing stops at the
/// end of every page. Always inline: as functions that change nothing they would not be called at all.
[[gnu::always_inline]] inline void FetchToRead(const void* address) {
#if defined(__GNUC__)
    __builtin_prefetch(address, 0);
#else
    static_cast<void>(address);
#endif
}

[[gnu::always_inline]] inline void FetchToWrite(const void* address) {
#if defined(__GNUC__)
    __builtin_prefetch(address, 1);
#else
    static_cast<void>(address);
#endif
}
