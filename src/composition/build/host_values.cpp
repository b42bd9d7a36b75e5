#include "composition/build/host_values.h"

#include <algorithm>
#include <limits>

A_long clamp_to_long(std::int64_t value) {
    return static_cast<A_long>(std::clamp<std::int64_t>(value, std::numeric_limits<A_long>::min(),
                                                        std::numeric_limits<A_long>::max()));
}

A_Ratio pixel_aspect_ratio(float aspect) {
    return {static_cast<A_long>(aspect * 100.0F), 100};
}

A_Ratio frame_rate_ratio(A_long fps) {
    return {clamp_to_long(std::int64_t{fps} * 100), 100};
}

A_Time frames_time(A_long frames, A_long fps) {
    return {frames, static_cast<A_u_long>(fps)};
}

A_Time range_duration(A_long from, A_long to, A_long fps) {
    return frames_time(clamp_to_long(std::int64_t{to} - from + 1), fps);
}

A_Time layer_start(A_long from, A_long fps, A_long local) {
    return frames_time(local != 0 ? from : 0, fps);
}

A_Time key_time(A_long frame, A_long from, A_long fps) {
    return frames_time(clamp_to_long(std::int64_t{frame} - from), fps);
}

A_FloatPoint center_point(A_long width, A_long height) {
    const A_long x = width / 2;
    const A_long y = height / 2;
    return {static_cast<A_FpLong>(x), static_cast<A_FpLong>(y)};
}
