#pragma once

#include <array>
#include <bit>
#include <cstddef>

/// The slot of a virtual member function in its class's table of virtual functions, from 0. In the ABI of g++
/// and clang, the first word of a pointer to such a member holds the byte offset of the slot, plus one to
/// mark it as virtual. On Arm the second word holds the mark, because odd addresses have a meaning there.
template <class Function>
std::size_t virtual_slot(Function function) {
#if defined(__arm__) || defined(__aarch64__)
    constexpr std::ptrdiff_t kMark = 0;
#else
    constexpr std::ptrdiff_t kMark = 1;
#endif
    const auto parts = std::bit_cast<std::array<std::ptrdiff_t, 2>>(function);
    return static_cast<std::size_t>(parts[0] - kMark) / sizeof(void*);
}
