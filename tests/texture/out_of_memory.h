#pragma once

#include <sys/resource.h>

/// From here on this process gets no new large blocks of memory. For child processes only: there is no way
/// back.
inline void RefuseFurtherMemory() {
    const rlimit nothing = {0, 0};
    setrlimit(RLIMIT_AS, &nothing);
}
