#include "handover/plan/time_axis.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "handover/plan/plan_style.h"
#include "text/plain_number.h"

namespace plan {

void TimeAxis::draw(Page& page, double top) const {
    constexpr double kApart_px = 44;
    constexpr double kMostTicks = 64;
    const double length = scene_.end - scene_.begin;
    const double step = length > 0 ? round_step(std::max(1.0, kApart_px * length / (right_ - left_))) : 1;
    page.open(std::string(kSmall) + " text-anchor=\"middle\"");
    const auto draw_tick = [&](double frame) {
        const double x = x_of(frame);
        page.line(std::array{Spot{x, top}, Spot{x, top + 4}}, "stroke=\"#999999\"");
        page.text({x, top + 14}, text::plain_number(frame), "class=\"tick-frame\"");
    };
    draw_tick(scene_.begin);
    if (scene_.end > scene_.begin) {
        draw_tick(scene_.end);
    }
    // Between the first and the last frame, at some distance from both.
    constexpr double kBeside_px = 26;
    const double first = std::ceil(scene_.begin / step);
    for (double i = first; i * step < scene_.end && i < first + kMostTicks; ++i) {
        const double x = x_of(i * step);
        if (x - left_ > kBeside_px && right_ - x > kBeside_px) {
            draw_tick(i * step);
        }
    }
    page.close();
    page.text({left_ - 12, top + 14}, "frame", std::string(kSmall) + " text-anchor=\"end\"");
}

}  // namespace plan
