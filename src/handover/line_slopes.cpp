#include "handover/line_slopes.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace handover {
namespace {

double half_step(double value) {
    const double size = std::abs(value);
    if (!(size <= static_cast<double>(std::numeric_limits<float>::max()))) {
        return 0;
    }
    constexpr int kFraction_bits = 24;
    constexpr int kLeastExponent = -125;  // of numbers with a whole fraction
    int exponent = 0;
    std::frexp(size, &exponent);
    return std::ldexp(0.5, std::max(exponent, kLeastExponent) - kFraction_bits);
}

}  // namespace

void LineSlopes::restart() {
    least_.fill(-std::numeric_limits<double>::infinity());
    most_.fill(std::numeric_limits<double>::infinity());
}

bool LineSlopes::reaches(const double* from, const double* to, std::size_t size, double time) const {
    for (std::size_t i = 0; i < size; ++i) {
        const double slope = (to[i] - from[i]) / time;
        if (!(slope >= least_[i] && slope <= most_[i])) {
            return false;
        }
    }
    return true;
}

void LineSlopes::pass(const double* from, const double* through, std::size_t size, double time,
                      double tolerance) {
    for (std::size_t i = 0; i < size; ++i) {
        const double room = tolerance > 0 ? tolerance : half_step(through[i]);
        least_[i] = std::max(least_[i], (through[i] - room - from[i]) / time);
        most_[i] = std::min(most_[i], (through[i] + room - from[i]) / time);
    }
}

}  // namespace handover
