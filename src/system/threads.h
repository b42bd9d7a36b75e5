#pragma once

namespace os {

/// Whether programs can start threads. A page that is opened from a disk cannot.
#if defined(__EMSCRIPTEN__)
inline constexpr bool kHasThreads = false;
#else
inline constexpr bool kHasThreads = true;
#endif

}  // namespace os
