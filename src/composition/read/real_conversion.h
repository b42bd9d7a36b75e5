#pragma once

#include <cstddef>
#include <version>

// The conversion of a text into a real number, on which StrToReal and whole_number rest. Two functions do it,
// to the same bits: the C++ library's where it converts reals, as those of Linux and Windows do, and the C
// library's in the "C" locale where not, as on macOS. The build option VXR_C_LIBRARY_REALS chooses the second
// one anywhere.

/// The number at the start of a text.
template <class Real>
struct RealAtStart {
    Real value = 0;          ///< rounded once; beyond the range of its type infinity or zero
    std::size_t length = 0;  ///< bytes of the text that are the number; 0 when the text begins with none
    bool in_range = true;
};

// All take a terminated text without a sign: decimal or hexadecimal with its prefix, infinity or NaN,
// whatever locale the host has set. An exponent letter without digits is not part of the number, and a prefix
// without digits is the decimal 0 before the "x". Defined for float and double. Allocate nothing and do not
// throw.

#if defined(__cpp_lib_to_chars)
template <class Real>
[[nodiscard]] RealAtStart<Real> real_by_cpp_library(const char* text);
#endif

#if !defined(_WIN32)  // whose C library has no such function
template <class Real>
[[nodiscard]] RealAtStart<Real> real_by_c_library(const char* text);
#endif

template <class Real>
[[nodiscard]] RealAtStart<Real> real_at_start(const char* text) {
#if defined(__cpp_lib_to_chars) && !defined(VXR_C_LIBRARY_REALS)
    return real_by_cpp_library<Real>(text);
#else
    return real_by_c_library<Real>(text);
#endif
}
