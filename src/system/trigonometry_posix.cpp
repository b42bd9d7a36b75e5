#include "system/trigonometry.h"

#include <cmath>

namespace os {

double sine(double x) {
    return std::sin(x);
}

double cosine(double x) {
    return std::cos(x);
}

double tangent(double x) {
    return std::tan(x);
}

}  // namespace os
