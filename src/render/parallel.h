#pragma once

#include <cstddef>
#include <functional>

namespace render {

/// Calls `work(i, thread)` once for every i below `count`, on `threads` threads of which the calling one is
/// the first; `thread` counts from 0. Returns when all calls have returned. The first exception ends the rest
/// early and is passed on.
void for_each_index(std::size_t count, std::size_t threads,
                    const std::function<void(std::size_t i, std::size_t thread)>& work);

}  // namespace render
