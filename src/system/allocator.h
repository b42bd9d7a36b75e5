#pragma once

#include <cstdlib>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace os {

/// Prepares the C library's allocator for a program that makes and gives back scenes of a million small
/// blocks. For programs only: a plug-in leaves the allocator of its host alone.
inline void prepare_allocator_for_scenes() {
#if defined(__GLIBC__)
    // A freed block joins its neighbours at once. Otherwise glibc keeps blocks of up to 128 bytes in lists of
    // their own and, for every large block that is freed, goes through all of them once more.
    ::mallopt(M_MXFAST, 0);
    // The heap grows by this much instead of 128 KiB. Memory that is not touched takes none.
    constexpr int kGrowth_bytes = 64 * 1024 * 1024;
    ::mallopt(M_TOP_PAD, kGrowth_bytes);
#endif
}

}  // namespace os
