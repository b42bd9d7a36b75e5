#include "system/trigonometry.h"

#include <cmath>

namespace os {

#if defined(_WIN32)

namespace {

// The library's functions are the processor's instructions, whose pi has 66 bits: near multiples of pi hardly
// a digit is right. So quarter turns are subtracted first, with 163 bits of pi / 2; within an eighth of a
// turn the instructions are exact to the last bit of a long double.
struct Reduced {
    long double rest;  // from -pi / 4 to pi / 4
    int quarter;       // number of quarter turns subtracted, modulo 4
};

Reduced reduced(double x) {
    // Three parts of 33 bits, whose multiples up to 2^31 are exact in 64 bits, and the rest.
    constexpr long double kHalfPi[] = {0x1921FB544p-32L, 0x10B4611A6p-66L, 0x13198A2E0p-101L,
                                       0xDC1CD129024E088Ap-167L};
    constexpr double kLargest = 0x1p30;
    if (!(std::abs(x) <= kLargest)) {
        return {x, 0};
    }
    const long double quarters = std::nearbyint(static_cast<long double>(x) / kHalfPi[0]);
    long double rest = x;
    for (const long double part : kHalfPi) {
        rest -= quarters * part;
    }
    return {rest, static_cast<int>(static_cast<long long>(quarters) & 3)};
}

double sine_of(const Reduced& angle) {
    switch (angle.quarter) {
        case 0:
            return static_cast<double>(std::sin(angle.rest));
        case 1:
            return static_cast<double>(std::cos(angle.rest));
        case 2:
            return static_cast<double>(-std::sin(angle.rest));
        default:
            return static_cast<double>(-std::cos(angle.rest));
    }
}

}  // namespace

double sine(double x) {
    // A zero keeps its sign.
    return x == 0 ? x : sine_of(reduced(x));
}

double cosine(double x) {
    Reduced angle = reduced(x);
    angle.quarter = (angle.quarter + 1) & 3;
    return sine_of(angle);
}

// Computed with more digits than are kept, because the library's tangent of a double differs in the last bit.
double tangent(double x) {
    return static_cast<double>(std::tan(static_cast<long double>(x)));
}

#elif defined(__EMSCRIPTEN__)

// Its library differs in the last bit of some doubles; a long double has 113 bits there.

double sine(double x) {
    return static_cast<double>(std::sin(static_cast<long double>(x)));
}

double cosine(double x) {
    return static_cast<double>(std::cos(static_cast<long double>(x)));
}

double tangent(double x) {
    return static_cast<double>(std::tan(static_cast<long double>(x)));
}

#else

double sine(double x) {
    return std::sin(x);
}

double cosine(double x) {
    return std::cos(x);
}

double tangent(double x) {
    return std::tan(x);
}

#endif

}  // namespace os
