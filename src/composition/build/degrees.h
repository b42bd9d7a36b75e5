#pragma once

/// Angles of the file in radians. Evaluated as written, first the product, then the quotient: what the host
/// gets is held to the last bit.
constexpr double radians_from_degrees(double degrees) {
    constexpr double kPi = 3.141592653589793;
    return degrees * kPi / 180;
}
