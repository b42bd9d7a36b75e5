#pragma once

// Sine, cosine and tangent as hosts compute them: exact to the last bit of a double, except for rare values
// close to the middle between two doubles. The C library of most systems is as exact; those of Windows
// and of browsers are not.

namespace os {

/// `x` in radians.
double sine(double x);
double cosine(double x);
double tangent(double x);

}  // namespace os
