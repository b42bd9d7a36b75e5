#pragma once

#include <cstdint>

#include "host/host_interface.h"

// The host's records for the sizes, times, rates and angles of a composition file. Whatever could exceed 32
// bits is computed in 64 and clamped: a file may hold any value.

/// The nearest 32-bit value.
A_long clamp_to_long(std::int64_t value);

/// `aspect` in hundredths: multiplied in single precision and deliberately truncated, not rounded, so 1.0667
/// is 106/100: existing projects hold this ratio. `aspect` is from 0.01 to 100, as the reader ensures.
A_Ratio pixel_aspect_ratio(float aspect);

/// Whole frames per second, in hundredths: 25 is 2500/100.
A_Ratio frame_rate_ratio(A_long fps);

/// `frames` frames at `fps` frames per second.
A_Time frames_time(A_long frames, A_long fps);

/// The length of the whole range, `from` to `to` inclusive.
A_Time range_duration(A_long from, A_long to, A_long fps);

/// The start of a layer: `from` when the file says LOCAL, else 0.
A_Time layer_start(A_long from, A_long fps, A_long local);

/// Frame `frame` of the scene's timeline in layer time: frame `from` is 0. May be negative.
A_Time key_time(A_long frame, A_long from, A_long fps);

/// Angles of the file in radians. Evaluated as written, the product before the quotient: the values that the
/// host gets are exact to the last bit.
constexpr double radians_from_degrees(double degrees) {
    constexpr double kPi = 3.141592653589793;
    return degrees * kPi / 180;
}

/// The middle of a composition in whole pixels: an odd width of 721 gives 360.
A_FloatPoint center_point(A_long width, A_long height);

/// `err`, or the host's generic error when a call succeeded but yielded no handle, on which nothing can be
/// built. Takes the handle by reference, so that it is read after the call even when both are in one
/// expression.
template <typename Handle>
A_Err require_handle(A_Err err, const Handle& handle) {
    return err == kHostErrorNone && handle == nullptr ? kHostErrorGeneric : err;
}
