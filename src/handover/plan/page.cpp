#include "handover/plan/page.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "text/printable.h"
#include "text/svg.h"

namespace plan {
namespace {

using text::svg_number;

// The part of a line from `a` to `b` within the area, as two parts of the whole; by Liang and Barsky.
std::optional<std::array<double, 2>> part_within(const Spot& a, const Spot& b, const Area& area) {
    double from = 0;
    double to = 1;
    const std::array<std::array<double, 2>, 4> sides{{{a.x - b.x, a.x - area.left},
                                                      {b.x - a.x, area.right - a.x},
                                                      {a.y - b.y, a.y - area.top},
                                                      {b.y - a.y, area.bottom - a.y}}};
    for (const auto& [step, room] : sides) {
        if (step == 0) {
            if (room < 0) {
                return std::nullopt;
            }
        } else if (step < 0) {
            from = std::max(from, room / step);
        } else {
            to = std::min(to, room / step);
        }
    }
    if (!(from <= to)) {
        return std::nullopt;
    }
    return std::array<double, 2>{from, to};
}

Spot between(const Spot& a, const Spot& b, double part) {
    return {a.x + (b.x - a.x) * part, a.y + (b.y - a.y) * part};
}

Spot within(const Spot& spot, const Area& area) {
    return {std::clamp(spot.x, area.left, area.right), std::clamp(spot.y, area.top, area.bottom)};
}

double turn(const Spot& a, const Spot& b, const Spot& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

// The outline around all spots, by Andrew's monotone chain.
std::vector<Spot> hull_of(std::vector<Spot> spots) {
    std::sort(spots.begin(), spots.end(),
              [](const Spot& a, const Spot& b) { return a.x < b.x || (a.x == b.x && a.y < b.y); });
    std::vector<Spot> hull;
    const auto add_side = [&hull](auto begin, auto end) {
        const std::size_t base = hull.size();
        for (auto spot = begin; spot != end; ++spot) {
            while (hull.size() >= base + 2 && turn(hull[hull.size() - 2], hull.back(), *spot) <= 0) {
                hull.pop_back();
            }
            hull.push_back(*spot);
        }
        hull.pop_back();
    };
    if (spots.size() < 2) {
        return spots;
    }
    add_side(spots.begin(), spots.end());
    add_side(spots.rbegin(), spots.rend());
    return hull;
}

// What is left of a convex outline on the inner side of an edge, by Sutherland and Hodgman; `room` is how far
// inside a spot lies.
template <typename Room>
std::vector<Spot> cut_outline(const std::vector<Spot>& outline, const Room& room) {
    std::vector<Spot> left;
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const Spot& a = outline[i];
        const Spot& b = outline[(i + 1) % outline.size()];
        const double room_a = room(a);
        const double room_b = room(b);
        if (room_a >= 0) {
            left.push_back(a);
        }
        if ((room_a < 0) != (room_b < 0)) {
            left.push_back(between(a, b, room_a / (room_a - room_b)));
        }
    }
    return left;
}

}  // namespace

bool Area::has(const Spot& spot) const {
    return spot.x >= left && spot.x <= right && spot.y >= top && spot.y <= bottom;
}

bool is_finite(const Spot& spot) {
    // Beyond this, differences and products overflow.
    constexpr double kFarthest = 1e100;
    return std::abs(spot.x) < kFarthest && std::abs(spot.y) < kFarthest;
}

std::vector<std::vector<Spot>> clipped_line(std::span<const Spot> line, const Area& area,
                                            std::size_t most_spots) {
    constexpr double kSame_px = 1.0 / 3;
    std::vector<Spot> shown;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const bool is_near =
            !shown.empty() && std::hypot(line[i].x - shown.back().x, line[i].y - shown.back().y) < kSame_px;
        if (!is_near || i + 1 == line.size()) {
            shown.push_back(line[i]);
        }
    }
    if (shown.size() > most_spots) {
        for (std::size_t i = 0; i < most_spots; ++i) {
            shown[i] = shown[i * (shown.size() - 1) / (most_spots - 1)];
        }
        shown.resize(most_spots);
    }
    std::vector<std::vector<Spot>> parts;
    bool joined = false;
    for (std::size_t i = 0; i + 1 < shown.size(); ++i) {
        const Spot& a = shown[i];
        const Spot& b = shown[i + 1];
        const auto part = is_finite(a) && is_finite(b) ? part_within(a, b, area) : std::nullopt;
        if (!part) {
            joined = false;
            continue;
        }
        if (!joined || (*part)[0] > 0) {
            parts.push_back({within(between(a, b, (*part)[0]), area)});
        }
        parts.back().push_back(within(between(a, b, (*part)[1]), area));
        joined = (*part)[1] == 1;
    }
    return parts;
}

std::vector<Spot> clipped_outline(std::span<const Spot> spots, const Area& area) {
    if (!std::all_of(spots.begin(), spots.end(), is_finite)) {
        return {};
    }
    std::vector<Spot> outline = hull_of({spots.begin(), spots.end()});
    outline = cut_outline(outline, [&](const Spot& spot) { return spot.x - area.left; });
    outline = cut_outline(outline, [&](const Spot& spot) { return area.right - spot.x; });
    outline = cut_outline(outline, [&](const Spot& spot) { return spot.y - area.top; });
    return cut_outline(outline, [&](const Spot& spot) { return area.bottom - spot.y; });
}

Spot edge_towards(const Spot& inside, const Spot& outside, const Area& area) {
    const auto part = part_within(inside, outside, area);
    return within(part ? between(inside, outside, (*part)[1]) : inside, area);
}

void Page::open(std::string_view attributes) {
    svg_.append("<g ").append(attributes).append(">\n");
}

void Page::close() {
    svg_ += "</g>\n";
}

void Page::path(std::span<const Spot> spots) {
    svg_ += "<path d=\"";
    for (std::size_t i = 0; i < spots.size(); ++i) {
        svg_ += i == 0 ? 'M' : 'L';
        svg_.append(svg_number(spots[i].x)).append(" ").append(svg_number(spots[i].y));
    }
}

void Page::end(std::string_view element, std::string_view title) {
    if (title.empty()) {
        svg_ += "/>\n";
        return;
    }
    svg_.append("><title>").append(title).append("</title></").append(element).append(">\n");
}

void Page::line(std::span<const Spot> spots, std::string_view attributes) {
    path(spots);
    svg_.append("\" fill=\"none\" ").append(attributes);
    end("path", {});
}

void Page::outline(std::span<const Spot> spots, std::string_view attributes, std::string_view title) {
    path(spots);
    svg_.append("Z\" ").append(attributes);
    end("path", title);
}

void Page::circle(const Spot& middle, double radius, std::string_view attributes, std::string_view title) {
    svg_.append("<circle cx=\"").append(svg_number(middle.x)).append("\" cy=\"").append(svg_number(middle.y));
    svg_.append("\" r=\"").append(svg_number(radius)).append("\" ").append(attributes);
    end("circle", title);
}

void Page::rectangle(const Area& area, std::string_view attributes) {
    svg_.append("<rect x=\"").append(svg_number(area.left)).append("\" y=\"").append(svg_number(area.top));
    svg_.append("\" width=\"").append(svg_number(area.width())).append("\" height=\"");
    svg_.append(svg_number(area.height())).append("\" ").append(attributes);
    end("rect", {});
}

void Page::text(const Spot& begin, std::string_view markup, std::string_view attributes) {
    svg_.append("<text x=\"").append(svg_number(begin.x)).append("\" y=\"").append(svg_number(begin.y));
    svg_ += '"';
    if (!attributes.empty()) {
        svg_.append(" ").append(attributes);
    }
    svg_.append(">").append(markup).append("</text>\n");
}

double text_width(std::string_view text, double font_size) {
    // The mean of a sans-serif face, and a little more.
    constexpr double kOfFontSize = 0.57;
    return static_cast<double>(text::columns_of(text::printable(text))) * kOfFontSize * font_size;
}

bool Labels::is_free(const Area& area) const {
    const auto overlaps = [&](const Area& other) {
        return area.left < other.right && other.left < area.right && area.top < other.bottom &&
               other.top < area.bottom;
    };
    return area.left >= bounds_.left && area.right <= bounds_.right && area.top >= bounds_.top &&
           area.bottom <= bounds_.bottom && std::none_of(taken_.begin(), taken_.end(), overlaps);
}

std::optional<Spot> Labels::place(const Spot& named, double clearance, double width, double height) {
    // Right of it first, as one reads.
    constexpr std::array<std::array<double, 2>, 8> kSides{
        {{1, 0}, {1, -1}, {1, 1}, {-1, 0}, {0, -1}, {0, 1}, {-1, -1}, {-1, 1}}};
    for (const double far : {1.0, 2.0, 3.5}) {
        for (const auto& [across, down] : kSides) {
            const double away = clearance * far * (across != 0 && down != 0 ? 0.75 : 1);
            const Spot middle{named.x + across * (away + width / 2), named.y + down * (away + height / 2)};
            const Area area{middle.x - width / 2, middle.y - height / 2, middle.x + width / 2,
                            middle.y + height / 2};
            if (is_free(area)) {
                taken_.push_back(area);
                // Letters with tails reach below the base line.
                constexpr double kTail = 0.22;
                return Spot{area.left, area.bottom - kTail * height};
            }
        }
    }
    return std::nullopt;
}

}  // namespace plan
