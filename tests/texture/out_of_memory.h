#pragma once

#include <sys/resource.h>
#include <unistd.h>

#include <fstream>

/// Limits this process to about a megabyte of further memory. Only for child processes, because the limit
/// cannot be lifted. The rest is left for the stack and for what a sanitizer records about a failed
/// allocation.
inline void refuse_further_memory() {
    constexpr rlim_t kRestBytes = rlim_t{1} << 20;
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t limit_bytes = pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE)) + kRestBytes;
    const rlimit almost_nothing = {limit_bytes, limit_bytes};
    setrlimit(RLIMIT_AS, &almost_nothing);
}
