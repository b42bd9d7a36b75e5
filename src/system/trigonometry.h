#pragma once

// Sine, cosine and tangent as hosts compute them: to the last bit of a double, but for rare values next to
// the middle of two. The C library of most systems does so; one source file per platform.

namespace os {

/// `x` in radians.
double sine(double x);
double cosine(double x);
double tangent(double x);

}  // namespace os
