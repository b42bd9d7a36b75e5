#pragma once

#include <sys/resource.h>
#include <unistd.h>

#include <fstream>

/// From here on this process gets no new large blocks of memory, of a megabyte or more in all. For child
/// processes only: there is no way back. The little that remains is for the process itself: its stack, and
/// what a sanitizer notes down about an allocation that fails.
inline void refuse_further_memory() {
    constexpr rlim_t kRestBytes = rlim_t{1} << 20;
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t limit_bytes = pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE)) + kRestBytes;
    const rlimit almost_nothing = {limit_bytes, limit_bytes};
    setrlimit(RLIMIT_AS, &almost_nothing);
}
