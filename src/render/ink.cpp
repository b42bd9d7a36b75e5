#include "render/ink.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "render/bitmap_font.h"

namespace render {
namespace {

// Beyond this, squares of distances overflow.
constexpr double kFarthest = 1e100;

bool is_drawable(const InkSpot& spot) {
    return std::abs(spot.x) < kFarthest && std::abs(spot.y) < kFarthest;
}

// Cuts a line to the stretch in which one of its coordinates lies between two numbers.
bool cut_between(InkSpot& from, InkSpot& to, double InkSpot::*coordinate, double low, double high) {
    const InkSpot a = from;
    const InkSpot b = to;
    const double way = b.*coordinate - a.*coordinate;
    if (way == 0) {
        return a.*coordinate >= low && a.*coordinate <= high;
    }
    const double at_low = (low - a.*coordinate) / way;
    const double at_high = (high - a.*coordinate) / way;
    const double begin = std::max(0.0, std::min(at_low, at_high));
    const double end = std::min(1.0, std::max(at_low, at_high));
    from = {a.x + (b.x - a.x) * begin, a.y + (b.y - a.y) * begin};
    to = {a.x + (b.x - a.x) * end, a.y + (b.y - a.y) * end};
    return begin <= end;
}

// How far a spot lies from a line between two others.
double distance_to(const InkSpot& spot, const InkSpot& from, const InkSpot& to) {
    const InkSpot way{to.x - from.x, to.y - from.y};
    const double squared = way.x * way.x + way.y * way.y;
    const double along = (spot.x - from.x) * way.x + (spot.y - from.y) * way.y;
    const double part = squared > 0 ? std::clamp(along / squared, 0.0, 1.0) : 0;
    return std::hypot(spot.x - from.x - part * way.x, spot.y - from.y - part * way.y);
}

// The part of a pixel that an edge covers, `inside` pixels from its middle.
double covered(double inside) {
    return std::clamp(inside + 0.5, 0.0, 1.0);
}

// Calls `use` with every character: itself if it is ASCII, else a byte that no letter has.
template <typename Use>
void for_each_character(std::string_view words, const Use& use) {
    constexpr unsigned kContinuation = 0x80;
    constexpr unsigned kContinuationBits = 0xc0;
    for (const char c : words) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte & kContinuationBits) != kContinuation) {
            use(byte < kContinuation ? c : '\x7f');
        }
    }
}

}  // namespace

Ink::Ink(std::int32_t width_px, std::int32_t height_px, PutInk put)
    : width_px_(width_px), height_px_(height_px), put_(std::move(put)) {}

void Ink::put(std::int64_t x, std::int64_t y, const InkColour& colour, double coverage) const {
    if (coverage > 0 && x >= 0 && y >= 0 && x < width_px_ && y < height_px_) {
        put_(static_cast<std::int32_t>(x), static_cast<std::int32_t>(y), colour,
             static_cast<float>(coverage));
    }
}

void Ink::line(InkSpot from, InkSpot to, double width, const InkColour& colour, float alpha) {
    const double reach = width / 2 + 1;
    if (!is_drawable(from) || !is_drawable(to) ||
        !cut_between(from, to, &InkSpot::x, -2 * reach, width_px_ + 2 * reach) ||
        !cut_between(from, to, &InkSpot::y, -2 * reach, height_px_ + 2 * reach)) {
        return;
    }
    // Rows of a steep line and columns of a flat one: few pixels lie beside it in each.
    const bool is_steep = std::abs(to.y - from.y) > std::abs(to.x - from.x);
    double InkSpot::*const along = is_steep ? &InkSpot::y : &InkSpot::x;
    double InkSpot::*const aside = is_steep ? &InkSpot::x : &InkSpot::y;
    if (from.*along > to.*along) {
        std::swap(from, to);
    }
    const double length = to.*along - from.*along;
    const double slope = length > 0 ? (to.*aside - from.*aside) / length : 0;
    // A line at 45 degrees reaches the square root of 2 as far aside as it is thick.
    const double beside = reach * 1.5;
    const auto first = static_cast<std::int64_t>(std::floor(from.*along - reach));
    const auto last = static_cast<std::int64_t>(std::ceil(to.*along + reach));
    for (std::int64_t i = first; i <= last; ++i) {
        const double step = std::clamp(static_cast<double>(i) + 0.5 - from.*along, 0.0, length);
        const double middle = from.*aside + slope * step;
        const auto low = static_cast<std::int64_t>(std::floor(middle - beside));
        const auto high = static_cast<std::int64_t>(std::ceil(middle + beside));
        for (std::int64_t k = low; k <= high; ++k) {
            const std::int64_t x = is_steep ? k : i;
            const std::int64_t y = is_steep ? i : k;
            const InkSpot pixel{static_cast<double>(x) + 0.5, static_cast<double>(y) + 0.5};
            put(x, y, colour, covered(width / 2 - distance_to(pixel, from, to)) * alpha);
        }
    }
}

void Ink::ring(const InkSpot& middle, double radius, double width, const InkColour& colour, float alpha) {
    const double reach = radius + width;
    const double size = std::max(width_px_, height_px_);
    if (!is_drawable(middle) || !(reach < size) || middle.x < -reach || middle.y < -reach ||
        middle.x > width_px_ + reach || middle.y > height_px_ + reach) {
        return;
    }
    const auto top = static_cast<std::int64_t>(std::floor(middle.y - reach));
    const auto bottom = static_cast<std::int64_t>(std::ceil(middle.y + reach));
    const auto left = static_cast<std::int64_t>(std::floor(middle.x - reach));
    const auto right = static_cast<std::int64_t>(std::ceil(middle.x + reach));
    for (std::int64_t y = top; y <= bottom; ++y) {
        for (std::int64_t x = left; x <= right; ++x) {
            const double distance =
                std::hypot(static_cast<double>(x) + 0.5 - middle.x, static_cast<double>(y) + 0.5 - middle.y);
            put(x, y, colour, covered(width / 2 - std::abs(distance - radius)) * alpha);
        }
    }
}

void Ink::letter(const InkSpot& begin, char one, std::int32_t scale, const InkColour& colour,
                 float alpha) const {
    const auto left = static_cast<std::int64_t>(std::lround(begin.x));
    const auto top = static_cast<std::int64_t>(std::lround(begin.y));
    for (std::int32_t y = 0; y < kCellHeight * scale; ++y) {
        for (std::int32_t x = 0; x < kCellWidth * scale; ++x) {
            if (has_dot(one, x / scale, y / scale)) {
                put(left + x, top + y, colour, alpha);
            }
        }
    }
}

void Ink::text(const InkSpot& begin, std::string_view words, std::int32_t scale, const InkColour& colour,
               float alpha) {
    const double cell = static_cast<double>(kCellWidth) * scale;
    InkSpot at = begin;
    for_each_character(words, [&](char one) {
        // What begins beyond the picture would be skipped one pixel after the other.
        if (at.x > -cell && at.x < width_px_ && at.y > -static_cast<double>(kCellHeight) * scale &&
            at.y < height_px_) {
            letter(at, one, scale, colour, alpha);
        }
        at.x += cell;
    });
}

double Ink::text_height(std::int32_t scale) {
    return static_cast<double>(kCellHeight - 1) * scale;
}

}  // namespace render
