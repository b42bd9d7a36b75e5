#pragma once

#include <cstdint>

#include "host/host_interface.h"

// The records that the host is given for sizes, times and rates of a composition file. Whatever could leave
// 32 bits is computed in 64 and clamped: a file may hold any value.

/// The nearest 32-bit value.
A_long clamp_to_long(std::int64_t value);

/// `aspect` in hundredths: multiplied in single precision and Deliberately truncated, not rounded, so 1.0667
/// is 106/100: projects that were imported before hold this ratio. `aspect` is what the reader lets through,
/// 0.01 to 100.
A_Ratio pixel_aspect_ratio(float aspect);

/// Whole frames a second, in hundredths: 25 is 2500/100.
A_Ratio frame_rate_ratio(A_long fps);

/// `frames` frames at `fps` frames a second.
A_Time frames_time(A_long frames, A_long fps);

/// The length of everything that shows the whole range: `from` to `to`, both included.
A_Time range_duration(A_long from, A_long to, A_long fps);

/// Where a layer starts: at `from` when the file says LOCAL, else at 0.
A_Time layer_start(A_long from, A_long fps, A_long local);

/// Frame `frame` of the scene's timeline in layer time: frame `from` is 0. May be negative.
A_Time key_time(A_long frame, A_long from, A_long fps);

/// Angles of the file in radians. Evaluated as written, first the product, then the quotient: what the host
/// gets is held to the last bit.
constexpr double radians_from_degrees(double degrees) {
    constexpr double kPi = 3.141592653589793;
    return degrees * kPi / 180;
}

/// The middle of a composition in whole pixels: an odd width of 721 gives 360.
A_FloatPoint center_point(A_long width, A_long height);

/// `err`, or the host's generic error when a call that succeeded yielded no handle: nothing can be built on
/// it. The handle is taken by reference, so that it is read after the call even when both stand in one
/// expression.
template <typename Handle>
A_Err require_handle(A_Err err, const Handle& handle) {
    return err == kHostErrorNone && handle == nullptr ? kHostErrorGeneric : err;
}
