#include "composition/build/host_values.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr A_long kMin = std::numeric_limits<A_long>::min();
constexpr A_long kMax = std::numeric_limits<A_long>::max();

TEST(HostValues, PixelAspectIsTruncatedToHundredthsInSinglePrecision) {
    const struct {
        const char* why;
        float aspect;
        A_long hundredths;
    } cases[] = {
        {"square", 1.0F, 100},
        {"0.9F is below 0.9, and its product rounds back up", 0.9F, 90},
        {"cut, not rounded", 1.0925F, 109},
        {"cut, not rounded", 1.0667F, 106},
        {"a product just below a hundredth stays below", 1.459999F, 145},
        {"1.15F * 100 is 115 in single precision and 114.99999 in double", 1.15F, 115},
        {"the lowest that the reader lets through", 0.01F, 1},
        {"the highest that the reader lets through", 100.0F, 10000},
    };
    for (const auto& c : cases) {
        const A_Ratio ratio = pixel_aspect_ratio(c.aspect);
        EXPECT_EQ(ratio.num, c.hundredths) << c.why;
        EXPECT_EQ(ratio.den, 100U) << c.why;
    }
}

TEST(HostValues, FrameRateIsInHundredthsAndClamped) {
    EXPECT_EQ(frame_rate_ratio(25).num, 2500);
    EXPECT_EQ(frame_rate_ratio(25).den, 100U);
    EXPECT_EQ(frame_rate_ratio(21474836).num, 2147483600) << "the highest that fits";
    EXPECT_EQ(frame_rate_ratio(21474837).num, kMax) << "one more does not";
    EXPECT_EQ(frame_rate_ratio(kMax).num, kMax);
}

TEST(HostValues, DurationsAndKeyTimesAreClampedTo32Bits) {
    const struct {
        const char* why;
        A_Time time;
        A_long value;
    } cases[] = {
        {"both ends count", range_duration(10, 59, 25), 50},
        {"a single frame", range_duration(7, 7, 25), 1},
        {"an end before the start is passed on", range_duration(10, 5, 25), -4},
        {"the longest", range_duration(1, kMax, 25), kMax},
        {"one longer than 32 bits hold", range_duration(0, kMax, 25), kMax},
        {"far below 0", range_duration(kMax, kMin, 25), kMin},
        {"a key at the first frame", key_time(10, 10, 25), 0},
        {"a key before it", key_time(5, 10, 25), -5},
        {"as early as 32 bits hold", key_time(kMin, 0, 25), kMin},
        {"earlier than that", key_time(kMin, 1, 25), kMin},
        {"layers start at 0", layer_start(10, 25, 0), 0},
        {"local layers start at the first frame", layer_start(10, 25, 1), 10},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.time.value, c.value) << c.why;
        EXPECT_EQ(c.time.scale, 25U) << c.why;
    }
}

TEST(HostValues, TheCenterIsInWholePixels) {
    EXPECT_EQ(center_point(721, 577).x, 360.0);
    EXPECT_EQ(center_point(721, 577).y, 288.0);
    EXPECT_EQ(center_point(1, 2).x, 0.0);
    EXPECT_EQ(center_point(1, 2).y, 1.0);
}

TEST(HostValues, SuccessWithoutAHandleIsTheGenericError) {
    int something = 0;
    int* nothing = nullptr;
    EXPECT_EQ(require_handle(0, &something), 0);
    EXPECT_EQ(require_handle(0, nothing), 1);
    EXPECT_EQ(require_handle(5, nothing), 5);
    EXPECT_EQ(require_handle(5, &something), 5);
}

}  // namespace
