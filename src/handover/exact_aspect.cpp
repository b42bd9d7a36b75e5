#include "handover/exact_aspect.h"

#include <cmath>

namespace handover {

double exact_aspect(float aspect) {
    // A float has at most nine significant digits, and the first may be the second after the point.
    constexpr int kMostDecimals = 11;
    double scale = 1;
    for (int decimals = 0; decimals <= kMostDecimals; ++decimals, scale *= 10) {
        const double decimal = std::round(double{aspect} * scale) / scale;
        if (static_cast<float>(decimal) == aspect) {
            return decimal;
        }
    }
    return double{aspect};
}

}  // namespace handover
